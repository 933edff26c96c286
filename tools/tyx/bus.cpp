// tyx bus: sends, watches and lists what goes over the message bus.
#include "appbase/messaging/queuefile.h"
#include "tools/tyx/busargument.h"
#include "tools/tyx/catalogue.h"
#include "tools/tyx/command.h"
#include "tools/tyx/monitor.h"
#include "tools/tyx/sendcheck.h"
#include "tools/tyx/server.h"

#include <QCopChannel>
#include <QJsonArray>
#include <QJsonObject>
#include <ZMsg>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <thread>
#include <utility>

namespace tyx {

namespace {

using platform::BusInspector;
using namespace std::chrono_literals;

struct Options {
    std::string channel;
    std::string message;
    std::string hex;
    std::vector<std::string> arguments;
    std::vector<std::string> channels;
    double timeout = 10; // seconds
    int count = 0; // 0: no end
    bool json = false;
    bool queued = false;
    bool strict = false;
};

int failGone(const BusInspector &bus)
{
    if (!bus.goodbye().isEmpty())
        return fail(QStringLiteral("the phone closed the connection: ") + printable(bus.goodbye()));
    return fail(bus.isSilent() ? QStringLiteral("the phone does not answer") : QStringLiteral("the phone has stopped"));
}

// The message as it was typed, or what is wrong with it.
tl::expected<Draft, QString> draftOf(const Options &options)
{
    Draft draft{QByteArray::fromStdString(options.channel), QByteArray::fromStdString(options.message), {}};
    if (!options.hex.empty()) {
        const auto data = decodeHex(QString::fromStdString(options.hex));
        if (!data)
            return tl::make_unexpected(data.error());
        draft.arguments.data = *data;
        return draft;
    }
    QStringList typed;
    for (const std::string &argument : options.arguments)
        typed.append(QString::fromStdString(argument));
    const KnownMessage *known = knownMessage(draft.channel, draft.message);
    auto arguments = encodeArguments(typed, known ? whatItTakes(*known) : QString());
    if (!arguments)
        return tl::make_unexpected(arguments.error());
    draft.arguments = std::move(*arguments);
    return draft;
}

// A program that runs reads the messages of its process on the channel of its process only. Stored ones reach it in
// any case.
QString wrongChannel(const Draft &draft, BusInspector *bus)
{
    if (!belongsToProcess(draft))
        return {};
    const auto all = bus ? bus->registrations() : std::nullopt;
    if (!all)
        return {};
    for (const auto &[channel, pid] : *all) {
        if (channel == draft.channel)
            return QStringLiteral("\"%1\" is for the channel of the process: send it to %2%3")
                .arg(printable(draft.message), QString::fromLatin1(queue::kApplicationChannels), QString::number(pid));
    }
    return {};
}

int sendQueued(const Draft &draft)
{
    ZMsg message(draft.channel, draft.message);
    message.stream().writeRawData(draft.arguments.data.constData(), int(draft.arguments.data.size()));
    if (message.send())
        return Done;
    const bool storable = draft.channel.startsWith(queue::kApplicationChannels);
    return fail(
        QStringLiteral("the message to \"%1\" is lost: %2")
            .arg(printable(draft.channel),
                storable ? QStringLiteral("its file of waiting messages is in use, full or not writable")
                         : QStringLiteral("no phone is running, and only what goes to TYX/Application/... waits")));
}

int sendNow(const Draft &draft, const platform::Result<std::unique_ptr<BusInspector>> &bus)
{
    if (!bus)
        return fail(whyNoServer(bus.error()));
    const BusInspector::Sent message = {
        .pid = 0, .channel = draft.channel, .message = draft.message, .data = draft.arguments.data};
    return (*bus)->send(message) ? int(Done) : failGone(**bus);
}

int send(const Options &options)
{
    const auto draft = draftOf(options);
    if (!draft)
        return refuse(draft.error());
    if (!BusInspector::fits({0, draft->channel, draft->message, draft->arguments.data}))
        return fail(QStringLiteral("the message to \"%1\" was not sent: a channel name has 1 to 255 bytes, a message "
                                   "with its names at most 1 MiB")
                        .arg(printable(draft->channel)));
    const auto bus = BusInspector::open();
    QString objection = objectionTo(*draft);
    if (objection.isEmpty())
        objection = wrongChannel(*draft, bus ? bus->get() : nullptr);
    if (!objection.isEmpty() && options.strict)
        return refuse(objection + QStringLiteral("; it was not sent"));
    if (!objection.isEmpty())
        std::ignore = fail(QStringLiteral("warning: %1; sent all the same").arg(objection));
    return options.queued ? sendQueued(*draft) : sendNow(*draft, bus);
}

QJsonObject json(const BusInspector::Sent &sent)
{
    QJsonObject object{{QStringLiteral("pid"), qint64(sent.pid)},
        {QStringLiteral("channel"), QString::fromUtf8(sent.channel)},
        {QStringLiteral("message"), QString::fromUtf8(sent.message)}};
    describeArguments(object, sent.channel, sent.message, sent.data.toByteArray());
    return object;
}

bool print(const BusInspector::Sent &sent, bool asJson)
{
    if (asJson) // one object a line, so that a reader need not wait for the end
        printLine(QString::fromUtf8(QJsonDocument(json(sent)).toJson(QJsonDocument::Compact)));
    else
        printLine(QStringLiteral("%1  %2  %3  %4  %5")
                      .arg(QString::number(sent.pid), printable(sent.channel), printable(sent.message),
                          QString::number(sent.data.size()),
                          argumentsText(sent.channel, sent.message, sent.data.toByteArray()))
                      .trimmed());
    return flushOutput();
}

// Sixty in a second would bury everything else: who wants to see them names their channel.
bool isPictureOfViewer(const BusInspector::Sent &sent)
{
    return sent.message == "frame(QCString,int)" || sent.message == "frame(int,int,int,int,int)";
}

int monitor(const Options &options)
{
    const auto isWanted = [&wanted = options.channels](const BusInspector::Sent &sent) {
        const std::string channel(sent.channel.data(), size_t(sent.channel.size()));
        return wanted.empty() ? !isPictureOfViewer(sent) : std::ranges::find(wanted, channel) != wanted.end();
    };
    return monitorBus(isWanted, options.count, options.json);
}

int list(const Options &options)
{
    const auto bus = BusInspector::open();
    if (!bus)
        return fail(whyNoServer(bus.error()));
    const auto all = (*bus)->registrations();
    if (!all)
        return failGone(**bus);
    QJsonArray array;
    for (const auto &[channel, pid] : *all) {
        if (options.json)
            array.append(QJsonObject{
                {QStringLiteral("channel"), QString::fromUtf8(channel)}, {QStringLiteral("pid"), qint64(pid)}});
        else
            printLine(QStringLiteral("%1  %2").arg(pid, 7).arg(printable(channel)));
    }
    if (options.json)
        printJson(QJsonDocument(array));
    return Done;
}

bool isAskedFor(const KnownMessage &row, const QByteArray &about)
{
    if (about.isEmpty() || isLike(row.name, about))
        return true;
    const auto channels = rowsOf(about);
    return row.channel != kAnyChannel && (channels.contains(row.channel) || row.channel == about);
}

QJsonObject json(const KnownMessage &row)
{
    QJsonArray arguments;
    for (const Argument &argument : argumentsOf(row))
        arguments.append(
            QJsonObject{{QStringLiteral("type"), argument.kind->name}, {QStringLiteral("name"), argument.name}});
    return {{QStringLiteral("channel"), QString::fromLatin1(row.channel)},
        {QStringLiteral("message"), QString::fromLatin1(row.name)}, {QStringLiteral("arguments"), arguments},
        {QStringLiteral("meaning"), QString::fromLatin1(row.meaning)}};
}

int describe(const Options &options)
{
    QJsonArray array;
    QByteArrayView channel;
    for (const KnownMessage &row : knownMessages()) {
        if (!isAskedFor(row, QByteArray::fromStdString(options.channel)))
            continue;
        array.append(json(row));
        if (options.json)
            continue;
        if (row.channel != std::exchange(channel, row.channel))
            printLine(QString::fromLatin1(row.channel));
        const QString usage = usageOf(row);
        printLine(QStringLiteral("  %1%2  -- %3")
                      .arg(QString::fromLatin1(row.name), usage.isEmpty() ? usage : u' ' + usage,
                          QString::fromLatin1(row.meaning)));
    }
    if (options.json)
        printJson(QJsonDocument(array));
    if (!array.isEmpty())
        return Done;
    std::ignore = fail(QStringLiteral("nothing is known of \"%1\"; tyx bus describe lists everything")
                           .arg(printable(QByteArray::fromStdString(options.channel))));
    return AnsweredNo;
}

// Waits for the server too: a start-up script begins before there is one.
int wait(const Options &options)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(options.timeout);
    while (!QCopChannel::isRegistered(options.channel.c_str())) {
        if (std::chrono::steady_clock::now() >= end) {
            const auto bus = BusInspector::open();
            return bus ? int(AnsweredNo) : fail(whyNoServer(bus.error()));
        }
        std::this_thread::sleep_for(20ms);
    }
    return Done;
}

using Action = int (*)(const Options &);

CLI::App *add(CLI::App &bus, const char *name, const char *help, std::function<void()> run)
{
    CLI::App *command = bus.add_subcommand(name, help);
    command->callback(std::move(run));
    return command;
}

}

int monitorBus(const std::function<bool(const BusInspector::Sent &)> &isWanted, int count, bool asJson)
{
    const auto bus = BusInspector::open();
    if (!bus)
        return fail(whyNoServer(bus.error()));
    int seen = 0;
    const bool stopped = (*bus)->observe([&](const BusInspector::Sent &sent) {
        return !isWanted(sent) || (print(sent, asJson) && (count == 0 || ++seen < count));
    });
    return stopped ? int(Done) : failGone(**bus);
}

void addBus(CLI::App &app, int &exit)
{
    CLI::App *bus = app.add_subcommand("bus", "Sends, watches and explains what goes over the message bus.");
    bus->require_subcommand(1);
    const auto options = std::make_shared<Options>();
    const auto running = [options, &exit](Action action) { return [=, &exit] { exit = action(*options); }; };

    CLI::App *sending = add(*bus, "send", "Sends one message.", running(send));
    sending->add_option("channel", options->channel, "Channel, for example TYX/System")->required();
    sending->add_option("message", options->message, "Message name, for example \"applyStyle()\"")->required();
    auto *arguments =
        sending->add_option("argument", options->arguments, "Arguments as KIND:VALUE, for example int:3 qstring:TEXT");
    sending->add_option("--hex", options->hex, "All arguments at once, as bytes")->excludes(arguments);
    sending->add_flag("--queued", options->queued,
        "Stored until the application starts, if it does not run; only for TYX/Application/...");
    sending->add_flag("--strict", options->strict, "Refuses what it otherwise warns of, and sends nothing");
    std::string footer = "Kinds of arguments:\n";
    for (const Kind &kind : kinds())
        footer += "  " + kind.name.toString().leftJustified(10).toStdString() + kind.wanted + "\n";
    sending->footer(footer + "tyx bus describe MESSAGE tells what a message takes.");

    CLI::App *watching = add(*bus, "monitor",
        "Prints all messages: sender, channel, name, size, arguments (as bytes where they are not known). Pictures for "
        "viewers are left out unless their channel is named.",
        running(monitor));
    watching->add_option("channel", options->channels, "Only these channels");
    watching->add_option("--count", options->count, "Stops after so many messages")->check(countRange());
    watching->add_flag("--json", options->json, "One JSON object a line");

    CLI::App *describing = add(*bus, "describe",
        "Tells the messages that are known, channel by channel: name, arguments, meaning.", running(describe));
    describing->add_option("about", options->channel, "Only those of this channel, or of this name");
    describing->add_flag("--json", options->json, "As JSON");

    CLI::App *listing = add(*bus, "list", "Lists the channels and the processes that have them.", running(list));
    listing->add_flag("--json", options->json, "As JSON");

    CLI::App *waiting =
        add(*bus, "wait", "Waits until a process has the channel; 1 when none has in time.", running(wait));
    waiting->add_option("channel", options->channel, "Channel")->required();
    waiting->add_option("--timeout", options->timeout, "Seconds, 10 by default")
        ->check(numberFrom(0, 86'400, "seconds from 0 to 86400"));
}

}
