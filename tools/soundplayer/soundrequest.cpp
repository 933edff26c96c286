#include "tools/soundplayer/soundrequest.h"

#include "appbase/messaging/soundqueue.h"

#include <QtEndian>
#include <algorithm>

namespace {

constexpr quint32 kLoudest = 9; // as the settings count volumes

}

std::optional<SoundRequest> soundRequest(std::span<const std::byte> message, QByteArrayView folder)
{
    if (message.size() != SoundMessage::kSize)
        return std::nullopt;
    const auto style = qFromLittleEndian<quint32>(message.data());
    const auto volume = std::min(qFromLittleEndian<quint32>(message.data() + sizeof style), kLoudest);
    const auto text = message.subspan(SoundMessage::kNameOffset);
    const auto end = std::find(text.begin(), text.end(), std::byte{0});
    const QByteArray name(reinterpret_cast<const char *>(text.data()), end - text.begin());
    const bool isPath = name.startsWith('/');
    if (style == 0 || volume == 0 || end == text.end() || name.isEmpty() || (!isPath && name.contains('/')))
        return std::nullopt;
    // Loudness is felt in ratios: half the number should not be nearly as loud.
    const double share = double(volume) / kLoudest;
    return SoundRequest{isPath ? name : folder.toByteArray() + '/' + name, share * share};
}
