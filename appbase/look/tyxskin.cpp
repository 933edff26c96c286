#include "appbase/look/tyxskin.h"

#include "res/skin/util_skinfilereader.h"

#include <QHash>
#include <QPainter>
#include <algorithm>
#include <memory>
#include <qdrawutil.h>

namespace {

constexpr int kBorder = 6; // pixels of a part, on each side, that are not stretched

struct Worn {
    std::unique_ptr<UTIL_SkinFileReader> file; // null without a skin
    QHash<QString, QPixmap> parts; // by name, null where the skin has none
    QHash<QString, QColor> colors; // likewise invalid
};

Worn &worn()
{
    static Worn worn;
    return worn;
}

QLatin1StringView suffix(TYXSkin::State state)
{
    if (!state.enabled)
        return QLatin1StringView("_D");
    if (state.on)
        return state.active ? QLatin1StringView("_OA") : QLatin1StringView("_O");
    return state.active ? QLatin1StringView("_A") : QLatin1StringView();
}

// What cut() gives, asked for once.
template <typename Value, typename Cut> Value remembered(QHash<QString, Value> &known, const QString &name, Cut cut)
{
    if (const auto entry = known.constFind(name); entry != known.constEnd())
        return *entry;
    return *known.insert(name, worn().file ? cut(*worn().file) : Value());
}

}

void TYXSkin::reload()
{
    worn() = {};
    if (!qEnvironmentVariableIsEmpty("TYX_RES_SKIN_FILE"))
        worn().file = std::make_unique<UTIL_SkinFileReader>();
}

QPixmap TYXSkin::part(const QString &name)
{
    return remembered(worn().parts, name,
        [&](UTIL_SkinFileReader &file) { return file.pixmapExists(name) ? file.getPixmap(name) : QPixmap(); });
}

QColor TYXSkin::color(const QString &name)
{
    return remembered(worn().colors, name, [&](UTIL_SkinFileReader &file) { return file.getColor(name); });
}

QColor TYXSkin::color(const QString &name, const QColor &otherwise)
{
    const QColor ofSkin = color(name);
    return ofSkin.isValid() ? ofSkin : otherwise;
}

bool TYXSkin::draw(QPainter &painter, const QRect &rect, const QString &name, State state)
{
    QPixmap image = part(name + suffix(state));
    if (image.isNull())
        image = part(name);
    if (image.isNull())
        return false;
    const int across = std::min(kBorder, (std::min(image.width(), rect.width()) - 1) / 2);
    const int down = std::min(kBorder, (std::min(image.height(), rect.height()) - 1) / 2);
    qDrawBorderPixmap(&painter, rect, QMargins(across, down, across, down), image);
    return true;
}

bool TYXSkin::draw(QPainter &painter, const QRect &rect, const QString &name) { return draw(painter, rect, name, {}); }
