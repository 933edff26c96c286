#include "editor/text/rowbreaker.h"

#include "editor/text/graphemes.h"

#include <QFontMetricsF>
#include <QTextBoundaryFinder>
#include <cmath>
#include <optional>

namespace {

constexpr int kUnits = 64; // a pixel, as in the toolkit's layout
constexpr int kFarAway = (1 << 20) * kUnits; // wider than any row: the toolkit's layout calculates in 26.6 bits

int pixels(int units) { return (units + kUnits - 1) / kUnits; }
int units(qreal pixels) { return int(std::lround(pixels * kUnits)); }

// What needs no shaping, is never reordered and forms no clusters. Tabs, the hard space and the soft hyphen have rules
// of their own.
bool mayBePlain(char16_t c)
{
    if (c < 0x7F)
        return c >= 0x20;
    if (c < 0xC0)
        return c > 0xA0 && c != 0xAD;
    return c < 0x300 || (c >= 0x370 && QChar(c).isLetter());
}

// Kana and the ideographs of everyday use.
constexpr char16_t kFirstIdeograph = 0x3041;
constexpr char16_t kBehindIdeographs = 0xA000;
constexpr qint16 kUnmeasured = -1;
constexpr qint16 kNotSimple = -2;

bool isIdeograph(QChar c) { return c.unicode() >= kFirstIdeograph && c.unicode() < kBehindIdeographs; }

// Whether a row may end before and behind it, as long as it is among its like. Some kana never begin one.
bool mayBreakAround(QChar c)
{
    const QString two(2, c);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Line, two);
    finder.setPosition(1);
    return c.isLetter() && finder.isAtBoundary();
}

// Whether it runs from right to left, or makes what follows do so.
bool turns(QChar c)
{
    if (c.unicode() < 0x590 || isIdeograph(c))
        return false;
    if (c.isHighSurrogate()) // of the scripts at U+10800 and U+1E800
        return c.unicode() == 0xD802 || c.unicode() == 0xD803 || c.unicode() == 0xD83A || c.unicode() == 0xD83B;
    switch (c.direction()) {
    case QChar::DirL:
    case QChar::DirEN:
    case QChar::DirES:
    case QChar::DirET:
    case QChar::DirCS:
    case QChar::DirNSM:
    case QChar::DirBN:
    case QChar::DirB:
    case QChar::DirS:
    case QChar::DirWS:
    case QChar::DirON:
        return false;
    default:
        return true;
    }
}

// Null when no row ends there.
const RowEnd *rowEndingAt(const ParagraphRows &rows, int column)
{
    const auto row = std::partition_point(rows.begin(), rows.end(), [&](const RowEnd &r) { return r.end < column; });
    return row != rows.end() && row->end == column ? row : nullptr;
}

bool isWordCharacter(QChar c) { return (c < QChar(0x7F) && c.isLetterOrNumber()) || c >= QChar(0xC0); }

// Whether the algorithm lets a row end before `column` of a word.
class WordBreaks {
public:
    explicit WordBreaks(QStringView word)
        : m_finder(QTextBoundaryFinder::Line, word.data(), word.size(), m_buffer, sizeof m_buffer)
    {
    }
    WordBreaks(const WordBreaks &) = delete; // the finder points to the buffer
    WordBreaks &operator=(const WordBreaks &) = delete;

    bool at(qsizetype column)
    {
        m_finder.setPosition(column);
        return m_finder.isAtBoundary();
    }

private:
    unsigned char m_buffer[256]; // enough for a word of this length; the finder gets its own for a longer one
    QTextBoundaryFinder m_finder;
};

}

int RowBreaker::limited(int limit) { return std::clamp(limit, 1, kFarAway / kUnits); }

QFont RowBreaker::adapted(const QFont &font)
{
    QFont adapted = font;
    adapted.setKerning(false);
    adapted.setStyleStrategy(QFont::StyleStrategy(font.styleStrategy() | QFont::PreferNoShaping));
    return adapted;
}

void RowBreaker::setRules(const RowRules &rules)
{
    const QFont font = adapted(rules.font);
    const bool measured = m_rowHeight > 0 && font == m_rules.font;
    m_rules = rules;
    m_rules.font = font;
    m_rules.limit = limited(rules.limit);
    m_limit = m_rules.wrap == RowWrap::Pixels ? m_rules.limit * kUnits : m_rules.limit;
    if (measured)
        return;
    const QFontMetricsF metrics(font);
    m_ascent = int(std::ceil(metrics.ascent()));
    m_rowHeight = std::max(1, m_ascent + int(std::ceil(metrics.descent())));
    measureCharacters();
}

void RowBreaker::measureCharacters()
{
    const QFontMetricsF metrics(m_rules.font);
    m_ideographs.clear();
    m_advance.fill(-1);
    m_overhang.fill(0);
    for (char16_t c = 0; c < kTable; ++c) {
        if (!mayBePlain(c) || !metrics.inFont(QChar(c)))
            continue;
        const qreal advance = metrics.horizontalAdvance(QChar(c));
        if (advance >= 0 && advance < 500) {
            m_advance[c] = qint16(units(advance));
            m_overhang[c] = qint16(units(std::clamp(-metrics.rightBearing(QChar(c)), 0.0, 500.0)));
        }
    }
}

bool RowBreaker::isPlain(QStringView text) const
{
    return std::all_of(
        text.begin(), text.end(), [this](QChar c) { return c.unicode() < kTable && m_advance[c.unicode()] >= 0; });
}

QString RowBreaker::shown(const QString &text) const
{
    switch (m_rules.echo) {
    case RowEcho::Plain:
        return text;
    case RowEcho::Masked:
        return QString(text.size(), u'*');
    case RowEcho::Hidden:
        break;
    }
    return {};
}

ParagraphRows RowBreaker::rows(const QString &paragraph) const
{
    ParagraphRows rows;
    if (paragraph.isEmpty() || m_rules.echo == RowEcho::Hidden) {
        rows.append({int(paragraph.size()), 0});
        return rows;
    }
    const QString text = shown(paragraph);
    if (plainRows(text, rows))
        return rows;
    rows.clear();
    const bool cut = isInStretches(paragraph);
    int from = 0;
    do
        from = layStretch(text, from, cut, rows);
    while (from < text.size());
    return rows;
}

bool RowBreaker::isInStretches(const QString &paragraph) const
{
    if (paragraph.size() < kLong || m_rules.wrap == RowWrap::None)
        return false;
    const QString text = shown(paragraph);
    return !mayTurn(text) && !isPlain(text);
}

bool RowBreaker::mayTurn(QStringView shown) { return std::any_of(shown.begin(), shown.end(), turns); }

// At a letter behind a space, or among ideographs, which are not joined.
bool RowBreaker::beginsAfresh(QStringView shown, int column)
{
    if (column <= 0 || column >= shown.size())
        return false;
    const QChar before = shown[column - 1];
    const QChar letter = shown[column];
    if (before == u' ')
        return letter.isLetter() && letter.script() > QChar::Script_Common;
    return graphemes::charClass(letter.unicode()) == graphemes::Ideograph
        && graphemes::charClass(before.unicode()) == graphemes::Ideograph && !letter.isMark();
}

int RowBreaker::ideographAdvance(QChar c) const
{
    if (!isIdeograph(c))
        return kNotSimple;
    if (m_ideographs.empty())
        m_ideographs.assign(kBehindIdeographs - kFirstIdeograph, kUnmeasured);
    qint16 &known = m_ideographs[c.unicode() - kFirstIdeograph];
    if (known == kUnmeasured) {
        const QFontMetricsF metrics(m_rules.font);
        const qreal advance = metrics.horizontalAdvance(c);
        const bool isSimple = advance > 0 && advance < 500 && metrics.rightBearing(c) >= 0 && mayBreakAround(c);
        known = isSimple ? qint16(units(advance)) : kNotSimple;
    }
    return known;
}

// Appends rows of nothing but ideographs, which simply end where they are full, and answers where the last one ends. A
// key among them moves all rows to the next thing of another width: to lay these out would take a second in a megabyte.
int RowBreaker::ideographRows(QStringView text, int from, ParagraphRows &rows) const
{
    for (;;) {
        int end = from;
        int width = 0;
        int advance = kNotSimple;
        for (; end < text.size() && (advance = ideographAdvance(text[end])) > 0; ++end) {
            const int needed = m_rules.wrap == RowWrap::Columns ? end + 1 - from : width + advance;
            if (needed > m_limit)
                break;
            width += advance;
        }
        if (end == from || end == text.size() || advance < 0) // another rule may hold for this row
            return from;
        rows.append({end, pixels(width)});
        from = end;
    }
}

// Appends the rows that are certain, at least one, and answers where they end.
int RowBreaker::layStretch(const QString &text, int from, bool cut, ParagraphRows &rows) const
{
    if (cut) {
        if (const int end = ideographRows(text, from, rows); end > from)
            return end;
    }
    for (qsizetype length = cut ? kStretch : text.size();; length *= 2) {
        const bool whole = from + length >= text.size();
        const auto layout = from == 0 && whole ? layOut(text) : layOut(text.mid(from, length));
        int count = layout->lineCount();
        const auto end = [&](int row) {
            return from + layout->lineAt(row).textStart() + layout->lineAt(row).textLength();
        };
        if (!whole) {
            count -= 2; // the last row is cut off, and the one before it may have had room for what followed
            while (count > 0 && !beginsAfresh(text, end(count - 1)))
                --count;
            if (count <= 0)
                continue;
        }
        for (int i = 0; i < count; ++i)
            rows.append({end(i), int(std::ceil(layout->lineAt(i).naturalTextWidth()))});
        return whole ? int(text.size()) : end(count - 1);
    }
}

ParagraphRows RowBreaker::rowsAgain(const QString &shown, const ParagraphRows &old, Kept kept) const
{
    // A word that became shorter may fit into the row before.
    const auto changed =
        std::partition_point(old.begin(), old.end(), [&](const RowEnd &row) { return row.end <= kept.before; });
    auto first = int(std::max<qsizetype>(0, changed - old.begin() - 2));
    while (first > 0 && !beginsAfresh(shown, old[first - 1].end))
        --first;
    ParagraphRows rows;
    rows.append(old.data(), first);
    const int moved = int(shown.size()) - old.back().end;
    int from = first > 0 ? old[first - 1].end : 0;
    do {
        qsizetype i = rows.size();
        from = layStretch(shown, from, true, rows);
        for (; i < rows.size(); ++i) {
            const int end = rows[i].end;
            if (end <= shown.size() - kept.behind || !beginsAfresh(shown, end))
                continue;
            const RowEnd *same = rowEndingAt(old, end - moved);
            if (!same)
                continue;
            rows.resize(i + 1);
            while (++same != old.end())
                rows.append({same->end + moved, same->width});
            return rows;
        }
    } while (from < shown.size());
    return rows;
}

// A row while it is filled. What does not fit any more is looked at, and left to the next one.
struct RowBreaker::Row {
    int start;
    int end; // after the last word that fits, and the white space behind it
    int width = 0; // to `end`, without that white space
    int space = 0; // its width
    bool empty = true; // but for white space
};

int RowBreaker::overhang(QChar last) const { return m_rules.wrap == RowWrap::Columns ? 0 : m_overhang[last.unicode()]; }

int RowBreaker::advance(QChar c) const
{
    const int width = c.unicode() < kTable ? m_advance[c.unicode()] : -1;
    return width >= 0 && m_rules.wrap == RowWrap::Columns ? 1 : width;
}

// False: the word that ends at `end` does not fit. The glyph at the end of a row's only word may reach over the
// edge when a space follows: so it does in the toolkit.
bool RowBreaker::extend(Row &row, QStringView text, int end, int width) const
{
    const int whole = row.width + row.space + width;
    if (whole > m_limit)
        return false;
    if (whole + overhang(text[end - 1]) > m_limit && !(row.empty && end < text.size() && text[end] == u' '))
        return false;
    row.width = whole;
    row.space = 0;
    row.end = end;
    row.empty = false;
    return true;
}

// What the rules of breaking look at around a word: as much of it as has room, and some more on both sides.
QStringView RowBreaker::surroundings(QStringView text, int column, int room) const
{
    constexpr int kContext = 32;
    const int from = std::max(0, column - kContext);
    int end = column;
    for (; end < text.size() && text[end] != u' ' && room >= 0; ++end)
        room -= std::max(0, advance(text[end]));
    return text.mid(from, end + kContext - from);
}

// Puts as much of the word at the end of the row into it as fits: up to a place where it may break, or, when it is the
// first one, as many characters as there is room for.
void RowBreaker::breakWord(QStringView text, Row &row) const
{
    const auto left = [&] { return m_limit - row.width - row.space; };
    if (!m_rules.anywhere) {
        const QStringView around = surroundings(text, row.end, left());
        const int from = int(around.data() - text.data());
        const int end = from + int(around.size());
        std::optional<WordBreaks> breaks; // it looks at the text at once: hardly any word needs it
        int pending = 0;
        for (int i = row.end + 1; i < end && text[i] != u' ' && pending <= left(); ++i) {
            pending += advance(text[i - 1]);
            if (isWordCharacter(text[i - 1]) && isWordCharacter(text[i]))
                continue;
            if (!breaks)
                breaks.emplace(around);
            if (!breaks->at(i - from))
                continue;
            if (!extend(row, text, i, pending))
                break;
            pending = 0;
        }
        if (!row.empty)
            return;
    }
    if (row.empty && !extend(row, text, row.end + 1, advance(text[row.end]))) { // one character at least
        row.width += row.space + advance(text[row.end]);
        row.space = 0;
        row.empty = false;
        ++row.end;
    }
    // Not all of these were looked at before: the next row finds the one that is not plain.
    while (row.end < text.size() && text[row.end] != u' ' && advance(text[row.end]) >= 0
        && extend(row, text, row.end + 1, advance(text[row.end]))) { }
    while (row.end < text.size() && text[row.end] == u' ')
        ++row.end;
}

// False: some character is not plain.
bool RowBreaker::fillRow(QStringView text, Row &row) const
{
    const int size = int(text.size());
    for (int i = row.start; i < size;) {
        int width = 0;
        const int from = i;
        // Where any character may end the row, each one is asked whether it fits.
        for (; i < size && text[i] != u' ' && width <= m_limit && (i == from || !m_rules.anywhere); ++i) {
            const int more = advance(text[i]);
            if (more < 0)
                return false;
            width += more;
        }
        if (i > from && !extend(row, text, i, width)) {
            breakWord(text, row);
            return true;
        }
        for (; i < size && text[i] == u' '; ++i)
            row.space += advance(u' ');
        row.end = i;
    }
    return true;
}

bool RowBreaker::plainRows(QStringView text, ParagraphRows &rows) const
{
    if (m_advance[u' '] < 0)
        return false;
    if (m_rules.wrap == RowWrap::None) {
        if (!isPlain(text))
            return false;
        rows.append({int(text.size()), int(std::ceil(plainWidth(text)))});
        return true;
    }
    for (int start = 0; start < text.size();) {
        Row row{start, start};
        if (!fillRow(text, row))
            return false;
        rows.append({row.end,
            m_rules.wrap == RowWrap::Columns ? int(std::ceil(plainWidth(text.mid(start, row.end - start))))
                                             : pixels(row.width)});
        start = row.end;
    }
    return true;
}

qreal RowBreaker::plainWidth(QStringView text) const
{
    qint64 width = 0;
    for (const QChar c : text)
        width += m_advance[c.unicode()];
    return qreal(width) / kUnits;
}

int RowBreaker::plainColumn(QStringView text, qreal x) const
{
    qint64 rest = qint64(std::clamp(x, -1.0, 1e12) * kUnits);
    for (int i = 0; i < text.size(); ++i) {
        const int advance = m_advance[text[i].unicode()];
        if (rest < advance / 2)
            return i;
        rest -= advance;
    }
    return int(text.size());
}

// The toolkit's own mixture of both ways to wrap would break within every word that does not fit into a row's rest.
void RowBreaker::fillColumns(QTextLayout &layout, QTextLine &line) const
{
    line.setNumColumns(m_rules.limit);
    QStringView row = QStringView(layout.text()).mid(line.textStart(), line.textLength());
    while (!row.isEmpty() && row.back().isSpace())
        row.chop(1);
    if (m_rules.anywhere || row.size() <= m_rules.limit)
        return;
    QTextOption option = layout.textOption();
    option.setWrapMode(QTextOption::WrapAnywhere);
    layout.setTextOption(option);
    line.setNumColumns(m_rules.limit);
    option.setWrapMode(QTextOption::WordWrap);
    layout.setTextOption(option);
}

std::unique_ptr<QTextLayout> RowBreaker::layOut(const QString &text) const
{
    auto layout = std::make_unique<QTextLayout>(text, m_rules.font);
    QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
    option.setTabStopDistance(limited(m_rules.tabStop));
    option.setWrapMode(m_rules.wrap == RowWrap::None ? QTextOption::ManualWrap
            : m_rules.anywhere                       ? QTextOption::WrapAnywhere
            : m_rules.wrap == RowWrap::Columns       ? QTextOption::WordWrap
                                                     : QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout->setTextOption(option);
    layout->beginLayout();
    int y = 0;
    for (QTextLine line = layout->createLine(); line.isValid(); line = layout->createLine()) {
        if (m_rules.wrap == RowWrap::Columns)
            fillColumns(*layout, line);
        else
            line.setLineWidth(m_rules.wrap == RowWrap::None ? kFarAway / kUnits : m_rules.limit);
        line.setPosition(QPointF(0, y));
        y += m_rowHeight;
    }
    layout->endLayout();
    return layout;
}
