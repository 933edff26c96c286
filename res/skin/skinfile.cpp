#include "res/skin/skinfile.h"

#include "res/files/mappedfile.h"

#include <QFile>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <new>
#include <unistd.h>

namespace res {

using platform::Mapping;

namespace {

void say(const QByteArray &line)
{
    if (!line.isEmpty())
        std::fprintf(stderr, "%s\n", line.constData());
}

struct OpenSkin {
    platform::Fd fd;
    Mapping mapping;
};

tl::expected<OpenSkin, QByteArray> mapped(const QString &path)
{
    if (path.isEmpty())
        return tl::make_unexpected(QByteArray("File Name is NULL"));
    auto fd = openFile(path);
    if (!fd)
        return tl::make_unexpected("could not open " + QFile::encodeName(path));
    if (::lseek(fd->get(), 0, SEEK_END) < 0)
        return tl::make_unexpected(QByteArray()); // a FIFO or a terminal; no message
    auto mapping = Mapping::readOnly(fd->get());
    if (!mapping || mapping->bytes().empty())
        return tl::make_unexpected(QByteArray("i/o error"));
    return OpenSkin{std::move(*fd), std::move(*mapping)};
}

// The bytes in front of the image; all of them when a table stands behind it.
std::size_t frontSize(Bytes file, const ResIndex &index)
{
    const quint64 hashTableEnd = index.hashTable() + quint64{index.slotCount()} * entrySize(Version::Skin);
    const quint64 end =
        std::max({quint64{index.idTable()}, hashTableEnd, quint64{index.startBlock()} + startblock::size});
    return end <= index.data() ? index.data() : file.size();
}

// Null when the file has become shorter, or when there is no memory.
std::unique_ptr<std::byte[]> readFront(const platform::Fd &fd, std::size_t size)
{
    std::unique_ptr<std::byte[]> front(new (std::nothrow) std::byte[size]);
    for (std::size_t done = 0; front && done < size;) {
        const ssize_t got = ::pread(fd.get(), front.get() + done, size - done, off_t(done));
        if (got == 0 || (got < 0 && errno != EINTR))
            return nullptr;
        done += std::size_t(std::max<ssize_t>(got, 0));
    }
    return front;
}

}

bool isMisaligned(Bytes file)
{
    const auto start = FileTables::startBlockOf(file, Version::Skin);
    return start && quint64{*start} + startblock::size <= file.size() && *start % startblock::alignment != 0;
}

tl::expected<ResIndex, QByteArray> parseSkin(Bytes file)
{
    return ResIndex::parse(file, Version::Skin).map_error([](FormatFault fault) -> QByteArray {
        switch (fault) {
        case FormatFault::Magic:
            return "header bytes don't match";
        case FormatFault::StartBlockOffset:
            return "start block offset too large";
        case FormatFault::StartBlockCheck:
            return "start block check bytes not correct";
        case FormatFault::Tables:
            break;
        }
        return "resource data file not valid";
    });
}

tl::expected<QByteArrayView, QByteArray> imageBlock(Bytes file, const ResIndex &index)
{
    const auto block = index.block(0);
    if (block)
        return QByteArrayView(block->data(), qsizetype(block->size()));
    if (quint64{index.data()} + kWord <= file.size()) {
        const quint32 got = loadWord(file.data() + index.data() + datablock::check);
        if (got != kDataBlockCheck)
            return tl::make_unexpected(QByteArray("error reading resource data (data block check failed, got ")
                + QByteArray::number(got, 16).rightJustified(8, '0') + ", expected "
                + QByteArray::number(kDataBlockCheck, 16) + ')');
    }
    return tl::make_unexpected(QByteArray("error reading resource data (resource too large)"));
}

std::optional<SkinFile> SkinFile::load(const QString &path)
{
    constexpr std::size_t kMaxFront = std::size_t{64} << 20; // names and rectangles of two million pictures
    auto open = mapped(path);
    if (!open) {
        say(open.error());
        return {};
    }
    const Bytes file = open->mapping.bytes();
    if (isMisaligned(file))
        say("start block not aligned properly"); // and goes on: readers take words from any place
    auto index = parseSkin(file);
    if (!index) {
        say(index.error());
        return {};
    }
    const auto image = imageBlock(file, *index);
    if (!image) {
        say(image.error());
        return {};
    }
    const std::size_t size = frontSize(file, *index);
    if (size > kMaxFront) {
        say("resource data file not valid");
        return {};
    }
    auto front = readFront(open->fd, size);
    index = front ? parseSkin(Bytes(front.get(), size)) : tl::make_unexpected(QByteArray("i/o error"));
    if (!index) { // somebody writes to it
        say(index.error());
        return {};
    }
    return SkinFile(std::move(open->mapping), std::move(front), std::move(*index), *image);
}

}
