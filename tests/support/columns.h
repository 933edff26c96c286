// The table of inputs of a test.
#pragma once

#include <QTest>

// Makes columns of these types. What it answers adds a row: a name, and a value for each column.
template <typename... Type, typename... Name> auto columns(const Name &...names)
{
    (QTest::addColumn<Type>(names), ...);
    return [](const char *row, const Type &...values) { (QTest::newRow(row) << ... << values); };
}
