// How the image of a skin gets into the memory of all processes.
#pragma once

#include "res/skin/skinfile.h"

namespace res {

// Stores the image where there is none yet, and in place of another one when `reload` is set.
void shareImageOf(const SkinFile &skin, bool reload);

// As UTIL_SkinFileReader::setFileName() does, for who wants no picture: a reader stores the image of its environment
// first. False when the file cannot be loaded.
bool shareSkin(const QString &fileName);

}
