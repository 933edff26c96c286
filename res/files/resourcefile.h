// A resource file that is being asked for names.
#pragma once

#include "res/files/mappedfile.h"

#include <optional>

namespace res {

// The first few names are looked up by reading what they take from the file, and it is mapped when somebody wants data,
// or goes on asking: to map a file and touch its tables costs as much as some dozen system calls, and a program often
// asks for one name. What was read is believed as little as a mapping.
//
// Until then the file is held open, so that it stays the one that was loaded when its name gets another. Of one
// that changes its size meanwhile, there is no data.
class ResourceFile {
public:
    static tl::expected<ResourceFile, LoadError> open(const QString &path);

    // Counts from the first data block; empty when the identifier (Latin-1) is not there. As ResIndex::find().
    [[nodiscard]] std::optional<quint32> dataOffsetOf(QByteArrayView id);

    // Null when there is no memory for it, or the file has another size by now.
    [[nodiscard]] const ResIndex *index();

private:
    ResourceFile(platform::Fd fd, const FileTables &tables) : m_fd(std::move(fd)), m_tables(tables) { }

    platform::Fd m_fd; // closed when nothing more is read
    FileTables m_tables;
    std::optional<MappedFile> m_mapped;
    int m_read = 0; // how many names were looked up by reading
};

}
