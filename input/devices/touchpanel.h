// The phone's touch panel and its calibration, for every process. Names are fixed.
//
// In the GUI server these work on its panel; in any other process they tell the server, over its channel
// "TYX/TouchPanel". A null pointer makes them answer false.
#pragma once

#include "input/logic/tpcalibrationparameter.h"
#include "platform/tyxexport.h"

// Makes the panel of the GUI server, whose samples then move the pen; the server does so when it starts. True when its
// device is open. In any other process it does nothing and answers false: a sample can be read once only.
TYX_EXPORT bool InitializeTouchPanel();
TYX_EXPORT void DeinitializeTouchPanel();

// No calibration at all, until one is set or restored: points are what the device counts.
TYX_EXPORT void UTIL_ClearTPCalibrate();

// The stored one is in force again.
TYX_EXPORT void UTIL_RestoreTPCalibrate();

// The one that is in force; outside of the GUI server the stored one.
TYX_EXPORT bool UTIL_GetTPCalibrate(TP_Calibration_Parameter_T *parameters);

// Stores it, and puts it in force. False, and nothing has changed, for one with a, e or s = 0, with which nobody could
// touch anything, and when it cannot be stored.
TYX_EXPORT bool UTIL_SetTPCalibrate(const TP_Calibration_Parameter_T *parameters);
