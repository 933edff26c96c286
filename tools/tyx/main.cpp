// tyx: one tool to inspect, drive and test a phone. Each sub-command has its own file and stays thin over the library.
#include "tools/tyx/command.h"
#include "tools/tyx/run.h"

#include <QCoreApplication>
#include <optional>
#include <string_view>
#include <unistd.h>

namespace {

// What works on images, and what opens a window, is a program of its own, beside this one: every start would have to
// load what it needs.
int runProgram(const char *name, char **argv)
{
    std::string path(4096, '\0');
    path.resize(std::size_t(std::max<ssize_t>(::readlink("/proc/self/exe", path.data(), path.size()), 0)));
    path.replace(path.rfind('/') + 1, std::string::npos, name);
    ::execv(path.c_str(), argv);
    return tyx::fail(QStringLiteral("%1: %2; install it beside tyx")
                         .arg(QString::fromLocal8Bit(path.c_str()), qt_error_string(errno)));
}

// For the list of commands.
void addOtherPrograms(CLI::App &app, int &)
{
    app.add_subcommand("phone", "Shows the phone in a window, to be used with mouse and keyboard.");
    app.add_subcommand("skin", "Packs images and colours into skin files.");
    app.add_subcommand("share", "Looks at the images that processes share.");
}

constexpr tyx::AddCommand kCommands[] = {tyx::addScreen, tyx::addKeys, tyx::addTouch, tyx::addBus, tyx::addConfig,
    tyx::addSettings, tyx::addQueue, tyx::addIm, tyx::addPack, addOtherPrograms, tyx::addDoctor, tyx::addLock,
    tyx::addStatus, tyx::addNewApp};

}

int main(int argc, char **argv)
{
    const std::string_view command = argc < 2 ? "" : argv[1];
    if (command == "skin" || command == "share")
        return runProgram("tyx-images", argv);
    if (command == "phone")
        return runProgram("tyx-phone", argv + 1);
    std::optional<QCoreApplication> events; // most commands wait for answers
    if (command != "status")
        events.emplace(argc, argv); // takes longer than to read a field
    return tyx::run(argc, argv, kCommands);
}
