#include "res/files/mappedfile.h"

#include "platform/system/fd.h"

#include <QFile>
#include <fcntl.h>

namespace res {

tl::expected<platform::Mapping, LoadError> mapFile(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    if (name.isEmpty() || name.contains('\0'))
        return tl::make_unexpected(LoadError{LoadError::Name, {"open", EINVAL}});
    const auto fd = platform::Fd::open(name.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY);
    if (!fd)
        return tl::make_unexpected(LoadError{LoadError::Open, fd.error()});
    return platform::Mapping::readOnly(fd->get()).map_error([](const platform::SysError &error) {
        return LoadError{LoadError::Map, error};
    });
}

tl::expected<MappedFile, LoadError> MappedFile::open(const QString &path, Version version)
{
    auto mapping = mapFile(path);
    if (!mapping)
        return tl::make_unexpected(mapping.error());
    auto index = ResIndex::parse(mapping->bytes(), version);
    if (!index)
        return tl::make_unexpected(LoadError{LoadError::Format, {}, index.error()});
    return MappedFile(std::move(*mapping), std::move(*index));
}

}
