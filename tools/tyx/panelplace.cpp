#include "tools/tyx/panelplace.h"

#include "input/devices/storedcalibration.h"

#include <cmath>

namespace tyx {

TP_Calibration_Parameter_T calibrationInForce() { return storedCalibration().value_or(TP_Calibration_Parameter_T{}); }

bool isOnPanel(QPoint place) { return place.x() >= 0 && place.y() >= 0 && place.x() <= 0xFFFF && place.y() <= 0xFFFF; }

std::optional<QPoint> panelPlace(QPoint screen)
{
    const TP_Calibration_Parameter_T p = calibrationInForce();
    const double determinant = double(p.a) * p.e - double(p.b) * p.d;
    if (determinant == 0)
        return std::nullopt;
    const double u = (screen.x() + 0.5) * p.s - p.c; // the middle of the pixel
    const double v = (screen.y() + 0.5) * p.s - p.f;
    const double x = (p.e * u - p.b * v) / determinant;
    const double y = (p.a * v - p.d * u) / determinant;
    if (!(std::abs(x) < 1e6 && std::abs(y) < 1e6))
        return std::nullopt;
    const QPoint place(int(std::floor(x)), int(std::floor(y)));
    return isOnPanel(place) ? std::optional(place) : std::nullopt;
}

}
