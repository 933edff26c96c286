// Starts the processes of one measurement and ends them.
#include "bench/bus/processes.h"

#include "bench/bus/endpoint.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace bench {

void die(const char *what)
{
    std::perror(what);
    _exit(3);
}

void sayReady(int readyFd)
{
    if (write(readyFd, "r", 1) != 1)
        die("ready");
}

Processes::~Processes()
{
    for (auto child = m_children.rbegin(); child != m_children.rend(); ++child) { // the broker last
        kill(*child, SIGKILL);
        waitpid(*child, nullptr, 0);
    }
}

void Processes::start(const std::function<void(int)> &child)
{
    int ready[2];
    if (pipe(ready) != 0)
        die("pipe");
    const pid_t pid = fork();
    if (pid < 0)
        die("fork");
    if (pid == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        close(ready[0]);
        child(ready[1]);
        _exit(0);
    }
    close(ready[1]);
    m_children.push_back(pid);
    char byte = 0;
    if (read(ready[0], &byte, 1) != 1)
        die("a process of the measurement ended early");
    close(ready[0]);
}

void pin(Pinning pinning)
{
    static const cpu_set_t all = [] {
        cpu_set_t set;
        sched_getaffinity(0, sizeof set, &set);
        return set;
    }();
    cpu_set_t one;
    CPU_ZERO(&one);
    for (unsigned cpu = 0; cpu < CPU_SETSIZE; ++cpu) {
        if (CPU_ISSET(cpu, &all)) {
            CPU_SET(cpu, &one);
            break;
        }
    }
    sched_setaffinity(0, sizeof all, pinning == Pinning::OneCpu ? &one : &all);
}

}
