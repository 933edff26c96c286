// A private dbus-daemon for the two D-Bus rivals.
#include "bench/bus/endpoint.h"

#include <csignal>
#include <cstdio>
#include <sys/prctl.h>
#include <tuple>
#include <unistd.h>

namespace bench {

const char *const kDBusAddress = "unix:path=/tmp/bench-dbus.socket";

void serveDBus(int readyFd)
{
    int address[2];
    if (pipe(address) != 0)
        die("pipe");
    const pid_t daemon = fork();
    if (daemon == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        const std::string print = "--print-address=" + std::to_string(address[1]);
        const std::string where = std::string("--address=") + kDBusAddress;
        std::ignore = std::freopen("/dev/null", "w", stderr); // it warns that the sandbox does not raise its limits
        execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", "--nopidfile", "--nosyslog", where.c_str(),
            print.c_str(), nullptr);
        die("dbus-daemon");
    }
    close(address[1]);
    char byte = 0;
    if (read(address[0], &byte, 1) != 1)
        die("dbus-daemon");
    sayReady(readyFd);
    pause();
}

}
