#include "platform/window/qwsevent.h"

QWSEvent::~QWSEvent() = default;

const QWSKeyEvent *QWSEvent::asKey() const { return dynamic_cast<const QWSKeyEvent *>(this); }

const QWSMouseEvent *QWSEvent::asMouse() const { return dynamic_cast<const QWSMouseEvent *>(this); }

const QWSFocusEvent *QWSEvent::asFocus() const { return dynamic_cast<const QWSFocusEvent *>(this); }
