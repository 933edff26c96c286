#include "guiserver/calibrationrescue.h"

#include "input/devices/util_touchpanel.h"
#include "platform/bus/qcopchannel.h"

#include <QCoreApplication>
#include <QProcess>
#include <cstdio>

namespace {

void start()
{
    if (QCopChannel::isRegistered("TYX/Application/tyx-calibrate"))
        return;
    const QString program = QCoreApplication::applicationDirPath() + QStringLiteral("/tyx-calibrate");
    if (!QProcess::startDetached(program, {}))
        std::fprintf(stderr, "tyx-guiserver: the touch panel needs a calibration, and %s cannot be started\n",
            qPrintable(program));
}

}

void startCalibrationWhenNeeded()
{
    if (const UTIL_TouchPanel *panel = UTIL_TouchPanel::instance())
        QObject::connect(panel, &UTIL_TouchPanel::calibrationNeeded, &start);
}
