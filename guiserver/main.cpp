// The phone's GUI server.
#include "appbase/application/zapplication.h"
#include "guiserver/calibrationrescue.h"
#include "guiserver/farewell.h"
#include "guiserver/keyfiles.h"
#include "guiserver/screenservice.h"
#include "guiserver/statusbar.h"
#include "guiserver/terminationsignals.h"
#include "platform/system/commandline.h"
#include "platform/system/lockedfile.h"
#include "platform/window/qwsserver.h"
#include "settings/files/setup_utility.h"
#include "settings/status/statustable.h"
#include "textinput/server/zimserver.h"

#include <QWidget>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <string>

using platform::LockedFile;
using platform::Result;

namespace {

// The options are taken by the application object; here they are explained, and refused when they are wrong.
std::optional<int> checkArguments(int argc, char **argv)
{
    CLI::App program("GUI server of the phone: its screen, its windows, its keys.", "tyx-guiserver");
    std::string platform;
    std::string size;
    std::string group;
    program.add_option("--platform", platform,
        "Where the screen is: offscreen, xcb (a window), vnc or linuxfb; the plug-in's own options follow a colon "
        "(vnc:port=5901). Default: xcb when DISPLAY is set, else offscreen");
    program.add_option("--size", size, "Size of the screen as WIDTHxHEIGHT in pixels (default 240x320)");
    program.add_option("--group", group, "Members of this group may use the message bus too");
    return platform::parse(program, argc, argv);
}

// One phone on a machine: its tables and the files that name them are the machine's, whatever runtime folder a server
// uses. The lock is given back by a server that was killed too; its children do not inherit the descriptor.
Result<LockedFile> claimPhone()
{
    return LockedFile::open(status::kKeyFile, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
}

// True beside another server, whose tables and settings must not be touched. Without the file there is no telling.
bool isRefused(const Result<LockedFile> &claim)
{
    if (claim)
        return false;
    if (claim.error().number == EWOULDBLOCK) {
        std::fprintf(
            stderr, "tyx-guiserver: another phone runs on this machine: its server holds %s\n", status::kKeyFile);
        return true;
    }
    std::fprintf(stderr, "tyx-guiserver: cannot lock %s: %s\n", status::kKeyFile, qPrintable(claim.error().text()));
    return false;
}

void announce()
{
    const QWSServer &server = *QWSServer::instance();
    const QSize size = server.screenWidget()->size();
    std::printf("tyx-guiserver: ready on %s, screen %dx%d, platform %s\n", qPrintable(server.socketPath()),
        size.width(), size.height(), qPrintable(QGuiApplication::platformName()));
    std::fflush(stdout);
}

}

int main(int argc, char **argv)
{
    if (const auto status = checkArguments(argc, argv))
        return *status;
    makeKeyFiles();
    const auto claim = claimPhone();
    if (isRefused(claim))
        return 1;
    SETUP_Utility::setupInitialize(); // what failed has told so, and the phone runs without it
    holdTerminationSignals();
    ZApplication application(argc, argv, ZApplication::GuiServer);
    const TerminationSignals signals;
    QObject::connect(&signals, &TerminationSignals::received, &application, &QCoreApplication::quit);
    QWSServer &server = *QWSServer::instance();
    const StatusBar statusBar(server.screenWidget());
    server.setWorkArea(server.screenWidget()->rect().adjusted(0, StatusBar::kHeight, 0, 0));
    const ScreenService screenService;
    startCalibrationWhenNeeded();
    const ZIMServer inputMethods;
    QObject::connect(&application, &ZApplication::shutdown, &awaitApplications);
    releaseTerminationSignals();
    announce();
    return ZApplication::exec();
}
