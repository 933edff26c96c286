// A touch panel whose points are made pixels by a calibration.
#pragma once

#include "input/logic/tpcalibrationparameter.h"
#include "platform/tyxexport.h"
#include "platform/window/qwspointercalibrationdata.h"

// Names are fixed. A null pointer is ignored everywhere.
class TYX_EXPORT TyxCalibratedTouchPanel {
public:
    TyxCalibratedTouchPanel(); // with the stored calibration
    virtual ~TyxCalibratedTouchPanel();
    TyxCalibratedTouchPanel(const TyxCalibratedTouchPanel &) = delete;
    TyxCalibratedTouchPanel &operator=(const TyxCalibratedTouchPanel &) = delete;

    // From what the device counts to pixels of the screen, and possibly beyond its edges; towards zero.
    [[nodiscard]] QPoint transform(const QPoint &device) const;

    // The same with any calibration: `raw` becomes the screen point, which is the answer too.
    static QPoint CalculatePoint(QPoint &raw, TP_Calibration_Parameter_T &parameters);

    // Computes the calibration from the top left and the bottom right pair of points, along the axes. Points that give
    // none that could be used (equal coordinates) change nothing.
    virtual void calibrate(QWSPointerCalibrationData *points);

    // Fills in the top left and the bottom right device point that belong to the screen points; with a = 0 or e = 0
    // there are none, and nothing is changed.
    void getCalibration(QWSPointerCalibrationData *points) const;
    void getCalibration(TP_Calibration_Parameter_T *parameters) const;

    void clearCalibration(); // every point is mapped to itself

    // Reads "pointercal" of the settings directory, or /etc/pointercal if that does not exist. What cannot be read, and
    // what is no calibration, changes nothing.
    void readCalibration();

    // Promised: stores nothing, so that calibrate() is in memory only. UTIL_SetTPCalibrate() stores.
    virtual void writeCalibration();

private:
    TP_Calibration_Parameter_T m_calibration;
};
