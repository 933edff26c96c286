// Where the user touched, and where on the screen that was meant to be.
#pragma once

#include <QPoint>

// Of each of five places two points: what the device counted there, and the pixel that the user was asked to touch.
// TyxCalibratedTouchPanel uses two of them.
struct QWSPointerCalibrationData {
    // The place of a pair in both arrays.
    enum Location { TopLeft, BottomLeft, BottomRight, TopRight, Center, LastLocation = Center };

    QPoint devPoints[LastLocation + 1]; // as the device counts
    QPoint screenPoints[LastLocation + 1]; // in pixels
};
