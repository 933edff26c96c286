// The frame around a window, as far as a phone has one.
#pragma once

#include "platform/tyxexport.h"

#include <QRect>
#include <QRegion>

class QPainter;
class QWidget;

// The window server draws no frames: a main window fills the work area and a dialog draws its own border. An
// application installs a decoration to say how much room its own frames take and to paint them
// (QWSApplication::qwsSetDecoration).
class TYX_EXPORT QWSDecoration {
public:
    QWSDecoration() = default;
    virtual ~QWSDecoration();
    QWSDecoration(const QWSDecoration &) = delete;
    QWSDecoration &operator=(const QWSDecoration &) = delete;

    // The frame around `rect`, which is the inside of the window. The base class has no frame.
    virtual QRegion region(const QWidget *window, const QRect &rect) const;
    virtual void paint(QPainter *painter, const QWidget *window);
};
