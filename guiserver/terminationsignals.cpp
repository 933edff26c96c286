#include "guiserver/terminationsignals.h"

#include "platform/system/endsignals.h"

#include <QSocketNotifier>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

std::array<int, 2> pipeEnds{-1, -1}; // read, write

void changeMask(int how)
{
    const sigset_t set = platform::endSignals();
    pthread_sigmask(how, &set, nullptr);
}

void setHandler(sighandler_t handler)
{
    const sigset_t set = platform::endSignals();
    for (int number = 1; number < NSIG; ++number) {
        if (sigismember(&set, number) == 1)
            std::signal(number, handler);
    }
}

void onSignal(int)
{
    const int saved = errno;
    const char byte = 0;
    [[maybe_unused]] const auto written = write(pipeEnds[1], &byte, 1); // a full pipe has said it already
    errno = saved;
}

}

void holdTerminationSignals() { changeMask(SIG_BLOCK); }

void releaseTerminationSignals() { changeMask(SIG_UNBLOCK); }

TerminationSignals::TerminationSignals()
{
    if (pipe2(pipeEnds.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return; // the signals keep their plain effect
    auto *notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this, notifier] {
        notifier->setEnabled(false); // a second signal finds us on our way already
        Q_EMIT received();
    });
    setHandler(onSignal);
}

TerminationSignals::~TerminationSignals()
{
    setHandler(SIG_DFL);
    for (const int end : pipeEnds)
        close(end);
}
