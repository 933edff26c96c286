// The message bus beside raw sockets, sd-bus and QtDBus: round trips, broadcasts, and how others fare while one client
// never reads. Prints times and ratios; run it with bench/run-bus.
#include "bench/bus/endpoint.h"
#include "bench/bus/processes.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <unistd.h>
#include <vector>

namespace bench {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kRoundTrips = 20'000;
constexpr int kWarmUp = 1'000;
constexpr int kWindow = 500; // messages that are on their way before the sender waits for all receivers
constexpr int kWindows = 20;
constexpr int kLazyClients = 8;
constexpr int kRounds = 3; // all buses in turn; the best of each counts, since other programs only ever add time

double microseconds(Clock::duration time) { return std::chrono::duration<double, std::micro>(time).count(); }

struct Times { // microseconds
    double median = 0;
    double p99 = 0;
    double worst = 0;
};

Times summed(std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    return {times[times.size() / 2], times[times.size() * 99 / 100], times.back()};
}

// Answers every message on "B" with the same bytes on "A".
void echo(const Bus &bus, int readyFd)
{
    const auto endpoint = bus.connect();
    endpoint->onMessage = [&](std::span<const char> data) { endpoint->send("A", data); };
    endpoint->join("B");
    sayReady(readyFd);
    endpoint->run();
}

std::vector<double> roundTrips(Endpoint &endpoint, size_t size, int count)
{
    const std::vector<char> data(size, 'd');
    std::vector<double> times;
    auto begin = Clock::now();
    endpoint.onMessage = [&](std::span<const char>) {
        const auto now = Clock::now();
        times.push_back(microseconds(now - begin));
        if (int(times.size()) == count)
            return endpoint.stop();
        begin = now;
        endpoint.send("B", data);
    };
    endpoint.send("B", data);
    endpoint.run();
    return times;
}

// Measures in a process of its own, so that the next measurement starts fresh.
Times measured(const std::function<Times()> &measure)
{
    Processes processes;
    int result[2];
    if (pipe(result) != 0)
        die("pipe");
    processes.start([&](int readyFd) {
        const Times times = measure();
        if (write(result[1], &times, sizeof times) != sizeof times)
            die("result");
        sayReady(readyFd);
    });
    Times times;
    if (read(result[0], &times, sizeof times) != sizeof times)
        die("result");
    close(result[0]);
    close(result[1]);
    return times;
}

Times roundTrip(const Bus &bus, size_t size)
{
    return measured([&] {
        pin(Pinning::OneCpu);
        Processes processes;
        processes.start(bus.serve);
        processes.start([&](int readyFd) { echo(bus, readyFd); });
        const auto endpoint = bus.connect();
        endpoint->join("A");
        roundTrips(*endpoint, size, kWarmUp);
        return summed(roundTrips(*endpoint, size, kRoundTrips));
    });
}

// Counts what comes on "B" and says so on "A" after every window.
void count(const Bus &bus, int readyFd)
{
    const auto endpoint = bus.connect();
    int seen = 0;
    endpoint->onMessage = [&](std::span<const char>) {
        if (++seen % kWindow == 0)
            endpoint->send("A", std::span("seen", 4));
    };
    endpoint->join("B");
    sayReady(readyFd);
    endpoint->run();
}

// Time for each message until all receivers have it, from whole windows.
Times broadcast(const Bus &bus, size_t size, int receivers)
{
    return measured([&] {
        Processes processes;
        processes.start(bus.serve);
        for (int i = 0; i < receivers; ++i)
            processes.start([&](int readyFd) { count(bus, readyFd); });
        const auto endpoint = bus.connect();
        endpoint->join("A");
        const std::vector<char> data(size, 'd');
        int missing = 0;
        endpoint->onMessage = [&](std::span<const char>) {
            if (--missing == 0)
                endpoint->stop();
        };
        std::vector<double> times;
        for (int window = 0; window < kWindows; ++window) {
            missing = receivers;
            const auto begin = Clock::now();
            for (int i = 0; i < kWindow; ++i)
                endpoint->send("B", data);
            endpoint->run();
            times.push_back(microseconds(Clock::now() - begin) / kWindow);
        }
        return summed(times);
    });
}

// Round trips of two clients while others join a channel, get more than they are allowed to leave unread, and sleep.
Times besideLazyClients(const Bus &bus)
{
    return measured([&] {
        Processes processes;
        processes.start(bus.serve);
        processes.start([&](int readyFd) { echo(bus, readyFd); });
        for (int i = 0; i < kLazyClients; ++i) {
            processes.start([&](int readyFd) {
                const auto lazy = bus.connect();
                lazy->join("C");
                sayReady(readyFd);
                pause();
            });
        }
        const auto endpoint = bus.connect();
        endpoint->join("A");
        roundTrips(*endpoint, 64, kWarmUp);
        processes.start([&](int readyFd) {
            const auto flood = bus.connect();
            const std::vector<char> data(4096, 'd');
            sayReady(readyFd);
            for (int i = 0; i < 10'000; ++i) {
                flood->send("C", data);
                usleep(50);
            }
        });
        return summed(roundTrips(*endpoint, 64, 2 * kRoundTrips));
    });
}

void compare(const char *what, const std::function<Times(const Bus &)> &measure)
{
    std::printf("\n%s\n%-16s %10s %10s %12s %12s\n", what, "", "median us", "p99 us", "x floor", "x tyx bus");
    const Bus *const all[] = {&kFloor, &kBatchedFloor, &kTyx, &kSdBus, &kQtDBus};
    std::vector<std::pair<const Bus *, Times>> results;
    for (const Bus *bus : all)
        results.emplace_back(bus, measure(*bus));
    for (int round = 1; round < kRounds; ++round) {
        for (auto &[bus, best] : results) {
            if (const Times again = measure(*bus); again.median < best.median)
                best = again;
        }
    }
    for (const auto &[bus, times] : results) {
        std::printf("%-16s %10.2f %10.2f %12.2f %12.2f\n", bus->name, times.median, times.p99,
            times.median / results[0].second.median, times.median / results[2].second.median);
    }
    std::fflush(stdout);
}

void runAll()
{
    compare("Round trip of 64 bytes (all on one CPU)", [](const Bus &bus) { return roundTrip(bus, 64); });
    compare("Round trip of 4 KiB (all on one CPU)", [](const Bus &bus) { return roundTrip(bus, 4096); });
    for (const int receivers : {1, 8}) {
        for (const size_t size : {64, 4096}) {
            const std::string what = "One to " + std::to_string(receivers) + ", " + std::to_string(size)
                + " bytes, for each message (windows of 500)";
            compare(what.c_str(), [&](const Bus &bus) { return broadcast(bus, size, receivers); });
        }
    }
    const Times times = besideLazyClients(kTyx);
    std::printf(
        "\nRound trips over the tyx bus while %d clients are flooded and never read: median %.1f us, p99 %.1f us, "
        "worst %.1f us\n",
        kLazyClients, times.median, times.p99, times.worst);
}

}

}

int main() { bench::runAll(); }
