// tyx: one tool to inspect, drive and test a phone. Each sub-command has its own file and stays thin over the library.
#include "tools/tyx/command.h"

int main(int argc, char **argv)
{
    CLI::App app("Inspects, drives and tests a phone.", "tyx");
    app.require_subcommand(1);
    app.failure_message(CLI::FailureMessage::simple);
    app.footer("Exit status: 0 done, 1 answered no, 2 wrong usage, 3 failed.");
    const int exit = tyx::Done;
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? tyx::Done : tyx::Usage;
    }
    return exit;
}
