#include "res/files/mappedfile.h"

#include <QFile>
#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace res {

namespace {

LoadError mapError(const platform::SysError &error) { return {LoadError::Map, error}; }
LoadError formatError(FormatFault fault) { return {LoadError::Format, {}, fault}; }

}

Bytes readAt(const platform::Fd &fd, quint64 offset, std::span<std::byte> buffer)
{
    const ssize_t got = ::pread(fd.get(), buffer.data(), buffer.size(), off_t(offset));
    return buffer.first(size_t(std::max<ssize_t>(got, 0)));
}

tl::expected<FileTables, LoadError> tablesOf(const platform::Fd &fd, Version version)
{
    struct stat status = {};
    if (::fstat(fd.get(), &status) != 0)
        return tl::make_unexpected(mapError({"fstat", errno}));
    if (!S_ISREG(status.st_mode))
        return tl::make_unexpected(mapError({"mmap", ENODEV}));
    std::array<std::byte, size_t(kFixedHeaderSize)> header;
    std::array<std::byte, startblock::size> block;
    return FileTables::startBlockOf(readAt(fd, 0, header), version)
        .and_then([&](quint32 start) {
            return FileTables::parse(quint64(status.st_size), start, readAt(fd, start, block), version);
        })
        .map_error(formatError);
}

tl::expected<platform::Fd, LoadError> openFile(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    if (name.isEmpty() || name.contains('\0'))
        return tl::make_unexpected(LoadError{LoadError::Name, {"open", EINVAL}});
    return platform::Fd::open(name.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY)
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
    const auto fd = openFile(path);
    if (!fd)
        return tl::make_unexpected(fd.error());
    return tablesOf(*fd, version).and_then([&](const FileTables &tables) {
        return map(*fd, tables).map_error(mapError);
    });
}

}
