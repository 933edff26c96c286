#include "appbase/messaging/soundqueue.h"

#include "platform/system/keyfile.h"

#include <QtEndian>
#include <algorithm>

std::optional<std::array<std::byte, SoundMessage::kSize>> SoundMessage::encoded() const
{
    const auto name = std::as_bytes(std::span(file));
    if (name.size() >= kSize - kNameOffset || file.contains('\0'))
        return std::nullopt;
    std::array<std::byte, kSize> bytes{};
    qToLittleEndian(style, bytes.data());
    qToLittleEndian(volume, bytes.data() + sizeof style);
    std::copy(name.begin(), name.end(), bytes.begin() + kNameOffset);
    return bytes;
}

const platform::MessageQueue *SoundQueue::opened()
{
    constexpr int kMode = 0666; // players and applications may be different users
    if (!m_queue) {
        const auto key = platform::keyOfFile(kKeyFile, kProject);
        if (!key)
            return nullptr;
        if (const auto queue = platform::MessageQueue::open({*key, IPC_CREAT | kMode}))
            m_queue = *queue;
    }
    return m_queue ? &*m_queue : nullptr;
}

bool SoundQueue::send(const SoundMessage &message)
{
    const auto bytes = message.encoded();
    if (!bytes)
        return false;
    const platform::MessageQueue *queue = opened();
    if (!queue)
        return false;
    const auto sent = queue->send(SoundMessage::kType, *bytes);
    if (!sent && sent.error().number != EAGAIN)
        m_queue.reset(); // it was removed: the next sound looks for another one
    return sent.has_value();
}

std::optional<std::size_t> SoundQueue::waiting()
{
    const platform::MessageQueue *queue = opened();
    if (!queue)
        return std::nullopt;
    const auto pending = queue->pending();
    if (!pending) {
        m_queue.reset();
        return std::nullopt;
    }
    return *pending;
}
