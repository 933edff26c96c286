#include "res/files/filewriter.h"

#include "platform/system/filereplace.h"

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

QString writeFile(const QString &fileName, const Head &head, std::span<const QByteArrayView> data)
{
    if (fileName.isEmpty())
        return QStringLiteral("no file name");
    auto file = platform::FileReplacement::begin(fileName, kMode);
    if (!file)
        return file.error().text();
    BufferedWriter writer(*file);
    auto written = writer.write(head.bytes);
    for (auto block = data.begin(); written && block != data.end(); ++block) {
        written = writer.write(QByteArrayView(blockHeader(quint32(block->size()))));
        if (written)
            written = writer.write(*block);
    }
    written = written.and_then([&] { return writer.flush(); }).and_then([&] { return file->sync(); }).and_then([&] {
        return file->publish();
    });
    return written ? QString() : written.error().text();
}

QString describe(BuildFault fault, const char *className)
{
    if (fault == BuildFault::TooLarge)
        return QStringLiteral("more than 4 GiB");
    return QString::fromLatin1(className) + QStringLiteral("::hash: error, hash table full");
}

void noteAlignment(const Head &head, Notes notes)
{
    if (head.startBlockMoved)
        note(QStringLiteral("aligning start block"), notes); // the hash table behind it is aligned with it
}

void note(const QString &line, Notes notes)
{
    if (notes == Notes::Print)
        std::fprintf(stderr, "%s\n", qPrintable(line));
}

}
