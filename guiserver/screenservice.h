// Lets tools look at the screen and use it: the channel "TYX/Screen" (docs/messages.md lists its messages).
#pragma once

#include "guiserver/screenpicture.h"
#include "platform/bus/qcopchannel.h"

#include <QObject>

// One in the GUI server. Every request begins with the channel that its answer goes to; a request that cannot be read
// is not answered.
class ScreenService : public QObject {
    Q_OBJECT

public:
    explicit ScreenService(QObject *parent = nullptr);

    // One a message; each ends with an answer.
    void onShot(const QByteArray &arguments);
    void onFrame(const QByteArray &arguments);
    void onWindows(const QByteArray &arguments);
    void onKey(const QByteArray &arguments);
    void onText(const QByteArray &arguments);
    void onPointer(const QByteArray &arguments);

private:
    void receive(const QCString &message, const QByteArray &arguments);
    void answerWhenRead(const QCString &channel, int looks);

    QCopChannel m_channel;
    ScreenPicture m_picture;
};
