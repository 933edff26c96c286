// The driver of the phone's touch panel.
#pragma once

#include "input/devices/tyxcalibratedtouchpanel.h"
#include "platform/tyxexport.h"

#include <QObject>
#include <memory>

class TouchPanelData;

// One in the GUI server, see InitializeTouchPanel(). Reads /dev/tyx_ts (docs/input.md tells its records), filters the
// samples, and moves the pen of the window server. GUI thread only.
//
// A calibration application asks for what the device counts ("capture(QCString)" on "TYX/TouchPanel"): the pen then
// goes to the channel that it names, and to no window, until that channel is gone.
class TYX_EXPORT UTIL_TouchPanel : public QObject, public TyxCalibratedTouchPanel { // name fixed
    Q_OBJECT

public:
    // What it is told: "capture(QCString)", "clearCalibration()" and "restoreCalibration()".
    static constexpr char kChannel[] = "TYX/TouchPanel";

    UTIL_TouchPanel();
    ~UTIL_TouchPanel() override;

    static UTIL_TouchPanel *instance(); // null when there is none

    [[nodiscard]] bool isOpen() const; // false while the device is missing, also when it went away
    void restoreCalibration(); // the stored one, and without one none

public Q_SLOTS:
    void ReadTouchPanelData(); // the device has samples; called when it does

Q_SIGNALS:
    // The pen was held for three seconds far outside of the screen: either the panel was never calibrated, or so badly
    // that nothing can be reached. The pen that is there moves nothing.
    void calibrationNeeded();

private:
    friend class TouchPanelData;
    std::unique_ptr<TouchPanelData> d;
};
