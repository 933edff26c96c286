// How much of a file becomes a resource.
#pragma once

#include "platform/system/filecontent.h"

namespace res {

// A resource of a phone is not larger; it is read into memory.
inline constexpr qint64 kMaxResourceBytes = qint64{256} << 20;

// As platform::fileContent(), up to kMaxResourceBytes.
inline platform::Result<QByteArray> fileContent(const QString &path)
{
    return platform::fileContent(path, kMaxResourceBytes);
}

}
