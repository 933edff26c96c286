#include "appbase/config/configtext.h"

#include <algorithm>
#include <functional>

namespace config {

namespace {

QString viewed(QStringView text) { return QString::fromRawData(text.data(), text.size()); }

// Sorts by name; of equal names the one that was read last stays.
template <typename Item> void sortKeepingLast(std::vector<Item> &items, QString Item::*name)
{
    const auto less = [name](const Item &a, const Item &b) { return QStringView(a.*name) < QStringView(b.*name); };
    // Files that we have written are in order already.
    const auto outOfOrder = std::adjacent_find(items.begin(), items.end(), std::not_fn(less));
    if (outOfOrder == items.end())
        return;
    std::stable_sort(items.begin(), items.end(), less);
    const auto same = [name](const Item &a, const Item &b) { return a.*name == b.*name; };
    const auto kept = std::unique(items.rbegin(), items.rend(), same);
    items.erase(items.begin(), kept.base());
}

struct Place {
    qsizetype index = 0; // of the item, or of the one it would stand before
    bool found = false;
};

template <typename Item> Place search(const std::vector<Item> &items, QString Item::*name, QStringView wanted)
{
    qsizetype low = 0;
    qsizetype high = qsizetype(items.size());
    while (low < high) {
        const qsizetype middle = (low + high) / 2;
        const int order = QStringView(items[size_t(middle)].*name).compare(wanted);
        if (order == 0)
            return {middle, true};
        if (order < 0)
            low = middle + 1;
        else
            high = middle;
    }
    return {low, false};
}

}

Line parseLine(QStringView line)
{
    line = stripped(line);
    if (line.isEmpty())
        return {};
    if (line.front() == u'[') {
        line = line.sliced(1);
        if (line.endsWith(u']'))
            line.chop(1);
        return {Line::Kind::Header, line, {}};
    }
    const auto equals = std::find(line.begin(), line.end(), u'='); // keys are short: this beats a vector search
    if (equals == line.end())
        return {Line::Kind::Stray, line, {}};
    return {Line::Kind::Entry, {line.begin(), equals}, {equals + 1, line.end()}};
}

QStringView LineReader::takeLine()
{
    const qsizetype end = m_rest.indexOf(u'\n');
    const QStringView line = end < 0 ? m_rest : m_rest.first(end);
    m_rest = end < 0 ? QStringView() : m_rest.sliced(end + 1);
    ++m_number;
    return line;
}

bool LineReader::next()
{
    while (!m_rest.isEmpty()) {
        m_line = parseLine(takeLine());
        if (m_line.kind == Line::Kind::Blank)
            continue;
        m_anyHeader |= m_line.kind == Line::Kind::Header;
        // Promised: a stray line ends the reading of the file, what stands before it is kept.
        if (!m_anyHeader || m_line.kind == Line::Kind::Stray) {
            m_stop = m_anyHeader ? Stop::NoEqualsSign : Stop::EntryBeforeHeader;
            m_rest = {};
            return false;
        }
        return true;
    }
    return false;
}

Answer lookUp(QStringView text, QStringView group, QStringView key)
{
    Answer answer;
    bool inside = false;
    LineReader reader(text);
    while (reader.next()) {
        const Line &line = reader.line();
        if (line.kind == Line::Kind::Header) {
            inside = line.left == group;
            // Promised: a second header of the same name discards what stood under the first.
            if (inside)
                answer = {true, {}};
        } else if (inside && line.key() == key) {
            answer.value = line.value();
        }
    }
    return answer;
}

const Entry *Group::find(QStringView key) const
{
    const Place place = search(entries, &Entry::key, key);
    return place.found ? &entries[size_t(place.index)] : nullptr;
}

void Group::set(const QString &key, const QString &value)
{
    const Place place = search(entries, &Entry::key, key);
    if (place.found)
        entries[size_t(place.index)].value = value;
    else
        entries.insert(entries.begin() + place.index, {key, value});
}

void Group::remove(QStringView key)
{
    const Place place = search(entries, &Entry::key, key);
    if (place.found)
        entries.erase(entries.begin() + place.index);
}

ConfigText::ConfigText(const QString &text) : m_text(text)
{
    std::vector<Entry> entries;
    const auto endGroup = [&] {
        if (m_groups.empty())
            return;
        sortKeepingLast(entries, &Entry::key);
        m_groups.back().entries.assign(std::move_iterator(entries.begin()), std::move_iterator(entries.end()));
        entries.clear();
    };
    LineReader reader(m_text);
    while (reader.next()) {
        const Line &line = reader.line();
        if (line.kind == Line::Kind::Header) {
            endGroup();
            m_groups.push_back({viewed(line.left), {}});
        } else {
            entries.push_back({viewed(line.key()), viewed(line.value())});
        }
    }
    endGroup();
    // Promised: a second header of the same name discards what stood under the first.
    sortKeepingLast(m_groups, &Group::name);
}

QByteArray ConfigText::format() const
{
    QString text;
    text.reserve(m_text.size() + 256);
    for (const Group &group : m_groups) {
        text += u'[' % group.name % u"]\n";
        for (const Entry &entry : group.entries)
            text += entry.key % u" = " % entry.value % u'\n';
    }
    return text.toUtf8();
}

Group *ConfigText::find(QStringView name)
{
    const Place place = search(m_groups, &Group::name, name);
    return place.found ? &m_groups[size_t(place.index)] : nullptr;
}

Group &ConfigText::ensure(const QString &name)
{
    const Place place = search(m_groups, &Group::name, name);
    if (!place.found)
        m_groups.insert(m_groups.begin() + place.index, {name, {}});
    return m_groups[size_t(place.index)];
}

void ConfigText::remove(QStringView name)
{
    const Place place = search(m_groups, &Group::name, name);
    if (place.found)
        m_groups.erase(m_groups.begin() + place.index);
}

}
