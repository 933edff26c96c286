// The calibration of a touch panel.
#pragma once

#include <QtGlobal>

// A device point (x, y) is the screen point ((a x + b y + c) / s, (d x + e y + f) / s).
//
// The arithmetic is that of integers, and rounds towards zero: a large s makes fine steps of the others possible. With
// s = 0, and as it is made, every point is mapped to itself.
struct TP_Calibration_Parameter_T { // name and order fixed
    // As in the formula; "pointercal" has them in this order.
    qint32 a = 1;
    qint32 b = 0;
    qint32 c = 0;
    qint32 d = 0;
    qint32 e = 1;
    qint32 f = 0;
    qint32 s = 1;

    // Of the numbers: twice all of them is the same mapping and not equal.
    bool operator==(const TP_Calibration_Parameter_T &) const = default;
};
