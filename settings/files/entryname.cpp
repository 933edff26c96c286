#include "settings/files/entryname.h"

namespace settings {

namespace {

constexpr qsizetype kDigits = 4;

bool isPlain(const QString &name, qsizetype at)
{
    const QChar c = name[at];
    if (c == u'%' || c == u'=' || c == u'[' || c == u']' || c < u' ')
        return false;
    return !c.isSpace() || (at > 0 && at < name.size() - 1);
}

}

QString entryName(const QString &name)
{
    QString entry;
    for (qsizetype at = 0; at < name.size(); ++at) {
        if (isPlain(name, at))
            entry += name[at];
        else
            entry += QStringLiteral("%%1").arg(ushort(name[at].unicode()), kDigits, 16, QChar(u'0'));
    }
    return entry;
}

QString fromEntryName(const QString &entry)
{
    QString name;
    for (qsizetype at = 0; at < entry.size(); ++at) {
        bool isCode = false;
        const ushort code = entry[at] == u'%' ? entry.mid(at + 1, kDigits).toUShort(&isCode, 16) : ushort(0);
        name += isCode ? QChar(code) : entry[at];
        at += isCode ? kDigits : 0;
    }
    return name;
}

}
