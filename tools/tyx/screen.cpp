// tyx screen: what the phone shows, and hands to use it.
#include "appbase/messaging/wire.h"
#include "platform/bus/businspector.h"
#include "platform/bus/qcopchannel.h"
#include "tools/tyx/command.h"
#include "tools/tyx/keyname.h"
#include "tools/tyx/server.h"

#include <QJsonArray>
#include <QJsonObject>
#include <chrono>
#include <optional>

namespace tyx {

namespace {

using namespace std::chrono_literals;

constexpr auto kAnswerWait = 5s; // a server that draws a large picture on a slow processor needs one

// Sends a request to the GUI server and waits for its answer; nothing, with the error told, when there is none.
template <typename... T> std::optional<Reply> ask(const QCString &request, const T &...arguments)
{
    if (!QCopChannel::isRegistered("TYX/Screen")) {
        const auto bus = platform::BusInspector::open();
        std::ignore = fail(whyNoServer(bus ? std::nullopt : std::optional(bus.error())));
        return {};
    }
    auto reply = askServer(request, wire::pack(arguments...), kAnswerWait);
    if (!reply)
        std::ignore = fail(QStringLiteral("the GUI server does not answer: it is busy or stopped"));
    return reply;
}

// The answer when it has the expected name; nothing, with the error told, when it has another.
std::optional<Reply> expect(const char *expected, std::optional<Reply> reply)
{
    if (!reply || reply->message == expected)
        return reply;
    QString reason;
    std::ignore = wire::unpack(reply->content, reason);
    std::ignore = fail(QStringLiteral("the GUI server refused: ") + reason);
    return {};
}

std::optional<QByteArray> contentOf(const std::optional<Reply> &reply)
{
    QByteArray content;
    if (!reply || !wire::unpack(reply->content, content))
        return {};
    return content;
}

int shot(const std::string &file)
{
    const auto png = contentOf(expect("shot(QByteArray)", ask("shot(QCString)")));
    if (!png)
        return Failed;
    return saveTo(file, *png);
}

QString row(const QJsonObject &window)
{
    const QJsonArray place = window[u"geometry"].toArray();
    return QStringLiteral("%1 %2 %3x%4+%5+%6 %7 %8")
        .arg(window[u"id"].toInt(), 8)
        .arg(window[u"pid"].toInt(), 7)
        .arg(place[2].toInt())
        .arg(place[3].toInt())
        .arg(place[0].toInt())
        .arg(place[1].toInt())
        .arg(window[u"active"].toBool()       ? QStringLiteral("active ")
                : window[u"visible"].toBool() ? QStringLiteral("visible")
                                              : QStringLiteral("hidden "),
            window[u"title"].toString());
}

int list(bool json)
{
    const auto text = contentOf(expect("windows(QByteArray)", ask("windows(QCString)")));
    if (!text)
        return Failed;
    const QJsonDocument windows = QJsonDocument::fromJson(*text);
    if (json) {
        printJson(windows);
        return Done;
    }
    for (const auto &window : windows.array())
        printLine(row(window.toObject()));
    return Done;
}

int key(const std::vector<std::string> &names)
{
    for (const std::string &name : names) {
        const auto pressed = keyFromName(QString::fromStdString(name));
        if (!pressed) {
            std::ignore = fail(QString::fromStdString(name)
                + QStringLiteral(": no such key; names are those of Qt: Return, F6, Left, Ctrl+A"));
            return Usage;
        }
        if (!expect(
                "done()", ask("key(QCString,int,int,int)", 0, int(pressed->key()), int(pressed->keyboardModifiers()))))
            return Failed;
    }
    return Done;
}

// In pieces that end between characters: the server takes no more than 500 UTF-16 units at once.
int type(const std::string &text)
{
    constexpr qsizetype kPiece = 100;
    const QList<uint> characters = QString::fromStdString(text).toUcs4();
    for (qsizetype i = 0; i < characters.size(); i += kPiece) {
        const QList<uint> piece = characters.mid(i, kPiece);
        const QString typed = QString::fromUcs4(reinterpret_cast<const char32_t *>(piece.constData()), piece.size());
        if (!expect("done()", ask("text(QCString,QString)", typed)))
            return Failed;
    }
    return Done;
}

// The pen goes down at the first point, through the others, and up at the last.
int drag(const std::vector<int> &coordinates)
{
    const auto point = [&](size_t i, Qt::MouseButton button) {
        return expect("done()", ask("pointer(QCString,int,int,int)", coordinates[i], coordinates[i + 1], int(button)))
            .has_value();
    };
    for (size_t i = 0; i + 1 < coordinates.size(); i += 2) {
        if (!point(i, Qt::LeftButton))
            return Failed;
    }
    return point(coordinates.size() - 2, Qt::NoButton) ? Done : Failed;
}

// What the command line filled in; as old as the commands that read it.
struct Options {
    std::string file;
    std::string text;
    std::vector<std::string> keys;
    std::vector<int> points;
    bool json = false;
};

int dragPoints(const std::vector<int> &coordinates)
{
    if (coordinates.size() % 2 == 0)
        return drag(coordinates);
    std::ignore = fail(QStringLiteral("screen drag: the last point lacks its second number"));
    return Usage;
}

}

void addScreen(CLI::App &app, int &exit)
{
    CLI::App *screen = app.add_subcommand("screen", "Shows the phone's screen, and uses it");
    screen->require_subcommand(1);
    const auto options = std::make_shared<Options>();
    // A callback's copy of `options` keeps it as long as the command.
    const auto add = [&](const char *name, const char *help, int (*run)(const Options &)) {
        CLI::App *command = screen->add_subcommand(name, help);
        command->callback([options, run, &exit] { exit = run(*options); });
        return command;
    };

    add("shot", "Saves what the screen shows as a PNG", [](const Options &o) { return shot(o.file); })
        ->add_option("FILE", options->file, "where to; - is standard output")
        ->required();
    add("list", "Lists the windows, front first: id, process, place, state, title", [](const Options &o) {
        return list(o.json);
    })->add_flag("--json", options->json, "print JSON");
    add("key", "Presses keys and releases them", [](const Options &o) { return key(o.keys); })
        ->add_option("KEY", options->keys, "names such as Return, F6, Ctrl+A")
        ->required();
    add("type", "Types a text", [](const Options &o) { return type(o.text); })
        ->add_option("TEXT", options->text, "what to type")
        ->required();
    add("tap", "Touches the screen at a point", [](const Options &o) { return drag(o.points); })
        ->add_option("POINT", options->points, "x and y in pixels from the upper left corner")
        ->required()
        ->expected(2);
    add("drag", "Draws the pen over the screen", [](const Options &o) { return dragPoints(o.points); })
        ->add_option("POINT", options->points, "x and y of each point on its way")
        ->required()
        ->expected(4, 2000);
}

}
