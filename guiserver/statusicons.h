// The pictures of the status bar, pixel by pixel: they are too small to be scaled.
#pragma once

#include <QPoint>

class QPainter;

namespace icons {

enum class Sign { Roaming, Headset, Lock, Call, IncomingCall };

inline constexpr int kHeight = 11; // of all of them
inline constexpr int kSignalWidth = 14;
inline constexpr int kBatteryWidth = 19;

int width(Sign sign);
void draw(QPainter &painter, QPoint topLeft, Sign sign);
void drawSignal(QPainter &painter, QPoint topLeft, int bars); // 0 to 5
void drawBattery(QPainter &painter, QPoint topLeft, int percent, bool charging); // below 0: not known

}
