// The names of keys on a command line.
#pragma once

#include <QString>
#include <optional>

namespace tyx {

// "Return", "F6", "PgUp", "a", "Ctrl+Shift+Left", "+": the names of Qt::Key and their usual short forms, in any case.
std::optional<QKeyCombination> keyFromName(const QString &name);

}
