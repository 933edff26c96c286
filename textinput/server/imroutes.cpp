// The messages of "TYX/IMServer".
#include "appbase/messaging/route.h"
#include "appbase/messaging/wire.h"
#include "textinput/server/zimserver_p.h"

namespace {

using Data = ZIMServerData;
using Row = Route<Data>;

constexpr Row inputMethodRoutes[] = {
    {"hideInputMethod()", &Data::onHideInputMethod},
    {"selectInputMethod(QString)", &Data::onSelectInputMethod},
    {"getIMNameList(QString)", &Data::onGetNameList},
    {"setInputMethodSettings(INPUT_SETTING_T)", &Data::onSettings},
    {"associationSeed(QString,int)", &Data::onAssociationSeed},
    {"lowerKBWidget(int)", &Data::onLowerWidget},
    {"setContextString(QString)", &Data::onContextString},
    {"setEntryfavoriteIMList(int,QValueList)", &Data::onFavourites},
    {"registerExternalInputMethod(QUuid, QString)", &Data::onRegisterExternal},
    {"toolBarShown(int,QUuid)", &Data::onToolBarShown},
    {"completedWordConfirmed(QString)", &Data::onWordConfirmed},
};

constexpr qsizetype kLongestExternalName = 40;

}

void ZIMServerData::slotInputMethodServiceMessage(const QCString &message, const QByteArray &arguments)
{
    dispatch<Data>(inputMethodRoutes, *this, message, arguments);
}

void ZIMServerData::onHideInputMethod(const QByteArray & /*arguments*/) { m_server.hideKbd(); }

void ZIMServerData::onSelectInputMethod(const QByteArray &arguments)
{
    QString name;
    if (!wire::unpack(arguments, name))
        return;
    if (const InputMethodInfo *info = methods.find(name))
        m_server.selectInputMethod(info->id, language);
}

void ZIMServerData::onGetNameList(const QByteArray &arguments)
{
    QString channel;
    if (!wire::unpack(arguments, channel))
        return;
    QMap<QUuid, QString> names;
    for (const InputMethodInfo &info : methods.all())
        names.insert(info.id, info.name);
    QCopChannel::send(QCString(channel.toUtf8()), "IMNameList(IMMap)", wire::pack(names));
}

void ZIMServerData::onSettings(const QByteArray &arguments)
{
    INPUT_SETTING_T sent;
    if (!settings::unpackInputSetting(arguments, sent))
        return;
    if (sent != settings::loadInputSetting()) // who sends it has stored it, as a rule
        settings::saveInputSetting(sent);
    applySettings(sent);
}

void ZIMServerData::onAssociationSeed(const QByteArray &arguments)
{
    QString seed;
    qint32 unused = 0;
    if (wire::unpack(arguments, seed, unused))
        m_server.requestWordCompletionEvent(seed, DICTLANG_INPUT);
}

void ZIMServerData::onLowerWidget(const QByteArray &arguments)
{
    qint32 id = 0;
    QWSServer *screen = QWSServer::instance();
    QWSWindow *own = methodWindow();
    if (wire::unpack(arguments, id) && screen && own)
        own->stackUnder(screen->window(id));
}

// Promised: more is read than the message's name says.
void ZIMServerData::onContextString(const QByteArray &arguments)
{
    SetContextCmd command;
    if (wire::unpack(arguments, command.kind, command.text, command.position))
        runCommand(command);
}

void ZIMServerData::onFavourites(const QByteArray &arguments)
{
    wire::Reader reader(arguments);
    qint32 count = 0;
    reader.i32(count);
    QList<QUuid> favourites;
    for (; count > 0 && reader.ok(); --count) {
        QUuid id;
        reader.uuid(id);
        favourites.append(id);
    }
    if (reader.ok())
        setInputMethodList(favourites);
}

void ZIMServerData::onRegisterExternal(const QByteArray &arguments)
{
    QUuid id;
    QString name;
    if (!wire::unpack(arguments, id, name))
        return;
    if (methods.addExternal(id, name.simplified().left(kLongestExternalName)))
        refreshList();
}

void ZIMServerData::onToolBarShown(const QByteArray &arguments)
{
    ToolBar told;
    if (wire::unpack(arguments, told.shown, told.method))
        toolBar = told;
}

void ZIMServerData::onWordConfirmed(const QByteArray &arguments)
{
    TipWordCmd command;
    if (!wire::unpack(arguments, command.word))
        return;
    completion = command.word;
    strip.setCompletionTip({});
    runCommand(command);
}
