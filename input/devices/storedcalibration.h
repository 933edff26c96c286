// The calibration of the touch panel as it is stored.
#pragma once

#include "input/logic/calibration.h"

#include <optional>

// None when there is no file, when it cannot be read, and when it is no calibration.
std::optional<TP_Calibration_Parameter_T> storedCalibration();

// False, and nothing has changed, for one with which nobody could touch anything, and when it cannot be stored.
bool storeCalibration(const TP_Calibration_Parameter_T &parameters);
