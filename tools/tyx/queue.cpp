// tyx queue: looks into the messages that wait for applications, delivers them or throws them away.
#include "appbase/messaging/queuefile.h"
#include "platform/bus/businspector.h"
#include "tools/tyx/catalogue.h"
#include "tools/tyx/command.h"

#include <QCopChannel>
#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <algorithm>

namespace tyx {

namespace {

struct Options {
    std::string name;
    bool json = false;

    [[nodiscard]] QByteArray bytes() const { return QByteArray::fromStdString(name); }
};

QString file(const QByteArray &name) { return QString::fromLatin1(queue::kFilePrefix) + printable(name); }

QString cure(int error)
{
    switch (error) {
    case EWOULDBLOCK:
        return QStringLiteral("another process is at work on it, try again");
    case EACCES:
    case EPERM:
        return QStringLiteral("run as its owner");
    case EINVAL:
    case EISDIR:
    case ELOOP:
    case ENXIO:
        return QStringLiteral("it is not a file that senders make, remove it");
    default:
        return QStringLiteral("check the name");
    }
}

// Exit::AnsweredNo when nothing waits for that name, otherwise why the file cannot be used.
int unusable(const QByteArray &name, const platform::SysError &error)
{
    if (name.contains('/')) {
        std::ignore = fail(QStringLiteral("\"%1\" is no name: give an application or a process id, without a folder")
                               .arg(printable(name)));
        return Usage;
    }
    if (error.number != ENOENT && error.number != ESTALE)
        return fail(QStringLiteral("%1: %2; %3").arg(file(name), error.text(), cure(error.number)));
    std::ignore = fail(QStringLiteral("%1: nothing waits for \"%2\"; tyx queue list shows the names")
                           .arg(file(name), printable(name)));
    return AnsweredNo;
}

void warnOfDamage(const QByteArray &name, const queue::Contents &contents)
{
    if (contents.damaged)
        std::ignore = fail(QStringLiteral("%1: damaged behind message %2, the rest will be dropped")
                               .arg(file(name), QString::number(contents.records.size())));
}

qint64 age(const queue::Glance &glance)
{
    using namespace std::chrono;
    return duration_cast<seconds>(system_clock::now() - glance.modified).count();
}

QJsonObject json(const QByteArray &name, const platform::Result<queue::Glance> &glance)
{
    QJsonObject object{{QStringLiteral("application"), QString::fromUtf8(name)},
        {QStringLiteral("file"), QString(QString::fromLatin1(queue::kFilePrefix) + QString::fromUtf8(name))}};
    if (!glance) {
        object.insert(QStringLiteral("error"), glance.error().text());
        return object;
    }
    object.insert(QStringLiteral("age"), age(*glance));
    object.insert(QStringLiteral("records"), glance->contents.records.size());
    object.insert(QStringLiteral("bytes"), glance->bytes);
    object.insert(QStringLiteral("damaged"), glance->contents.damaged);
    return object;
}

QString line(const QByteArray &name, const platform::Result<queue::Glance> &glance)
{
    if (!glance)
        return QStringLiteral("%1  cannot be read: %2").arg(printable(name), glance.error().text());
    const auto records = glance->contents.records.size();
    QString line = QStringLiteral("%1  %2 s  %3 %4")
                       .arg(printable(name), QString::number(age(*glance)), QString::number(records),
                           records == 1 ? QStringLiteral("message") : QStringLiteral("messages"));
    if (glance->contents.damaged)
        line += QStringLiteral(", then damage");
    if (records > 0 && std::chrono::seconds(age(*glance)) > queue::kMaxAge)
        line += QStringLiteral("; the next sender discards them");
    return line;
}

int list(const Options &options)
{
    const QFileInfo prefix(QString::fromLatin1(queue::kFilePrefix));
    const QDir folder(prefix.path(), prefix.fileName() + u'*', QDir::Name, QDir::AllEntries | QDir::System);
    QJsonArray array;
    for (const QString &entry : folder.entryList()) {
        const QByteArray name = QFile::encodeName(entry.mid(prefix.fileName().size()));
        const auto glance = queue::glance(name);
        if (!glance && glance.error().number == ENOENT)
            continue; // taken meanwhile
        if (options.json)
            array.append(json(name, glance));
        else
            printLine(line(name, glance));
    }
    if (options.json)
        printJson(QJsonDocument(array));
    return Done;
}

int show(const Options &options)
{
    const auto glance = queue::glance(options.bytes());
    if (!glance)
        return unusable(options.bytes(), glance.error());
    QJsonArray array;
    for (const queue::Record &record : glance->contents.records) {
        if (options.json) {
            QJsonObject object{{QStringLiteral("channel"), QString::fromUtf8(record.channel)},
                {QStringLiteral("message"), QString::fromUtf8(record.message)}};
            describeArguments(object, record.channel, record.message, record.data);
            array.append(object);
            continue;
        }
        printLine(QStringLiteral("%1  %2  %3  %4")
                      .arg(printable(record.channel), printable(record.message), QString::number(record.data.size()),
                          argumentsText(record.channel, record.message, record.data))
                      .trimmed());
    }
    if (options.json)
        printJson(QJsonDocument(array));
    warnOfDamage(options.bytes(), glance->contents);
    return Done;
}

int drop(const Options &options)
{
    auto held = queue::LockedFile::forTaking(options.bytes());
    if (!held)
        return unusable(options.bytes(), held.error());
    if (const auto removed = std::move(*held).remove(); !removed)
        return unusable(options.bytes(), removed.error());
    return Done;
}

// The process that has the channel; 0 when that cannot be told.
quint32 processOf(const QCString &channel)
{
    const auto bus = platform::BusInspector::open();
    const auto all = bus ? (*bus)->registrations() : std::nullopt;
    if (!all)
        return 0;
    const auto entry = std::find_if(all->begin(), all->end(), [&](const auto &each) { return each.first == channel; });
    return entry == all->end() ? 0 : entry->second;
}

// Where a message has the effect that it has when a starting application takes it: some only on its process's channel.
QCString destination(const queue::Record &record, const QCString &channel, quint32 process)
{
    const KnownMessage *known = knownMessage(channel, record.message);
    const QCString own(queue::kApplicationChannels.toByteArray() + QByteArray::number(process));
    return known && known->channel == kProcessChannel && QCopChannel::isRegistered(own) ? own : channel;
}

int replay(const Options &options)
{
    auto held = queue::LockedFile::forTaking(options.bytes());
    if (!held)
        return unusable(options.bytes(), held.error());
    const QCString channel(queue::kApplicationChannels.toByteArray() + options.bytes());
    if (!QCopChannel::isRegistered(channel)) {
        std::ignore = fail(QStringLiteral("%1 does not run, its messages stay in %2; start it and it takes them")
                               .arg(printable(options.bytes()), file(options.bytes())));
        return AnsweredNo;
    }
    const auto contents = held->read();
    if (!contents)
        return unusable(options.bytes(), contents.error());
    const quint32 process = processOf(channel);
    qsizetype sent = 0;
    for (const queue::Record &record : contents->records) {
        if (!QCopChannel::send(destination(record, channel, process), record.message, record.data))
            return fail(
                QStringLiteral("%1: message %2 of %3 was not sent, those before it were; the phone has "
                               "stopped, or it is larger than 1 MiB: drop them with tyx queue drop")
                    .arg(file(options.bytes()), QString::number(sent + 1), QString::number(contents->records.size())));
        ++sent;
    }
    warnOfDamage(options.bytes(), *contents);
    if (const auto removed = std::move(*held).remove(); !removed)
        return unusable(options.bytes(), removed.error());
    return Done;
}

}

void addQueue(CLI::App &app, int &exit)
{
    const CommandGroup<Options> group(app, "queue", "Looks after messages that wait for applications to start.", exit);
    const auto named = [&](CLI::App *command) {
        command->add_option("name", group.options().name, "Application or process id, for example hello")->required();
        return command;
    };

    group.addJson(group.add("list", "Lists for whom messages wait, since when the last one does, and how many.", list));
    group.addJson(named(group.add("show", "Prints the messages that wait: channel, name, size, arguments.", show)));
    named(group.add("drop", "Throws them away.", drop));
    named(group.add("replay", "Sends them to the application; 1 when it does not run.", replay));
}

}
