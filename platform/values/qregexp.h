// The name that interfaces know regular expressions by.
#pragma once

#include <QRegularExpression>

using QRegExp = QRegularExpression;
