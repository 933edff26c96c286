#include "res/files/reswriterdata.h"

#include <algorithm>

namespace res {

tl::expected<ResWriterData::Tables, BuildFault> ResWriterData::createTables() const
{
    Tables tables;
    tables.sorted.reserve(m_resources.size());
    // From the last to the first: of equal identifiers the one that was added last is found.
    std::transform(m_resources.rbegin(), m_resources.rend(), std::back_inserter(tables.sorted),
        [](const Resource &resource) { return &resource; });
    std::stable_sort(
        tables.sorted.begin(), tables.sorted.end(), [](const Resource *a, const Resource *b) { return a->id < b->id; });

    std::vector<Entry> entries;
    entries.reserve(tables.sorted.size());
    quint64 dataSize = 0;
    for (const Resource *resource : tables.sorted) {
        entries.push_back({resource->id, {quint32(dataSize)}}); // a sum that does not fit is refused below
        dataSize += datablock::header + quint64(resource->data.size());
    }
    return buildHead(Version::Resources, entries, dataSize).map([&](Head &&head) {
        tables.head = std::move(head);
        return std::move(tables);
    });
}

QString ResWriterData::save(Notes notes)
{
    const auto tables = createTables();
    if (!tables) {
        QString text = describe(tables.error(), m_className);
        if (tables.error() == BuildFault::TableFull)
            note(text, notes);
        return text;
    }
    if (fileName.isEmpty())
        return QStringLiteral("no file name");
    noteAlignment(tables->head, notes);
    std::vector<QByteArrayView> data;
    data.reserve(tables->sorted.size());
    for (const Resource *resource : tables->sorted)
        data.emplace_back(resource->data);
    return writeFile(fileName, tables->head, data);
}

}
