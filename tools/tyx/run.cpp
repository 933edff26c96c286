#include "tools/tyx/run.h"

#include "platform/system/commandline.h"
#include "tools/tyx/command.h"

#include <cerrno>
#include <cstdio>

namespace tyx {

namespace {

// What was printed may be lost, on a full disk for example, and a script has to know.
int unlessOutputIsLost(int exit)
{
    errno = 0;
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0)
        return exit;
    // Of an earlier write only the failure is remembered.
    return fail(QStringLiteral("cannot write to standard output: %1").arg(qt_error_string(errno != 0 ? errno : EIO)));
}

}

int run(int argc, char **argv, std::span<const AddCommand> commands)
{
    CLI::App app("Inspects, drives and tests a phone.", "tyx");
    app.require_subcommand(1);
    app.footer("Exit status: 0 done, 1 answered no, 2 wrong usage, 3 failed.");
    int exit = Done;
    for (const AddCommand add : commands)
        add(app, exit);
    return unlessOutputIsLost(platform::parse(app, argc, argv).value_or(exit));
}

}
