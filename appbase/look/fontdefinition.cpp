#include "appbase/look/fontdefinition.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <optional>

namespace {

constexpr int kMaxDecipoints = 2000; // as high as the screen
constexpr size_t kFields = 7;

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

QByteArrayView takeField(QByteArrayView &line)
{
    const auto *begin = std::find_if_not(line.begin(), line.end(), isBlank);
    const auto *end = std::find_if(begin, line.end(), isBlank);
    line = {end, line.end()};
    return {begin, end};
}

std::optional<int> numberWithin(QByteArrayView text, int least, int most)
{
    int value = 0;
    const auto [end, error] = std::from_chars(text.begin(), text.end(), value);
    if (error != std::errc() || end != text.end() || value < least || value > most)
        return std::nullopt;
    return value;
}

struct Fields {
    explicit Fields(QByteArrayView line)
    {
        for (QByteArrayView &field : fields)
            field = takeField(line);
    }
    QByteArrayView operator[](size_t index) const { return fields.at(index); }
    QString text(size_t index) const { return QString::fromUtf8(fields.at(index)); }

    std::array<QByteArrayView, kFields> fields;
};

// What is wrong with a line; empty when it was put into `font`.
QString readLine(const Fields &fields, FontDefinition &font)
{
    if (fields[kFields - 1].isEmpty())
        return QStringLiteral("fewer than seven fields");
    if (fields[3] != "y" && fields[3] != "n")
        return QStringLiteral("italic is neither y nor n");
    const auto weight = numberWithin(fields[4], 1, 99);
    if (!weight)
        return QStringLiteral("the weight is no number from 1 to 99");
    const auto size = numberWithin(fields[5], 0, kMaxDecipoints);
    if (!size)
        return QStringLiteral("the size is no number from 0 to %1").arg(kMaxDecipoints);
    font = {.family = fields.text(0).replace(u'_', u' '),
        .file = fields.text(1),
        .renderer = fields.text(2),
        .italic = fields[3] == "y",
        .weight = *weight,
        .decipoints = *size,
        .flags = fields.text(6)};
    return {};
}

}

FontDefinitions parseFontDefinitions(QByteArrayView text)
{
    FontDefinitions result;
    for (int number = 1; !text.isEmpty(); ++number) {
        const qsizetype end = text.indexOf('\n');
        const Fields fields(end < 0 ? text : text.first(end));
        text = end < 0 ? QByteArrayView() : text.sliced(end + 1);
        if (fields[0].isEmpty() || fields[0].front() == '#')
            continue;
        FontDefinition font;
        const QString why = readLine(fields, font);
        if (why.isEmpty())
            result.fonts.append(font);
        else if (result.complaints.size() < kMaxComplaints)
            result.complaints.append({number, why});
    }
    return result;
}

QFont::Weight fontWeight(int definitionWeight)
{
    struct Step {
        int upTo;
        QFont::Weight weight;
    };
    // The middles between the weights that have a name on the old scale: 0, 12, 25, 50, 57, 63, 75, 81, 87.
    constexpr Step steps[] = {
        {5, QFont::Thin},
        {18, QFont::ExtraLight},
        {37, QFont::Light},
        {53, QFont::Normal},
        {60, QFont::Medium},
        {68, QFont::DemiBold},
        {77, QFont::Bold},
        {83, QFont::ExtraBold},
    };
    const auto *step = std::find_if(
        std::begin(steps), std::end(steps), [=](const Step &candidate) { return definitionWeight <= candidate.upTo; });
    return step == std::end(steps) ? QFont::Black : step->weight;
}
