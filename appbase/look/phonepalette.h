// The colours of the phone.
#pragma once

#include <QMap>
#include <QPalette>
#include <QString>
#include <optional>

QPalette builtInPalette();

// The built-in palette with the colours of a group: keys are names of QPalette::ColorRole, values "#rrggbb". A key that
// is no role is skipped. Nothing when a value is no colour: half a theme may have texts that cannot be read.
std::optional<QPalette> parsePalette(const QMap<QString, QString> &colors);

// The built-in palette with the colours of the skin that are named after roles.
QPalette skinPalette();

// The palette of "/tmp/colorpalette.cfg", read afresh; that of the skin when it is missing or broken.
QPalette currentPalette();
