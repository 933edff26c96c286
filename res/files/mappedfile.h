// A resource or skin file in memory.
#pragma once

#include "platform/system/mapping.h"
#include "platform/tyxexport.h"
#include "res/files/filefront.h"

#include <QString>

namespace res {

// How far the loading came, and why it stopped there.
struct LoadError {
    enum Step { Name, Open, Map, Format };

    Step step = Name;
    platform::SysError system; // of Open and Map
    FormatFault format{}; // of Format
};

// Mapped read-only for as long as this object lives; what it hands out points into the mapping. A file that is replaced
// meanwhile stays mapped as it was; one that somebody else cuts short kills who reads behind its new end (SIGBUS),
// which is why our writers never do.
class MappedFile {
public:
    // ENODEV for what is no regular file; a FIFO is not waited for.
    TYX_EXPORT static tl::expected<MappedFile, LoadError> open(const QString &path, Version version);
    // ESTALE when the file has not the size any more that its tables were held against.
    static platform::Result<MappedFile> map(const platform::Fd &fd, const FileTables &tables);

    [[nodiscard]] Bytes bytes() const { return m_mapping.bytes(); }
    [[nodiscard]] const ResIndex &index() const { return m_index; }

private:
    MappedFile(platform::Mapping mapping, ResIndex index) : m_mapping(std::move(mapping)), m_index(std::move(index)) { }

    platform::Mapping m_mapping;
    ResIndex m_index;
};

// For reading, without waiting for a FIFO; closed when a program is started.
tl::expected<platform::Fd, LoadError> openFile(const QString &path);

// Where everything is in a file, by reading a few bytes of it. The fault is one of Map or Format.
tl::expected<FileTables, LoadError> tablesOf(const FileFront &front, Version version);

// The bytes of any file, for who wants to look at one that does not load.
TYX_EXPORT tl::expected<platform::Mapping, LoadError> mapFile(const QString &path);

}
