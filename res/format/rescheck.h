// Holds a file against everything that the format says, where readers take what they can use.
#pragma once

#include "platform/tyxexport.h"
#include "res/format/resindex.h"

#include <QString>

namespace res {

struct Flaw {
    quint64 offset = 0; // in the file
    QString text;
};

TYX_EXPORT QString describe(FormatFault fault); // "the header is not that of ..."
TYX_EXPORT QString describe(BlockFault fault);

// The first thing that is wrong, in the order header, start block, identifiers, hash table, data; nothing in a file as
// the writers make it. Exported for the tools, not installed.
TYX_EXPORT std::optional<Flaw> check(Bytes file, Version version);

}
