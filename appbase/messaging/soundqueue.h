// The way to the phone's sound player: a System V message queue keyed by "/tmp/touch_sound_msg".
//
// A message is of type 1 and has 260 bytes:
//
//   offset  size  what
//        0     4  style   as the setting of this kind of sound says (little-endian, like the next)
//        4     4  volume
//        8   252  name of the file, ended by a NUL and filled up with more of them
#pragma once

#include "platform/system/sysv.h"

#include <QByteArrayView>
#include <QtGlobal>
#include <array>
#include <cstddef>
#include <optional>

struct SoundMessage {
    static constexpr long kType = 1;
    static constexpr std::size_t kNameOffset = 4 + 4;
    static constexpr std::size_t kSize = kNameOffset + 252;

    quint32 style;
    quint32 volume;
    QByteArrayView file;

    // None when the name does not fit or has a NUL inside: half a name is another file.
    [[nodiscard]] std::optional<std::array<std::byte, kSize>> encoded() const;
};

// Open as soon as the key file is there; whoever opens first makes the queue. It outlives the process.
class SoundQueue {
public:
    static constexpr char kKeyFile[] = "/tmp/touch_sound_msg";
    static constexpr char kProject = 't';

    bool open() { return opened() != nullptr; } // false without a key file, or when the queue is not for us

    // Opens when necessary. Never waits: false when the sound is dropped, which nobody is told of.
    bool send(const SoundMessage &message);

    // How many sounds nobody has played yet; none without a queue.
    [[nodiscard]] std::optional<std::size_t> waiting();

    // For the player: the next message, whatever is in it and of any size; waits for one. EIDRM when the queue was
    // removed meanwhile: the next call makes another.
    platform::Result<std::vector<std::byte>> take();

private:
    platform::Result<platform::MessageQueue> openIt();
    const platform::MessageQueue *opened(); // null when it cannot be

    std::optional<platform::MessageQueue> m_queue;
};
