// The calibration of a touch panel.
#pragma once

#include <QtGlobal>

// A device point (x, y) is the screen point ((a x + b y + c) / s, (d x + e y + f) / s).
struct TP_Calibration_Parameter_T { // name and order fixed
    qint32 a = 1;
    qint32 b = 0;
    qint32 c = 0;
    qint32 d = 0;
    qint32 e = 1;
    qint32 f = 0;
    qint32 s = 1;

    bool operator==(const TP_Calibration_Parameter_T &) const = default;
};
