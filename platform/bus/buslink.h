// A client's connection to the broker: greets, writes frames, hands out the frames that come.
//
// For the one client of a process, and for tools. A frame's views are valid during the call that hands it out.
#pragma once

#include "platform/bus/busframe.h"
#include "platform/bus/bussendbuffer.h"
#include "platform/system/fd.h"

#include <chrono>
#include <functional>
#include <memory>

namespace platform::bus {

class BusLink {
public:
    // Connects and writes the greeting. The broker's answer is not waited for: frames may follow at once.
    static Result<std::unique_ptr<BusLink>> open(const QByteArray &path);
    static Result<std::unique_ptr<BusLink>> open(); // at the standard place
    ~BusLink();
    BusLink(const BusLink &) = delete;
    BusLink &operator=(const BusLink &) = delete;

    // The descriptor, to be watched for reading.
    [[nodiscard]] int fd() const { return m_socket.get(); }

    // Frames are put here; flush() or drain() writes them.
    [[nodiscard]] QByteArray &tail() { return m_out.tail(); }
    SendBuffer::State flush() { return m_out.flush(fd()); }
    // Waits until all is written. False when it takes longer, or the broker is gone.
    bool drain(std::chrono::milliseconds limit);
    [[nodiscard]] qsizetype backlog() const { return m_out.backlog(); }

    // Reads once what is there and calls handle(frame) for each whole frame. False: the connection has ended.
    bool receive(const std::function<void(const Frame &)> &handle);
    // True when there is something to read; a negative limit waits without end.
    [[nodiscard]] bool waitForInput(std::chrono::milliseconds limit) const;

private:
    explicit BusLink(Fd socket);

    Fd m_socket;
    FrameReader m_in;
    SendBuffer m_out;
};

}
