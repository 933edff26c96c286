// Any bytes as a resource file and as a skin file.
#include "res/format/nameindex.h"
#include "res/format/rescheck.h"
#include "res/format/resid.h"
#include "tests/fuzz/require.h"

#include <cstdint>

namespace {

using namespace res;

// What the format says, in the plainest way: slot by slot from the one that the hash names.
std::optional<quint32> walk(const ResIndex &index, Bytes file, QByteArrayView id)
{
    const quint32 hash = hashVal(id);
    if (hash == kHashOfNothing)
        return {};
    for (quint32 step = 0; step < index.slotCount(); ++step) {
        const auto slot = quint32((quint64{hash % index.slotCount()} + step) % index.slotCount());
        if (index.idOffsetAt(slot) == kNoId)
            return {};
        const quint64 start = quint64{index.idTable()} + index.idOffsetAt(slot);
        if (index.hashAt(slot) != hash || start > file.size())
            continue;
        quint64 end = start;
        while (end < file.size() && file[end] != std::byte{kIdEnd})
            ++end;
        const QByteArrayView text(file.data() + start, qsizetype(end - start));
        if (id.startsWith(text))
            return slot;
    }
    return {};
}

void look(const ResIndex &index, Bytes file, const NameIndex &names, QByteArrayView id)
{
    const auto slot = walk(index, file, id);
    require(index.find(id) == slot);
    if (index.slotCount() > 0 && hashVal(id) != kHashOfNothing)
        require(names.find(index, hashVal(id), id) == slot);
}

void visit(Bytes file, Version version)
{
    const auto index = ResIndex::parse(file, version);
    const auto flaw = check(file, version);
    if (!index) {
        require(flaw.has_value());
        return;
    }
    const NameIndex names(*index);
    for (quint32 slot = 0; slot < std::min(index->slotCount(), 64U); ++slot) {
        const QByteArray id = index->idAt(slot).toByteArray();
        look(*index, file, names, id);
        look(*index, file, names, QByteArray(id + "x"));
        if (index->idOffsetAt(slot) == kNoId)
            continue;
        if (version == Version::Skin)
            std::ignore = index->rectAt(slot);
        else if (const auto block = index->block(index->dataOffsetAt(slot)); block && !block->empty())
            require(&block->back() <= &file.back()); // and the sanitizer sees the rest
        // A file without a flaw has every identifier where it is looked for.
        require(flaw || index->find(id) == slot);
    }
    look(*index, file, names, "");
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const Bytes file = std::as_bytes(std::span(data, size));
    visit(file, Version::Resources);
    visit(file, Version::Skin);
    return 0;
}
