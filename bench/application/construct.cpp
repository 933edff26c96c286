// Constructs the application object, says how many nanoseconds that took, and waits to be looked at.
#include <chrono>
#include <cstdio>

#ifdef BENCH_TYX
#include <ZApplication>
using Application = ZApplication;
#else
#include <QApplication>
using Application = QApplication;
#endif

int main(int argc, char **argv)
{
    const auto begin = std::chrono::steady_clock::now();
    const Application application(argc, argv);
    const std::chrono::nanoseconds time = std::chrono::steady_clock::now() - begin;
    std::printf("%lld\n", static_cast<long long>(time.count()));
    std::fflush(stdout);
    return std::getchar() == EOF ? 0 : 1;
}
