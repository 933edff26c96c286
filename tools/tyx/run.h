// A command line, from its words to the exit status.
#pragma once

#include <CLI/CLI.hpp>
#include <span>

namespace tyx {

using AddCommand = void (*)(CLI::App &app, int &exit);

// Runs the one of `commands` that the words name; what is wrong with them is told on one line.
int run(int argc, char **argv, std::span<const AddCommand> commands);

}
