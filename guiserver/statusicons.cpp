#include "guiserver/statusicons.h"

#include <QColor>
#include <QPainter>
#include <array>
#include <string_view>

namespace icons {

namespace {

constexpr QRgb kWhite = 0xffffffff;
constexpr QRgb kDim = 0xff6c7a88;
constexpr QRgb kGreen = 0xff6fdc6f;
constexpr QRgb kAmber = 0xffffc83c;
constexpr QRgb kRed = 0xffff5a4a;

constexpr int kLowPercent = 15;

struct Picture {
    QRgb color;
    std::array<std::string_view, kHeight> rows;
};

// clang-format off
constexpr Picture roaming{kAmber, {
    "######.",
    "#######",
    "##...##",
    "##...##",
    "##...##",
    "######.",
    "#####..",
    "##.##..",
    "##..##.",
    "##...##",
    "##...##"}};
constexpr Picture headset{kWhite, {
    "...#####...",
    "..#######..",
    ".##.....##.",
    ".#.......#.",
    "##.......##",
    "#.........#",
    "###.....###",
    "###.....###",
    "###.....###",
    "###.....###",
    ".##.....##."}};
constexpr Picture lock{kWhite, {
    "..#####..",
    ".##...##.",
    ".#.....#.",
    ".#.....#.",
    ".#.....#.",
    "#########",
    "#########",
    "####.####",
    "####.####",
    "#########",
    "#########"}};
constexpr Picture call{kGreen, {
    "##........",
    "####......",
    "####......",
    "####......",
    ".##.......",
    ".###......",
    "..###..#..",
    "...#######",
    "....######",
    ".....#####",
    ".......##."}};
constexpr Picture incomingCall{kAmber, {
    "##........#",
    "####.....#.",
    "####..#.#..",
    "####..##...",
    ".##...###..",
    ".###.......",
    "..###..#...",
    "...#######.",
    "....######.",
    ".....#####.",
    ".......##.."}};
constexpr std::array bolt{
    "..##",
    ".##.",
    "####",
    ".##.",
    "##.."};
// clang-format on

constexpr const Picture &pictureOf(Sign sign)
{
    switch (sign) {
    case Sign::Roaming:
        return roaming;
    case Sign::Headset:
        return headset;
    case Sign::Lock:
        return lock;
    case Sign::Call:
        return call;
    case Sign::IncomingCall:
        break;
    }
    return incomingCall;
}

void drawRow(QPainter &painter, QPoint left, std::string_view row, QColor color)
{
    for (std::size_t x = 0; x < row.size(); ++x) {
        if (row[x] == '#')
            painter.fillRect(left.x() + int(x), left.y(), 1, 1, color);
    }
}

}

int width(Sign sign) { return int(pictureOf(sign).rows[0].size()); }

void draw(QPainter &painter, QPoint topLeft, Sign sign)
{
    const Picture &picture = pictureOf(sign);
    for (int y = 0; y < kHeight; ++y)
        drawRow(painter, topLeft + QPoint(0, y), picture.rows[std::size_t(y)], QColor(picture.color));
}

void drawSignal(QPainter &painter, QPoint topLeft, int bars)
{
    constexpr int kBars = 5;
    for (int bar = 0; bar < kBars; ++bar) {
        const int height = 3 + 2 * bar;
        painter.fillRect(
            topLeft.x() + 3 * bar, topLeft.y() + kHeight - height, 2, height, QColor(bar < bars ? kWhite : kDim));
    }
}

void drawBattery(QPainter &painter, QPoint topLeft, int percent, bool charging)
{
    constexpr int kInside = 13; // pixels that the charge fills
    const QRect body(topLeft.x(), topLeft.y() + 1, kInside + 4, 9);
    const bool low = percent <= kLowPercent && !charging;
    const QColor outline(percent < 0 ? kDim : low ? kRed : kWhite);
    painter.fillRect(body, outline);
    painter.fillRect(body.right() + 1, body.top() + 3, 2, 3, outline);
    painter.fillRect(body.adjusted(1, 1, -1, -1), QColor(0xff26313d));
    const QRgb color = charging ? kGreen : low ? kRed : kWhite;
    const int filled = percent <= 0 ? 0 : std::max(1, percent * kInside / 100);
    painter.fillRect(body.left() + 2, body.top() + 2, filled, 5, QColor(color));
    if (!charging)
        return;
    // Dark where the charge is light, and light where it is not there yet.
    const int left = body.left() + 6;
    for (int y = 0; y < int(bolt.size()); ++y) {
        const QPoint row(left, body.top() + 2 + y);
        drawRow(painter, row, bolt[std::size_t(y)], QColor(filled > 6 ? 0xff10202c : kAmber));
    }
}

}
