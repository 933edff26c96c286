// Filters and limits: what may be typed, and how much.
#include "editor/text/graphemes.h"
#include "editor/widget/zmultilineedit_p.h"

#include <QStringList>
#include <QValidator>

using Operation = ZMultiLineData::Operation;

namespace {

// Never half a character of two units.
QString shortened(const QString &text, int length)
{
    if (length >= text.size())
        return text;
    length = std::max(length, 0);
    if (length > 0 && text[length - 1].isHighSurrogate() && text[length].isLowSurrogate())
        --length;
    return text.left(length);
}

// Rows do not wrap: each line of the text is cut by itself.
QString cutLines(const QString &text, int before, int behind, int most)
{
    QStringList lines = text.split(u'\n');
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const int first = i == 0 ? before : 0;
        const int last = i + 1 == lines.size() ? behind : 0;
        lines[i] = shortened(lines[i], most - first - last);
    }
    return lines.join(u'\n');
}

}

QString ZMultiLineData::cutToLimits(int offset, const QString &added)
{
    QString part = maxLength > 0 ? shortened(added, maxLength - text.length()) : added;
    if (maxLineLength >= 0 && wordWrap == ZMultiLineEdit::NoWrap) {
        const TextModel::Place place = text.place(offset);
        const int size = int(text.paragraph(place.paragraph).size());
        part = cutLines(part, place.column, size - place.column, maxLineLength);
    }
    const bool rowsMatter = maxLines > 0 || (maxLineLength >= 0 && wordWrap != ZMultiLineEdit::NoWrap);
    if (!rowsMatter || part.isEmpty() || fits(offset, part))
        return part;
    int fitting = 0;
    for (int rest = int(part.size()); rest - fitting > 1;) {
        const int middle = fitting + (rest - fitting) / 2;
        (fits(offset, shortened(part, middle)) ? fitting : rest) = middle;
    }
    return shortened(part, fitting);
}

// Tries it: how a text wraps is known when it is there.
bool ZMultiLineData::fits(int offset, const QString &added)
{
    if (added.isEmpty())
        return true;
    dropComposition();
    const int rows = layout.rows();
    const int column = text.place(offset).column;
    const TextModel::Change change = text.insert(offset, added);
    layout.update(change, column);
    const bool fit = isWithinRows(change, rows);
    layout.update(text.remove(offset, offset + int(added.size())), column);
    return fit;
}

bool ZMultiLineData::isWithinRows(const TextModel::Change &change, int rowsBefore) const
{
    if (maxLines > 0 && layout.rows() > std::max(maxLines, rowsBefore))
        return false;
    if (maxLineLength < 0)
        return true;
    const int last = layout.firstRow(change.paragraph + change.added);
    for (int i = layout.firstRow(change.paragraph); i < last; ++i) {
        const RowLayout::Row row = layout.row(i);
        if (row.end - row.start > maxLineLength)
            return false;
    }
    return true;
}

bool ZMultiLineData::isAccepted(const QString &typed) const
{
    if (!validator)
        return true;
    const int at = isMarked() ? from() : cursor;
    QString whole = text.text();
    whole.replace(at, isMarked() ? to() - at : 0, typed);
    int place = at + int(typed.size());
    return validator->validate(whole, place) != QValidator::Invalid;
}

void ZMultiLineEdit::setFilter(const QRegExp &filter, bool accept)
{
    d->filter = filter;
    d->filterAccepts = accept;
}

bool ZMultiLineEdit::isValidChar(const QChar &c) const
{
    if (d->filter.pattern().isEmpty() || !d->filter.isValid())
        return true;
    return d->filter.match(QString(c)).hasMatch() == d->filterAccepts;
}

void ZMultiLineEdit::filterString(QString &result, const QString &s) const
{
    if (d->filter.pattern().isEmpty() || !d->filter.isValid()) {
        result = s;
        return;
    }
    QString part;
    for (qsizetype i = 0; i < s.size(); ++i) {
        const bool pair = s[i].isHighSurrogate() && i + 1 < s.size() && s[i + 1].isLowSurrogate();
        const QString character = s.mid(i, pair ? 2 : 1);
        const bool valid =
            pair ? d->filter.match(character).hasMatch() == d->filterAccepts : s[i] == u'\n' || isValidChar(s[i]);
        if (valid)
            part += character;
        i += pair ? 1 : 0;
    }
    result = part;
}

void ZMultiLineEdit::setValidator(const QValidator *validator) { d->validator = validator; }
const QValidator *ZMultiLineEdit::validator() const { return d->validator; }

void ZMultiLineEdit::setMaxLength(int n)
{
    const Operation operation(*d);
    d->maxLength = n;
    if (n <= 0 || d->text.length() <= n)
        return;
    const bool edited = d->edited;
    setText(shortened(d->text.text(), n));
    d->edited = edited;
    d->notify(ZMultiLineData::Notice::Truncated);
}

int ZMultiLineEdit::maxLength() const { return d->maxLength; }

// Cursor and marks stay in their rows.
void ZMultiLineEdit::setMaxLineLength(int n)
{
    const Operation operation(*d);
    const int old = std::exchange(d->maxLineLength, n);
    if (n < 0 || (old >= 0 && old <= n))
        return;
    QString whole;
    bool cut = false;
    int places[] = {d->cursor, d->anchor, d->dragEnd};
    const int before[] = {d->cursor, d->anchor, d->dragEnd};
    for (int i = 0; i < numLines(); ++i) {
        const RowLayout::Row row = d->layout.row(i);
        const int start = d->layout.startOffset(row);
        const QString part = shortened(d->layout.text(row), n);
        for (size_t k = 0; k < std::size(places); ++k) {
            if (before[k] >= start && before[k] <= start + row.end - row.start)
                places[k] = int(whole.size()) + std::min(before[k] - start, int(part.size()));
        }
        whole += part;
        // A row that was cut stays a row, or the next one would go on in it.
        const bool isCut = part.size() < row.end - row.start;
        if ((row.last || isCut) && i + 1 < numLines())
            whole += u'\n';
        cut |= isCut;
    }
    if (!cut)
        return;
    const bool marked = d->markIsOn;
    d->dropComposition();
    d->history.clear();
    d->setText(whole);
    d->moveCursor({places[0]});
    d->anchor = places[1];
    d->dragEnd = places[2];
    d->markIsOn = marked;
    d->notify(ZMultiLineData::Notice::Truncated);
}

int ZMultiLineEdit::maxLineLength() const { return d->maxLineLength; }

void ZMultiLineEdit::setMaxLines(int n)
{
    const Operation operation(*d);
    d->maxLines = n <= 0 ? -1 : n;
    constexpr int kMostFixed = 6;
    if (n >= 1 && n <= kMostFixed)
        setSizePolicy(sizePolicy().horizontalPolicy(), QSizePolicy::Fixed);
    else
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    if (isVisible()) {
        updateGeometry();
        d->damageAll();
    }
}

int ZMultiLineEdit::maxLines() const { return d->maxLines; }
