#include "res/files/mappedfile.h"

#include <QFile>
#include <algorithm>
#include <array>
#include <fcntl.h>
#include <unistd.h>

namespace res {

namespace {

tl::expected<platform::Mapping, LoadError> map(const platform::Fd &fd)
{
    return platform::Mapping::readOnly(fd.get()).map_error([](const platform::SysError &error) {
        return LoadError{LoadError::Map, error};
    });
}

// As much of `buffer` as the file has from there on.
Bytes readAt(const platform::Fd &fd, quint32 offset, std::span<std::byte> buffer)
{
    const ssize_t got = ::pread(fd.get(), buffer.data(), buffer.size(), off_t{offset});
    return buffer.first(size_t(std::max<ssize_t>(got, 0)));
}

tl::expected<ResIndex, FormatFault> indexOf(const platform::Fd &fd, Bytes file, Version version)
{
    std::array<std::byte, size_t(kFixedHeaderSize)> header;
    std::array<std::byte, startblock::size> block;
    return ResIndex::startBlockOf(readAt(fd, 0, header), version).and_then([&](quint32 start) {
        return ResIndex::parse(file, start, readAt(fd, start, block), version);
    });
}

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
    const auto fd = openFile(path);
    if (!fd)
        return tl::make_unexpected(fd.error());
    return map(*fd);
}

tl::expected<MappedFile, LoadError> MappedFile::open(const QString &path, Version version)
{
    const auto fd = openFile(path);
    if (!fd)
        return tl::make_unexpected(fd.error());
    auto mapping = map(*fd);
    if (!mapping)
        return tl::make_unexpected(mapping.error());
    auto index = indexOf(*fd, mapping->bytes(), version);
    if (!index)
        return tl::make_unexpected(LoadError{LoadError::Format, {}, index.error()});
    return MappedFile(std::move(*mapping), std::move(*index));
}

}
