// Images in the bytes of a resource.
#pragma once

#include "platform/tyxexport.h"

#include <QByteArrayView>
#include <QImage>

namespace res {

// What a picture of a phone cannot be: 50 screens of 240 x 320 in each direction fit. In bytes of memory, decoded.
inline constexpr qint64 kMaxImageBytes = qint64{64} << 20;

// An image in any format that the toolkit recognises by the bytes themselves; a null image when they are none, or when
// they declare more than kMaxImageBytes: no memory is asked for then.
TYX_EXPORT QImage decodeImage(QByteArrayView bytes);

// Whether the bytes begin like an image that is not too large, for who decodes them otherwise.
bool isImage(QByteArrayView bytes);

}
