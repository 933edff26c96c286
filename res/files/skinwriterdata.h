// What the writer of skin files does; the tools use it directly.
#pragma once

#include "platform/system/result.h"
#include "res/files/filewriter.h"

#include <QByteArray>
#include <QRect>
#include <vector>

namespace res {

class SkinWriterData {
public:
    void add(const QString &id, const QRect &rect) { m_pictures.push_back({id.toLatin1(), rect}); }
    void clear() { m_pictures.clear(); }

    // With the bytes of an image file, or with those of `imageFileName`. What went wrong, or a null string.
    QString save(QByteArrayView image, Notes notes);
    QString save(Notes notes);

    QString fileName;
    QString imageFileName;

private:
    struct Picture {
        QByteArray id;
        QRect rect;
    };
    [[nodiscard]] tl::expected<Head, BuildFault> createTables(quint64 imageSize) const;
    QString write(const platform::Result<QByteArrayView> &image, Notes notes);

    std::vector<Picture> m_pictures; // in the order of add()
};

}
