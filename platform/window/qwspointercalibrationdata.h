// Where the user touched, and where on the screen that was meant to be.
#pragma once

#include <QPoint>

struct QWSPointerCalibrationData {
    enum Location { TopLeft, BottomLeft, BottomRight, TopRight, Center, LastLocation = Center };

    QPoint devPoints[LastLocation + 1]; // as the device counts
    QPoint screenPoints[LastLocation + 1]; // in pixels
};
