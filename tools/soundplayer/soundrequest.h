// What a message of the sound queue asks for.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <cstddef>
#include <optional>
#include <span>

struct SoundRequest {
    QByteArray path;
    double gain; // 0 to 1
};

// None for bytes that are no message, for silence (style or volume 0), and for a name that is neither a path from the
// root nor the plain name of a file in `folder`. A volume beyond 9 is 9.
std::optional<SoundRequest> soundRequest(std::span<const std::byte> message, QByteArrayView folder);
