#include "res/files/skinwriterdata.h"

#include "res/files/filecontent.h"

#include <algorithm>
#include <cerrno>

namespace res {

namespace {

// What stands in the file is not compared with the image here: readers do not believe it anyway.
Entry entryOf(const QByteArray &id, const QRect &rect)
{
    return {id, {quint32(rect.x()), quint32(rect.y()), quint32(rect.width()), quint32(rect.height())}};
}

// Why the image could not be read, as the writer has always said it.
QString messageFor(const platform::SysError &error, const QString &name)
{
    if (name.isEmpty())
        return QStringLiteral("writeData: fatal error, skin filename is NULL");
    if (error.number == ENOMEM)
        return QStringLiteral("readFile: fatal error, out of memory");
    const bool opened = qstrcmp(error.call, "open") != 0;
    return (opened ? QStringLiteral("readFile: error reading file ") : QStringLiteral("writeData: error opening file "))
        + name;
}

}

tl::expected<Head, BuildFault> SkinWriterData::createTables(quint64 imageSize) const
{
    std::vector<Entry> entries;
    entries.reserve(m_pictures.size());
    // From the last to the first: of equal identifiers the one that was added last is found.
    std::transform(m_pictures.rbegin(), m_pictures.rend(), std::back_inserter(entries),
        [](const Picture &picture) { return entryOf(picture.id, picture.rect); });
    std::stable_sort(entries.begin(), entries.end(), [](const Entry &a, const Entry &b) { return a.id < b.id; });
    return buildHead(Version::Skin, entries, datablock::header + imageSize);
}

QString SkinWriterData::save(Notes notes)
{
    const auto image = fileContent(imageFileName);
    return write(image.map([](const QByteArray &bytes) { return QByteArrayView(bytes); }), notes);
}

QString SkinWriterData::save(QByteArrayView image, Notes notes) { return write(image, notes); }

QString SkinWriterData::write(const platform::Result<QByteArrayView> &image, Notes notes)
{
    note(QStringLiteral("Total account is %1").arg(m_pictures.size()), notes);
    const auto head = createTables(image ? quint64(image->size()) : 0);
    if (!head) {
        QString text = describe(head.error(), "UTIL_SkinFileWriter");
        if (head.error() == BuildFault::TableFull)
            note(text, notes);
        note(QStringLiteral("create table failed"), notes);
        return text;
    }
    noteAlignment(*head, notes);
    if (!image) {
        note(messageFor(image.error(), imageFileName), notes);
        return imageFileName.isEmpty() ? QStringLiteral("no file name of the image")
                                       : imageFileName + QStringLiteral(": ") + image.error().text();
    }
    return writeFile(fileName, *head, std::span(&*image, 1));
}

}
