// What is known of an input method without running it, and the messages between the server and the process that runs
// it.
#pragma once

#include "platform/tyxexport.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUuid>
#include <optional>

class QJsonObject;

struct InputMethodInfo {
    // The context of the text goes to those only that offer this interface.
    static constexpr QUuid kPredictive{0x637a8a88, 0xaf98, 0x41da, 0x96, 0x9a, 0x2b, 0xd1, 0x6e, 0xcd, 0xec, 0x10};

    QUuid id;
    QString name;
    QString languages; // codes with blanks between ("en de"); empty: any
    quint32 type = 0; // as INPUT_SETTING_T::preferredInputMethodType
    bool predictive = false;
    bool keys = false; // gets the keys of the phone
    bool system = false; // came with the phone
    bool external = false; // lives in a process of its own

    bool operator==(const InputMethodInfo &) const = default;
    [[nodiscard]] bool speaks(const QString &language) const; // "de-de", of which the first part counts
};

// From what a plug-in says of itself. None when it is no input method, or has no identifier or name.
TYX_EXPORT std::optional<InputMethodInfo> readMethodInfo(const QJsonObject &metaData);

TYX_EXPORT QByteArray packMethods(const QList<InputMethodInfo> &methods);
// What a message says; what is no input method, or comes twice, is left out.
TYX_EXPORT QList<InputMethodInfo> unpackMethods(const QByteArray &bytes);

// Between the GUI server and tyx-imhost. Each message to the server begins with the process id of its sender: what is
// still on its way from one that was given up is not heard.
namespace imhost {

constexpr char kHostChannel[] = "TYX/IMHost";
constexpr char kServerChannel[] = "TYX/IMHost/Server";
constexpr char kWindowName[] = "inputwidget";

// To the host.
constexpr char kShow[] = "show(QUuid,int,uint)"; // method, input type, language
constexpr char kHide[] = "hide()";
constexpr char kRelease[] = "release()"; // the keyboard is not needed for long
constexpr char kCommand[] = "command(int,QByteArray)";
constexpr char kHardKey[] = "hardKey(int,int,int,bool,bool)"; // as ZInputMethodPlugin::HardKey
constexpr char kPing[] = "ping(int)";

// To the server.
constexpr char kMethods[] = "methods(int,QByteArray)";
constexpr char kShown[] = "shown(int,QUuid,int,int)"; // method, window, height
constexpr char kFailed[] = "failed(int,QUuid,QString)"; // method, reason
constexpr char kPong[] = "pong(int,int)";
constexpr char kKey[] = "key(int,QByteArray)"; // an IM_KeyEventEx
constexpr char kUnconfirmed[] = "unconfirmed(int,QString)";
constexpr char kTip[] = "tip(int,QString)";
constexpr char kLeave[] = "leave(int)"; // the user wants the input widget gone

}
