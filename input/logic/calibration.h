// The arithmetic of a touch panel's calibration. Device coordinates are what the panel counts, screen coordinates are
// pixels; docs/formats/pointercal.md tells how a calibration is stored.
#pragma once

#include "input/logic/tpcalibrationparameter.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QPoint>
#include <optional>
#include <utility>

namespace calibration {

using Parameters = TP_Calibration_Parameter_T;

// Divisions drop what is behind the point, towards zero. Nothing overflows: what does not fit a coordinate is the
// largest or smallest one. With s = 0 a point is mapped to itself.
QPoint map(const Parameters &parameters, QPoint device);

struct Corners {
    QPoint topLeft;
    QPoint bottomRight;
};

// Along the axes: no rotation, no shear. None when two device or screen coordinates are equal, or so near or so far
// that a parameter is 0 or does not fit: nobody could use the panel then.
std::optional<Parameters> fromCorners(const Corners &device, const Corners &screen);

// The device points that fromCorners() would have had; none when a, e or s is 0.
std::optional<Corners> deviceCorners(const Parameters &parameters, const Corners &screen);

// Seven decimal numbers of 32 bits with white space between them; what follows is not looked at. None for anything
// else, and for s = 0.
std::optional<Parameters> parse(QByteArrayView text);
QByteArray format(const Parameters &parameters);

}
