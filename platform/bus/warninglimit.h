// How much the broker says about clients that misbehave. Pure.
#pragma once

#include <chrono>

namespace platform::bus {

// Who is sent away may come again at once, ten thousand times a second. What is said of it must not fill the disk that
// the log is on, so only the first warnings of a period are told; the next one after it says how many were not.
class WarningLimit {
public:
    static constexpr int kMost = 20;
    static constexpr std::chrono::seconds kPeriod{10};

    struct Answer {
        bool tell = false;
        int untold = 0; // in the period that has ended with this warning
    };

    Answer ask(std::chrono::steady_clock::time_point now)
    {
        if (now < m_end && m_told == kMost) {
            ++m_untold;
            return {};
        }
        Answer answer{true, 0};
        if (now >= m_end) {
            answer.untold = m_untold;
            m_untold = 0;
            m_told = 0;
            m_end = now + kPeriod;
        }
        ++m_told;
        return answer;
    }

private:
    std::chrono::steady_clock::time_point m_end{};
    int m_told = 0;
    int m_untold = 0;
};

}
