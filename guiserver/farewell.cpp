#include "guiserver/farewell.h"

#include "platform/bus/busbroker.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <chrono>

namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 3s; // an application that asks its user something then has had its time
constexpr auto kLookAgain = 10ms;

bool areThereApplications()
{
    const auto all = platform::BusBroker::hosted()->registrations();
    const auto own = quint32(QCoreApplication::applicationPid());
    return std::any_of(all.begin(), all.end(),
        [own](const auto &entry) { return entry.first == "TYX/System" && entry.second != own; });
}

}

void awaitApplications()
{
    QEventLoop loop;
    QTimer::singleShot(kPatience, &loop, &QEventLoop::quit);
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&loop] {
        if (!areThereApplications())
            loop.quit();
    });
    look.start(kLookAgain);
    loop.exec();
}
