#include "editor/text/textmodel.h"

namespace {

constexpr QChar kBreak = u'\n';

}

QString TextModel::normalized(const QString &text)
{
    if (!text.contains(u'\r') && !text.contains(QChar::ParagraphSeparator))
        return text;
    QString result = text;
    result.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    result.replace(u'\r', kBreak);
    result.replace(QChar(QChar::ParagraphSeparator), kBreak);
    return result;
}

TextModel::Place TextModel::place(int offset) const
{
    const auto found = m_paragraphs.find(std::clamp(offset, 0, length()));
    return {found.index, found.rest};
}

QString TextModel::text() const
{
    QString all;
    all.reserve(length() + 1);
    m_paragraphs.forEach([&all](const Paragraph &paragraph) {
        all += paragraph.text;
        all += kBreak;
    });
    all.chop(1);
    return all;
}

QString TextModel::text(int from, int to) const
{
    from = std::clamp(from, 0, length());
    to = std::clamp(to, from, length());
    const Place first = place(from);
    const Place last = place(to);
    if (first.paragraph == last.paragraph)
        return paragraph(first.paragraph).mid(first.column, last.column - first.column);
    QString part;
    part.reserve(to - from);
    part += QStringView(paragraph(first.paragraph)).mid(first.column);
    for (int i = first.paragraph + 1; i < last.paragraph; ++i)
        part += kBreak + paragraph(i);
    part += kBreak + QStringView(paragraph(last.paragraph)).left(last.column);
    return part;
}

void TextModel::setText(const QString &text)
{
    std::vector<Paragraph> paragraphs;
    paragraphs.reserve(size_t(text.count(kBreak)) + 1);
    if (text.contains(kBreak)) {
        for (const QStringView line : QStringView(text).tokenize(kBreak))
            paragraphs.push_back({line.toString()});
    } else {
        paragraphs.push_back({text});
    }
    m_paragraphs.assign(std::move(paragraphs));
}

TextModel::Change TextModel::insert(int offset, const QString &text)
{
    const Place at = place(offset);
    if (!text.contains(kBreak)) {
        m_paragraphs.change(at.paragraph, 1, [&](Paragraph &paragraph) { paragraph.text.insert(at.column, text); });
        return {at.paragraph, 1, 1};
    }
    const QString whole = paragraph(at.paragraph);
    std::vector<Paragraph> added;
    for (const QStringView line : QStringView(text).tokenize(kBreak))
        added.push_back({line.toString()});
    added.front().text.prepend(QStringView(whole).left(at.column));
    added.back().text += QStringView(whole).mid(at.column);
    const int count = int(added.size());
    m_paragraphs.replace(at.paragraph, 1, std::move(added));
    return {at.paragraph, 1, count};
}

TextModel::Change TextModel::remove(int from, int to)
{
    const Place first = place(from);
    const Place last = place(to);
    if (first.paragraph == last.paragraph) {
        m_paragraphs.change(first.paragraph, 1,
            [&](Paragraph &paragraph) { paragraph.text.remove(first.column, last.column - first.column); });
        return {first.paragraph, 1, 1};
    }
    const int removed = last.paragraph - first.paragraph + 1;
    std::vector<Paragraph> left{{QStringView(paragraph(first.paragraph)).left(first.column)
        + QStringView(paragraph(last.paragraph)).mid(last.column)}};
    m_paragraphs.replace(first.paragraph, removed, std::move(left));
    return {first.paragraph, removed, 1};
}
