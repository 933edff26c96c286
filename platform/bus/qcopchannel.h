// A named channel of the message bus that all programs of the phone share.
#pragma once

#include "platform/tyxexport.h"
#include "platform/values/qcstring.h"

#include <QByteArray>
#include <QObject>

// While it lives this process gets the messages sent to the channel, from all processes and its own; further channels
// of the same name in one process each get them. Messages of one sender arrive in the order in which they were sent,
// from the event loop. A channel may be deleted while it receives.
//
// A name has 1 to 255 bytes; anything else makes a channel that gets no messages. When the GUI server ends, channels
// stay and work again once it is back. To be used from the GUI thread.
class TYX_EXPORT QCopChannel : public QObject {
    Q_OBJECT

public:
    // Returns when the server knows the channel: whoever asks or sends from now on finds it. A server that is stopped
    // or busy is waited for once, up to 3 seconds; from then on this and isRegistered() return at once until it is
    // heard of again.
    explicit QCopChannel(const QCString &channel, QObject *parent = nullptr);
    ~QCopChannel() override;

    // The name that it was made with.
    [[nodiscard]] QCString channel() const;

    // Whether any process has the channel. Asks the server and waits for its answer; messages that arrive meanwhile are
    // delivered later, from the event loop. False when no server runs, or does not answer (see the constructor).
    static bool isRegistered(const QCString &channel);

    // Sends a message (a name, as a rule a signature such as "raise()", and its arguments) to all who have the channel.
    // True when it was written to the server, or is kept until a busy server has room: a server that serves this
    // process passes it on even if the process ends now. One that is about to refuse or end the connection does not;
    // who must know asks isRegistered() afterwards. False when no server runs, the channel's name is none, or the
    // message with its names is larger than a frame of the bus (1 MiB).
    static bool send(const QCString &channel, const QCString &msg);
    static bool send(const QCString &channel, const QCString &msg, const QByteArray &data);

    // Hands the message to the channels of this process alone, before it returns. False when there are none.
    static bool sendLocally(const QCString &channel, const QCString &msg, const QByteArray &data = {});

    // Called for each message; emits received().
    virtual void receive(const QCString &msg, const QByteArray &data);

Q_SIGNALS:
    // A message to this channel: its name and its arguments, which may be anything.
    void received(const QCString &msg, const QByteArray &data);

private:
    QCString m_channel;
};
