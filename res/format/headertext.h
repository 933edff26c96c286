// What stands at the start of a file for people who open it in an editor.
#pragma once

#include "res/format/reslayout.h"

namespace res {

// The magic line, "XXXXXXXX" in place of the start block's offset, then a description of the format that ends in the
// title of the ID table. It is as long as the offset of that table.
QByteArrayView headerText(Version version);

// The same, ended by a NUL.
const char *resourcesHeaderText();
const char *skinHeaderText();

}
