#include "tools/tyx/run.h"

#include "tools/tyx/command.h"

#include <cerrno>
#include <cstdio>

namespace tyx {

namespace {

// What is wrong on one line, and where to read more: at the innermost command that was understood.
std::string usageError(const CLI::App *app, const CLI::Error &error)
{
    std::string command = app->get_name();
    const CLI::App *innermost = app;
    while (!innermost->get_subcommands().empty()) {
        innermost = innermost->get_subcommands().front();
        command += ' ' + innermost->get_name();
    }
    const std::vector<std::string> unknown = innermost->remaining();
    const bool wantsCommand = error.get_name() == "RequiredError" && innermost->get_require_subcommand_min() > 0;
    const std::string what = !wantsCommand ? error.what()
        : unknown.empty()                  ? "which command?"
                                           : "there is no command '" + unknown.front() + "'";
    return command + ": " + what + "; see " + command + " --help\n";
}

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
    app.failure_message(usageError);
    app.set_version_flag("--version", TYX_VERSION, "Prints the version and exits");
    app.footer("Exit status: 0 done, 1 answered no, 2 wrong usage, 3 failed.");
    int exit = Done;
    for (const AddCommand add : commands)
        add(app, exit);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return unlessOutputIsLost(app.exit(error) == 0 ? Done : Usage);
    }
    return unlessOutputIsLost(exit);
}

}
