#include "appbase/look/phonepalette.h"

#include "appbase/config/zconfig.h"
#include "appbase/look/tyxskin.h"

#include <QColor>
#include <QMetaEnum>
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <utility>

namespace {

constexpr char kFile[] = "/tmp/colorpalette.cfg";

struct Entry {
    QPalette::ColorRole role;
    QRgb color;
};

// clang-format off
constexpr Entry builtIn[] = {
    {QPalette::Window,          0xffeef1f4},
    {QPalette::WindowText,      0xff1f2a36},
    {QPalette::Base,            0xffffffff},
    {QPalette::AlternateBase,   0xfff5f7f9},
    {QPalette::Text,            0xff1f2a36},
    {QPalette::PlaceholderText, 0xff7a8794},
    {QPalette::Button,          0xfffbfcfd},
    {QPalette::ButtonText,      0xff1f2a36},
    {QPalette::BrightText,      0xffffffff},
    {QPalette::Light,           0xffffffff},
    {QPalette::Midlight,        0xffe1e6eb},
    {QPalette::Mid,             0xffb3bdc8},
    {QPalette::Dark,            0xff7f8b98},
    {QPalette::Shadow,          0xff3a4a5c},
    {QPalette::Highlight,       0xff1b6b93},
    {QPalette::HighlightedText, 0xffffffff},
    {QPalette::Link,            0xff1b6b93},
    {QPalette::LinkVisited,     0xff6a4c93},
    {QPalette::ToolTipBase,     0xff2b3845},
    {QPalette::ToolTipText,     0xffffffff},
};
// clang-format on

QColor between(const QColor &a, const QColor &b)
{
    return {(a.red() + b.red()) / 2, (a.green() + b.green()) / 2, (a.blue() + b.blue()) / 2};
}

// What cannot be used is drawn half as strong, whatever the theme's colours are.
void fade(QPalette &palette)
{
    using P = QPalette;
    constexpr std::pair<P::ColorRole, P::ColorRole> texts[] = {{P::WindowText, P::Window}, {P::Text, P::Base},
        {P::ButtonText, P::Button}, {P::HighlightedText, P::Highlight}, {P::Highlight, P::Window}};
    for (const auto &[text, ground] : texts)
        palette.setColor(P::Disabled, text, between(palette.color(P::Active, text), palette.color(P::Active, ground)));
}

// "#rrggbb" and nothing else: no names, no translucent colours.
std::optional<QColor> readColor(const QString &text)
{
    const auto isDigit = [](QChar c) { return c.unicode() < 0x80 && std::isxdigit(c.unicode()) != 0; };
    if (text.size() != 7 || text[0] != u'#' || !std::all_of(text.begin() + 1, text.end(), isDigit))
        return std::nullopt;
    return QColor(text);
}

}

QPalette builtInPalette()
{
    QPalette palette;
    for (const auto &[role, color] : builtIn)
        palette.setColor(role, QColor(color));
    fade(palette);
    return palette;
}

std::optional<QPalette> parsePalette(const QMap<QString, QString> &colors)
{
    QPalette palette = builtInPalette();
    const auto roles = QMetaEnum::fromType<QPalette::ColorRole>();
    for (auto entry = colors.begin(); entry != colors.end(); ++entry) {
        bool known = false;
        const int role = roles.keyToValue(entry.key().toLatin1().constData(), &known);
        if (!known || role >= QPalette::NColorRoles)
            continue;
        const auto color = readColor(entry.value());
        if (!color)
            return std::nullopt;
        palette.setColor(static_cast<QPalette::ColorRole>(role), *color);
    }
    fade(palette);
    return palette;
}

QPalette skinPalette()
{
    QPalette palette = builtInPalette();
    const auto roles = QMetaEnum::fromType<QPalette::ColorRole>();
    for (const auto &[role, color] : builtIn) {
        const QString name = QString::fromLatin1(roles.valueToKey(role));
        palette.setColor(role, TYXSkin::color(name, QColor(color)));
    }
    fade(palette);
    return palette;
}

QPalette currentPalette()
{
    ZConfig file(QString::fromLatin1(kFile), false);
    const auto *colors = file.getGroupEntriesKeyList(QStringLiteral("COLOR_PALETTE"));
    if (!colors)
        return skinPalette();
    if (const auto palette = parsePalette(*colors))
        return *palette;
    std::fprintf(stderr, "palette: %s: a value is no colour #rrggbb\n", kFile);
    return skinPalette();
}
