#include "tools/tyx/recorder.h"

#include "appbase/messaging/wire.h"
#include "input/devices/testpipe.h"
#include "input/logic/recording.h"
#include "platform/bus/businspector.h"
#include "platform/bus/qcopchannel.h"
#include "platform/system/endsignals.h"
#include "settings/status/statuslayout.h"
#include "settings/status/systemstatuswatcher.h"
#include "tools/tyx/command.h"
#include "tools/tyx/server.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSocketNotifier>
#include <QTimer>
#include <chrono>
#include <unistd.h>

namespace tyx {

namespace {

using namespace std::chrono_literals;

constexpr char kCapture[] = "TYX/TestCapture";

// What tools ask of the screen is no input of the phone, and captured input is written down as what it was.
bool isOfTools(const QByteArray &channel)
{
    return channel == kCapture || channel == "TYX/Screen" || channel == "TYX/TouchPanel"
        || channel.startsWith("TYX/Tool/");
}

int failToWrite(const QString &file, const QString &why)
{
    return fail(
        QStringLiteral("%1: %2; record to a place with room that you may write to").arg(printable(file.toUtf8()), why));
}

class Recorder {
public:
    explicit Recorder(QFile &file) : m_file(file) { }

    int run(double seconds);

private:
    void nudge();
    void readMonitor();
    void take(const QJsonObject &sent);
    void takeCaptured(const QByteArray &name, const QByteArray &data);
    void takeStatus(const SystemTableCopy &before, const SystemTableCopy &now);
    void put(decltype(recording::Event::what) what);
    bool isPartOfThePhone(qint64 pid);

    platform::EndSignals m_signals; // first: the monitor is ended by us, not by a terminal
    QFile &m_file;
    QProcess m_monitor;
    SystemStatusWatcher m_status;
    QElapsedTimer m_clock; // runs while something is recorded
    QTimer m_nudges;
    QHash<qint64, bool> m_parts;
    qint64 m_written = 0;
    QString m_loss; // why no more can be written; null while it can
};

// The bus tells of every message only to somebody who does nothing else, so another process listens. It is there as
// soon as it tells of one of ours.
int Recorder::run(double seconds)
{
    const QSocketNotifier end(m_signals.descriptor(), QSocketNotifier::Read);
    QObject::connect(&end, &QSocketNotifier::activated, qApp, [] { QCoreApplication::exit(Done); });
    QObject::connect(&m_monitor, &QProcess::readyReadStandardOutput, qApp, [this] { readMonitor(); });
    QObject::connect(&m_monitor, &QProcess::finished, qApp, [] { QCoreApplication::exit(Failed); });
    QObject::connect(&m_status, &SystemStatusWatcher::changed, qApp,
        [this](const SystemTableCopy &before, const SystemTableCopy &now) { takeStatus(before, now); });
    m_monitor.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_monitor.start(QCoreApplication::applicationFilePath(),
        {QStringLiteral("bus"), QStringLiteral("monitor"), QStringLiteral("--json")});
    QObject::connect(&m_nudges, &QTimer::timeout, qApp, [this] { nudge(); });
    m_nudges.start(20ms);
    if (seconds > 0)
        QTimer::singleShot(
            std::chrono::milliseconds(qint64(seconds * 1000)), qApp, [] { QCoreApplication::exit(Done); });
    const int status = QCoreApplication::exec();
    m_monitor.disconnect();
    m_monitor.kill();
    m_monitor.waitForFinished();
    if (!m_clock.isValid())
        return fail(QStringLiteral("nothing was recorded: no phone answered"));
    std::fprintf(stderr, "tyx: %lld events\n", static_cast<long long>(m_written));
    return m_loss.isNull() ? status : failToWrite(m_file.fileName(), m_loss);
}

void Recorder::nudge() { QCopChannel::send("TYX/Tool/recorder", "begin()"); }

void Recorder::readMonitor()
{
    while (m_monitor.canReadLine())
        take(QJsonDocument::fromJson(m_monitor.readLine()).object());
}

void Recorder::take(const QJsonObject &sent)
{
    const QByteArray channel = sent[u"channel"].toString().toUtf8();
    const QByteArray name = sent[u"message"].toString().toUtf8();
    const QByteArray data = QByteArray::fromHex(sent[u"data"].toString().toLatin1());
    if (!m_clock.isValid()) {
        if (channel != "TYX/Tool/recorder")
            return;
        m_nudges.stop();
        m_clock.start();
        std::fputs(::isatty(STDERR_FILENO) ? "tyx: recording; Ctrl+C ends it\n" : "tyx: recording\n", stderr);
        return;
    }
    if (channel == kCapture)
        takeCaptured(name, data);
    if (!isOfTools(channel))
        put(recording::Message{isPartOfThePhone(sent[u"pid"].toInteger()), channel, name, data});
}

void Recorder::takeCaptured(const QByteArray &name, const QByteArray &data)
{
    qint32 first = 0;
    qint32 second = 0;
    qint32 third = 0;
    if (name == "record(int,int)" && wire::unpack(data, first, second))
        put(recording::Key{first == 0 ? keypad::Device::Keypad : keypad::Device::Button, quint16(second)});
    if (name == "sample(int,int,int)" && wire::unpack(data, first, second, third))
        put(recording::Touch{{quint16(first), quint16(second), quint16(third)}});
}

void Recorder::takeStatus(const SystemTableCopy &before, const SystemTableCopy &now)
{
    for (const status::Row &row : status::rows) {
        const QByteArrayView was(before.bytes + row.offset, qsizetype(row.size()));
        const QByteArrayView is(now.bytes + row.offset, qsizetype(row.size()));
        if (row.kind != status::Row::Unused && was != is)
            put(recording::Status{QByteArray(row.name.data(), qsizetype(row.name.size())), is.toByteArray()});
    }
}

void Recorder::put(decltype(recording::Event::what) what)
{
    if (!m_clock.isValid() || !m_loss.isNull())
        return;
    // Flushed whatever ends us, and so that a full disk ends us at once; where a part found room, only the rest has a
    // reason why not.
    if (m_file.write(recording::format({m_clock.elapsed(), std::move(what)})) >= 0
        && (m_file.flush() || m_file.flush())) {
        ++m_written;
        return;
    }
    m_loss = m_file.errorString();
    QCoreApplication::exit(Failed);
}

// What the server and applications send is an effect of what came to them; others, which have gone by now or have no
// channel of an application, begin something.
bool Recorder::isPartOfThePhone(qint64 pid)
{
    if (const auto known = m_parts.constFind(pid); known != m_parts.cend())
        return *known;
    const auto bus = platform::BusInspector::open();
    const auto all = bus ? (*bus)->registrations() : std::nullopt;
    bool isPart = false;
    for (const auto &[channel, owner] : all.value_or(QList<platform::BusInspector::Registration>()))
        isPart = isPart || (owner == pid && (channel == "TYX/QtServer" || channel.startsWith("TYX/Application/")));
    return *m_parts.insert(pid, isPart);
}

}

int record(const RecordingOptions &options)
{
    if (const auto bus = platform::BusInspector::open(); !bus)
        return fail(whyNoServer(bus.error()) + QStringLiteral(", with TYX_TEST_AGENT=1"));
    if (::access(testpipe::kPath, W_OK) != 0)
        return fail(QStringLiteral("this phone keeps its keys to itself: start tyx-guiserver with TYX_TEST_AGENT=1"));
    QFile file(QFile::decodeName(options.file.c_str()));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(recording::header()) < 0 || !file.flush())
        return failToWrite(file.fileName(), file.errorString());
    return Recorder(file).run(options.seconds);
}

}
