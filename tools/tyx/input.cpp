// tyx keys, tyx touch: the phone's own keys and its touch panel, used through their devices.
#include "input/devices/storedcalibration.h"
#include "input/logic/keymap.h"
#include "platform/bus/qcopchannel.h"
#include "platform/system/endsignals.h"
#include "tools/tyx/command.h"
#include "tools/tyx/inputwriter.h"
#include "tools/tyx/panelplace.h"
#include "tools/tyx/recorder.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>
#include <utility>

namespace tyx {

namespace {

using namespace std::chrono_literals;
using keypad::RawKey;

struct Options : RecordingOptions {
    std::vector<std::string> keys;
    std::string text;
    std::string position;
    int milliseconds = 1000;
    std::vector<int> points;
    bool raw = false;
    bool json = false;
};

// "left", "F6" (any case), or a number of the device such as 0x1e.
std::optional<RawKey> keyNamed(const std::string &name)
{
    std::string lower = name;
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
    if (const RawKey *row = keypad::rawKeyNamed(lower))
        return *row;
    for (const RawKey &row : keypad::rawKeys()) {
        if (row.key >= Qt::Key_F1 && row.key <= Qt::Key_F12 && lower == "f" + std::to_string(row.key - Qt::Key_F1 + 1))
            return row;
    }
    const auto number = lower.starts_with("0x") ? wholeNumber(lower) : std::nullopt;
    if (!number || *number < 0 || *number > keypad::kNumberMask)
        return std::nullopt;
    const RawKey *row = keypad::rawKey(quint16(*number));
    return row ? *row : RawKey{quint16(*number), 0, "", keypad::Device::Keypad};
}

int noSuchKey(const std::string &name)
{
    return refuse(QStringLiteral("\"%1\" is no key of this phone; tyx keys list names them").arg(printable(name)));
}

recording::Key keyRecord(const RawKey &key, bool pressed)
{
    return {key.device, quint16(key.number | (pressed ? keypad::kPressed : 0))};
}

int told(const InputWriter::Done &done) { return done ? int(Done) : fail(done.error()); }

// A key or pen in the middle of what is done to the phone, to be released whatever comes: a signal, or a phone that
// does not listen any more.
class Gesture {
public:
    // Once something has failed, or a signal came, nothing more is written.
    template <typename Event> void write(const Event &event)
    {
        if (m_done)
            m_done = m_writer.write(event);
    }
    void pause(std::chrono::milliseconds time)
    {
        if (m_done && m_signals && !m_signals->pause(time))
            m_done = tl::make_unexpected(QStringLiteral("stopped: keys and pen were released"));
    }

    // The exit status, when the phone has taken it all.
    [[nodiscard]] int end()
    {
        if (!m_done)
            m_writer.letGo();
        m_signals.reset(); // nothing is held any more that was not to be
        return told(m_done ? m_writer.settle() : m_done);
    }

private:
    std::optional<platform::EndSignals> m_signals{std::in_place};
    InputWriter m_writer;
    InputWriter::Done m_done;
};

enum Moves { Press = 1, Release = 2 };

int move(const std::vector<std::string> &names, int moves, std::chrono::milliseconds held)
{
    std::vector<RawKey> keys;
    for (const std::string &name : names) {
        const auto key = keyNamed(name);
        if (!key)
            return noSuchKey(name);
        keys.push_back(*key);
    }
    Gesture gesture;
    for (const RawKey &key : keys) {
        if (moves & Press)
            gesture.write(keyRecord(key, true));
        gesture.pause(held);
        if (moves & Release)
            gesture.write(keyRecord(key, false));
    }
    return gesture.end();
}

int press(const Options &o) { return move(o.keys, Press | Release, 0ms); }
int hold(const Options &o) { return move(o.keys, Press | Release, std::chrono::milliseconds(o.milliseconds)); }
int down(const Options &o) { return move(o.keys, Press, 0ms); }
int up(const Options &o) { return move(o.keys, Release, 0ms); }
int flip(const Options &o) { return move({"flip"}, o.position == "close" ? Press : Release, 0ms); }

int type(const Options &options)
{
    std::vector<std::string> keys;
    for (const char c : options.text) {
        if (!std::isdigit(static_cast<unsigned char>(c)) && c != '*' && c != '#')
            return refuse(QStringLiteral("the keypad has the digits, * and #; tyx screen type types any text"));
        keys.emplace_back(1, c);
    }
    return move(keys, Press | Release, 0ms);
}

int list(const Options &options)
{
    QJsonArray array;
    for (const RawKey &row : keypad::rawKeys()) {
        const QString name = QString::fromLatin1(row.name.data(), qsizetype(row.name.size()));
        const QString device =
            row.device == keypad::Device::Button ? QStringLiteral("button") : QStringLiteral("keypad");
        array.append(QJsonObject{{QStringLiteral("name"), name}, {QStringLiteral("number"), row.number},
            {QStringLiteral("key"), row.key}, {QStringLiteral("device"), device}});
        if (!options.json)
            printLine(QStringLiteral("0x%1  0x%2  %3  %4")
                          .arg(row.number, 2, 16, QLatin1Char('0'))
                          .arg(row.key, 8, 16, QLatin1Char('0'))
                          .arg(device.leftJustified(6), name));
    }
    if (options.json)
        printJson(QJsonDocument(array));
    return Done;
}

// The pen goes down at the first place, over the straight lines to the others, and up at the last.
int stroke(const Options &options)
{
    constexpr quint16 kPressure = 200;
    constexpr int kSettle = 4; // samples, more than the filter wants
    constexpr int kStep = 32; // units of the panel
    if (options.points.size() % 2 != 0)
        return refuse(QStringLiteral("the last point lacks its second number"));
    std::vector<QPoint> places;
    for (size_t i = 0; i < options.points.size(); i += 2) {
        const QPoint typed(options.points[i], options.points[i + 1]);
        const auto place = options.raw ? std::optional(typed) : panelPlace(typed);
        if (!place || !isOnPanel(*place))
            return refuse(QStringLiteral("the panel does not reach %1, %2; tyx touch show prints its calibration")
                              .arg(typed.x())
                              .arg(typed.y()));
        places.push_back(*place);
    }
    Gesture gesture;
    const auto put = [&](const QPoint &p, quint16 pressure) {
        gesture.write(recording::Touch{{pressure, quint16(p.x()), quint16(p.y())}});
    };
    for (int i = 0; i < kSettle; ++i)
        put(places.front(), kPressure);
    for (size_t i = 1; i < places.size(); ++i) {
        const QPoint way = places[i] - places[i - 1];
        const int steps = std::max({1, std::abs(way.x()) / kStep, std::abs(way.y()) / kStep});
        for (int step = 1; step <= steps; ++step) {
            gesture.pause(5ms); // a finger's pace: places between are dropped while an application is busy
            put(places[i - 1] + way * step / steps, kPressure);
        }
        for (int still = 0; still < 2; ++still) // the median comes along
            put(places[i], kPressure);
    }
    gesture.pause(std::chrono::milliseconds(options.milliseconds));
    put(places.back(), 0);
    return gesture.end();
}

int show(const Options &options)
{
    const auto stored = storedCalibration();
    const TP_Calibration_Parameter_T p = calibrationInForce();
    if (options.json)
        printJson(QJsonDocument(QJsonObject{{QStringLiteral("stored"), stored.has_value()}, {QStringLiteral("a"), p.a},
            {QStringLiteral("b"), p.b}, {QStringLiteral("c"), p.c}, {QStringLiteral("d"), p.d},
            {QStringLiteral("e"), p.e}, {QStringLiteral("f"), p.f}, {QStringLiteral("s"), p.s}}));
    else
        printLine(QString::fromLatin1(calibration::format(p).trimmed())
            + (stored ? QString() : QStringLiteral("  (none is stored)")));
    return stored ? Done : AnsweredNo;
}

int calibrate(const Options &options)
{
    const auto &n = options.points;
    const auto computed = calibration::fromCorners({{n[0], n[1]}, {n[2], n[3]}}, {{n[4], n[5]}, {n[6], n[7]}});
    if (!computed)
        return refuse(QStringLiteral("these points give no calibration: two of them share a row or a column"));
    if (const auto stored = storeCalibration(*computed); !stored)
        return failToSave(calibrationFile(), stored.error().text(), stored.error().number);
    QCopChannel::send("TYX/TouchPanel", "restoreCalibration()"); // a server that runs
    return show(options);
}

using Action = int (*)(const Options &);
using AddCommand = std::function<CLI::App *(const char *name, const char *help, Action action)>;

AddCommand adder(CLI::App &parent, const std::shared_ptr<Options> &options, int &exit)
{
    return [&parent, options, &exit](const char *name, const char *help, Action action) {
        CLI::App *command = parent.add_subcommand(name, help);
        command->callback([action, options, &exit] { exit = action(*options); });
        return command;
    };
}

void addRecordings(const AddCommand &add, const std::shared_ptr<Options> &options)
{
    CLI::App *command = add("record", "Writes down keys, touches, messages and status changes of a phone under test.",
        [](const Options &o) { return record(o); });
    command->add_option("FILE", options->file, "where to")->required();
    command->add_option("--seconds", options->seconds, "end by itself")
        ->check(numberFrom(0.001, 1e6, "a time in seconds"));
    command = add("replay", "Does to the phone what a recording says.", [](const Options &o) { return replay(o); });
    command->add_option("FILE", options->file, "a recording")->required();
    command->add_flag("--fast", options->fast, "without the pauses in which nothing is held");
}

const auto kTime = [] { return numberFrom(0, 1e6, "a time in milliseconds"); };

}

void addKeys(CLI::App &app, int &exit)
{
    CLI::App *parent = app.add_subcommand("keys", "Uses the phone's own keys, and records what is done.");
    parent->require_subcommand(1);
    const auto options = std::make_shared<Options>();
    const AddCommand add = adder(*parent, options, exit);
    const auto keys = [&](CLI::App *command) {
        command->add_option("KEY", options->keys, "names of tyx keys list, F1 to F12, or numbers such as 0x1e")
            ->required();
        return command;
    };
    keys(add("press", "Presses keys and releases them.", press));
    keys(add("hold", "Holds each for a while.", hold))
        ->add_option("--for", options->milliseconds, "milliseconds (default 1000)")
        ->check(kTime());
    keys(add("down", "Presses keys.", down));
    keys(add("up", "Releases keys.", up));
    add("type", "Types digits, * and #.", type)->add_option("TEXT", options->text, "what to type")->required();
    add("flip", "Opens or closes the flip.", flip)
        ->add_option("POSITION", options->position, "open or close")
        ->required()
        ->check(CLI::IsMember({"open", "close"}));
    add("list", "Lists the keys: number, Qt::Key, device, name.", list)->add_flag("--json", options->json, "As JSON");
    addRecordings(add, options);
}

void addTouch(CLI::App &app, int &exit)
{
    CLI::App *parent = app.add_subcommand("touch", "Uses the phone's touch panel, and its calibration.");
    parent->require_subcommand(1);
    const auto options = std::make_shared<Options>();
    options->milliseconds = 0;
    const AddCommand add = adder(*parent, options, exit);
    const auto points = [&](CLI::App *command, const char *help, int least, int most) {
        command->add_option("POINT", options->points, help)->required()->expected(least, most);
        return command;
    };
    for (CLI::App *command : {points(add("tap", "Touches a place of the screen.", stroke), "x and y in pixels", 2, 2),
             points(add("drag", "Draws over the screen.", stroke), "x and y of each place on the way", 4, 2000)}) {
        command->add_flag("--raw", options->raw, "the numbers are what the panel counts");
        command->add_option("--for", options->milliseconds, "stay so long before lifting, in milliseconds")
            ->check(kTime());
    }
    points(add("calibrate", "Stores the calibration of two touched points, and puts it in force.", calibrate),
        "upper left and lower right place of the panel, then of the screen: x y x y x y x y", 8, 8);
    add("show", "Prints the stored calibration: a b c d e f s; 1 when there is none.", show)
        ->add_flag("--json", options->json, "As JSON");
    addRecordings(add, options);
}

}
