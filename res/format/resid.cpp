#include "res/format/resid.h"

namespace res {

namespace {

struct Extension {
    QLatin1StringView name;
    QLatin1StringView suffix;
};

// In the order of comparison.
constexpr Extension kExtensions[] = {
    {QLatin1StringView(".jpg"), QLatin1StringView(".g")},
    {QLatin1StringView(".gif"), QLatin1StringView(".g")},
    {QLatin1StringView(".png"), QLatin1StringView(".g")},
    {QLatin1StringView(".jpeg"), QLatin1StringView(".g")},
    {QLatin1StringView(".mp3"), QLatin1StringView(".a")},
    {QLatin1StringView(".wav"), QLatin1StringView(".a")},
    {QLatin1StringView(".aac"), QLatin1StringView(".a")},
    {QLatin1StringView(".mid"), QLatin1StringView(".a")},
    {QLatin1StringView(".amr"), QLatin1StringView(".a")},
};

}

QString createID(const QString &fileName)
{
    QString id = fileName;
    for (const Extension &extension : kExtensions) {
        if (!fileName.endsWith(extension.name, Qt::CaseInsensitive))
            continue;
        id.chop(extension.name.size());
        id += extension.suffix;
        break;
    }
    return id.mid(id.lastIndexOf(u'/') + 1);
}

quint32 hashVal(QByteArrayView id)
{
    if (id.isNull())
        return 0xFFFFFFFF;
    quint32 value = 0;
    for (const char c : id) {
        if (c == '\0')
            break;
        const quint32 overflow = static_cast<quint32>(static_cast<qint32>(value) >> 20); // the sign is extended
        value = value << 1 ^ overflow ^ static_cast<uchar>(c);
    }
    return value;
}

Latin1Id::Latin1Id(QStringView id) : m_bytes(id.size()), m_null(id.isNull())
{
    for (qsizetype i = 0; i < id.size(); ++i)
        m_bytes[i] = id[i].unicode() < 0x100 ? static_cast<char>(id[i].unicode()) : '?';
}

}
