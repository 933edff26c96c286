#include "res/files/resourcefile.h"

#include "res/format/resid.h"

#include <algorithm>
#include <array>

namespace res {

namespace {

// Reading for so many questions is estimated to cost what a mapping and touching its tables cost.
constexpr int kQuestionsRead = 16;

// Nearly every chain is shorter. In a long one, many texts would have to be read: there a mapping is faster.
constexpr std::size_t kSlotsRead = 16;
constexpr qsizetype kLongestIdRead = 255;

// Data that fit into a page with the header of their block are read: most icons do.
constexpr std::size_t kBlockRead = 4096;

enum class Answer { Yes, No, Unclear };

// Whether the identifier begins with the text at an offset in the ID table.
Answer isAt(const FileFront &front, const FileTables &tables, quint32 idOffset, QByteArrayView id)
{
    const quint64 position = quint64{tables.idTable} + idOffset;
    if (position > tables.fileSize)
        return Answer::No;
    std::array<std::byte, kLongestIdRead + 1> buffer;
    const auto wanted = static_cast<std::size_t>(std::min(tables.fileSize - position, quint64(id.size()) + 1));
    const Bytes text = front.at(position, std::span(buffer).first(wanted));
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
Reading lookUp(const FileFront &front, const FileTables &tables, QByteArrayView id)
{
    const quint32 hash = hashVal(id);
    if (hash == kHashOfNothing || tables.slotCount == 0)
        return {Answer::No};
    if (id.size() > kLongestIdRead)
        return {};
    const quint32 home = hash % tables.slotCount;
    const std::size_t count = std::min<std::size_t>(kSlotsRead, tables.slotCount - home);
    std::array<std::byte, kSlotsRead * entry::resourcesSize> buffer;
    Bytes slots = front.at(tables.slotAt(home), std::span(buffer).first(count * entry::resourcesSize));
    for (; slots.size() >= entry::resourcesSize; slots = slots.subspan(entry::resourcesSize)) {
        const quint32 idOffset = loadWord(slots.data() + entry::id);
        if (idOffset == kNoId)
            return {Answer::No};
        if (loadWord(slots.data() + entry::hash) != hash)
            continue;
        const Answer answer = isAt(front, tables, idOffset, id);
        if (answer != Answer::No)
            return {answer, loadWord(slots.data() + entry::dataBlock)};
    }
    return {};
}

}

tl::expected<ResourceFile, LoadError> ResourceFile::open(const QString &path)
{
    return openFile(path).and_then([](platform::Fd &&fd) {
        FileFront front(std::move(fd));
        return tablesOf(front, Version::Resources).map([&](const FileTables &tables) {
            return ResourceFile(std::move(front), tables);
        });
    });
}

ResourceFile::ResourceFile(FileFront front, const FileTables &tables) : m_front(std::move(front)), m_tables(tables)
{
    if (const auto whole = m_front.whole()) {
        m_small.emplace(*whole, tables);
        m_front.close();
    }
}

bool ResourceFile::mayRead() { return m_front.fd() && m_questions++ < kQuestionsRead; }

std::optional<quint32> ResourceFile::dataOffsetOf(QByteArrayView id)
{
    if (mayRead()) {
        const Reading read = lookUp(m_front, m_tables, id);
        if (read.answer != Answer::Unclear)
            return read.answer == Answer::Yes ? std::optional(read.dataOffset) : std::nullopt;
    }
    const ResIndex *tables = index();
    const auto slot = tables ? tables->find(id) : std::nullopt;
    return slot ? std::optional(tables->dataOffsetAt(*slot)) : std::nullopt;
}

std::optional<Bytes> ResourceFile::block(quint32 offset)
{
    const auto known = std::ranges::find(m_blocks, offset, &Block::offset);
    if (known != m_blocks.end())
        return Bytes(known->data.get(), known->size);
    if (mayRead()) {
        if (const auto read = readBlock(offset))
            return read;
    }
    const ResIndex *tables = index();
    const auto mapped = tables ? tables->block(offset) : tl::make_unexpected(BlockFault::Check);
    return mapped ? std::optional(*mapped) : std::nullopt;
}

// Empty as well when it is too large, or the file does not give what its tables promise.
std::optional<Bytes> ResourceFile::readBlock(quint32 offset)
{
    const quint64 position = quint64{m_tables.data} + offset;
    if (position + datablock::header > m_tables.fileSize)
        return {};
    std::array<std::byte, kBlockRead> buffer;
    const auto wanted = static_cast<std::size_t>(std::min<quint64>(m_tables.fileSize - position, kBlockRead));
    const Bytes block = m_front.at(position, std::span(buffer).first(wanted));
    if (block.size() < datablock::header || loadWord(block.data() + datablock::check) != kDataBlockCheck)
        return {};
    const std::size_t size = loadWord(block.data() + datablock::dataSize);
    if (size > block.size() - datablock::header)
        return {};
    const Bytes data = block.subspan(datablock::header, size);
    if (block.data() != buffer.data())
        return data;
    auto copy = std::make_unique_for_overwrite<std::byte[]>(size);
    std::ranges::copy(data, copy.get());
    m_blocks.push_back({offset, std::move(copy), size});
    return Bytes(m_blocks.back().data.get(), size);
}

const ResIndex *ResourceFile::index()
{
    if (m_small)
        return &*m_small;
    if (!m_mapped && m_front.fd()) {
        if (auto mapped = MappedFile::map(m_front.fd(), m_tables))
            m_mapped.emplace(std::move(*mapped));
        m_front.close();
    }
    return m_mapped ? &m_mapped->index() : nullptr;
}

}
