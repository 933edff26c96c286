#include "res/files/reswriterdata.h"

#include "platform/system/filereplace.h"

#include <algorithm>
#include <cstdio>

namespace res {

namespace {

// Every application reads the file.
constexpr mode_t kMode = 0644;

// Many resources are smaller than what a system call costs.
class BufferedWriter {
public:
    explicit BufferedWriter(platform::FileReplacement &file) : m_file(file) { m_buffer.reserve(kBufferSize); }

    platform::Result<> write(QByteArrayView bytes)
    {
        if (m_buffer.size() + bytes.size() > kBufferSize) {
            if (const auto flushed = flush(); !flushed)
                return flushed;
        }
        if (bytes.size() > kBufferSize)
            return m_file.write(std::as_bytes(std::span(bytes.data(), size_t(bytes.size()))));
        m_buffer.append(bytes);
        return {};
    }

    platform::Result<> flush()
    {
        const auto written = m_file.write(std::as_bytes(std::span(m_buffer.constData(), size_t(m_buffer.size()))));
        m_buffer.resize(0);
        return written;
    }

private:
    static constexpr qsizetype kBufferSize = 256 << 10;

    platform::FileReplacement &m_file;
    QByteArray m_buffer;
};

}

tl::expected<ResWriterData::Tables, BuildFault> ResWriterData::createTables() const
{
    Tables tables;
    tables.sorted.reserve(m_resources.size());
    // From the last to the first: of equal identifiers the one that was added last is found.
    std::transform(m_resources.rbegin(), m_resources.rend(), std::back_inserter(tables.sorted),
        [](const Resource &resource) { return &resource; });
    std::stable_sort(
        tables.sorted.begin(), tables.sorted.end(), [](const Resource *a, const Resource *b) { return a->id < b->id; });

    std::vector<Entry> entries;
    entries.reserve(tables.sorted.size());
    quint64 dataSize = 0;
    for (const Resource *resource : tables.sorted) {
        entries.push_back({resource->id, {quint32(dataSize)}}); // a sum that does not fit is refused below
        dataSize += datablock::header + quint64(resource->data.size());
    }
    return buildHead(Version::Resources, entries, dataSize).map([&](Head &&head) {
        tables.head = std::move(head);
        return std::move(tables);
    });
}

QString ResWriterData::save(Notes notes)
{
    const auto tables = createTables();
    if (!tables) {
        if (tables.error() == BuildFault::TooLarge)
            return QStringLiteral("more than 4 GiB");
        QString text = QString::fromLatin1(m_className) + QStringLiteral("::hash: error, hash table full");
        if (notes == Notes::Print)
            std::fprintf(stderr, "%s\n", qPrintable(text));
        return text;
    }
    if (fileName.isEmpty())
        return QStringLiteral("no file name");
    auto file = platform::FileReplacement::begin(fileName, kMode);
    if (!file)
        return file.error().text();
    if (tables->head.startBlockMoved && notes == Notes::Print)
        std::fputs("aligning start block\n", stderr); // the hash table behind it is aligned with it

    BufferedWriter writer(*file);
    auto written = writer.write(tables->head.bytes);
    for (auto resource = tables->sorted.begin(); written && resource != tables->sorted.end(); ++resource) {
        written = writer.write(QByteArrayView(blockHeader(quint32((*resource)->data.size()))));
        if (written)
            written = writer.write((*resource)->data);
    }
    written = written.and_then([&] { return writer.flush(); }).and_then([&] { return file->sync(); }).and_then([&] {
        return file->publish();
    });
    return written ? QString() : written.error().text();
}

}
