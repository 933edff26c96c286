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

platform::Result<platform::MessageQueue> SoundQueue::openIt()
{
    constexpr int kMode = 0666; // players and applications may be different users
    if (m_queue)
        return *m_queue;
    const auto key = platform::keyOfFile(kKeyFile, kProject);
    if (!key)
        return tl::make_unexpected(key.error());
    const auto queue = platform::MessageQueue::open({*key, IPC_CREAT | kMode});
    if (!queue)
        return tl::make_unexpected(queue.error());
    m_queue = *queue;
    return *queue;
}

const platform::MessageQueue *SoundQueue::opened() { return openIt() && m_queue ? &*m_queue : nullptr; }

platform::Result<std::vector<std::byte>> SoundQueue::take()
{
    const auto queue = openIt();
    if (!queue)
        return tl::make_unexpected(queue.error());
    // One that is too long for the buffer would stay the first one for ever.
    constexpr std::size_t kLongest = 8192; // that the system lets into a queue, unless it was told otherwise
    auto message = queue->wait(kLongest);
    if (!message) {
        m_queue.reset();
        // A queue that was removed between two sounds has no valid number any more.
        const bool isGone = message.error().number == EIDRM || message.error().number == EINVAL;
        return platform::failed(message.error().call, isGone ? EIDRM : message.error().number);
    }
    return std::move(message->bytes);
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
