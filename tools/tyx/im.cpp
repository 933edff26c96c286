// tyx im: the input methods of the phone, and the keyboard on its screen.
#include "appbase/messaging/wire.h"
#include "platform/bus/qcopchannel.h"
#include "platform/system/keyfile.h"
#include "platform/system/sysv.h"
#include "textinput/state/inputmethodsegment.h"
#include "tools/tyx/command.h"
#include "tools/tyx/monitor.h"
#include "tools/tyx/server.h"
#include "tools/tyx/settings.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QtEndian>
#include <algorithm>
#include <array>
#include <cstring>

namespace tyx {

namespace {

constexpr char kServer[] = "TYX/IMServer";

// Of those of tyx settings, whose names begin so.
constexpr char kSettings[] = "input-";

struct Options {
    std::string method;
    std::string name;
    std::string value;
    int count = 0;
    bool json = false;
};

struct Method {
    QUuid id;
    QString name;
    bool system = false;
};

// A copy of the shared state, read without the widgets that its class brings.
struct State {
    QList<Method> methods;
    int checked = -1;
    int owner = 0;
    QString ownerName;
    bool keyboardFilter = true;
};

using Bytes = std::span<const std::byte>;

QString textIn(Bytes field)
{
    const auto *text = reinterpret_cast<const char *>(field.data());
    return QString::fromUtf8(text, qsizetype(::strnlen(text, field.size())));
}

template <typename T> T numberIn(Bytes segment, std::size_t at) { return qFromLittleEndian<T>(segment.data() + at); }

State read(Bytes segment)
{
    State state;
    const int count = std::clamp<int>(numberIn<qint16>(segment, imsegment::kCount), 0, imsegment::kItems);
    for (int i = 0; i < count; ++i) {
        const Bytes item = segment.subspan(std::size_t(i) * imsegment::kItemSize, imsegment::kItemSize);
        Method method;
        std::memcpy(&method.id, item.data(), sizeof method.id); // in memory as the toolkit has it
        method.name = textIn(item.subspan(imsegment::kItemName, imsegment::kItemNameSize));
        method.system = item[imsegment::kItemSystem] != std::byte{0};
        state.methods.append(method);
    }
    state.checked = numberIn<qint16>(segment, imsegment::kChecked);
    state.owner = numberIn<qint32>(segment, imsegment::kOwner);
    state.ownerName = textIn(segment.subspan(imsegment::kOwnerName, imsegment::kOwnerNameSize));
    state.keyboardFilter = segment[imsegment::kKeyboardFilter] != std::byte{0};
    return state;
}

std::optional<State> current()
{
    using platform::ShmAttachment;
    const auto key = platform::keyOfFile(imsegment::kFile, imsegment::kProject);
    if (!key)
        return std::nullopt;
    const auto id = ShmAttachment::segment({*key, 0}, imsegment::kSize);
    if (!id)
        return std::nullopt;
    const auto attached = ShmAttachment::attach(*id, ShmAttachment::Access::ReadOnly);
    if (!attached || attached->bytes().size() < imsegment::kSize)
        return std::nullopt;
    return read(attached->bytes());
}

int noState()
{
    return fail(QStringLiteral("no input method server runs: %1 or its segment is missing; %2")
                    .arg(QString::fromLatin1(imsegment::kFile), QLatin1String(kStartIt)));
}

int list(const Options &options)
{
    const auto state = current();
    if (!state)
        return noState();
    QJsonArray all;
    for (int i = 0; i < state->methods.size(); ++i) {
        const Method &method = state->methods.at(i);
        const bool checked = i == state->checked;
        if (options.json)
            all.append(QJsonObject{{QStringLiteral("id"), method.id.toString()}, {QStringLiteral("name"), method.name},
                {QStringLiteral("selected"), checked}, {QStringLiteral("system"), method.system}});
        else
            printLine((checked ? QStringLiteral("* ") : QStringLiteral("  ")) + method.id.toString()
                + QStringLiteral("  ") + printable(method.name.toUtf8()));
    }
    if (options.json)
        printJson(QJsonDocument(all));
    return Done;
}

int show(const Options &options)
{
    const auto state = current();
    if (!state)
        return noState();
    const bool known = state->checked >= 0 && state->checked < state->methods.size();
    const QString name = known ? state->methods.at(state->checked).name : QString();
    if (options.json) {
        printJson(QJsonDocument(QJsonObject{{QStringLiteral("selected"), name},
            {QStringLiteral("editor"), state->owner}, {QStringLiteral("application"), state->ownerName},
            {QStringLiteral("keyboardFilter"), state->keyboardFilter}}));
        return Done;
    }
    printLine(QStringLiteral("input method:    ") + (known ? printable(name.toUtf8()) : QStringLiteral("none")));
    printLine(QStringLiteral("editor:          %1").arg(state->owner));
    printLine(QStringLiteral("application:     ") + printable(state->ownerName.toUtf8()));
    printLine(
        QStringLiteral("keyboard filter: ") + (state->keyboardFilter ? QStringLiteral("on") : QStringLiteral("off")));
    return Done;
}

int send(const QCString &channel, const QCString &message, const QByteArray &arguments)
{
    if (!QCopChannel::isRegistered(channel))
        return fail(
            QStringLiteral("nobody has the channel %1; %2").arg(QString::fromLatin1(channel), QLatin1String(kStartIt)));
    return QCopChannel::send(channel, message, arguments) ? Done : fail(QStringLiteral("the bus did not take it"));
}

int select(const Options &options)
{
    const auto state = current();
    if (!state)
        return noState();
    const QString wanted = QString::fromStdString(options.method);
    const auto known = [&wanted](const Method &method) { return method.name == wanted || method.id == QUuid(wanted); };
    if (std::ranges::none_of(state->methods, known))
        return AnsweredNo;
    return send(kServer, "selectInputMethod(QString)", wire::pack(wanted));
}

// For the editor that had it last: only the application knows of others.
int present(const Options & /*options*/)
{
    const auto state = current();
    if (!state)
        return noState();
    if (state->owner == 0) {
        printLine(QStringLiteral("no editor had the keyboard yet: tap one"));
        return AnsweredNo;
    }
    return send("TYX/QtServer", "showInputWidget(int,int,QUuid,int)", wire::pack(state->owner, 0, 1, QUuid(), 0));
}

int hide(const Options & /*options*/) { return send(kServer, "hideInputMethod()", {}); }

int settingsOf(const Options &options)
{
    if (options.name.empty())
        return listSettings(kSettings, options.json);
    const bool isWhole = options.name.starts_with(kSettings);
    return setSetting(isWhole ? options.name : kSettings + options.name, options.value);
}

int watch(const Options &options)
{
    constexpr std::array<QByteArrayView, 9> names{"registerEditor(QCString,int,int)", "unRegisterEditor(int)",
        "showInputWidget(int,int,QUuid,int)", "inputWidgetShown(int,int,int,QUuid,int)", "hideInputWidget(int,int,int)",
        "autoHideInputWidget(int,int,int)", "sendKeyEventEx(IM_KeyEvent_Ex)", "unconfirmedText(QString)",
        "sendTextToContact(QString)"};
    const auto isAboutInput = [&names](const platform::BusInspector::Sent &sent) {
        return sent.channel == kServer || std::ranges::find(names, sent.message) != names.end();
    };
    return monitorBus(isAboutInput, options.count, options.json);
}

}

void addIm(CLI::App &app, int &exit)
{
    const CommandGroup<Options> group(app, "im", "The input methods, and the keyboard on the screen.", exit);
    group.addJson(group.add("list", "Lists the input methods; the selected one has a star.", list));
    group.add("select", "Selects one; 1 when there is none of that name.", select)
        ->add_option("METHOD", group.options().method, "Its name or its identifier")
        ->required();
    group.add("show", "Shows the keyboard for the editor that had it last.", present);
    group.add("hide", "Hides the keyboard.", hide);
    CLI::App *command = group.add("settings", "Prints the settings of text input, or sets one.", settingsOf);
    auto *name = command->add_option("NAME", group.options().name, "The setting, with \"input-\" or without");
    command->add_option("VALUE", group.options().value, "Its value")->needs(name);
    name->needs(command->get_option("VALUE"));
    group.addJson(command);
    command = group.add("watch", "Prints what editors and the input methods say to each other, as they say it.", watch);
    command->add_option("--count", group.options().count, "Stops after so many messages")->check(countRange());
    group.addJson(command);
    group.addJson(group.add("state", "Prints what is selected, and what is typed into.", show));
}

}
