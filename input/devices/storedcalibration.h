// The calibration of the touch panel as it is stored.
#pragma once

#include "input/logic/calibration.h"
#include "platform/system/result.h"

#include <QString>
#include <optional>

QString calibrationFile(); // where it is stored

// None when there is no file, when it cannot be read, and when it is no calibration.
std::optional<TP_Calibration_Parameter_T> storedCalibration();

// EINVAL for one with which nobody could touch anything. After an error the file is what it was.
platform::Result<> storeCalibration(const TP_Calibration_Parameter_T &parameters);
