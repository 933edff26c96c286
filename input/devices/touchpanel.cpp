#include "input/devices/touchpanel.h"

#include "input/devices/storedcalibration.h"
#include "input/devices/util_touchpanel.h"
#include "platform/bus/qcopchannel.h"
#include "platform/window/qwsserver.h"

#include <memory>

namespace {

std::unique_ptr<UTIL_TouchPanel> thePanel;

}

bool InitializeTouchPanel()
{
    if (!QWSServer::instance())
        return false;
    if (!thePanel)
        thePanel = std::make_unique<UTIL_TouchPanel>();
    return thePanel->isOpen();
}

void DeinitializeTouchPanel() { thePanel.reset(); }

UTIL_TouchPanel *UTIL_TouchPanel::instance() { return thePanel.get(); }

void UTIL_ClearTPCalibrate()
{
    if (thePanel)
        thePanel->clearCalibration();
    else
        QCopChannel::send(UTIL_TouchPanel::kChannel, "clearCalibration()");
}

void UTIL_RestoreTPCalibrate()
{
    if (thePanel)
        thePanel->restoreCalibration();
    else
        QCopChannel::send(UTIL_TouchPanel::kChannel, "restoreCalibration()");
}

bool UTIL_GetTPCalibrate(TP_Calibration_Parameter_T *parameters)
{
    if (!parameters)
        return false;
    if (thePanel)
        thePanel->getCalibration(parameters);
    else
        TyxCalibratedTouchPanel().getCalibration(parameters);
    return true;
}

bool UTIL_SetTPCalibrate(const TP_Calibration_Parameter_T *parameters)
{
    if (!parameters || !storeCalibration(*parameters))
        return false;
    UTIL_RestoreTPCalibrate();
    return true;
}
