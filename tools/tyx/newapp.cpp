// tyx new-app: begins an application, from the templates in tools/newapp.
#include "tools/tyx/command.h"

#include <QDir>
#include <QFile>
#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <sys/stat.h>

namespace tyx {

namespace {

struct Options {
    std::string name;
    std::string directory = ".";
};

constexpr size_t kLongestName = 40; // it becomes part of channels, files and window titles

constexpr std::string_view kKeywords[] = {"alignas", "alignof", "and", "and_eq", "asm", "auto", "bitand", "bitor",
    "bool", "break", "case", "catch", "char", "char16_t", "char32_t", "char8_t", "class", "co_await", "co_return",
    "co_yield", "compl", "concept", "const", "const_cast", "consteval", "constexpr", "constinit", "continue",
    "decltype", "default", "delete", "do", "double", "dynamic_cast", "else", "enum", "explicit", "export", "extern",
    "false", "float", "for", "friend", "goto", "if", "inline", "int", "long", "mutable", "namespace", "new", "noexcept",
    "not", "not_eq", "nullptr", "operator", "or", "or_eq", "private", "protected", "public", "register",
    "reinterpret_cast", "requires", "return", "short", "signed", "sizeof", "static", "static_assert", "static_cast",
    "struct", "switch", "template", "this", "thread_local", "throw", "true", "try", "typedef", "typeid", "typename",
    "union", "unsigned", "using", "virtual", "void", "volatile", "wchar_t", "while", "xor", "xor_eq"};
// Targets of the build system, and the name that the library's own translations have.
constexpr std::string_view kTaken[] = {"all", "clean", "edit_cache", "help", "install", "lib",
    "list_install_components", "package", "package_source", "rebuild_cache", "strings", "test"};

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isNamePart(char c) { return isLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '_'; }

// Empty when it is good: it names the folder, the program, its channel on the bus, its translations, a target of CMake.
QString faultOf(std::string_view name)
{
    if (name.empty())
        return QStringLiteral("is empty");
    if (name.size() > kLongestName)
        return QStringLiteral("is longer than %1 characters").arg(kLongestName);
    if (!isLetter(name.front()))
        return QStringLiteral("does not begin with a letter from A to Z");
    if (!std::ranges::all_of(name, isNamePart))
        return QStringLiteral("has other characters than A to Z, digits, hyphens and underscores");
    if (std::ranges::find(kKeywords, name) != std::end(kKeywords))
        return QStringLiteral("is a keyword of C++");
    if (std::ranges::find(kTaken, name) != std::end(kTaken))
        return QStringLiteral("means something else to the build");
    return {};
}

QByteArray filled(const char *source, const std::string &name)
{
    QFile file(QStringLiteral(":/newapp/") + QLatin1String(source));
    if (!file.open(QIODevice::ReadOnly)) // it is part of this program
        return {};
    return file.readAll().replace("@NAME@", QByteArray::fromStdString(name));
}

// Tells what failed.
bool makeFolder(const std::string &path)
{
    if (::mkdir(path.c_str(), 0777) == 0)
        return true;
    std::ignore = fail(errno == EEXIST
            ? QStringLiteral("%1 is already there; take another name, or --directory").arg(printable(path))
            : QStringLiteral("%1: %2; name a folder that you may write to with --directory")
                  .arg(printable(path), qt_error_string(errno)));
    return false;
}

int writeFiles(const std::string &folder, const std::string &name)
{
    struct File {
        const char *source;
        std::string target;
    };
    const std::array files{File{"CMakeLists.txt.in", "/CMakeLists.txt"}, File{"main.cpp.in", "/main.cpp"},
        File{"icon.xpm", "/icon.xpm"}, File{"strings.ts.in", "/strings/" + name + "_de-de.ts"}};
    if (!makeFolder(folder + "/strings"))
        return Failed;
    for (const auto &[source, target] : files) {
        if (const int exit = saveTo(folder + target, filled(source, name)); exit != Done)
            return exit;
    }
    return Done;
}

int make(const Options &options)
{
    if (const QString fault = faultOf(options.name); !fault.isEmpty())
        return refuse(QStringLiteral("new-app: the name '%1' %2").arg(printable(options.name), fault));
    const std::string folder = options.directory + '/' + options.name;
    if (!makeFolder(folder))
        return Failed;
    if (const int exit = writeFiles(folder, options.name); exit != Done) {
        QDir(QFile::decodeName(folder.c_str())).removeRecursively(); // half an application is none
        return exit;
    }
    printLine(
        QStringLiteral("%1: build it with cmake -S %1 -B %1/build && cmake --build %1/build").arg(printable(folder)));
    return Done;
}

}

void addNewApp(CLI::App &app, int &exit)
{
    auto options = std::make_shared<Options>();
    CLI::App *command = app.add_subcommand("new-app", "Makes a folder with an application to begin with.");
    command->add_option("NAME", options->name, "Of the folder, the program and its channel")->required();
    command->add_option("--directory", options->directory, "Where the folder is made")->capture_default_str();
    command->callback([options, &exit] { exit = make(*options); });
}

}
