// Where the touch panel has to be touched for a place of the screen.
#pragma once

#include "input/logic/calibration.h"

#include <QPoint>
#include <optional>

namespace tyx {

TP_Calibration_Parameter_T calibrationInForce(); // the stored one; without one a place is a pixel

// The place of the panel that is shown as the pixel `screen`, or the nearest there is; none when the panel does not
// reach it.
std::optional<QPoint> panelPlace(QPoint screen);

bool isOnPanel(QPoint place);

}
