// tyx: one tool to inspect, drive and test a phone. Each sub-command has its own file and stays thin over the library.
#include "tools/tyx/command.h"

#include <QCoreApplication>

int main(int argc, char **argv)
{
    const QCoreApplication events(argc, argv); // some commands wait for answers
    CLI::App app("Inspects, drives and tests a phone.", "tyx");
    app.require_subcommand(1);
    app.failure_message(CLI::FailureMessage::simple);
    app.footer("Exit status: 0 done, 1 answered no, 2 wrong usage, 3 failed.");
    int exit = tyx::Done;
    tyx::addScreen(app, exit);
    tyx::addBus(app, exit);
    tyx::addConfig(app, exit);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? tyx::Done : tyx::Usage;
    }
    return exit;
}
