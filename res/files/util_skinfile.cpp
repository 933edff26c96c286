#include "res/files/util_skinfile.h"

#include "res/format/headertext.h"

namespace UTIL_SkinFile {

static_assert(startBlockCheck == res::kStartBlockCheck && dataBlockCheck == res::kDataBlockCheck);
static_assert(sizeof(skinData) == res::entry::skinSize - res::entry::value);
const char *const headerText = res::skinHeaderText();

}
