// tyx-phone, what `tyx phone` starts: the phone in a window of the desktop. It attaches to the GUI server that runs
// beside it, and may come and go as it likes.
#include "platform/system/commandline.h"
#include "platform/system/endsignals.h"
#include "platform/system/fatal.h"
#include "tools/phone/phonewindow.h"

#include <QApplication>
#include <QSocketNotifier>
#include <cerrno>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

namespace {

constexpr int kFailed = 3;
constexpr char kCure[] = "start it on a desktop, or set DISPLAY to one that you may use";

struct Options {
    std::string name;
    std::string folder = ".";
};

bool hasDisplay() { return std::getenv("QT_QPA_PLATFORM") || std::getenv("DISPLAY") || std::getenv("WAYLAND_DISPLAY"); }

int run(int argc, char **argv, const Options &options)
{
    auto orders = Hand::start();
    if (!orders)
        platform::giveUp(orders.error().text(), kFailed);
    const platform::EndSignals signals; // before threads are made, which hold them then too
    std::optional<platform::GiveUpOnFatal> whileStarting(std::in_place, kFailed, kCure);
    QApplication application(argc, argv);
    whileStarting.reset();
    QApplication::setStyle(QStringLiteral("fusion"));
    // Ends in order when it is told to: the recorder is ended, the hand lets go.
    const QSocketNotifier end(signals.descriptor(), QSocketNotifier::Read);
    QObject::connect(&end, &QSocketNotifier::activated, &application, [] { QCoreApplication::quit(); });
    PhoneWindow window(
        std::move(*orders), {QString::fromStdString(options.name), QString::fromStdString(options.folder)});
    window.show();
    return QApplication::exec();
}

}

int main(int argc, char **argv)
{
    static char name[] = "tyx phone";
    program_invocation_short_name = name; // in errors, as it is typed
    Options options;
    CLI::App program("Shows the phone that runs here in a window, with its keys, its flip and its state.", name);
    program.add_option("--name", options.name, "A name for the window's title, where several phones run");
    program.add_option("--folder", options.folder, "Where screenshots and recordings are put first (default: here)");
    if (const auto status = platform::parse(program, argc, argv))
        return *status;
    if (!hasDisplay())
        platform::giveUp(QStringLiteral("there is no display; ") + QString::fromUtf8(kCure), kFailed);
    return run(argc, argv, options);
}
