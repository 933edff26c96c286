// What every skin file has in common.
#pragma once

#include "platform/tyxexport.h"

#include <QtGlobal>

namespace UTIL_SkinFile {

// The check words of a file; docs/formats/resource.md tells where they are.
inline constexpr quint32 startBlockCheck = 0xABCDDCBA;
inline constexpr quint32 dataBlockCheck = 0xDCBAABCD;

// What a file begins with, a description of the format; "XXXXXXXX" stands for the offset of the start block.
TYX_EXPORT extern const char *const headerText;

// Where a picture lies in the skin's image, in pixels; what an entry of the hash table holds besides hash and text.
struct skinData { // name fixed
    // From the top left of the image. A file may say what lies outside of it.
    quint32 x = 0;
    quint32 y = 0;
    quint32 width = 0;
    quint32 height = 0;
};

}
