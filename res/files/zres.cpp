#include "res/files/zres.h"

#include "res/format/resid.h"

namespace ZRes {

QString createID(const QString &name) { return res::createID(name); }
quint32 hashVal(const QString &id) { return res::hashVal(res::Latin1Id(id).view()); }
quint32 bigToLittle(quint32 word) { return res::bigToLittle(word); }

}
