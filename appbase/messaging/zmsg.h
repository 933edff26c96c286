// One message to another program, which may not have started yet.
#pragma once

#include "platform/tyxexport.h"
#include "platform/values/qcstring.h"

#include <QByteArray>
#include <memory>

class QDataStream;
class ZMsgData;

// Holds a message until send(). One for an application's channel ("TYX/Application/" and its name or process id) is
// stored when the application does not run, and delivered when it starts:
//
//     ZMsg msg("TYX/Application/hello", "openDoc(QString)");
//     msg.stream() << QStringLiteral("/tmp/letter.txt");
//     msg.send();
//
// Destroying it sends nothing. Needs an application object; to be used from the GUI thread.
class TYX_EXPORT ZMsg {
public:
    // The message is its name with the types of its arguments, without blanks: "openDoc(QString)". Receivers know it by
    // these very letters; that stream() gets what they say is up to the sender.
    ZMsg(const QCString &channel, const QCString &message);
    ~ZMsg();
    ZMsg(const ZMsg &) = delete;
    ZMsg &operator=(const ZMsg &) = delete;

    // As they were given.
    [[nodiscard]] QCString channel() const;
    [[nodiscard]] QCString message() const;

    // The arguments, one behind the other; valid as long as the message. The stream writes a bool as one byte: where a
    // message has a bool, programs expect an int of 0 or 1.
    QDataStream &stream();
    [[nodiscard]] QByteArray data() const; // what was written so far

    // A local message goes to the channels of this process alone. False at first.
    void setLocalOnly(bool localOnly);
    [[nodiscard]] bool isLocalOnly() const;

    // To any other channel: sends at once. To an application's channel, in this order:
    // - Messages that wait for the application are discarded when the last of them came more than 60 seconds ago, and
    //   also when the application runs: it took its messages when it started.
    // - When the application runs the message is sent, otherwise it joins those that wait. One that would make them
    //   more than 4 MiB, or that the disk has no room for, is lost.
    // - When another process is just then at work on the messages that wait, this one is lost.
    // - When messages cannot be stored at all (no permission, a name with a slash) it is sent at once.
    // True when it is on its way or stored. The message is not changed, and may be sent again.
    bool send();

private:
    std::unique_ptr<ZMsgData> d;
};
