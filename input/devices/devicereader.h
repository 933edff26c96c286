// Reads the records of a device as they come.
#pragma once

#include "platform/system/fd.h"

#include <QObject>
#include <QSocketNotifier>
#include <array>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <span>

// Opened read-write and never waiting, which a FIFO in the device's place allows too. A device that fails while it is
// read is told once on standard error, closed, and looked for again after 1, 2, 4 .. 60 seconds.
class DeviceReader : public QObject {
    Q_OBJECT

public:
    using Records = std::span<const std::byte>; // whole ones

    // `path` is a literal. `take` gets what was read, as often as something is; `lost` is called when the device
    // failed, `found` when it was opened again.
    DeviceReader(const char *path, std::size_t recordSize, std::function<void(Records)> take);

    platform::Result<> open();
    void adopt(platform::Fd fd); // instead of open(): somebody else knew how to open it
    void onLost(std::function<void()> lost) { m_lost = std::move(lost); }
    void onFound(std::function<void()> found) { m_found = std::move(found); }

    [[nodiscard]] int fd() const { return m_fd.get(); } // -1 while it is closed
    [[nodiscard]] const char *path() const { return m_path; }

    // Reads until the buffer is full or nothing is left, and hands over the complete records; what is left of one stays
    // for the next call.
    void read();

    // One record, and nothing more for `pause`: for whoever cannot keep up.
    void readOne(std::chrono::milliseconds pause);

Q_SIGNALS:
    void activated(int fd); // there is something to read

private:
    static constexpr std::size_t kBufferSize = 1024;

    void read(std::size_t room);
    void handOver();
    void lose(const platform::SysError &error);
    void retry();

    const char *m_path;
    const std::size_t m_recordSize;
    std::function<void(Records)> m_take;
    std::function<void()> m_lost;
    std::function<void()> m_found;
    platform::Fd m_fd;
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::array<std::byte, kBufferSize> m_buffer{};
    std::size_t m_filled = 0;
    std::optional<std::chrono::seconds> m_delay; // until the device is looked for again; none while it is in order
};
