// Processes of one measurement: all end with it.
#pragma once

#include <functional>
#include <sys/types.h>
#include <vector>

namespace bench {

class Processes {
public:
    ~Processes(); // kills and reaps what is left

    // Forks; returns when the child wrote a byte to the descriptor that it is given.
    void start(const std::function<void(int readyFd)> &child);

private:
    std::vector<pid_t> m_children;
};

enum class Pinning { OneCpu, Free };
void pin(Pinning pinning); // this process and its later children

}
