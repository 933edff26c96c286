#include "settings/status/systemstatuswatcher.h"

#include "platform/system/fd.h"
#include "settings/status/statusboard.h"
#include "settings/status/statustable.h"

#include <QSocketNotifier>
#include <QTimer>
#include <array>
#include <chrono>
#include <cstring>
#include <sys/inotify.h>
#include <unistd.h>

using namespace status;
using namespace std::chrono_literals;

namespace {

// For those who write without telling: coarse timers are up to 5 % late, and a second is promised.
constexpr auto kSlowLook = 900ms;

}

class SystemStatusWatcherData {
public:
    void listen();
    void drain() const;
    [[nodiscard]] bool nothingNew() const { return board && board->sequence == seen; }

    platform::Fd inotify = platform::Fd::own(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    Board *board = nullptr; // of the process, for its life
    quint32 seen = 0; // the board's sequence before the last look
    SystemTableCopy copy = {};
    bool exists = false;
    std::unique_ptr<QSocketNotifier> notifier;
    QTimer slowLook;
};

// Anew at each look, since the key file may be another one by now; for the same one that changes nothing.
void SystemStatusWatcherData::listen()
{
    ::inotify_add_watch(inotify.get(), kKeyFile, IN_ATTRIB | IN_DELETE_SELF);
    board = Board::open().value_or(nullptr);
    if (!board)
        return;
    board->armed = 1;
    seen = board->sequence;
}

void SystemStatusWatcherData::drain() const
{
    std::array<char, 4096> events;
    while (::read(inotify.get(), events.data(), events.size()) > 0) { }
}

SystemStatusWatcher::SystemStatusWatcher(QObject *parent)
    : QObject(parent), d(std::make_unique<SystemStatusWatcherData>())
{
    if (d->inotify) {
        d->notifier = std::make_unique<QSocketNotifier>(d->inotify.get(), QSocketNotifier::Read);
        connect(d->notifier.get(), &QSocketNotifier::activated, this, &SystemStatusWatcher::onTouched);
    }
    d->listen();
    d->exists = UTIL_CopySystemTable(&d->copy);
    connect(&d->slowLook, &QTimer::timeout, this, &SystemStatusWatcher::look);
    d->slowLook.start(kSlowLook);
}

SystemStatusWatcher::~SystemStatusWatcher() = default;

const SystemTableCopy &SystemStatusWatcher::current() const { return d->copy; }

bool SystemStatusWatcher::tableExists() const { return d->exists; }

// The key file may be touched for other reasons too.
void SystemStatusWatcher::onTouched()
{
    d->drain();
    if (!d->nothingNew())
        look();
}

void SystemStatusWatcher::look()
{
    d->listen(); // before reading: what changes meanwhile is told
    SystemTableCopy now;
    const bool exists = UTIL_CopySystemTable(&now);
    if (exists == d->exists && std::memcmp(now.bytes, d->copy.bytes, sizeof now.bytes) == 0)
        return;
    const SystemTableCopy before = std::exchange(d->copy, now);
    d->exists = exists;
    Q_EMIT changed(before, now); // the receiver may delete this object
}
