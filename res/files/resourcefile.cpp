#include "res/files/resourcefile.h"

#include "res/format/resid.h"

#include <algorithm>
#include <array>

namespace res {

namespace {

// Reading for so many names is estimated to cost what touching the tables of a mapping costs.
constexpr int kReadNames = 16;

// Nearly every chain is shorter. In a long one, many texts would have to be read: there a mapping is faster.
constexpr std::size_t kSlotsRead = 16;
constexpr qsizetype kLongestIdRead = 255;

enum class Answer { Yes, No, Unclear };

// Whether the identifier begins with the text at an offset in the ID table.
Answer isAt(const platform::Fd &fd, const FileTables &tables, quint32 idOffset, QByteArrayView id)
{
    const quint64 position = quint64{tables.idTable} + idOffset;
    if (position > tables.fileSize)
        return Answer::No;
    std::array<std::byte, kLongestIdRead + 1> buffer;
    const std::size_t wanted = std::min(tables.fileSize - position, quint64(id.size()) + 1);
    const Bytes text = readAt(fd, position, std::span(buffer).first(wanted));
    if (text.size() < wanted)
        return Answer::Unclear;
    return beginsWithStored(id, text) ? Answer::Yes : Answer::No;
}

struct Reading {
    Answer answer = Answer::Unclear;
    quint32 dataOffset = 0;
};

// The beginning of the walk that ResIndex::find() makes; unclear when it is longer, or the file does not give what its
// tables promise.
Reading lookUp(const platform::Fd &fd, const FileTables &tables, QByteArrayView id)
{
    const quint32 hash = hashVal(id);
    if (hash == kHashOfNothing || tables.slotCount == 0)
        return {Answer::No};
    if (id.size() > kLongestIdRead)
        return {};
    const quint32 home = hash % tables.slotCount;
    const std::size_t count = std::min<std::size_t>(kSlotsRead, tables.slotCount - home);
    std::array<std::byte, kSlotsRead * entry::resourcesSize> buffer;
    Bytes slots = readAt(fd, tables.slotAt(home), std::span(buffer).first(count * entry::resourcesSize));
    for (; slots.size() >= entry::resourcesSize; slots = slots.subspan(entry::resourcesSize)) {
        const quint32 idOffset = loadWord(slots.data() + entry::id);
        if (idOffset == kNoId)
            return {Answer::No};
        if (loadWord(slots.data() + entry::hash) != hash)
            continue;
        const Answer answer = isAt(fd, tables, idOffset, id);
        if (answer != Answer::No)
            return {answer, loadWord(slots.data() + entry::dataBlock)};
    }
    return {};
}

}

tl::expected<ResourceFile, LoadError> ResourceFile::open(const QString &path)
{
    return openFile(path).and_then([](platform::Fd &&fd) {
        return tablesOf(fd, Version::Resources).map([&](const FileTables &tables) {
            return ResourceFile(std::move(fd), tables);
        });
    });
}

std::optional<quint32> ResourceFile::dataOffsetOf(QByteArrayView id)
{
    if (m_read < kReadNames && m_fd) {
        ++m_read;
        const Reading read = lookUp(m_fd, m_tables, id);
        if (read.answer != Answer::Unclear)
            return read.answer == Answer::Yes ? std::optional(read.dataOffset) : std::nullopt;
    }
    const ResIndex *tables = index();
    const auto slot = tables ? tables->find(id) : std::nullopt;
    return slot ? std::optional(tables->dataOffsetAt(*slot)) : std::nullopt;
}

const ResIndex *ResourceFile::index()
{
    if (!m_mapped && m_fd) {
        if (auto mapped = MappedFile::map(m_fd, m_tables))
            m_mapped.emplace(std::move(*mapped));
        m_fd.reset();
    }
    return m_mapped ? &m_mapped->index() : nullptr;
}

}
