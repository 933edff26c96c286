// A channel's messages as rows, and the one way to act on them.
#pragma once

#include "platform/values/qcstring.h"

#include <QByteArray>
#include <QByteArrayView>
#include <algorithm>
#include <span>

// A message name and who handles it. A handler reads all its arguments, then acts; when they are not all there it does
// nothing.
template <typename Target> struct Route {
    QByteArrayView message;
    void (Target::*handle)(const QByteArray &arguments);
};

// Calls the first row with that name; false when there is none. Rows are compared in their order, exactly.
template <typename Target>
bool dispatch(
    std::span<const Route<Target>> routes, Target &target, const QCString &message, const QByteArray &arguments)
{
    const auto row = std::ranges::find(routes, QByteArrayView(message), &Route<Target>::message);
    if (row == routes.end())
        return false;
    (target.*row->handle)(arguments);
    return true;
}
