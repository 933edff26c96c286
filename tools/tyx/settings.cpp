// tyx settings: the settings of the system by name.
#include "tools/tyx/settings.h"

#include "appbase/config/configfile.h"
#include "appbase/config/zconfig.h"
#include "settings/files/settingaccess.h"
#include "settings/files/settingkeys.h"
#include "settings/files/settingswatch.h"
#include "tools/tyx/command.h"
#include "tools/tyx/savefile.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <optional>

namespace tyx {

namespace {

using settings::Row;
using settings::Type;

struct Options {
    std::string name;
    std::vector<std::string> names;
    std::string value;
    int count = 0;
    bool json = false;
    bool markdown = false;
};

const Row *find(const std::string &name)
{
    const auto rows = settings::allRows();
    const auto row = std::ranges::find(rows, name, [](const Row &each) { return std::string(each.name); });
    return row == rows.end() ? nullptr : &*row;
}

int refuseName(const std::string &name)
{
    return refuse(QStringLiteral("there is no setting \"%1\"; tyx settings list names them").arg(printable(name)));
}

QString nameOf(const Row &row) { return QString::fromLatin1(row.name); }

// For a person: names where there are some.
QString shown(const Row &row, const QString &text)
{
    if (row.type == Type::Bool)
        return text == u'0' ? QStringLiteral("off") : QStringLiteral("on");
    const auto choice = std::ranges::find(row.values.choices, text.toLongLong(), &settings::Choice::value);
    return choice == row.values.choices.end() ? text : QString::fromLatin1(choice->name);
}

// In a list everybody may look at the screen.
QString shownInList(const Row &row, const QString &text)
{
    return row.isSecret ? QStringLiteral("****") : shown(row, text);
}

QJsonValue json(const Row &row, const QString &text)
{
    switch (row.type) {
    case Type::Bool:
        return text != u'0';
    case Type::Int:
    case Type::Unsigned:
        return text.toLongLong();
    default:
        return text;
    }
}

int list(const Options &options) { return listSettings({}, options.json); }

int get(const Options &options)
{
    const Row *row = find(options.name);
    if (row == nullptr)
        return refuseName(options.name);
    const QString text = settings::readText(*row);
    if (options.json)
        printJson(QJsonDocument(QJsonObject{{QStringLiteral("name"), nameOf(*row)},
            {QStringLiteral("value"), json(*row, text)}, {QStringLiteral("text"), shown(*row, text)}}));
    else
        printLine(shown(*row, text));
    return Done;
}

QString range(const Row &row)
{
    QStringList names;
    for (const settings::Choice &choice : row.values.choices)
        names += QStringLiteral("%1 (%2)").arg(QString::fromLatin1(choice.name)).arg(choice.value);
    if (!names.isEmpty())
        return names.join(QStringLiteral(", "));
    switch (row.type) {
    case Type::Text:
        return QStringLiteral("a line of text without blanks at its ends")
            + (settings::mayBeEmpty(row) ? u"" : u", not empty");
    case Type::Bool:
        return QStringLiteral("on, off");
    case Type::Bytes:
        return QStringLiteral("up to 255 bytes in hexadecimal");
    default:
        return QStringLiteral("%1 to %2").arg(row.values.lowest).arg(row.values.highest);
    }
}

std::optional<QString> numberFor(const Row &row, const QString &value)
{
    const auto named = std::ranges::find(
        row.values.choices, value, [](const settings::Choice &choice) { return QString::fromLatin1(choice.name); });
    const auto number =
        named != row.values.choices.end() ? std::optional(named->value) : wholeNumber(value.toStdString());
    if (!number || *number < row.values.lowest || *number > row.values.highest)
        return std::nullopt;
    const bool isChoice = row.values.choices.empty()
        || std::ranges::find(row.values.choices, *number, &settings::Choice::value) != row.values.choices.end();
    return isChoice ? std::optional(QString::number(*number)) : std::nullopt;
}

// What stands in the file for what a person wrote; nothing when it is no value of the setting.
std::optional<QString> parsed(const Row &row, const QString &value)
{
    switch (row.type) {
    case Type::Text:
        return settings::isStorable(row, value) ? std::optional(value) : std::nullopt;
    case Type::Bool:
        for (const char16_t *on : {u"on", u"1", u"true", u"yes"}) {
            if (value == QStringView(on))
                return QStringLiteral("1");
        }
        for (const char16_t *off : {u"off", u"0", u"false", u"no"}) {
            if (value == QStringView(off))
                return QStringLiteral("0");
        }
        return std::nullopt;
    case Type::Bytes: {
        const QByteArray bytes = QByteArray::fromHex(value.toLatin1());
        const bool isWhole = QString::fromLatin1(bytes.toHex()) == value.toLower() && bytes.size() <= 255;
        return isWhole ? std::optional(value.toLower()) : std::nullopt;
    }
    default:
        return numberFor(row, value);
    }
}

// Why a setting could not be saved: its file, what is wrong with it, and what to do.
QString whyNotSaved(const Row &row, const QString &text)
{
    const auto has = [&](const QString &file) {
        return ZConfig(file, false).readEntry(row.place.group.toString(), row.key.toString()) == text;
    };
    const QString maker = row.place.file == settings::File::FlexBits ? QStringLiteral("the maker of the phone")
                                                                     : QStringLiteral("tyx-guiserver");
    for (const QString &file : {settings::fileName(row.place.file), settings::copyName(row.place.file)}) {
        if (file.isEmpty())
            continue;
        const auto bytes = config::readFile(file);
        if (!bytes && bytes.error().number != ENOENT)
            return QStringLiteral("%1: %2; make it a file that can be read").arg(file, bytes.error().text());
        const QFileInfo folder(QFileInfo(file).path());
        if (!folder.isDir())
            return QStringLiteral("%1: there is no folder %2; %3 makes it").arg(file, folder.filePath(), maker);
        if (!folder.isWritable())
            return notSaved(file, {}, 0);
    }
    // The copy comes last: where the file has the value, it is the copy that has not.
    const bool isCopy = row.place.copy != settings::Copy::None && has(settings::fileName(row.place.file));
    return notSaved(isCopy ? settings::copyName(row.place.file) : settings::fileName(row.place.file), {}, 0);
}

int set(const Options &options) { return setSetting(options.name, options.value); }

QString typeName(Type type)
{
    switch (type) {
    case Type::Text:
        return QStringLiteral("text");
    case Type::Bool:
        return QStringLiteral("bool");
    case Type::Int:
        return QStringLiteral("int");
    case Type::Unsigned:
        return QStringLiteral("unsigned");
    case Type::Bytes:
        break;
    }
    return QStringLiteral("bytes");
}

QString defaultOf(const Row &row)
{
    if (row.type == Type::Text)
        return settings::literal(row.absentText);
    return row.type == Type::Bytes ? QString() : QString::number(row.absentNumber);
}

QString copyText(const Row &row)
{
    switch (row.place.copy) {
    case settings::Copy::None:
        return QStringLiteral("-");
    case settings::Copy::Written:
        return QStringLiteral("written");
    case settings::Copy::Read:
        break;
    }
    return QStringLiteral("written, read");
}

QJsonObject description(const Row &row)
{
    QJsonObject object{{QStringLiteral("name"), nameOf(row)},
        {QStringLiteral("file"), settings::fileName(row.place.file)},
        {QStringLiteral("group"), row.place.group.toString()}, {QStringLiteral("key"), row.key.toString()},
        {QStringLiteral("type"), typeName(row.type)}, {QStringLiteral("default"), json(row, defaultOf(row))},
        {QStringLiteral("meaning"), QString::fromLatin1(row.meaning)}};
    if (row.place.copy != settings::Copy::None)
        object.insert(QStringLiteral("copy"), settings::copyName(row.place.file));
    QJsonObject choices;
    for (const settings::Choice &choice : row.values.choices)
        choices.insert(QString::fromLatin1(choice.name), choice.value);
    if (!choices.isEmpty()) {
        object.insert(QStringLiteral("values"), choices);
    } else if (row.type == Type::Int || row.type == Type::Unsigned) {
        object.insert(QStringLiteral("lowest"), row.values.lowest);
        object.insert(QStringLiteral("highest"), row.values.highest);
    }
    return object;
}

void describeInWords(const Row &row)
{
    printLine(nameOf(row) + u": " + QString::fromLatin1(row.meaning));
    printLine(QStringLiteral("  file     %1").arg(settings::fileName(row.place.file)));
    if (row.place.copy != settings::Copy::None)
        printLine(QStringLiteral("  copy     %1 (%2)").arg(settings::copyName(row.place.file), copyText(row)));
    printLine(QStringLiteral("  group    %1").arg(row.place.group));
    printLine(QStringLiteral("  key      %1").arg(row.key));
    printLine(QStringLiteral("  type     %1").arg(typeName(row.type)));
    printLine(QStringLiteral("  default  %1").arg(shown(row, defaultOf(row))));
    printLine(QStringLiteral("  values   %1").arg(range(row)));
}

void describeInTable(const Row &row)
{
    printLine(QStringLiteral("| `%1` | `%2` | `%3` | `%4` | %5 | %6 | %7 | %8 | %9 |")
                  .arg(nameOf(row), QFileInfo(settings::fileName(row.place.file)).fileName(),
                      row.place.group.toString(), row.key.toString(), typeName(row.type), shown(row, defaultOf(row)),
                      range(row), copyText(row), QString::fromLatin1(row.meaning)));
}

int describe(const Options &options)
{
    const Row *only = options.name.empty() ? nullptr : find(options.name);
    if (only == nullptr && !options.name.empty())
        return refuseName(options.name);
    QJsonArray all;
    if (options.markdown) {
        printLine(QStringLiteral("| name | file | group | key | type | default | values | copy | meaning |"));
        printLine(QStringLiteral("|---|---|---|---|---|---|---|---|---|"));
    }
    for (const Row &row : settings::allRows()) {
        if (only != nullptr && &row != only)
            continue;
        if (options.json)
            all.append(description(row));
        else if (options.markdown)
            describeInTable(row);
        else
            describeInWords(row);
    }
    if (options.json)
        printJson(QJsonDocument(all));
    return Done;
}

bool printChange(const Row &row, const QString &text, bool asJson)
{
    if (asJson) { // one object a line, so that a reader need not wait for the end
        const QJsonObject change{{QStringLiteral("name"), nameOf(row)},
            {QStringLiteral("value"), row.isSecret ? QJsonValue() : json(row, text)}};
        printLine(QString::fromUtf8(QJsonDocument(change).toJson(QJsonDocument::Compact)));
    } else {
        printLine(nameOf(row) + u" = " + shownInList(row, text));
    }
    return flushOutput();
}

int watch(const Options &options)
{
    std::map<const Row *, QString> texts;
    QStringList files;
    for (const std::string &name : options.names) {
        if (find(name) == nullptr)
            return refuseName(name);
    }
    for (const Row &row : settings::allRows()) {
        if (!options.names.empty() && std::ranges::find(options.names, std::string(row.name)) == options.names.end())
            continue;
        texts.emplace(&row, QString());
        files += settings::readFileName(row.place);
    }
    files.removeDuplicates();
    const SettingsWatch changes(files);
    if (!changes.unwatched().isEmpty())
        return fail(QStringLiteral("%1: cannot be watched; tyx-guiserver makes it").arg(changes.unwatched().first()));
    for (auto &[row, text] : texts) // what changes from here on is told
        text = settings::readText(*row);
    int seen = 0;
    QObject::connect(&changes, &SettingsWatch::changed, [&](const QString &file) {
        for (auto &[row, text] : texts) {
            if (settings::readFileName(row->place) != file || (options.count > 0 && seen == options.count))
                continue;
            const QString now = settings::readText(*row);
            if (std::exchange(text, now) == now)
                continue;
            if (!printChange(*row, now, options.json) || ++seen == options.count)
                return QCoreApplication::quit();
        }
    });
    std::fprintf(stderr, "tyx: watching %d settings\n", int(texts.size()));
    QCoreApplication::exec();
    return Done;
}

}

int listSettings(const std::string &prefix, bool asJson)
{
    QJsonObject all;
    for (const Row &row : settings::allRows()) {
        if (!std::string_view(row.name).starts_with(prefix))
            continue;
        const QString text = settings::readText(row);
        if (asJson)
            all.insert(nameOf(row), row.isSecret ? QJsonValue() : json(row, text));
        else
            printLine(nameOf(row) + u" = " + shownInList(row, text));
    }
    if (asJson)
        printJson(QJsonDocument(all));
    return Done;
}

int setSetting(const std::string &name, const std::string &value)
{
    const Row *row = find(name);
    if (row == nullptr)
        return refuseName(name);
    const bool isText = QUtf8StringView(value.data(), qsizetype(value.size())).isValidUtf8();
    const auto text = isText ? parsed(*row, QString::fromStdString(value)) : std::nullopt;
    if (!text)
        return refuse(
            QStringLiteral("%1: \"%2\" is not one of its values: %3").arg(nameOf(*row), printable(value), range(*row)));
    return settings::writeText(*row, *text) ? int(Done) : fail(whyNotSaved(*row, *text));
}

void addSettings(CLI::App &app, int &exit)
{
    CLI::App *parent = app.add_subcommand("settings", "The settings of the system by name.");
    parent->require_subcommand(1);
    const auto options = std::make_shared<Options>();
    const auto add = [&](const char *name, const char *help, int (*run)(const Options &)) {
        CLI::App *action = parent->add_subcommand(name, help);
        action->callback([run, options, &exit] { exit = run(*options); }); // keeps what the options write into
        return action;
    };
    const auto json = [&](CLI::App *action) { return action->add_flag("--json", options->json, "As JSON"); };
    const auto name = [&](CLI::App *action) { return action->add_option("NAME", options->name, "The setting"); };

    json(add("list", "Prints every setting with its value.", list));

    CLI::App *action = add("get", "Prints the value of a setting: the stored one, else the default.", get);
    name(action)->required();
    json(action);

    action = add("set", "Sets a setting, in its file and its working copy, and tells whoever has to know.", set);
    name(action)->required();
    action->add_option("VALUE", options->value, "The value, by its name or as a number")->required();

    action = add("watch", "Prints settings as they change, until it is stopped.", watch);
    action->add_option("NAME", options->names, "Only these");
    action->add_option("--count", options->count, "Stop after this many changes")->check(countRange());
    json(action);

    action = add("describe", "Tells where settings are kept, and what they may be.", describe);
    name(action);
    json(action)->excludes(action->add_flag("--markdown", options->markdown, "As a table for documents"));
}

}
