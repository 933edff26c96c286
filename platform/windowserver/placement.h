// Where on the screen a window goes. Pure arithmetic.
#pragma once

#include <QRect>
#include <Qt>

enum class WindowKind {
    Main, // fills the work area
    Frameless, // keeps its own size and place
    Dialog,
    Popup, // menus and lists
    ToolTip
};

WindowKind kindOf(Qt::WindowFlags flags);

struct Surroundings {
    QRect screen;
    QRect workArea; // inside the screen
};

struct Wishes {
    WindowKind kind = WindowKind::Main;
    bool fullScreen = false;
    bool centred = false; // not placed yet: a dialog goes to the middle
    QRect wanted;
};

QRect place(const Wishes &wishes, const Surroundings &surroundings);
