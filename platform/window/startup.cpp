#include "platform/window/startup.h"

#include "platform/system/fatal.h"
#include "platform/window/phonescreen.h"
#include "platform/window/serveroptions.h"

#include <QFileInfo>
#include <QLoggingCategory>
#include <QTemporaryFile>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <optional>
#include <private/qguiapplication_p.h>
#include <qpa/qplatformintegration.h>
#include <tuple>

using namespace std::chrono_literals;

namespace startup {

namespace {

using platform::giveUp;

constexpr auto kServerWait = 2s; // a phone starts its applications right behind its server

// Kept outside the application object: it comes before its base class and goes after it.
struct Server {
    ServerOptions options;
    platform::LockedFile claim;
    std::unique_ptr<QTemporaryFile> screenDescription;
};
std::optional<Server> theServer;

void requireRuntimeDirectory()
{
    if (const auto directory = phonescreen::prepareDirectory(); !directory)
        giveUp(QStringLiteral("no directory for sockets (%1); set XDG_RUNTIME_DIR to one of your own")
                   .arg(directory.error().text()),
            1);
}

void useScreenOfPhone()
{
    qputenv("QT_QPA_PLATFORM", "wayland");
    qputenv("WAYLAND_DISPLAY", phonescreen::kSocketName);
    qunsetenv("WAYLAND_SOCKET");
    // Or a window takes itself to be at 0,0, and its menus go astray.
    qputenv("QT_WAYLAND_DISABLE_FIXED_POSITIONS", "1");
    // Pictures go through shared memory. Looking for graphics hardware that a phone has not got takes 25 ms and 20 MiB.
    qputenv("QT_WAYLAND_CLIENT_BUFFER_INTEGRATION", "none");
    qunsetenv("QT_WAYLAND_SHELL_INTEGRATION"); // the server offers one shell, and it is found without being named
}

// The toolkit's own option: the caller wants this client somewhere else.
bool namesPlatform(int argc, char **argv)
{
    return std::any_of(argv + 1, argv + std::max(argc, 1), [](const char *argument) {
        return std::strcmp(argument, "-platform") == 0 || std::strcmp(argument, "--platform") == 0;
    });
}

void prepareClient(int argc, char **argv)
{
    if (namesPlatform(argc, argv))
        return;
    requireRuntimeDirectory();
    if (!phonescreen::waitForServer(kServerWait))
        giveUp(
            QStringLiteral("no window server answers on %1; start tyx-guiserver first").arg(phonescreen::socketPath()),
            1);
    useScreenOfPhone();
}

platform::LockedFile claimScreen()
{
    auto claim = phonescreen::claim();
    if (claim)
        return std::move(*claim);
    if (claim.error().number == EWOULDBLOCK)
        giveUp(QStringLiteral("another window server runs on %1").arg(phonescreen::socketPath()), 1);
    giveUp(QStringLiteral("cannot lock %1: %2").arg(phonescreen::socketPath(), claim.error().text()), 1);
}

std::unique_ptr<QTemporaryFile> describeScreen(const ServerOptions &options)
{
    const QString folder = QFileInfo(phonescreen::socketPath()).path();
    auto file = std::make_unique<QTemporaryFile>(folder + QStringLiteral("/tyx-screen-XXXXXX.json"));
    if (!file->open() || file->write(options.screenDescription()) < 0 || !file->flush())
        giveUp(QStringLiteral("cannot write in %1: %2").arg(folder, file->errorString()), 1);
    return file;
}

void requireFrameBuffer(const ServerOptions &options)
{
    QString device = QStringLiteral("/dev/fb0");
    for (const QByteArray &option : options.platform.split(':')) {
        if (option.startsWith("fb="))
            device = QString::fromLocal8Bit(option.mid(3));
        else if (option.startsWith("/dev/"))
            device = QString::fromLocal8Bit(option);
    }
    if (!QFileInfo::exists(device))
        giveUp(QStringLiteral("--platform linuxfb: there is no %1 on this machine").arg(device), 1);
}

std::optional<platform::GiveUpOnFatal> whileStarting;

void prepareServer(int &argc, char **argv)
{
    const auto options = takeServerOptions(argc, argv);
    if (!options)
        giveUp(options.error(), 2);
    if (options->plugin() == "linuxfb")
        requireFrameBuffer(*options);
    requireRuntimeDirectory();
    whileStarting.emplace(1, "name another screen with --platform");
    theServer.emplace(Server{*options, claimScreen(), nullptr});
    if (options->plugin() == "offscreen")
        theServer->screenDescription = describeScreen(*options);
    const QString description = theServer->screenDescription ? theServer->screenDescription->fileName() : QString();
    qputenv("QT_QPA_PLATFORM", options->forToolkit(description));
    if (!qEnvironmentVariableIsSet("QT_FONT_DPI"))
        qputenv("QT_FONT_DPI", "96"); // as in the clients, whatever the display is that stands for the screen
}

}

int &prepare(int &argc, char **argv, QWSApplication::Type type)
{
    switch (type) {
    case QWSApplication::Tty:
        qputenv("QT_QPA_PLATFORM", "offscreen");
        break;
    case QWSApplication::GuiClient:
        prepareClient(argc, argv);
        break;
    case QWSApplication::GuiServer:
        prepareServer(argc, argv);
        break;
    }
    return argc;
}

// The toolkit looks for graphics hardware once, when it first wants to know, and would complain that there is none.
static void lookForHardwareQuietly()
{
    static QLoggingCategory::CategoryFilter others;
    others = QLoggingCategory::installFilter([](QLoggingCategory *category) {
        if (others) // it is asked for all categories before the old one is known; they keep what they have
            others(category);
        if (std::strcmp(category->categoryName(), "qt.qpa.wayland") == 0)
            category->setEnabled(QtWarningMsg, false);
    });
    std::ignore = QGuiApplicationPrivate::platformIntegration()->hasCapability(QPlatformIntegration::OpenGL);
    QLoggingCategory::installFilter(others);
}

void settle()
{
    if (theServer)
        theServer->screenDescription.reset();
    useScreenOfPhone();
    if (QGuiApplication::platformName() == QLatin1String("wayland"))
        lookForHardwareQuietly();
}

void serverStarted() { whileStarting.reset(); }

const ServerOptions &serverOptions()
{
    return theServer->options; // NOLINT(bugprone-unchecked-optional-access): only a server asks, after prepare()
}

}
