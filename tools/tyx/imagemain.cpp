// tyx-images: what `tyx skin` and `tyx share` start.
#include "tools/tyx/command.h"
#include "tools/tyx/run.h"

#include <QGuiApplication>
#include <memory>
#include <string_view>

namespace {

std::unique_ptr<QCoreApplication> application(int &argc, char **argv)
{
    if (argc < 3 || argv[2] != std::string_view("sheet"))
        return std::make_unique<QCoreApplication>(argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen"); // for its fonts; no window is opened
    const auto before = qInstallMessageHandler([](auto...) {}); // a missing runtime directory does not matter here
    auto made = std::make_unique<QGuiApplication>(argc, argv);
    qInstallMessageHandler(before);
    return made;
}

constexpr tyx::AddCommand kCommands[] = {tyx::addSkin, tyx::addShare};

}

int main(int argc, char **argv)
{
    const auto images = application(argc, argv);
    return tyx::run(argc, argv, kCommands);
}
