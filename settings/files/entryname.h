// Names that users choose, as keys and groups of a settings file. Not installed.
#pragma once

#include <QString>

namespace settings {

// A file cannot hold every name as a key: '=' would end it, '[' begin a group, blanks at its ends would go. Such
// characters, control characters and '%' become '%' and four hexadecimal digits; everything else stays readable.
QString entryName(const QString &name);
QString fromEntryName(const QString &entry);

}
