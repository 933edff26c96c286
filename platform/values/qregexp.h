// The name that interfaces know regular expressions by.
#pragma once

#include <QRegularExpression>

// Patterns are those of QRegularExpression, in Perl's syntax; there are no wildcards.
using QRegExp = QRegularExpression;
