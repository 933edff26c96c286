// A resource file that is being asked for names.
#pragma once

#include "res/files/mappedfile.h"

#include <memory>
#include <optional>
#include <vector>

namespace res {

// A small file is read. Of another one the first few names, and small data of theirs, are looked up by reading what
// they take from it, and it is mapped when somebody wants more: to map a file and touch its tables costs as much as
// some dozen system calls, and a program often asks for one name. What was read is believed as little as a mapping.
//
// Until it is mapped the file is held open, so that it stays the one that was loaded when its name gets another. Of one
// that changes its size meanwhile, there are no data but those that were read. All data stay where they are for as long
// as this object lives.
class ResourceFile {
public:
    static tl::expected<ResourceFile, LoadError> open(const QString &path);

    // Counts from the first data block; empty when the identifier (Latin-1) is not there. As ResIndex::find().
    [[nodiscard]] std::optional<quint32> dataOffsetOf(QByteArrayView id);

    // The data of the block at an offset from the first one; empty when there are none. As ResIndex::block().
    [[nodiscard]] std::optional<Bytes> block(quint32 offset);

    // Null when there is no memory for it, or the file has another size by now.
    [[nodiscard]] const ResIndex *index();

private:
    struct Block {
        quint32 offset = 0;
        std::unique_ptr<std::byte[]> data;
        std::size_t size = 0;
    };

    ResourceFile(FileFront front, const FileTables &tables);
    [[nodiscard]] std::optional<Bytes> readBlock(quint32 offset);
    // Whether one more question may be answered by reading; counts it.
    [[nodiscard]] bool mayRead();

    FileFront m_front; // closed when nothing more is read
    FileTables m_tables;
    std::optional<ResIndex> m_small; // of what is in memory as a whole
    std::vector<Block> m_blocks; // that were read; few
    std::optional<MappedFile> m_mapped;
    int m_questions = 0; // that were answered by reading
};

}
