// Looks at the bus from outside, for tools: asks what no application asks. Blocking; needs no event loop.
#pragma once

#include "platform/system/result.h"
#include "platform/tyxexport.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace platform {

namespace bus {
class BusLink;
struct Frame;
}

class TYX_EXPORT BusInspector {
public:
    using Registration = std::pair<QByteArray, quint32>; // channel, id of a process that has it
    struct Sent { // views that are valid during the visit
        quint32 pid = 0; // of the sender
        QByteArrayView channel;
        QByteArrayView message;
        QByteArrayView data;
    };

    static Result<std::unique_ptr<BusInspector>> open();
    ~BusInspector();

    // Whether a message can be sent at all: a channel name has 1 to 255 bytes, a message with its names at most 1 MiB.
    static bool fits(const Sent &sent);

    // Sends what fits, and waits until the server took it. False when it ended or does not answer.
    bool send(const Sent &sent);

    // All registrations, sorted; nothing when the server ended or does not answer.
    std::optional<QList<Registration>> registrations();

    // Calls visit for every message on the bus from now on, until it answers false. False when the server ended first.
    bool observe(const std::function<bool(const Sent &)> &visit);

    // What the server said when it closed the connection, if it did.
    [[nodiscard]] QByteArray goodbye() const { return m_goodbye; }

    // Whether the last question was left without an answer although the connection stands.
    [[nodiscard]] bool isSilent() const { return m_silent; }

    // Where the server is looked for, for error texts.
    static QByteArray socketPath();

private:
    explicit BusInspector(std::unique_ptr<bus::BusLink> link);

    bool await(const std::function<bool(const bus::Frame &)> &isLast);

    std::unique_ptr<bus::BusLink> m_link;
    QByteArray m_goodbye;
    bool m_silent = false;
};

}
