// The command line of a program: what all programs of the phone do alike with it. Header only: what includes it links
// CLI11, and defines TYX_VERSION.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

namespace platform {

// What is wrong on one line, and where to read more: at the innermost command that was understood.
inline std::string usageError(const CLI::App *app, const CLI::Error &error)
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

// Adds --version. The exit status when the program is to end: 2 after a wrong word, which is told, and 0 after --help
// and --version.
inline std::optional<int> parse(CLI::App &app, int argc, const char *const *argv)
{
    constexpr int kUsage = 2;
    app.failure_message(usageError);
    app.set_version_flag("--version", TYX_VERSION, "Prints the version and exits");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? 0 : kUsage;
    }
    return std::nullopt;
}

}
