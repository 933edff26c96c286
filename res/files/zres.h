// Identifiers of resources.
#pragma once

#include "platform/tyxexport.h"

#include <QString>

namespace ZRes {

// The identifier of a file: its name without folders, with ".g" in place of .jpg, .gif, .png or .jpeg and ".a" in place
// of .mp3, .wav, .aac, .mid or .amr, whose case does not matter. Of another file the name itself.
TYX_EXPORT QString createID(const QString &name);

// The hash by which files find an identifier. Characters outside Latin-1 count as "?". A null string has 0xFFFFFFFF, an
// empty one 0.
TYX_EXPORT quint32 hashVal(const QString &id);

// The word with its four bytes in the opposite order.
TYX_EXPORT quint32 bigToLittle(quint32 word);

}
