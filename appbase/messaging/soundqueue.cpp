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

bool SoundQueue::open()
{
    constexpr int kMode = 0666; // players and applications may be different users
    if (m_queue)
        return true;
    const auto key = platform::keyOfFile(kKeyFile, kProject);
    if (!key)
        return false;
    if (const auto queue = platform::MessageQueue::open({*key, IPC_CREAT | kMode}))
        m_queue = *queue;
    return m_queue.has_value();
}

bool SoundQueue::send(const SoundMessage &message)
{
    const auto bytes = message.encoded();
    if (!bytes || !open())
        return false;
    const auto sent = m_queue->send(SoundMessage::kType, *bytes);
    if (!sent && sent.error().number != EAGAIN)
        m_queue.reset(); // it was removed: the next sound looks for another one
    return sent.has_value();
}

std::optional<std::size_t> SoundQueue::waiting()
{
    if (!open())
        return std::nullopt;
    const auto pending = m_queue->pending();
    if (!pending) {
        m_queue.reset();
        return std::nullopt;
    }
    return *pending;
}
