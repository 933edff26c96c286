// tyx: one tool to inspect, drive and test a phone. Each sub-command has its own file and stays thin over the library.
#include "tools/tyx/command.h"

#include <QCoreApplication>
#include <cerrno>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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
    return tyx::fail(
        QStringLiteral("cannot write to standard output: %1").arg(qt_error_string(errno != 0 ? errno : EIO)));
}

}

int main(int argc, char **argv)
{
    std::optional<QCoreApplication> events; // most commands wait for answers
    if (argc < 2 || argv[1] != std::string_view("status"))
        events.emplace(argc, argv); // takes longer than to read a field
    CLI::App app("Inspects, drives and tests a phone.", "tyx");
    app.require_subcommand(1);
    app.failure_message(usageError);
    app.footer("Exit status: 0 done, 1 answered no, 2 wrong usage, 3 failed.");
    int exit = tyx::Done;
    tyx::addScreen(app, exit);
    tyx::addBus(app, exit);
    tyx::addConfig(app, exit);
    tyx::addSettings(app, exit);
    tyx::addQueue(app, exit);
    tyx::addPack(app, exit);
    tyx::addDoctor(app, exit);
    tyx::addStatus(app, exit);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return unlessOutputIsLost(app.exit(error) == 0 ? tyx::Done : tyx::Usage);
    }
    return unlessOutputIsLost(exit);
}
