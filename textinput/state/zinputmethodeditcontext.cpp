#include "textinput/state/zinputmethodeditcontext.h"

#include <QtEndian>
#include <algorithm>

namespace {

// Layout: number of lines, line and position of the cursor, then each line as its length and its UTF-16 units. All are
// 16-bit words, least significant byte first.
constexpr std::size_t kWord = 2;
constexpr std::size_t kLines = 0;
constexpr std::size_t kCursorLine = 2;
constexpr std::size_t kCursorPosition = 4;
constexpr std::size_t kText = 6;

constexpr qsizetype kUnits = qsizetype((ZInputMethodEditContext::kSize - kText) / kWord); // lengths included

int load(std::span<const std::byte> bytes, std::size_t at) { return qFromLittleEndian<quint16>(bytes.data() + at); }

void store(std::span<std::byte> bytes, std::size_t at, qsizetype value)
{
    qToLittleEndian(quint16(value), bytes.data() + at);
}

bool splitsPair(QStringView line, qsizetype at)
{
    return at > 0 && at < line.size() && line[at - 1].isHighSurrogate() && line[at].isLowSurrogate();
}

struct Part {
    qsizetype from;
    qsizetype to;
};

// At most `room` units of the line around the cursor; half of them before it where there is as much on both sides.
Part around(QStringView line, qsizetype cursor, qsizetype room)
{
    if (line.size() <= room)
        return {0, line.size()};
    qsizetype from = std::clamp(cursor - room / 2, qsizetype(0), line.size() - room);
    qsizetype to = from + room;
    from += splitsPair(line, from) ? 1 : 0;
    to -= splitsPair(line, to) ? 1 : 0;
    return {from, to};
}

}

ZInputMethodEditContext::ZInputMethodEditContext(std::span<const std::byte, kSize> bytes)
{
    std::copy(bytes.begin(), bytes.end(), m_bytes.begin());
}

void ZInputMethodEditContext::reset() { m_bytes.fill({}); }

void ZInputMethodEditContext::setEditContext(const QStringList &lines, int cursorLine, int cursorPosition)
{
    reset();
    if (lines.isEmpty())
        return;
    const qsizetype current = std::clamp<qsizetype>(cursorLine, 0, lines.size() - 1);
    const QString &line = lines[current];
    const qsizetype cursor = std::clamp<qsizetype>(cursorPosition, 0, line.size());
    const Part part = around(line, cursor, kUnits - 1);
    // Whole lines before and behind it, the nearest first, as long as they fit.
    qsizetype room = kUnits - 1 - (part.to - part.from);
    qsizetype first = current;
    qsizetype last = current;
    const auto take = [&](qsizetype index) {
        const bool fits = index >= 0 && index < lines.size() && lines[index].size() + 1 <= room;
        room -= fits ? lines[index].size() + 1 : 0;
        return fits;
    };
    for (bool before = true, behind = true; before || behind;) {
        before = before && take(first - 1);
        first -= before ? 1 : 0;
        behind = behind && take(last + 1);
        last += behind ? 1 : 0;
    }
    store(m_bytes, kLines, last - first + 1);
    store(m_bytes, kCursorLine, current - first);
    store(m_bytes, kCursorPosition, std::clamp(cursor, part.from, part.to) - part.from);
    std::size_t at = kText;
    for (qsizetype i = first; i <= last; ++i) {
        const QStringView text = i == current ? QStringView(line).sliced(part.from, part.to - part.from) : lines[i];
        store(m_bytes, at, text.size());
        at += kWord;
        for (const QChar unit : text) {
            store(m_bytes, at, unit.unicode());
            at += kWord;
        }
    }
}

QStringList ZInputMethodEditContext::lines() const
{
    QStringList lines;
    std::size_t at = kText;
    for (int left = load(m_bytes, kLines); left > 0 && at + kWord <= kSize; --left) {
        const auto length = std::size_t(load(m_bytes, at));
        at += kWord;
        if (length * kWord > kSize - at)
            return {};
        QString &line = lines.emplaceBack(qsizetype(length), Qt::Uninitialized);
        for (QChar &unit : line) {
            unit = QChar(load(m_bytes, at));
            at += kWord;
        }
    }
    return lines;
}

QString ZInputMethodEditContext::line(int index) const { return lines().value(index); }

int ZInputMethodEditContext::cursorLine() const
{
    return std::max(0, std::min(load(m_bytes, kCursorLine), int(lines().size()) - 1));
}

int ZInputMethodEditContext::cursorPosition() const
{
    return std::min(load(m_bytes, kCursorPosition), int(line(cursorLine()).size()));
}
