#include "res/files/util_res.h"

#include "res/format/headertext.h"
#include "res/format/resid.h"

namespace UTIL_Res {

QString createID(const QString &name) { return res::createID(name); }
quint32 hashVal(const QString &id) { return res::hashVal(res::Latin1Id(id).view()); }
quint32 bigToLittle(quint32 word) { return res::bigToLittle(word); }

}

namespace UTIL_ResFile {

static_assert(startBlockCheck == res::kStartBlockCheck && dataBlockCheck == res::kDataBlockCheck);
const char *const headerText = res::resourcesHeaderText();

}
