#include "tools/phone/phonelayout.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace phone {

namespace {

constexpr qreal kColumns[] = {38, 124, 210};
constexpr qreal kRow = 570; // the first of the four
constexpr qreal kRowHeight = 34;
constexpr QSizeF kDigit{82, 31};

constexpr QRectF digit(int column, int row) { return {QPointF(kColumns[column], kRow + row * kRowHeight), kDigit}; }

// clang-format off
constexpr Key rows[] = {
    {"enter", kRingHole,           Key::Disc, "OK"},
    {"left",  kRing,               Key::Arm,  {}, {}, Key::Plain, Side::Left},
    {"up",    kRing,               Key::Arm,  {}, {}, Key::Plain, Side::Up},
    {"right", kRing,               Key::Arm,  {}, {}, Key::Plain, Side::Right},
    {"down",  kRing,               Key::Arm,  {}, {}, Key::Plain, Side::Down},
    {"f11",   {38, 444, 74, 32},   Key::Pill, "\u2013"},
    {"f12",   {218, 444, 74, 32},  Key::Pill, "\u2013"},
    {"send",  {38, 488, 74, 36},   Key::Pill, {}, {}, Key::Green},
    {"end",   {218, 488, 74, 36},  Key::Pill, {}, {}, Key::Red},
    {"clear", {130, 538, 70, 25},  Key::Pill, "C"},
    {"1", digit(0, 0), Key::Pill, "1", ".,?"},
    {"2", digit(1, 0), Key::Pill, "2", "ABC"},
    {"3", digit(2, 0), Key::Pill, "3", "DEF"},
    {"4", digit(0, 1), Key::Pill, "4", "GHI"},
    {"5", digit(1, 1), Key::Pill, "5", "JKL"},
    {"6", digit(2, 1), Key::Pill, "6", "MNO"},
    {"7", digit(0, 2), Key::Pill, "7", "PQRS"},
    {"8", digit(1, 2), Key::Pill, "8", "TUV"},
    {"9", digit(2, 2), Key::Pill, "9", "WXYZ"},
    {"*", digit(0, 3), Key::Pill, "\u2217", "\u21e7"},
    {"0", digit(1, 3), Key::Pill, "0", "\u2423"},
    {"#", digit(2, 3), Key::Pill, "#"},
    {"right-volume",   {12, 150, 12, 40}, Key::Edge, "+"},
    {"left-volume",    {12, 196, 12, 40}, Key::Edge, "\u2212"},
    {"side",           {306, 168, 12, 50}, Key::Edge},
    {"headset-answer", kAnswerButton,     Key::Pill},
};
// clang-format on

bool isInside(const QRectF &circle, QPointF point)
{
    const QPointF way = point - circle.center();
    return std::hypot(way.x(), way.y()) <= circle.width() / 2;
}

Side sideOf(QPointF way)
{
    if (std::abs(way.x()) > std::abs(way.y()))
        return way.x() < 0 ? Side::Left : Side::Right;
    return way.y() < 0 ? Side::Up : Side::Down;
}

bool isHit(const Key &key, QPointF point)
{
    switch (key.shape) {
    case Key::Disc:
        return isInside(key.place, point);
    case Key::Arm:
        return isInside(kRing, point) && !isInside(kRingHole, point) && sideOf(point - kRing.center()) == key.side;
    case Key::Edge:
        return key.place.adjusted(-4, 0, 4, 0).contains(point); // narrow for a mouse
    case Key::Pill:
        break;
    }
    return key.place.contains(point);
}

bool isReachable(const Key &key, Posture posture)
{
    if (isOnFlip(key))
        return !posture.flipOpen;
    return key.name != "headset-answer" || posture.headset;
}

constexpr QRectF kHangingFlip{kFlip.x(), kHinge, kFlip.width(), kFlip.height() * kFlipHanging};

}

std::span<const Key> keys() { return rows; }

const Key *keyNamed(std::string_view name)
{
    const auto *row = std::find_if(std::begin(rows), std::end(rows), [&](const Key &key) { return key.name == name; });
    return row == std::end(rows) ? nullptr : row;
}

bool isOnFlip(const Key &key) { return kFlip.contains(key.place); }

Hit hitAt(QPointF point, Posture posture)
{
    for (const Key &key : rows) {
        if (isReachable(key, posture) && isHit(key, point))
            return {Hit::KeyOfPhone, &key};
    }
    if (kScreen.contains(point))
        return {Hit::Screen};
    if (kJack.contains(point))
        return {Hit::Jack};
    if (kHinges.contains(point) || (posture.flipOpen && (kFlip.contains(point) || kHangingFlip.contains(point))))
        return {Hit::Flip};
    // Between the keys a finger that missed one would open the flip: only its rim does.
    constexpr qreal kRim = 9;
    if (kFlip.contains(point) && !kFlip.adjusted(kRim, kRim, -kRim, -kRim).contains(point))
        return {Hit::Flip};
    return {};
}

QRectF pictureRect(QSize size)
{
    if (size.isEmpty())
        return kScreen;
    QRectF rect(QPointF(), QSizeF(size).scaled(kScreen.size(), Qt::KeepAspectRatio));
    rect.moveCenter(kScreen.center());
    return rect;
}

QPoint nearestPixel(QPointF point, QSize size)
{
    const QRectF rect = pictureRect(size);
    const auto along = [](qreal at, qreal length, int pixels) {
        return std::clamp(int(std::floor(at * pixels / length)), 0, std::max(pixels - 1, 0));
    };
    return {along(point.x() - rect.x(), rect.width(), size.width()),
        along(point.y() - rect.y(), rect.height(), size.height())};
}

std::optional<QPoint> pixelAt(QPointF point, QSize size)
{
    if (size.isEmpty() || !pictureRect(size).contains(point))
        return std::nullopt;
    return nearestPixel(point, size);
}

}
