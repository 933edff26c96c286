#include "tools/tyx/progress.h"

#include <cstdio>
#include <unistd.h>

namespace tyx {

namespace {

constexpr qint64 kPatienceMs = 500;
constexpr qint64 kIntervalMs = 100;
constexpr qsizetype kStepsPerLook = 64; // at the clock

}

Progress::Progress(QString what, qsizetype total)
    : m_what(std::move(what)), m_total(total), m_terminal(::isatty(STDERR_FILENO) != 0)
{
    m_sinceShown.start();
}

Progress::~Progress()
{
    if (m_shown)
        std::fputs("\r\033[K", stderr);
}

void Progress::step()
{
    ++m_done;
    if (!m_terminal || m_done % kStepsPerLook != 0)
        return;
    if (m_sinceShown.elapsed() < (m_shown ? kIntervalMs : kPatienceMs))
        return;
    m_shown = true;
    m_sinceShown.restart();
    std::fprintf(stderr, "\r%s %lld of %lld", qPrintable(m_what), static_cast<long long>(m_done),
        static_cast<long long>(m_total));
}

}
