#include "platform/system/endsignals.h"

#include <algorithm>
#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace platform {

EndSignals::EndSignals()
{
    const sigset_t set = endSignals();
    m_arrived = Fd::own(::signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
    pthread_sigmask(SIG_BLOCK, m_arrived ? &set : nullptr, &m_before);
}

EndSignals::~EndSignals()
{
    signalfd_siginfo arrived;
    while (m_arrived && ::read(m_arrived.get(), &arrived, sizeof arrived) > 0) { }
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

bool EndSignals::pause(std::chrono::milliseconds time) const
{
    using std::chrono::steady_clock;
    const auto end = steady_clock::now() + time;
    while (true) {
        const auto rest = std::max(end - steady_clock::now(), steady_clock::duration::zero());
        const auto seconds = std::chrono::floor<std::chrono::seconds>(rest);
        const timespec patience{time_t(seconds.count()), long(std::chrono::nanoseconds(rest - seconds).count())};
        pollfd watched{descriptor(), POLLIN, 0};
        if (const int ready = ::ppoll(&watched, 1, &patience, nullptr); ready >= 0 || errno != EINTR)
            return ready <= 0;
    }
}

}
