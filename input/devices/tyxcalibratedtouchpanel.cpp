#include "input/devices/tyxcalibratedtouchpanel.h"

#include "input/devices/storedcalibration.h"

namespace {

using Data = QWSPointerCalibrationData;

calibration::Corners corners(const QPoint (&points)[Data::LastLocation + 1])
{
    return {points[Data::TopLeft], points[Data::BottomRight]};
}

}

TyxCalibratedTouchPanel::TyxCalibratedTouchPanel()
{
    clearCalibration();
    readCalibration();
}

TyxCalibratedTouchPanel::~TyxCalibratedTouchPanel() = default;

QPoint TyxCalibratedTouchPanel::transform(const QPoint &device) const
{
    return calibration::map(m_calibration, device);
}

QPoint TyxCalibratedTouchPanel::CalculatePoint(QPoint &raw, TP_Calibration_Parameter_T &parameters)
{
    return raw = calibration::map(parameters, raw);
}

void TyxCalibratedTouchPanel::calibrate(QWSPointerCalibrationData *points)
{
    const auto computed =
        points ? calibration::fromCorners(corners(points->devPoints), corners(points->screenPoints)) : std::nullopt;
    if (!computed)
        return;
    m_calibration = *computed;
    writeCalibration();
}

void TyxCalibratedTouchPanel::getCalibration(QWSPointerCalibrationData *points) const
{
    const auto device =
        points ? calibration::deviceCorners(m_calibration, corners(points->screenPoints)) : std::nullopt;
    if (!device)
        return;
    points->devPoints[Data::TopLeft] = device->topLeft;
    points->devPoints[Data::BottomRight] = device->bottomRight;
}

void TyxCalibratedTouchPanel::getCalibration(TP_Calibration_Parameter_T *parameters) const
{
    if (parameters)
        *parameters = m_calibration;
}

void TyxCalibratedTouchPanel::clearCalibration() { m_calibration = {}; }

void TyxCalibratedTouchPanel::readCalibration()
{
    if (const auto stored = storedCalibration())
        m_calibration = *stored;
}

void TyxCalibratedTouchPanel::writeCalibration() { }
