// Identifiers of resources, and what every resource file has in common.
#pragma once

#include "platform/tyxexport.h"

#include <QString>

// The same as ZRes, under the names that the UTIL_ family of readers and writers goes with.
namespace UTIL_Res {

// The functions of the same names in ZRes.
TYX_EXPORT QString createID(const QString &name);
TYX_EXPORT quint32 hashVal(const QString &id);
TYX_EXPORT quint32 bigToLittle(quint32 word);

}

namespace UTIL_ResFile {

// The check words of a file; docs/formats/resource.md tells where they are.
inline constexpr quint32 startBlockCheck = 0xABCDDCBA;
inline constexpr quint32 dataBlockCheck = 0xDCBAABCD;

// What a file begins with, a description of the format; "XXXXXXXX" stands for the offset of the start block.
TYX_EXPORT extern const char *const headerText;

}
