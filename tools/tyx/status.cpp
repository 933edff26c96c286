// tyx status: looks at the phone's live state, field by field, changes it, and follows it.
#include "platform/system/keyfile.h"
#include "settings/status/statuslayout.h"
#include "settings/status/statustable.h"
#include "settings/status/systemstatuswatcher.h"
#include "tools/tyx/command.h"
#include "tools/tyx/server.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonObject>
#include <QStringList>
#include <cerrno>
#include <cstdio>
#include <optional>
#include <sys/shm.h>
#include <tl/expected.hpp>
#include <vector>

namespace tyx {

namespace {

using status::Row;

struct Options {
    std::string field;
    std::string value;
    std::vector<std::string> fields; // to watch; none: all
    int count = 0; // changes to wait for; 0: for ever
    bool json = false;
    bool markdown = false;
};

QString text(std::string_view characters) { return QString::fromUtf8(characters.data(), qsizetype(characters.size())); }

// Whether there is something under a table's key that cannot be used, which is then told.
bool isBlocked(char project, int flags)
{
    const key_t key = ::ftok(status::kKeyFile, project);
    if (key == -1 || ::shmget(key, status::kTableBytes, flags) >= 0 || errno == ENOENT)
        return false;
    std::ignore =
        fail(QStringLiteral("the shared memory '%1' of %2 cannot be used: %3; tyx doctor tells the cure")
                 .arg(QChar::fromLatin1(project), QString::fromLatin1(status::kKeyFile), qt_error_string(errno)));
    return true;
}

int noTable()
{
    if (isBlocked(status::kTableProject, 0666))
        return Failed;
    return fail(QStringLiteral("there is no status table here; make one with tyx status init, or %1")
                    .arg(QLatin1String(kStartIt)));
}

const Row *find(const std::string &name)
{
    const auto named = [&](const Row &row) { return row.kind != Row::Unused && row.name == name; };
    const auto *row = std::find_if(std::begin(status::rows), std::end(status::rows), named);
    return row == std::end(status::rows) ? nullptr : row;
}

int noSuchField(const std::string &name)
{
    return refuse(QStringLiteral("there is no field \"%1\"; tyx status list names them").arg(printable(name)));
}

quint32 element(const SystemTableCopy &table, const Row &row, std::size_t index)
{
    quint32 value = 0;
    for (std::size_t i = row.width; i-- > 0;)
        value = value << 8 | table.bytes[row.offset + index * row.width + i];
    return value;
}

QString typeOf(const Row &row)
{
    if (row.kind == Row::Boolean)
        return QStringLiteral("bool");
    if (row.kind == Row::Characters)
        return QStringLiteral("text[%1]").arg(row.count);
    const QString type = u'u' + QString::number(8 * row.width);
    return row.count == 1 ? type : QStringLiteral("%1[%2]").arg(type).arg(row.count);
}

QString hex(quint32 value, int digits) { return QStringLiteral("0x%1").arg(value, digits, 16, QLatin1Char('0')); }

// Colours and what stands for "not known" are easier to read with hexadecimal digits.
QString number(quint32 value, const Row &row)
{
    return value > 0xFFFF || (row.width == 1 && value == 0xFF) ? hex(value, 2 * row.width) : QString::number(value);
}

QByteArray charactersOf(const SystemTableCopy &table, const Row &row)
{
    const std::string_view characters = valueOf(table, status::Text{row.offset, row.count});
    return {characters.data(), qsizetype(characters.size())};
}

QString valueText(const SystemTableCopy &table, const Row &row)
{
    if (row.kind == Row::Characters)
        return QString::fromUtf8(charactersOf(table, row));
    QStringList values;
    for (std::size_t i = 0; i < row.count; ++i)
        values << number(element(table, row, i), row);
    return values.join(u',');
}

QJsonValue valueJson(const SystemTableCopy &table, const Row &row)
{
    if (row.kind == Row::Characters)
        return QString::fromUtf8(charactersOf(table, row));
    QJsonArray values;
    for (std::size_t i = 0; i < row.count; ++i)
        values.append(qint64(element(table, row, i)));
    return row.count == 1 ? values.first() : values;
}

QJsonObject describe(const SystemTableCopy &table, const Row &row)
{
    return {{QStringLiteral("name"), text(row.name)}, {QStringLiteral("offset"), row.offset},
        {QStringLiteral("type"), typeOf(row)}, {QStringLiteral("about"), text(row.about)},
        {QStringLiteral("value"), valueJson(table, row)}};
}

QString initialText(const Row &row)
{
    if (row.kind == Row::Characters)
        return QStringLiteral("empty");
    QStringList values;
    for (std::size_t i = 0; i < row.count; ++i)
        values << number(row.initial[i], row);
    return values.join(u", ");
}

// The table of docs/status.md.
int listMarkdown()
{
    printLine(QStringLiteral("| offset | type | name | initially | what it is |"));
    printLine(QStringLiteral("|---|---|---|---|---|"));
    for (const Row &row : status::rows) {
        const bool used = row.kind != Row::Unused;
        printLine(
            QStringLiteral("| %1 | %2 | %3 | %4 | %5 |")
                .arg(hex(row.offset, 3), used ? typeOf(row) : QStringLiteral("%1 bytes").arg(row.count),
                    used ? u'`' + text(row.name) + u'`' : QString(), used ? initialText(row) : QStringLiteral("0"),
                    used ? text(row.about) : QStringLiteral("not used by this library")));
    }
    return Done;
}

int list(const Options &options)
{
    if (options.markdown)
        return listMarkdown();
    SystemTableCopy table;
    if (!UTIL_CopySystemTable(&table))
        return noTable();
    QJsonArray fields;
    for (const Row &row : status::rows) {
        if (row.kind == Row::Unused)
            continue;
        if (options.json)
            fields.append(describe(table, row));
        else
            printLine(QStringLiteral("%1  %2  %3  %4")
                          .arg(hex(row.offset, 3), typeOf(row).leftJustified(9), text(row.name).leftJustified(23),
                              valueText(table, row)));
    }
    if (options.json)
        printJson(QJsonDocument(fields));
    return Done;
}

int get(const Options &options)
{
    const Row *row = find(options.field);
    if (!row)
        return noSuchField(options.field);
    SystemTableCopy table;
    if (!UTIL_CopySystemTable(&table))
        return noTable();
    if (options.json)
        printJson(QJsonDocument(describe(table, *row)));
    else
        printLine(valueText(table, *row));
    return Done;
}

QString expected(const Row &row)
{
    if (row.kind == Row::Characters)
        return QStringLiteral("a text of at most %1 bytes").arg(row.count - 1);
    const QString range = QStringLiteral("0 to %1").arg(row.max);
    return row.count == 1
        ? QStringLiteral("a number from %1").arg(range)
        : QStringLiteral("%1 numbers from %2, separated by commas").arg(QString::number(row.count), range);
}

// The bytes that a row holds for a value as it is typed; nothing when the value does not fit.
std::optional<QByteArray> encode(const Row &row, const std::string &value)
{
    if (row.kind == Row::Characters) {
        QByteArray bytes(value.data(), qsizetype(value.size()));
        if (bytes.size() >= row.count)
            return std::nullopt;
        return bytes.leftJustified(row.count, '\0');
    }
    const QStringList numbers = QString::fromStdString(value).split(u',');
    if (numbers.size() != row.count)
        return std::nullopt;
    QByteArray bytes;
    for (const QString &each : numbers) {
        const auto number = wholeNumber(each.toStdString());
        if (!number || *number < 0 || *number > row.max)
            return std::nullopt;
        for (int i = 0; i < row.width; ++i)
            bytes.append(char(*number >> (8 * i)));
    }
    return bytes;
}

int set(const Options &options)
{
    const Row *row = find(options.field);
    if (!row)
        return noSuchField(options.field);
    const auto bytes = encode(*row, options.value);
    if (!bytes)
        return refuse(
            QStringLiteral("%1 takes %2, not \"%3\"").arg(text(row->name), expected(*row), printable(options.value)));
    const std::span<const char> characters(bytes->constData(), std::size_t(bytes->size()));
    const auto written =
        status::writeBytes(*row, {reinterpret_cast<const quint8 *>(characters.data()), characters.size()});
    if (!written)
        return noTable();
    return Done;
}

int dump(const Options & /*options*/)
{
    constexpr int kLine = 16; // bytes
    SystemTableCopy table;
    if (!UTIL_CopySystemTable(&table))
        return noTable();
    for (const Row &row : status::rows) {
        const QByteArray bytes(reinterpret_cast<const char *>(table.bytes) + row.offset, qsizetype(row.size()));
        for (qsizetype from = 0; from < bytes.size(); from += kLine)
            printLine(QStringLiteral("%1  %2  %3")
                          .arg(hex(quint32(row.offset + from), 3),
                              QString::fromLatin1(bytes.mid(from, kLine).toHex(' ')).leftJustified(3 * kLine - 1),
                              from > 0                      ? QString()
                                  : row.kind == Row::Unused ? QStringLiteral("(not used)")
                                                            : text(row.name))
                          .trimmed());
    }
    return Done;
}

class Watch {
public:
    Watch(const Options &options, std::vector<const Row *> rows) : m_options(options), m_rows(std::move(rows)) { }

    int run()
    {
        QObject::connect(&m_watcher, &SystemStatusWatcher::changed, &m_watcher,
            [this](const SystemTableCopy &before, const SystemTableCopy &now) { print(before, now); });
        return QCoreApplication::exec();
    }

private:
    void print(const SystemTableCopy &before, const SystemTableCopy &now)
    {
        if (std::exchange(m_existed, m_watcher.tableExists()) != m_watcher.tableExists())
            std::fprintf(stderr, "tyx: the status table is %s\n", m_watcher.tableExists() ? "there" : "gone");
        for (const Row *row : m_rows) {
            const bool same = std::equal(
                before.bytes + row->offset, before.bytes + row->offset + row->size(), now.bytes + row->offset);
            if (same)
                continue;
            if (!printChange(*row, now) || ++m_printed == m_options.count)
                return QCoreApplication::exit(Done); // that output is lost is told by main()
        }
    }

    [[nodiscard]] bool printChange(const Row &row, const SystemTableCopy &now) const
    {
        if (m_options.json) {
            const QJsonObject change{
                {QStringLiteral("name"), text(row.name)}, {QStringLiteral("value"), valueJson(now, row)}};
            printLine(QString::fromUtf8(QJsonDocument(change).toJson(QJsonDocument::Compact)));
        } else {
            printLine(text(row.name) + u' ' + valueText(now, row));
        }
        return flushOutput();
    }

    const Options &m_options;
    const std::vector<const Row *> m_rows;
    SystemStatusWatcher m_watcher;
    bool m_existed = m_watcher.tableExists();
    int m_printed = 0;
};

int watch(const Options &options)
{
    std::vector<const Row *> rows;
    for (const std::string &name : options.fields) {
        rows.push_back(find(name));
        if (!rows.back())
            return noSuchField(name);
    }
    for (const Row &row : status::rows) {
        if (options.fields.empty() && row.kind != Row::Unused)
            rows.push_back(&row);
    }
    int argc = 0;
    const QCoreApplication events(argc, nullptr); // the one sub-command here that has to wait
    SystemTableCopy table;
    if (!UTIL_CopySystemTable(&table))
        std::ignore = noTable(); // and wait for one
    return Watch(options, std::move(rows)).run();
}

int init(const Options & /*options*/)
{
    if (const auto made = platform::makeKeyFile(status::kKeyFile); !made)
        return fail(QStringLiteral("%1: %2; remove what is there")
                        .arg(QString::fromLatin1(status::kKeyFile), made.error().text()));
    for (const char project : {status::kTableProject, 'n'}) {
        if (isBlocked(project, IPC_CREAT | 0777))
            return Failed;
    }
    UTIL_CreateSystemStatusTable();
    UTIL_InitSystemTable();
    UTIL_CreateApplicationManagerStatusTable();
    SystemTableCopy table;
    return UTIL_CopySystemTable(&table) ? Done : noTable();
}

}

void addStatus(CLI::App &app, int &exit)
{
    const CommandGroup<Options> group(
        app, "status", "Looks at the phone's live state, changes it and follows it.", exit);
    Options &options = group.options();
    const auto field = [&](CLI::App *command) {
        command->add_option("FIELD", options.field, "The field, for example battery-level")->required();
    };

    CLI::App *command = group.add("list", "Lists all fields: offset, type, name, value.", list);
    group.addJson(command)->excludes(
        command->add_flag("--markdown", options.markdown, "The layout as a table for documents, without values"));

    command = group.add("get", "Prints a field.", get);
    field(command);
    group.addJson(command);

    command = group.add("set", "Changes a field.", set);
    field(command);
    command->add_option("VALUE", options.value, "A number (also 0x...), several separated by commas, or a text")
        ->required();

    command = group.add("watch", "Prints what changes, as it changes, until it is stopped.", watch);
    command->add_option("FIELD", options.fields, "Only these fields");
    command->add_option("--count", options.count, "Stop after so many lines")->check(countRange());
    group.addJson(command);

    group.add("dump", "Prints all bytes with the fields that they belong to.", dump);
    group.add("init",
        "Makes the tables on a machine without a GUI server, or puts all fields back to their initial values.", init);
}

}
