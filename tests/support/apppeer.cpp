// An application without a screen, for tests: says "ready", then lives until a message or a signal ends it.
// With the argument "keep" it asked to survive the end of the application manager.
#include <ZApplication>
#include <cstdio>
#include <cstring>

int main(int argc, char **argv)
{
    ZApplication app(argc, argv, ZApplication::Tty);
    if (argc > 1 && std::strcmp(argv[1], "keep") == 0)
        DisableAMClosedRestart();
    std::puts("ready");
    std::fflush(stdout);
    return ZApplication::exec();
}
