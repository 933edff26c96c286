#include "tools/tyx/catalogue.h"

#include "tools/tyx/command.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <algorithm>

namespace tyx {

namespace {

constexpr QByteArrayView kSystem = "TYX/System";
constexpr QByteArrayView kServer = "TYX/QtServer";
constexpr QByteArrayView kScreen = "TYX/Screen";
constexpr QByteArrayView kInputMethods = "TYX/IMServer";

constexpr char kNone[] = "";
constexpr char kPressed[] = "int pressed";
constexpr char kEditorState[] = "int editor, int state, int detail";
constexpr char kWidgetHidden[] = "int editor, int window, int reason";
constexpr char kWidgetShown[] = "int editor, int window, int inputType, uuid method, int height";
constexpr char kBridged[] = "qcstring message, bytes data";
constexpr char kBridgedToProcess[] = "int unused, qcstring message, bytes data";
constexpr char kKeyEvent[] = "uint16 unicode, uint16 key, int modifiers, qstring text";
constexpr char kInputSettings[] =
    "uint8 inputMethodType, bool8 writingHand, bool8 wordCompletion, bool8 userDictionary, int writingSpeed, "
    "bool8 waterMark, uint8 inputLanguage, uint8 secondaryLanguage, bool8 nextWordPrediction, bool8 toolTip, "
    "qstring methodOrder";

// clang-format off
constexpr KnownMessage kMessages[] = {
    {kProcessChannel, "raise()", kNone, "comes to the front"},
    {kProcessChannel, "flush()", kNone, "accepted, does nothing"},
    {kProcessChannel, "nextView()", kNone, "accepted, does nothing"},
    {kProcessChannel, "shutdown()", kNone, "ends"},
    {kProcessChannel, "quickQuit()", kNone, "ends without asking"},
    {kProcessChannel, "clickAppIcon()", kNone, "its icon was clicked"},
    {kProcessChannel, "openDoc(QString)", "qstring document", "comes to the front and opens a document"},
    {kProcessChannel, "bridgeMessage", kBridgedToProcess, "comes to the front and gets a message of its own"},
    {kProcessChannel, "bridgeMessageWithoutRaise", kBridgedToProcess, "gets a message of its own"},
    {kProcessChannel, "cmdLine", "qstring commandLine", "was started again, with this command line"},
    {kProcessChannel, "bridgeMessage2", "raw arguments", "gets bytes of its own"},
    {kProcessChannel, "usbMassStorageEnabled(bool)", "bool enabled", "the phone is a USB disk, or no more"},

    {kSystem, "applyPalette()", kNone, "everybody puts on the colours anew"},
    {kSystem, "master clear", kNone, "the user's data are deleted"},
    {kSystem, "master reset", kNone, "the settings are set back"},
    {kSystem, "SetGuiToSuspension()", kNone, "the GUI server blanks the screen and holds keys back"},
    {kSystem, "SetGuiToResume()", kNone, "the GUI server ends the suspension"},
    {kSystem, "amClosed()", kNone, "the application manager is gone: everybody who did not object ends at once"},
    {kSystem, "changeTextSize()", kNone, "everybody reads the text size anew"},
    {kSystem, "modifytimezone", "int h, int m, int s", "sets TZ: hours, minutes, seconds east of Greenwich"},
    {kSystem, "applyStyle()", kNone, "everybody puts on the skin anew"},
    {kSystem, "setOneEnv()", "qstring assignment", "sets an environment variable: NAME=value"},
    {kSystem, "shutdown()", kNone, "everybody ends"},
    {kSystem, "notifyLaunchApp", "int application", "an application was started"},
    {kSystem, "HomeKeyPress", kNone, "the home key was pressed"},
    {kSystem, "bridgeMessage", kBridged, "everybody comes to the front and gets a message of its own"},
    {kSystem, "bridgeMessageWithoutRaise", kBridged, "everybody gets a message of its own"},
    {kSystem, "updateTouchPanelSoundInfo()", kNone, "everybody reads the sounds of the touch panel anew"},
    {kSystem, "languageChanged()", kNone, "everybody reads the language anew"},

    {kServer, "registerEditor(QCString,int,int)", "qcstring channel, int window, int editor", "an editor wants input"},
    {kServer, "unRegisterEditor(int)", "int editor", "an editor is gone"},
    {kServer, "showInputWidget(int,int,QUuid,int)", "int editor, int window, int show, uuid method, int inputType",
        "shows the keyboard of an input method"},
    {kServer, "updateEditorState(int,int,int)", kEditorState, "the state of an editor changed"},
    {kServer, "manipulateAppWindows(int,QString)", "int operation, qstring application",
        "does something to the windows of an application"},
    {kServer, "setFocusToLatestWindow(int)", "int except", "gives the focus to the latest other window"},
    {kServer, "languageChanged()", kNone, "the language was set: everybody is told on TYX/System"},
    {kServer, "HardkeySoundChanged()", kNone, "reads the sound of the hard keys anew"},
    {kServer, "themeChanged()", kNone, "the theme was set: its skin is loaded, and everybody puts it on"},

    {kProgramChannel, "manipulateAppWindows(int,QValueList)", "int operation, ints windows",
        "does something to its windows"},
    {kProgramChannel, "inputWidgetShown(int,int,int,QUuid,int)", kWidgetShown, "the keyboard is shown"},
    {kProgramChannel, "hideInputWidget(int,int,int)", kWidgetHidden, "the keyboard is hidden"},
    {kProgramChannel, "autoHideInputWidget(int,int,int)", kWidgetHidden, "the keyboard hid itself"},
    {kProgramChannel, "updateEditorState(int,int,int)", kEditorState, "the state of an editor changed"},
    {kProgramChannel, "sendKeyEventEx(IM_KeyEvent_Ex)", kKeyEvent, "a key from an input method"},
    {kProgramChannel, "unconfirmedText(QString)", "qstring text", "text that an input method has not confirmed yet"},
    {kProgramChannel, "sendTextToContact(QString)", "qstring text", "what stands in the find bar"},

    {kInputMethods, "hideInputMethod()", kNone, "hides the keyboard"},
    {kInputMethods, "selectInputMethod(QString)", "qstring method", "selects an input method"},
    {kInputMethods, "getIMNameList(QString)", "qstring channel", "answers there with IMNameList(IMMap)"},
    {kInputMethods, "setInputMethodSettings(INPUT_SETTING_T)", kInputSettings,
        "stores and applies the settings of the input methods"},
    {kInputMethods, "associationSeed(QString,int)", "qstring seed, int second",
        "completes a word, or begins anew after an empty one"},
    {kInputMethods, "lowerKBWidget(int)", "int window", "puts the keyboard below a window"},
    {kInputMethods, "setContextString(QString)", "uint8 first, qstring context, uint16 last",
        "the text around the cursor, for predictions"},
    {kInputMethods, "setEntryfavoriteIMList(int,QValueList)", "uuids methods",
        "replaces the list of favourite input methods"},
    {kInputMethods, "registerExternalInputMethod(QUuid, QString)", "uuid method, qstring name",
        "an input method lives in another process"},
    {kInputMethods, "toolBarShown(int,QUuid)", "int first, uuid method", "the tool bar is shown"},
    {kInputMethods, "completedWordConfirmed(QString)", "qstring word", "the user took a completion"},
    {kAnyChannel, "IMNameList(IMMap)", "names methods", "the input methods that there are"},

    {"/AM/Launcher", "launchApp", "int key", "the hard key of the launcher was pressed"},
    {"TYX/Phone/", "SendKeyRelease", "int key", "the call key was released"},
    {"/TYX/Volume", "LKeyPress", "int key", "the left side key was pressed"},
    {"/TYX/Volume", "RKeyPress", "int key", "the right side key was pressed"},
    {"/TYX/CLI", "voice_call_answer", "int key", "the user takes the call that comes in"},
    {"TYX/CLI_INCOMINGCALL", "voice_call_reject", "int key", "the user refuses the call that comes in"},

    {"Q400_DEVICE_REPORT", "HOME", kPressed, "the key F7 moved"},
    {"Q400_DEVICE_REPORT", "HEADSET ANSWER", kPressed, "the button of the headset moved"},
    {"Q400_DEVICE_REPORT", "HEADSET STATUS", kPressed, "the headset was plugged in or out"},
    {"Q400_DEVICE_REPORT", "FLIP", kPressed, "the flip was closed (1) or opened (0)"},
    {"/AM/Launcher", "VR Activate", kNone, "the side key asks for the voice recognition"},
    {"/AM/Launcher", "VR DeActivate", kNone, "the side key came up"},

    {"TYX/TouchPanel", "capture(QCString)", "qcstring channel", "the pen goes to a channel, as the panel counts"},
    {"TYX/TouchPanel", "clearCalibration()", kNone, "points are what the panel counts"},
    {"TYX/TouchPanel", "restoreCalibration()", kNone, "the stored calibration is in force"},
    {kToolChannel, "raw(int,int,bool)", "int x, int y, bool down", "the pen, as the panel counts"},

    {"TYX/TestCapture", "key(int,int,int,bool,bool)",
        "int unicode, int key, int modifiers, bool pressed, bool repeated", "a phone under test delivered a key"},
    {"TYX/TestCapture", "record(int,int)", "int device, int record", "a phone under test read a key record"},
    {"TYX/TestCapture", "sample(int,int,int)", "int pressure, int x, int y", "a phone under test read a touch sample"},
    {"TYX/TestCapture", "pen(int,int,int)", "int x, int y, int buttons", "a phone under test delivered the pen"},

    {kScreen, "shot(QCString)", "qcstring answerTo", "asks for a picture of the screen"},
    {kScreen, "frame(QCString,int)", "qcstring answerTo, int seen", "asks for the next live picture of the screen"},
    {kScreen, "windows(QCString)", "qcstring answerTo", "asks for the windows"},
    {kScreen, "key(QCString,int,int,int)", "qcstring answerTo, int unicode, int key, int modifiers",
        "presses a key and releases it"},
    {kScreen, "text(QCString,QString)", "qcstring answerTo, qstring text", "types a text"},
    {kScreen, "pointer(QCString,int,int,int)", "qcstring answerTo, int x, int y, int buttons", "moves the pen"},
    {kToolChannel, "shot(QByteArray)", "bytes png", "the picture"},
    {kToolChannel, "windows(QByteArray)", "bytes json", "the windows, front first"},
    {kToolChannel, "done()", kNone, "it was done"},
    {kToolChannel, "failed(QString)", "qstring reason", "it was refused"},
};
// clang-format on

constexpr QByteArrayView kApplications = "TYX/Application/";
constexpr QByteArrayView kTools = "TYX/Tool/";

// A terminal is no place for a picture of the screen: what is longer is cut in the text, and whole as JSON.
constexpr qsizetype kMostBytes = 64;
constexpr qsizetype kMostCharacters = 200;

bool isNumber(QByteArrayView text)
{
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

QString hexText(const QByteArray &bytes)
{
    const QString digits = QString::fromLatin1(bytes.first(std::min(bytes.size(), kMostBytes)).toHex(' '));
    return bytes.size() <= kMostBytes ? digits : digits + QStringLiteral(" ... (%1 bytes)").arg(bytes.size());
}

QString cut(const QString &text)
{
    return text.size() <= kMostCharacters
        ? text
        : text.first(kMostCharacters) + QStringLiteral("... (%1 characters)").arg(text.size());
}

QString valueText(const Kind &kind, const QJsonValue &value)
{
    if (value.isNull())
        return QStringLiteral("null");
    QString text = value.toString();
    if (kind.name == QLatin1String("bytes") || kind.name == QLatin1String("raw"))
        return u'<' + hexText(QByteArray::fromHex(text.toLatin1())) + u'>';
    if (kind.name == QLatin1String("qstring") || kind.name == QLatin1String("qcstring"))
        return u'"' + cut(printable(text.toUtf8())) + u'"';
    if (value.isString())
        return text;
    // An array with the value in it is the one way to have any value printed.
    const QByteArray list = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return cut(printable(list.mid(1).chopped(1)));
}

}

std::span<const KnownMessage> knownMessages() { return kMessages; }

QList<QByteArrayView> rowsOf(QByteArrayView channel)
{
    if (channel.startsWith(kTools))
        return {kToolChannel, kAnyChannel};
    if (!channel.startsWith(kApplications))
        return {channel, kAnyChannel};
    if (isNumber(channel.sliced(kApplications.size())) || channel == kProcessChannel)
        return {kProcessChannel, kProgramChannel, kAnyChannel};
    return {kProgramChannel, kProcessChannel, kAnyChannel};
}

const KnownMessage *knownMessage(QByteArrayView channel, QByteArrayView message)
{
    for (const QByteArrayView rows : rowsOf(channel)) {
        for (const KnownMessage &known : kMessages) {
            if (known.channel == rows && known.name == message)
                return &known;
        }
    }
    return nullptr;
}

bool isLike(QByteArrayView name, QByteArrayView other)
{
    const auto stem = [](QByteArrayView text) {
        return text.first(std::find(text.begin(), text.end(), '(') - text.begin()).toByteArray().toLower();
    };
    return stem(name) == stem(other);
}

QList<Argument> argumentsOf(const KnownMessage &message)
{
    QList<Argument> arguments;
    for (QLatin1String word : QLatin1String(message.arguments).tokenize(QLatin1String(", "), Qt::SkipEmptyParts)) {
        const qsizetype blank = word.indexOf(u' ');
        arguments.append({kindNamed(QString(word.first(blank))), word.sliced(blank + 1)});
    }
    return arguments;
}

QString usageOf(const KnownMessage &message)
{
    QStringList words;
    for (const Argument &argument : argumentsOf(message))
        words.append(argument.kind->name + u':' + argument.name);
    return words.join(u' ');
}

QString whatItTakes(const KnownMessage &message)
{
    const QString usage = usageOf(message);
    return QStringLiteral("\"%1\" takes %2")
        .arg(QString::fromLatin1(message.name), usage.isEmpty() ? QStringLiteral("no arguments") : usage);
}

Decoded decode(const KnownMessage &message, const QByteArray &data)
{
    Decoded decoded;
    wire::Reader in(data);
    for (const Argument &argument : argumentsOf(message)) {
        const qsizetype left = in.left();
        const QJsonValue value = argument.kind->take(in);
        if (!in.ok()) {
            decoded.rest = data.last(left);
            return decoded;
        }
        decoded.values.append(value);
    }
    decoded.complete = true;
    decoded.rest = data.last(in.left());
    return decoded;
}

QString argumentsText(QByteArrayView channel, QByteArrayView message, const QByteArray &data)
{
    const KnownMessage *known = knownMessage(channel, message);
    if (!known)
        return hexText(data);
    const Decoded decoded = decode(*known, data);
    const QList<Argument> arguments = argumentsOf(*known);
    QStringList words;
    for (qsizetype i = 0; i < decoded.values.size(); ++i)
        words.append(arguments[i].name + u'=' + valueText(*arguments[i].kind, decoded.values[i]));
    if (!decoded.complete) {
        const Argument &missing = arguments[decoded.values.size()];
        const QString name = missing.kind->name + u':' + missing.name;
        words.append(decoded.rest.isEmpty()
                ? QStringLiteral("(%1 is missing)").arg(name)
                : QStringLiteral("(%1 cannot be read from: %2)").arg(name, hexText(decoded.rest)));
    } else if (!decoded.rest.isEmpty()) {
        words.append(QStringLiteral("(surplus: %1)").arg(hexText(decoded.rest)));
    }
    return words.join(u' ');
}

void describeArguments(QJsonObject &object, QByteArrayView channel, QByteArrayView message, const QByteArray &data)
{
    object.insert(QStringLiteral("size"), data.size());
    object.insert(QStringLiteral("data"), QString::fromLatin1(data.toHex()));
    const KnownMessage *known = knownMessage(channel, message);
    if (!known)
        return;
    const Decoded decoded = decode(*known, data);
    const QList<Argument> arguments = argumentsOf(*known);
    QJsonArray array;
    for (qsizetype i = 0; i < decoded.values.size(); ++i)
        array.append(QJsonObject{{QStringLiteral("type"), arguments[i].kind->name},
            {QStringLiteral("name"), arguments[i].name}, {QStringLiteral("value"), decoded.values[i]}});
    object.insert(QStringLiteral("arguments"), array);
    if (!decoded.complete || !decoded.rest.isEmpty())
        object.insert(decoded.complete ? QStringLiteral("surplus") : QStringLiteral("undecodable"),
            QString::fromLatin1(decoded.rest.toHex()));
}

}
