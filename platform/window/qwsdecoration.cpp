#include "platform/window/qwsdecoration.h"

QWSDecoration::~QWSDecoration() = default;

QRegion QWSDecoration::region(const QWidget *, const QRect &) const { return {}; }

void QWSDecoration::paint(QPainter *, const QWidget *) { }
