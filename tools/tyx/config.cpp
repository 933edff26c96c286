// tyx config: looks into configuration files, changes them, and finds what would be lost.
#include "appbase/config/configcheck.h"
#include "appbase/config/configfile.h"
#include "appbase/config/configtext.h"
#include "platform/system/filereplace.h"
#include "tools/tyx/command.h"

#include <QJsonArray>
#include <QJsonObject>
#include <cerrno>
#include <memory>
#include <tl/expected.hpp>

namespace tyx {

namespace {

struct Arguments {
    std::string file;
    std::string group;
    std::string key;
    std::string value;
    bool json = false;
    bool force = false;
    const CLI::Option *groupGiven = nullptr;
    const CLI::Option *keyGiven = nullptr;
    const CLI::Option *defaultGiven = nullptr;

    [[nodiscard]] QString path() const { return QString::fromStdString(file); }
    [[nodiscard]] QString groupName() const { return QString::fromStdString(group); }
    [[nodiscard]] QString keyName() const { return QString::fromStdString(key); }
    [[nodiscard]] QString text() const { return QString::fromStdString(value); }
};

// A line on standard error beside an exit status other than Failed.
int answer(Exit status, const QString &message)
{
    std::ignore = fail(message);
    return status;
}

QString cure(int error)
{
    switch (error) {
    case ENOENT:
        return QStringLiteral("check the name");
    case EACCES:
        return QStringLiteral("make it readable or run as its owner");
    case EISDIR:
    case EINVAL:
        return QStringLiteral("name a regular file");
    case EFBIG:
        return QStringLiteral("no configuration is larger than %1 MiB").arg(config::kMaxFileBytes >> 20);
    default:
        return QStringLiteral("check the disk");
    }
}

int unreadable(const Arguments &arguments, const platform::SysError &error)
{
    return fail(QStringLiteral("%1: %2; %3").arg(arguments.path(), error.text(), cure(error.number)));
}

int noSuchGroup(const Arguments &arguments)
{
    return answer(
        AnsweredNo, QStringLiteral("%1: there is no group [%2]").arg(arguments.path(), arguments.groupName()));
}

int noSuchKey(const Arguments &arguments)
{
    return answer(AnsweredNo,
        QStringLiteral("%1: there is no key '%2' in group [%3]")
            .arg(arguments.path(), arguments.keyName(), arguments.groupName()));
}

QJsonObject entriesOf(const config::Group &group)
{
    QJsonObject entries;
    for (const config::Entry &entry : group.entries)
        entries.insert(entry.key, config::copied(entry.value));
    return entries;
}

int get(const Arguments &arguments)
{
    const auto bytes = config::readFile(arguments.path());
    if (!bytes && !(bytes.error().number == ENOENT && arguments.defaultGiven->count() > 0))
        return unreadable(arguments, bytes.error());
    const QString text = config::decoded(bytes.value_or(QByteArray()));
    const config::Answer found = config::lookUp(text, arguments.groupName(), arguments.keyName());
    if (found.value.isNull() && arguments.defaultGiven->count() == 0)
        return found.groupExists ? noSuchKey(arguments) : noSuchGroup(arguments);
    const QString value = found.value.isNull() ? arguments.text() : found.value.toString();
    if (arguments.json)
        printJson(QJsonDocument(
            QJsonObject{{QStringLiteral("group"), arguments.groupName()}, {QStringLiteral("key"), arguments.keyName()},
                {QStringLiteral("value"), value}, {QStringLiteral("default"), found.value.isNull()}}));
    else
        printLine(value);
    return Done;
}

int list(const Arguments &arguments)
{
    const auto bytes = config::readFile(arguments.path());
    if (!bytes)
        return unreadable(arguments, bytes.error());
    config::ConfigText text(config::decoded(*bytes));
    const bool one = arguments.groupGiven->count() > 0;
    const config::Group *only = one ? text.find(arguments.groupName()) : nullptr;
    if (one && !only)
        return noSuchGroup(arguments);
    QJsonObject groups;
    for (const config::Group &group : text.groups()) {
        if (only && &group != only)
            continue;
        groups.insert(group.name, entriesOf(group));
        if (arguments.json)
            continue;
        printLine(u'[' + group.name + u']');
        for (const config::Entry &entry : group.entries)
            printLine(entry.key + u" = " + entry.value);
    }
    if (arguments.json)
        printJson(QJsonDocument(groups));
    return Done;
}

// What would not come back from the file as it was given, and why; empty when all of it would.
QString unstorable(const Arguments &arguments)
{
    // A carriage return would come back, but `check` and other readers take it for damage.
    const auto broken = [](const QString &text) { return text.contains(u'\n') || text.contains(u'\r'); };
    const auto padded = [](const QString &text) { return text.trimmed() != text; };
    if (arguments.group.empty())
        return QStringLiteral("the group needs a name");
    if (broken(arguments.groupName()) || broken(arguments.keyName()) || broken(arguments.text()))
        return QStringLiteral("a configuration file cannot hold line breaks in names and values");
    if (padded(arguments.keyName()))
        return QStringLiteral("the key '%1' would lose its leading or trailing blanks").arg(arguments.keyName());
    if (arguments.keyName().contains(u'='))
        return QStringLiteral("the key '%1' would end at its '='").arg(arguments.keyName());
    if (arguments.keyName().startsWith(u'['))
        return QStringLiteral("the key '%1' would be read as a group").arg(arguments.keyName());
    if (padded(arguments.text()))
        return QStringLiteral("the value '%1' would lose its leading or trailing blanks").arg(arguments.text());
    return {};
}

// What the file holds; or, told, the status that forbids to change it: it cannot be read, or saving it would lose lines
// that are in it.
tl::expected<config::ConfigText, int> changeable(const Arguments &arguments)
{
    const auto bytes = config::readFile(arguments.path());
    if (!bytes && bytes.error().number != ENOENT)
        return tl::make_unexpected(unreadable(arguments, bytes.error()));
    const QByteArray old = bytes.value_or(QByteArray());
    if (const auto stop = config::whereReadingStops(old); stop && !arguments.force)
        return tl::make_unexpected(fail(QStringLiteral("%1:%2: %3; repair that line, or lose the rest with --force")
                                            .arg(arguments.path(), QString::number(stop->line), stop->text)));
    return config::ConfigText(config::decoded(old));
}

// Not by ZConfig: its saves do not say why they failed, and answer true when only the rename did.
int save(const Arguments &arguments, const config::ConfigText &text)
{
    const QByteArray bytes = text.format();
    const auto saved = platform::replaceFile(arguments.path(), std::as_bytes(std::span(bytes)), config::kFileMode);
    return saved ? int(Done) : failToSave(arguments.path(), saved.error().text(), saved.error().number);
}

int set(const Arguments &arguments)
{
    if (const QString why = unstorable(arguments); !why.isEmpty())
        return answer(Usage, why);
    auto text = changeable(arguments);
    if (!text)
        return text.error();
    text->ensure(arguments.groupName()).set(arguments.keyName(), arguments.text());
    return save(arguments, *text);
}

int remove(const Arguments &arguments)
{
    if (arguments.group.empty())
        return answer(Usage, QStringLiteral("the group needs a name"));
    auto text = changeable(arguments);
    if (!text)
        return text.error();
    config::Group *group = text->find(arguments.groupName());
    if (!group)
        return noSuchGroup(arguments);
    if (arguments.keyGiven->count() == 0)
        text->remove(arguments.groupName());
    else if (group->find(arguments.keyName()))
        group->remove(arguments.keyName());
    else
        return noSuchKey(arguments);
    return save(arguments, *text);
}

int check(const Arguments &arguments)
{
    const auto bytes = config::readFile(arguments.path());
    if (!bytes)
        return unreadable(arguments, bytes.error());
    bool serious = false;
    QJsonArray remarks;
    for (const config::Remark &remark : config::check(*bytes)) {
        serious |= remark.serious;
        remarks.append(QJsonObject{{QStringLiteral("line"), remark.line}, {QStringLiteral("text"), remark.text},
            {QStringLiteral("serious"), remark.serious}});
        if (!arguments.json)
            printLine(QStringLiteral("%1:%2: %3").arg(arguments.path(), QString::number(remark.line), remark.text));
    }
    if (arguments.json)
        printJson(QJsonDocument(remarks));
    return serious ? AnsweredNo : Done;
}

// Runs an action on arguments that are text: of other bytes, another text would be stored and another file written.
int runOnText(int (*action)(const Arguments &), const Arguments &arguments)
{
    for (const std::string *given : {&arguments.file, &arguments.group, &arguments.key, &arguments.value}) {
        if (!QUtf8StringView(given->data(), qsizetype(given->size())).isValidUtf8())
            return answer(Usage, QStringLiteral("\"%1\" is not UTF-8").arg(printable(*given)));
    }
    return action(arguments);
}

}

void addConfig(CLI::App &app, int &exit)
{
    CLI::App *parent = app.add_subcommand("config", "Looks into configuration files and changes them");
    parent->require_subcommand(1);
    const auto arguments = std::make_shared<Arguments>();
    const auto add = [&](const char *name, const char *help, int (*run)(const Arguments &)) {
        CLI::App *action = parent->add_subcommand(name, help);
        action->add_option("FILE", arguments->file, "The configuration file")->required();
        // The callback keeps the arguments that the options write into.
        action->callback([run, arguments, &exit] { exit = runOnText(run, *arguments); });
        return action;
    };
    const auto json = [&](CLI::App *action) { action->add_flag("--json", arguments->json, "Print JSON"); };
    const auto group = [&](CLI::App *action) {
        return action->add_option("GROUP", arguments->group, "The group, without its brackets");
    };
    const auto key = [&](CLI::App *action) { return action->add_option("KEY", arguments->key, "The key"); };
    const auto force = [&](CLI::App *action) {
        action->add_flag("--force", arguments->force, "Even if the lines behind an unreadable one are lost");
    };

    CLI::App *action = add("get", "Prints a value; exit status 1 if there is none", get);
    group(action)->required();
    key(action)->required();
    arguments->defaultGiven = action->add_option("--default", arguments->value, "What to print if there is none");
    json(action);

    action = add("set", "Stores a value", set);
    group(action)->required();
    key(action)->required();
    action->add_option("VALUE", arguments->value, "The value")->required();
    force(action);

    action = add("list", "Prints the groups with their entries", list);
    arguments->groupGiven = group(action);
    json(action);

    action = add("remove", "Removes a key or a whole group; exit status 1 if there is none", remove);
    group(action)->required();
    arguments->keyGiven = key(action);
    force(action);

    action = add("check", "Names the lines that a save would lose or alter; exit status 1 if there are any", check);
    json(action);
}

}
