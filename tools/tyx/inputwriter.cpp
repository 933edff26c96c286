#include "tools/tyx/inputwriter.h"

#include "appbase/messaging/wire.h"
#include "input/devices/testpipe.h"
#include "tools/tyx/server.h"

#include <cstring>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <thread>
#include <tuple>
#include <unistd.h>
#include <utility>

namespace tyx {

namespace {

using namespace std::chrono_literals;
using platform::Fd;

constexpr auto kPatience = 10s;
constexpr auto kLookAgain = 1ms;

tl::unexpected<QString> error(const QString &text) { return tl::make_unexpected(text); }

QString nobodyReadsIt() { return QStringLiteral("nobody reads it; ") + QLatin1String(kStartIt); }

// A driver's device cannot be written to; then the pipe of a phone under test takes its keys.
tl::expected<Fd, QString> openForKeys(const char *path)
{
    QString reason = QStringLiteral("it is a device, and the phone is not under test (TYX_TEST_AGENT=1)");
    for (const char *each : {path, testpipe::kPath}) {
        auto fd = Fd::open(each, O_WRONLY | O_NONBLOCK);
        struct stat status = {};
        if (fd && ::fstat(fd->get(), &status) == 0 && S_ISFIFO(status.st_mode))
            return std::move(*fd);
        if (!fd && each == path)
            reason = fd.error().number == ENXIO ? nobodyReadsIt() : fd.error().text();
    }
    return error(QStringLiteral("%1: %2").arg(QString::fromLatin1(path), reason));
}

bool isEmpty(const Fd &fifo)
{
    int bytes = 0;
    return !fifo || ::ioctl(fifo.get(), FIONREAD, &bytes) != 0 || bytes == 0;
}

// A text without characters is typed when the application with the focus has read all that came before.
bool applicationsHaveRead()
{
    return askServer("text(QCString,QString)", wire::pack(QString()), kPatience).has_value();
}

}

void pause(std::chrono::milliseconds time)
{
    if (time > 0ms)
        std::this_thread::sleep_for(time);
}

InputWriter::Done InputWriter::write(const recording::Key &key)
{
    const bool isButton = key.device == keypad::Device::Button;
    Fd &fd = isButton ? m_button : m_keypad;
    const char *path = isButton ? "/dev/button" : "/dev/keypad0";
    if (!fd) {
        auto opened = openForKeys(path);
        if (!opened)
            return error(opened.error());
        fd = std::move(*opened);
    }
    auto done = send(fd, path, std::as_bytes(std::span(&key.record, 1)));
    if (done)
        remember(key);
    return done;
}

void InputWriter::remember(const recording::Key &key)
{
    const quint16 number = key.record & keypad::kNumberMask;
    const auto *row = keypad::rawKey(number);
    const bool isSwitch = row && (row->name == "flip" || row->name == "headset");
    if (key.record & keypad::kPressed && !isSwitch)
        m_down[number] = key.device;
    else
        m_down.erase(number);
}

InputWriter::Done InputWriter::write(const recording::Touch &touch)
{
    constexpr char kPath[] = "/dev/tyx_ts";
    if (!m_touch) {
        auto opened = Fd::open(kPath, O_WRONLY | O_NONBLOCK);
        struct stat status = {};
        if (!opened)
            return error(QStringLiteral("%1: %2").arg(
                QLatin1String(kPath), opened.error().number == ENXIO ? nobodyReadsIt() : opened.error().text()));
        if (::fstat(opened->get(), &status) != 0 || !S_ISFIFO(status.st_mode))
            return error(QStringLiteral("%1: it is a device, which only fingers touch").arg(QLatin1String(kPath)));
        m_touch = std::move(*opened);
    }
    auto done = send(m_touch, kPath, touch.sample.encode());
    if (done)
        m_pen = touch.sample;
    return done;
}

void InputWriter::letGo()
{
    for (const auto &[number, device] : std::exchange(m_down, {}))
        std::ignore = write(recording::Key{device, number});
    if (const touch::Sample pen = std::exchange(m_pen, {}); pen.pressure > 0)
        std::ignore = write(recording::Touch{{0, pen.x, pen.y}});
}

// A record is smaller than what a FIFO takes in one piece, so it is written whole or not at all.
InputWriter::Done InputWriter::send(Fd &fd, const char *path, std::span<const std::byte> bytes)
{
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (::write(fd.get(), bytes.data(), bytes.size()) < 0) {
        if (errno != EAGAIN && errno != EINTR)
            return error(
                QStringLiteral("%1: %2; the phone has stopped").arg(QLatin1String(path), qt_error_string(errno)));
        if (std::chrono::steady_clock::now() > end)
            return error(QStringLiteral("%1: the GUI server does not read it").arg(QLatin1String(path)));
        pause(kLookAgain);
    }
    return {};
}

InputWriter::Done InputWriter::settle()
{
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!isEmpty(m_keypad) || !isEmpty(m_button) || !isEmpty(m_touch)) {
        if (std::chrono::steady_clock::now() > end)
            return error(QStringLiteral("the GUI server does not read its devices"));
        pause(kLookAgain);
    }
    if (!applicationsHaveRead())
        return error(QStringLiteral("the GUI server, or the application with the focus, does not answer"));
    return {};
}

}
