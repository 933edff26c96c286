// Text for a field of fixed size.
#pragma once

#include <QByteArrayView>
#include <algorithm>

namespace platform {

// How many bytes of UTF-8 fit into `most` without cutting a character.
inline qsizetype fittingUtf8(QByteArrayView text, qsizetype most)
{
    constexpr unsigned kTwoBits = 0xC0;
    constexpr unsigned kContinued = 0x80;
    qsizetype size = std::min(text.size(), most);
    while (size < text.size() && size > 0 && (uchar(text[size]) & kTwoBits) == kContinued)
        --size;
    return size;
}

}
