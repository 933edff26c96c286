#include "res/files/mappedfile.h"

#include <QByteArrayView>
#include <QStringConverter>
#include <QVarLengthArray>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace res {

namespace {

constexpr qsizetype kUsualName = 512; // bytes; a longer one is allocated

LoadError mapError(const platform::SysError &error) { return {LoadError::Map, error}; }
LoadError formatError(FormatFault fault) { return {LoadError::Format, {}, fault}; }

tl::expected<quint64, LoadError> sizeOf(const FileFront &front)
{
    if (const auto whole = front.whole())
        return whole->size();
    struct stat status = {};
    if (::fstat(front.fd().get(), &status) != 0)
        return tl::make_unexpected(mapError({"fstat", errno}));
    if (!S_ISREG(status.st_mode))
        return tl::make_unexpected(mapError({"mmap", ENODEV}));
    return quint64(status.st_size);
}

}

tl::expected<FileTables, LoadError> tablesOf(const FileFront &front, Version version)
{
    const auto size = sizeOf(front);
    if (!size)
        return tl::make_unexpected(size.error());
    std::array<std::byte, size_t(kFixedHeaderSize)> header;
    std::array<std::byte, startblock::size> block;
    return FileTables::startBlockOf(front.at(0, header), version)
        .and_then([&](quint32 start) { return FileTables::parse(*size, start, front.at(start, block), version); })
        .map_error(formatError);
}

tl::expected<platform::Fd, LoadError> openFile(const QString &path)
{
    // As QFile::encodeName() on Unix, without its allocation.
    QStringEncoder encoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    QVarLengthArray<char, kUsualName> name(encoder.requiredSpace(path.size()) + 1);
    char *end = encoder.appendToBuffer(name.data(), path);
    if (path.isEmpty() || QByteArrayView(name.data(), end).contains('\0'))
        return tl::make_unexpected(LoadError{LoadError::Name, {"open", EINVAL}});
    *end = '\0';
    return platform::Fd::open(name.data(), O_RDONLY | O_NONBLOCK | O_NOCTTY)
        .map_error([](const platform::SysError &error) {
            return LoadError{LoadError::Open, error};
        });
}

tl::expected<platform::Mapping, LoadError> mapFile(const QString &path)
{
    return openFile(path).and_then(
        [](const platform::Fd &fd) { return platform::Mapping::readOnly(fd.get()).map_error(mapError); });
}

platform::Result<MappedFile> MappedFile::map(const platform::Fd &fd, const FileTables &tables)
{
    auto mapping = platform::Mapping::readOnly(fd.get());
    if (!mapping)
        return tl::make_unexpected(mapping.error());
    if (mapping->bytes().size() != tables.fileSize)
        return platform::failed("mmap", ESTALE);
    ResIndex index(mapping->bytes(), tables);
    return MappedFile(std::move(*mapping), std::move(index));
}

tl::expected<MappedFile, LoadError> MappedFile::open(const QString &path, Version version)
{
    return openFile(path).and_then([&](platform::Fd &&fd) {
        const FileFront front(std::move(fd));
        return tablesOf(front, version).and_then([&](const FileTables &tables) {
            return map(front.fd(), tables).map_error(mapError);
        });
    });
}

}
