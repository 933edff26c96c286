#include "platform/window/windowframe.h"

#include "platform/window/qwsdecoration.h"

#include <QLayout>
#include <QPaintEvent>
#include <QPainter>
#include <QVariant>
#include <QWidget>

namespace windowframe {

namespace {

constexpr char kMargins[] = "_tyx_frame"; // of the window: what its frame takes of its contents margins

QMargins marginsOf(const QWidget &window) { return window.property(kMargins).value<QMargins>(); }

QMargins wantedMargins(const QWSDecoration &decoration, const QWidget &window)
{
    if (!window.layout())
        return {};
    const QRect inside = window.rect();
    const QRect outside = decoration.region(&window, inside).boundingRect();
    if (outside.isEmpty())
        return {};
    return {inside.left() - outside.left(), inside.top() - outside.top(), outside.right() - inside.right(),
        outside.bottom() - inside.bottom()};
}

void adjust(const QWSDecoration &decoration, QWidget &window)
{
    const QMargins before = marginsOf(window);
    const QMargins wanted = wantedMargins(decoration, window);
    if (before == wanted)
        return;
    window.setProperty(kMargins, QVariant::fromValue(wanted));
    window.setContentsMargins(window.contentsMargins() - before + wanted);
    window.update();
}

}

void followEvent(QWSDecoration &decoration, QWidget &window, const QEvent &event)
{
    switch (event.type()) {
    case QEvent::Polish:
    case QEvent::WindowTitleChange:
    case QEvent::FontChange:
        if (window.testAttribute(Qt::WA_WState_Polished))
            adjust(decoration, window);
        window.update();
        break;
    case QEvent::Paint:
        if (!marginsOf(window).isNull()) {
            QPainter painter(&window);
            painter.setClipRegion(static_cast<const QPaintEvent &>(event).region());
            decoration.paint(&painter, &window);
        }
        break;
    default:
        break;
    }
}

}
