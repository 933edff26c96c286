// Where everything of the drawn phone is, in units of its drawing (a pixel of the phone's screen is one): a table, and
// what lies at a point. No widgets, no devices.
#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <optional>
#include <span>
#include <string_view>

namespace phone {

enum class Side { Left, Up, Right, Down };

struct Key {
    // Arms are the quarters of the ring around the disc.
    enum Shape { Pill, Disc, Arm, Edge };
    enum Ink { Plain, Green, Red };

    std::string_view name; // as `tyx keys list` names it
    QRectF place;
    Shape shape = Pill;
    std::string_view label = {}; // UTF-8
    std::string_view letters = {}; // the small print
    Ink ink = Plain;
    Side side = Side::Left; // of an arm
};

inline constexpr QSizeF kSize{330, 800};
inline constexpr QRectF kBody{22, 46, 286, 682};
inline constexpr QRectF kGlass{34, 58, 262, 366};
inline constexpr QRectF kScreen{45, 86, 240, 320};
inline constexpr QRectF kFlip{26, 430, 278, 284}; // closed: it carries the keypad
inline constexpr qreal kHinge = 722; // the line that the flip turns about
inline constexpr qreal kFlipHanging = 0.24; // of its height is seen when it is open
inline constexpr QRectF kHinges{40, 714, 250, 14};
inline constexpr QRectF kRing{119, 440, 92, 92}; // the direction pad
inline constexpr QRectF kRingHole{145, 466, 40, 40};
inline constexpr QRectF kJack{62, 30, 30, 24}; // where the headset is plugged in
inline constexpr QRectF kAnswerButton{14, 8, 26, 14}; // on the headset's cable

std::span<const Key> keys();
const Key *keyNamed(std::string_view name); // null: not drawn

struct Hit {
    enum What { Nothing, KeyOfPhone, Screen, Flip, Jack };
    What what = Nothing;
    const Key *key = nullptr; // of KeyOfPhone
};

// What the phone can look like.
struct Posture {
    bool flipOpen = false;
    bool headset = false;

    friend bool operator==(const Posture &, const Posture &) = default;
};

// The flip is hit at its rim and at the hinge, and when it is open anywhere where it hangs or was.
Hit hitAt(QPointF point, Posture posture);

bool isOnFlip(const Key &key); // out of reach when that is open

// The pixel of a screen of `size` that is shown at a point; none beside the screen. A screen of other proportions is
// shown whole, in the middle.
std::optional<QPoint> pixelAt(QPointF point, QSize size);
QPoint nearestPixel(QPointF point, QSize size);
QRectF pictureRect(QSize size);

}
