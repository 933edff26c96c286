#include "res/files/imagedecoder.h"

#include <QBuffer>
#include <QImageReader>
#include <QScopeGuard>

namespace res {

namespace {

bool declaresTooMuch(const QImageReader &reader)
{
    const QSize size = reader.size();
    return size.isValid() && qint64{size.width()} * size.height() > kMaxImageBytes / 4;
}

}

QImage decodeImage(QByteArrayView bytes)
{
    // Not every format tells its size beforehand: the toolkit holds those to the limit when they ask for memory.
    const int before = QImageReader::allocationLimit();
    const auto restore = qScopeGuard([&] { QImageReader::setAllocationLimit(before); });
    QImageReader::setAllocationLimit(int(kMaxImageBytes >> 20));
    QByteArray raw = QByteArray::fromRawData(bytes.data(), bytes.size());
    QBuffer buffer(&raw);
    QImageReader reader(&buffer);
    return declaresTooMuch(reader) ? QImage() : reader.read();
}

bool isImage(QByteArrayView bytes)
{
    QByteArray raw = QByteArray::fromRawData(bytes.data(), bytes.size());
    QBuffer buffer(&raw);
    QImageReader reader(&buffer);
    return reader.canRead() && !declaresTooMuch(reader);
}

}
