// tyx bus: sends, watches and lists what goes over the message bus.
#include "platform/bus/businspector.h"
#include "tools/tyx/busargument.h"
#include "tools/tyx/command.h"

#include <QCopChannel>
#include <QJsonArray>
#include <QJsonObject>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <thread>

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
};

int failNoServer(const platform::SysError &error)
{
    const QString place = QString::fromLocal8Bit(BusInspector::socketPath());
    if (error.number == ENOENT || error.number == ECONNREFUSED)
        return fail(
            QStringLiteral("no phone is running: nothing listens at %1; start it with tyx-guiserver").arg(place));
    return fail(QStringLiteral("the bus at %1 cannot be used: %2").arg(place, error.text()));
}

int failGone(const BusInspector &bus)
{
    if (!bus.goodbye().isEmpty())
        return fail(QStringLiteral("the phone closed the connection: ") + printable(bus.goodbye()));
    return fail(bus.isSilent() ? QStringLiteral("the phone does not answer") : QStringLiteral("the phone has stopped"));
}

int send(const Options &options)
{
    QStringList typed;
    for (const std::string &argument : options.arguments)
        typed.append(QString::fromStdString(argument));
    const auto data = options.hex.empty() ? encodeArguments(typed) : decodeHex(QString::fromStdString(options.hex));
    if (!data) {
        std::ignore = fail(data.error());
        return Usage;
    }
    const auto bus = BusInspector::open();
    if (!bus)
        return failNoServer(bus.error());
    const BusInspector::Sent message = {
        .pid = 0, .channel = options.channel, .message = options.message, .data = *data};
    if (!BusInspector::fits(message))
        return fail(QStringLiteral("the message to \"%1\" was not sent: a channel name has 1 to 255 bytes, a message "
                                   "with its names at most 1 MiB")
                        .arg(QString::fromStdString(options.channel)));
    return (*bus)->send(message) ? int(Done) : failGone(**bus);
}

QJsonObject json(const BusInspector::Sent &sent)
{
    return {{QStringLiteral("pid"), qint64(sent.pid)}, {QStringLiteral("channel"), QString::fromUtf8(sent.channel)},
        {QStringLiteral("message"), QString::fromUtf8(sent.message)},
        {QStringLiteral("size"), qint64(sent.data.size())},
        {QStringLiteral("data"), QString::fromLatin1(sent.data.toByteArray().toHex())}};
}

void print(const BusInspector::Sent &sent, bool asJson)
{
    if (asJson) // one object a line, so that a reader need not wait for the end
        printLine(QString::fromUtf8(QJsonDocument(json(sent)).toJson(QJsonDocument::Compact)));
    else
        printLine(QStringLiteral("%1  %2  %3  %4  %5")
                      .arg(QString::number(sent.pid), printable(sent.channel), printable(sent.message),
                          QString::number(sent.data.size()), QString::fromLatin1(sent.data.toByteArray().toHex(' ')))
                      .trimmed());
    std::fflush(stdout);
}

int monitor(const Options &options)
{
    const auto bus = BusInspector::open();
    if (!bus)
        return failNoServer(bus.error());
    const auto &wanted = options.channels;
    int seen = 0;
    const bool stopped = (*bus)->observe([&](const BusInspector::Sent &sent) {
        const std::string channel(sent.channel.data(), size_t(sent.channel.size()));
        if (!wanted.empty() && std::find(wanted.begin(), wanted.end(), channel) == wanted.end())
            return true;
        print(sent, options.json);
        return options.count == 0 || ++seen < options.count;
    });
    return stopped ? int(Done) : failGone(**bus);
}

int list(const Options &options)
{
    const auto bus = BusInspector::open();
    if (!bus)
        return failNoServer(bus.error());
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

// Waits for the server too: a start-up script begins before there is one.
int wait(const Options &options)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(options.timeout);
    while (!QCopChannel::isRegistered(options.channel.c_str())) {
        if (std::chrono::steady_clock::now() >= end) {
            const auto bus = BusInspector::open();
            return bus ? int(AnsweredNo) : failNoServer(bus.error());
        }
        std::this_thread::sleep_for(20ms);
    }
    return Done;
}

// CLI11's own ranges let "nan" pass, and say no short text.
CLI::Validator numberFrom(double least, double most, const std::string &text)
{
    const auto check = [=](const std::string &word) {
        double number = 0;
        const bool fits = CLI::detail::lexical_cast(word, number) && number >= least && number <= most;
        return fits ? std::string() : "\"" + word + "\" should be " + text;
    };
    return {check, text};
}

using Action = int (*)(const Options &);

CLI::App *add(CLI::App &bus, const char *name, const char *help, std::function<void()> run)
{
    CLI::App *command = bus.add_subcommand(name, help);
    command->callback(std::move(run));
    return command;
}

}

void addBus(CLI::App &app, int &exit)
{
    CLI::App *bus = app.add_subcommand("bus", "Sends, watches and lists what goes over the message bus.");
    bus->require_subcommand(1);
    const auto options = std::make_shared<Options>();
    const auto running = [options, &exit](Action action) { return [=, &exit] { exit = action(*options); }; };

    CLI::App *sending = add(*bus, "send", "Sends one message.", running(send));
    sending->add_option("channel", options->channel, "Channel, for example TYX/System")->required();
    sending->add_option("message", options->message, "Message name, for example \"applyStyle()\"")->required();
    auto *arguments = sending->add_option("argument", options->arguments,
        "Arguments with their types: int:3 uint:3 bool:1 qstring:TEXT qcstring:TEXT uuid:{...} bytes:HEX raw:HEX");
    sending->add_option("--hex", options->hex, "All arguments at once, as bytes")->excludes(arguments);

    CLI::App *watching =
        add(*bus, "monitor", "Prints all messages: sender, channel, name, size, bytes.", running(monitor));
    watching->add_option("channel", options->channels, "Only these channels");
    watching->add_option("--count", options->count, "Stops after so many messages")
        ->check(numberFrom(1, 1e9, "a number from 1 to 1000000000"));
    watching->add_flag("--json", options->json, "One JSON object a line");

    CLI::App *listing = add(*bus, "list", "Lists the channels and the processes that have them.", running(list));
    listing->add_flag("--json", options->json, "As JSON");

    CLI::App *waiting =
        add(*bus, "wait", "Waits until a process has the channel; 1 when none has in time.", running(wait));
    waiting->add_option("channel", options->channel, "Channel")->required();
    waiting->add_option("--timeout", options->timeout, "Seconds, 10 by default")
        ->check(numberFrom(0, 86'400, "seconds from 0 to 86400"));
}

}
