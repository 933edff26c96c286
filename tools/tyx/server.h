// The GUI server as the tools see it: whether one runs, and what it answers.
#pragma once

#include "platform/system/result.h"
#include "platform/values/qcstring.h"

#include <QByteArray>
#include <QString>
#include <chrono>
#include <optional>

namespace tyx {

// What to do when no phone runs.
inline constexpr char kStartIt[] =
    "start tyx-guiserver, on a desktop in a shell of tyx-sandbox (of the source tree: scripts/run.sh)";

// For people, with the cure: why the bus cannot be used, by the error of opening it; without one: why nobody has the
// channel of a GUI server.
QString whyNoServer(const std::optional<platform::SysError> &error = std::nullopt);

struct Reply {
    QCString message;
    QByteArray content;
};

// Sends a request to the server's TYX/Screen and waits for the answer: the arguments are the name of a channel to
// answer to, and those of `arguments`. None when there is no answer in time.
std::optional<Reply> askServer(
    const QCString &request, const QByteArray &arguments, std::chrono::milliseconds patience);

}
