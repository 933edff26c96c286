// An application without a screen, for tests: says "ready", then lives until a message or a signal ends it.
// With the argument "keep" it asked to survive the end of the application manager, and tells an orderly end by
// status 5.
#include <ZApplication>
#include <cstdio>
#include <cstring>

static constexpr int kOrderlyEnd = 5;

int main(int argc, char **argv)
{
    ZApplication app(argc, argv, ZApplication::Tty);
    const bool keep = argc > 1 && std::strcmp(argv[1], "keep") == 0;
    if (keep)
        DisableAMClosedRestart();
    std::puts("ready");
    std::fflush(stdout);
    const int result = ZApplication::exec();
    return keep ? kOrderlyEnd : result;
}
