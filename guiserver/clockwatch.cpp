#include "guiserver/clockwatch.h"

#include <QSocketNotifier>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <limits>
#include <sys/timerfd.h>
#include <tuple>
#include <unistd.h>

ClockWatch::ClockWatch() : m_timer(platform::Fd::own(::timerfd_create(CLOCK_REALTIME, TFD_CLOEXEC | TFD_NONBLOCK)))
{
    if (!m_timer || !arm()) {
        std::fprintf(stderr, "tyx-guiserver: cannot tell when the clock is set: %s\n",
            qPrintable((platform::SysError{"timerfd", errno}.text())));
        return;
    }
    auto *notifier = new QSocketNotifier(m_timer.get(), QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &ClockWatch::look);
}

bool ClockWatch::arm() const
{
    itimerspec never = {};
    never.it_value.tv_sec = std::numeric_limits<time_t>::max();
    constexpr int kFlags = TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET;
    return ::timerfd_settime(m_timer.get(), kFlags, &never, nullptr) == 0 || errno == ECANCELED; // set just now, again
}

// Armed again first: a jump that comes while others look at the clock is told too. Where the end of a short time_t has
// come, the timer expires instead, and is left.
void ClockWatch::look()
{
    quint64 expired = 0;
    if (::read(m_timer.get(), &expired, sizeof expired) >= 0 || errno != ECANCELED)
        return;
    std::ignore = arm(); // as it worked before
    Q_EMIT clockSet();
}
