// Identifiers of resources: how file names become identifiers, and how identifiers are hashed.
#pragma once

#include "platform/tyxexport.h"

#include <QByteArrayView>
#include <QString>
#include <QVarLengthArray>

namespace res {

// The identifier of a file: its name without folders, ".g" in place of an image's extension and ".a" in place of a
// sound's. Of other files the name itself. Upper and lower case of the extension are the same.
TYX_EXPORT QString createID(const QString &fileName);

// The hash of an identifier up to its first NUL. A null view has 0xFFFFFFFF, an empty one 0.
TYX_EXPORT quint32 hashVal(QByteArrayView id);

// The word with its four bytes in the opposite order.
constexpr quint32 bigToLittle(quint32 word)
{
    return word << 24 | (word & 0xFF00U) << 8 | (word >> 8 & 0xFF00U) | word >> 24;
}

// An identifier as the file has it: Latin-1, "?" for what lies outside. A short one is not allocated.
class Latin1Id {
public:
    explicit Latin1Id(QStringView id);

    [[nodiscard]] QByteArrayView view() const { return m_null ? QByteArrayView() : QByteArrayView(m_bytes); }

private:
    QVarLengthArray<char, 256> m_bytes;
    bool m_null;
};

}
