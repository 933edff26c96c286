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

template <typename Items, typename Item> auto position(Items &items, QString Item::*name, QStringView wanted)
{
    return std::ranges::lower_bound(
        items, wanted, std::less<>(), [name](const Item &i) { return QStringView(i.*name); });
}

}

Line parseLine(QStringView line)
{
    line = line.trimmed();
    if (line.isEmpty())
        return {};
    if (line.front() == u'[') {
        line = line.sliced(1);
        if (line.endsWith(u']'))
            line.chop(1);
        return {Line::Kind::Header, line, {}};
    }
    const qsizetype equals = line.indexOf(u'=');
    if (equals < 0)
        return {Line::Kind::Stray, line, {}};
    return {Line::Kind::Entry, line.first(equals).trimmed(), line.sliced(equals + 1).trimmed()};
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
            inside = line.name == group;
            // Promised: a second header of the same name discards what stood under the first.
            if (inside)
                answer = {true, {}};
        } else if (inside && line.name == key) {
            answer.value = line.value;
        }
    }
    return answer;
}

const Entry *Group::find(QStringView key) const
{
    const auto at = position(entries, &Entry::key, key);
    return at != entries.end() && at->key == key ? &*at : nullptr;
}

void Group::set(const QString &key, const QString &value)
{
    const auto at = position(entries, &Entry::key, key);
    if (at != entries.end() && at->key == key)
        at->value = value;
    else
        entries.insert(at, {key, value});
}

bool Group::remove(QStringView key)
{
    const auto at = position(entries, &Entry::key, key);
    if (at == entries.end() || at->key != key)
        return false;
    entries.erase(at);
    return true;
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
            m_groups.push_back({viewed(line.name), {}});
        } else {
            entries.push_back({viewed(line.name), viewed(line.value)});
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
    const auto at = position(m_groups, &Group::name, name);
    return at != m_groups.end() && at->name == name ? &*at : nullptr;
}

Group &ConfigText::ensure(const QString &name)
{
    const auto at = position(m_groups, &Group::name, name);
    if (at != m_groups.end() && at->name == name)
        return *at;
    return *m_groups.insert(at, {name, {}});
}

void ConfigText::remove(QStringView name)
{
    const auto at = position(m_groups, &Group::name, name);
    if (at != m_groups.end() && at->name == name)
        m_groups.erase(at);
}

}
