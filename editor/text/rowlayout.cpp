#include "editor/text/rowlayout.h"

#include <limits>

RowLayout::RowLayout(const TextModel &model, const RowRules &rules) : m_model(model), m_breaker(rules) { reset(); }

bool RowLayout::setRules(const RowRules &rules)
{
    const RowRules &old = m_breaker.rules();
    const bool same = old.wrap == rules.wrap && old.limit == RowBreaker::limited(rules.limit)
        && old.anywhere == rules.anywhere && old.tabStop == rules.tabStop && old.echo == rules.echo;
    if (same && RowBreaker::adapted(rules.font) == m_breaker.font())
        return false;
    m_breaker.setRules(rules);
    m_stretches.clear();
    int paragraph = 0;
    m_rows.changeAll([&](Rows &rows) { rows = broken(paragraph++); });
    return true;
}

void RowLayout::reset()
{
    m_stretches.clear();
    m_composition = {};
    m_composing = -1;
    std::vector<Rows> rows;
    rows.reserve(size_t(m_model.paragraphs()));
    for (int i = 0; i < m_model.paragraphs(); ++i)
        rows.push_back(broken(i));
    m_rows.assign(std::move(rows));
}

RowLayout::Damage RowLayout::update(const TextModel::Change &change, int column)
{
    const int first = firstRow(change.paragraph);
    const int before = rows();
    if (change.removed == 1 && change.added == 1) {
        const ParagraphRows old = m_rows.at(change.paragraph).ends;
        const QString &text = m_model.paragraph(change.paragraph);
        const bool plain = !forgetStretches(change.paragraph) && m_breaker.isPlain(text);
        const int kept = int(std::min<qsizetype>(text.size(), old.back().end));
        rebreak(change.paragraph, {column, kept - column});
        const ParagraphRows &now = m_rows.at(change.paragraph).ends;
        if (rows() != before)
            return {first, std::numeric_limits<int>::max()};
        return plain ? differing(old, now, column, first) : Damage{first, first + int(now.size()) - 1};
    }
    m_stretches.clear();
    std::vector<Rows> added;
    added.reserve(size_t(change.added));
    for (int i = 0; i < change.added; ++i)
        added.push_back(broken(change.paragraph + i));
    m_rows.replace(change.paragraph, change.removed, std::move(added));
    const int last = firstRow(change.paragraph + change.added) - 1;
    return {first, rows() == before ? last : std::numeric_limits<int>::max()};
}

// Of one paragraph before and after, with as many rows. Behind the change all columns have moved by as much.
RowLayout::Damage RowLayout::differing(const ParagraphRows &old, const ParagraphRows &now, int column, int first)
{
    qsizetype from = 0;
    while (from + 1 < now.size() && old[from].end == now[from].end && now[from].end <= column)
        ++from;
    const int moved = now.back().end - old.back().end;
    qsizetype to = now.size() - 1;
    while (to > from && now[to - 1].end - old[to - 1].end == moved && now[to - 1].end > column + std::max(moved, 0))
        --to;
    return {first + int(from), first + int(to)};
}

bool RowLayout::forgetStretches(int paragraph)
{
    bool any = false;
    for (const StretchKey &key : m_stretches.keys())
        any |= key.first == paragraph && m_stretches.remove(key);
    return any;
}

void RowLayout::rebreak(int paragraph) { rebreak(paragraph, {0, 0}); }

void RowLayout::rebreak(int paragraph, RowBreaker::Kept kept)
{
    forgetStretches(paragraph);
    const QString text = m_breaker.shown(shownText(paragraph));
    const QStringView changed = QStringView(text).mid(kept.before, text.size() - kept.before - kept.behind);
    m_rows.change(paragraph, 1, [&](Rows &rows) {
        if (rows.inStretches && text.size() >= RowBreaker::kLong && !RowBreaker::mayTurn(changed)
            && !m_breaker.isPlain(text))
            rows = {m_breaker.rowsAgain(text, rows.ends, kept), true};
        else
            rows = broken(paragraph);
    });
}

RowLayout::Rows RowLayout::broken(int paragraph) const
{
    const QString text = shownText(paragraph);
    return {m_breaker.rows(text), m_breaker.isInStretches(text)};
}

bool RowLayout::setComposition(const Composition &composition)
{
    if (composition == m_composition)
        return false;
    const int before = m_composing;
    const TextModel::Place old = m_model.place(m_composition.offset);
    const TextModel::Place place = m_model.place(composition.offset);
    m_composition = composition;
    m_composing = composition.text.isEmpty() ? -1 : place.paragraph;
    if (before >= 0 && before < m_rows.size())
        recompose(before, m_composing == before ? std::min(old.column, place.column) : old.column,
            m_composing == before ? std::max(old.column, place.column) : old.column);
    if (m_composing >= 0 && m_composing != before)
        recompose(m_composing, place.column, place.column);
    return true;
}

// Between these columns something that is not confirmed came or went.
void RowLayout::recompose(int paragraph, int from, int to)
{
    rebreak(paragraph, {from, int(m_model.paragraph(paragraph).size()) - to});
}

bool RowLayout::isComposing(int paragraph) const { return paragraph == m_composing; }

QString RowLayout::shownText(int paragraph) const
{
    const QString &text = m_model.paragraph(paragraph);
    if (!isComposing(paragraph))
        return text;
    return QString(text).insert(m_model.place(m_composition.offset).column, m_composition.text);
}

int RowLayout::textColumn(int paragraph, int shown) const
{
    if (!isComposing(paragraph))
        return shown;
    const int at = m_model.place(m_composition.offset).column;
    return shown <= at ? shown : std::max(at, shown - int(m_composition.text.size()));
}

int RowLayout::shownColumn(int paragraph, int column, bool afterComposition) const
{
    if (!isComposing(paragraph))
        return column;
    const int at = m_model.place(m_composition.offset).column;
    return column > at || (column == at && afterComposition) ? column + int(m_composition.text.size()) : column;
}

RowLayout::Row RowLayout::row(int row) const
{
    const auto found = m_rows.find(std::clamp(row, 0, rows() - 1));
    const ParagraphRows &ends = found.element.ends;
    const int start = found.rest == 0 ? 0 : ends[found.rest - 1].end;
    return {found.index, found.rest, textColumn(found.index, start), textColumn(found.index, ends[found.rest].end),
        ends[found.rest].width, found.rest == ends.size() - 1};
}

QString RowLayout::text(const Row &row) const
{
    return m_model.paragraph(row.paragraph).mid(row.start, row.end - row.start);
}

Cell RowLayout::cell(int offset, bool before) const
{
    const TextModel::Place place = m_model.place(offset);
    const ParagraphRows &ends = m_rows.at(place.paragraph).ends;
    const auto holds = [&](const RowEnd &row) {
        const int end = textColumn(place.paragraph, row.end);
        return before ? end >= place.column : end > place.column;
    };
    auto found = isComposing(place.paragraph)
        ? std::find_if(ends.begin(), ends.end(), holds)
        : std::partition_point(ends.begin(), ends.end(), [&](const RowEnd &row) { return !holds(row); });
    if (found == ends.end())
        --found;
    const int start = found == ends.begin() ? 0 : textColumn(place.paragraph, (found - 1)->end);
    return {firstRow(place.paragraph) + int(found - ends.begin()), place.column - start};
}

int RowLayout::offset(Cell cell) const
{
    if (cell.row < 0)
        return 0;
    if (cell.row >= rows())
        return m_model.length();
    const Row at = row(cell.row);
    return startOffset(at) + std::clamp(cell.column, 0, at.end - at.start);
}

// Of a paragraph that may be cut, as many rows as fill a screen or two.
const RowLayout::Stretch &RowLayout::stretchOf(const Row &row) const
{
    constexpr int kRows = 32;
    const bool whole = !m_rows.at(row.paragraph).inStretches;
    const StretchKey key{row.paragraph, whole ? 0 : row.index / kRows};
    if (const Stretch *known = m_stretches.object(key))
        return *known;
    const QString text = m_breaker.shown(shownText(row.paragraph));
    const ParagraphRows &ends = m_rows.at(row.paragraph).ends;
    auto first = key.second * kRows;
    auto last = whole ? int(ends.size()) : std::min(first + kRows, int(ends.size()));
    while (first > 0 && !RowBreaker::beginsAfresh(text, ends[first - 1].end))
        --first;
    while (last < ends.size() && !RowBreaker::beginsAfresh(text, ends[last - 1].end))
        ++last;
    const int start = first == 0 ? 0 : ends[first - 1].end;
    const int end = ends[std::min(last, int(ends.size()) - 1)].end; // one row more: the end of a text has its own rules
    auto layout = m_breaker.layOut(text.mid(start, end - start));
    auto *made = new Stretch{std::move(layout), start, first};
    m_stretches.insert(key, made);
    return *made;
}

int RowLayout::shownStart(const Row &row) const
{
    return row.index == 0 ? 0 : m_rows.at(row.paragraph).ends[row.index - 1].end;
}

qreal RowLayout::shownX(const Row &row, int column) const
{
    if (m_breaker.rules().echo == RowEcho::Hidden)
        return 0;
    const int start = shownStart(row);
    const QString text = m_breaker.shown(shownText(row.paragraph));
    const QStringView part = QStringView(text).mid(start, std::max(0, column - start));
    if (m_breaker.isPlain(text))
        return m_breaker.plainWidth(part);
    const Stretch &stretch = stretchOf(row);
    return stretch.layout->lineAt(row.index - stretch.row).cursorToX(column - stretch.start);
}

qreal RowLayout::x(Cell cell) const
{
    const Row at = row(cell.row);
    const int column = at.start + std::clamp(cell.column, 0, at.end - at.start);
    return shownX(at, std::max(shownStart(at), shownColumn(at.paragraph, column, false)));
}

qreal RowLayout::compositionX(int column, int &row) const
{
    const int paragraph = m_model.place(m_composition.offset).paragraph;
    const int shown =
        m_model.place(m_composition.offset).column + std::clamp(column, 0, int(m_composition.text.size()));
    const ParagraphRows &ends = m_rows.at(paragraph).ends;
    int index = 0;
    while (index + 1 < ends.size() && ends[index].end <= shown)
        ++index;
    row = firstRow(paragraph) + index;
    return shownX(this->row(row), shown);
}

int RowLayout::columnAt(int row, qreal x) const
{
    const Row at = this->row(row);
    if (m_breaker.rules().echo == RowEcho::Hidden)
        return 0;
    const QString text = m_breaker.shown(shownText(at.paragraph));
    const int start = shownStart(at);
    const int end = m_rows.at(at.paragraph).ends[at.index].end;
    int shown = 0;
    if (m_breaker.isPlain(text)) {
        shown = start + m_breaker.plainColumn(QStringView(text).mid(start, end - start), x);
    } else {
        const Stretch &stretch = stretchOf(at);
        shown = stretch.start + stretch.layout->lineAt(at.index - stretch.row).xToCursor(x);
    }
    return std::clamp(textColumn(at.paragraph, shown), at.start, at.end) - at.start;
}

bool RowLayout::isRightToLeft(int paragraph) const
{
    const QString text = m_breaker.shown(m_model.paragraph(paragraph)); // stars do not tell what they hide
    return !m_breaker.isPlain(text) && text.isRightToLeft();
}

RowLayout::Drawing RowLayout::drawing(int row) const
{
    const Row at = this->row(row);
    if (m_breaker.rules().echo == RowEcho::Hidden)
        return {};
    const QString text = m_breaker.shown(shownText(at.paragraph));
    const int start = shownStart(at);
    if (m_breaker.isPlain(text))
        return {text.mid(start, m_rows.at(at.paragraph).ends[at.index].end - start), nullptr, start};
    const Stretch &stretch = stretchOf(at);
    return {{}, stretch.layout.get(), stretch.start, at.index - stretch.row};
}
