// An application without a screen, for tests: says "ready", then lives until a message or a signal ends it.
// With the argument "keep" it asked to survive the end of the application manager, and tells an orderly end by status
// 5; with "tell" it prints what it hears.
#include <QCoreApplication>
#include <QEvent>
#include <QWidget>
#include <ZApplication>
#include <cstdio>
#include <cstring>

namespace {

constexpr int kOrderlyEnd = 5;

void print(const char *what, const QByteArray &text)
{
    std::printf("%s %s\n", what, text.constData());
    std::fflush(stdout);
}

// Tells the toolkit's own word for it whenever the language changes.
class Cancel : public QWidget {
protected:
    void changeEvent(QEvent *event) override
    {
        if (event->type() == QEvent::LanguageChange)
            print("language", QCoreApplication::translate("QPlatformTheme", "Cancel").toUtf8());
    }
};

void tell(ZApplication &app)
{
    QObject::connect(&app, &ZApplication::signalOpenDoc, [](const QString &document) {
        print("open", document.toUtf8());
        // The next message arrives while this one is still being handled.
        if (document == QStringLiteral("in a dialog"))
            QCoreApplication::processEvents();
        print("opened", document.toUtf8());
    });
    QObject::connect(&app, &ZApplication::appMessage,
        [](const QCString &message, const QByteArray &data) { print("app", message + ' ' + data.toHex()); });
    QObject::connect(&app, &ZApplication::quickQuit, [] { print("quit", {}); });
}

}

int main(int argc, char **argv)
{
    ZApplication app(argc, argv, ZApplication::Tty);
    const char *mode = argc > 1 ? argv[1] : "";
    const bool keep = std::strcmp(mode, "keep") == 0;
    if (keep)
        DisableAMClosedRestart();
    if (std::strcmp(mode, "tell") == 0)
        tell(app);
    const Cancel cancel;
    std::puts("ready");
    std::fflush(stdout);
    const int result = ZApplication::exec();
    return keep ? kOrderlyEnd : result;
}
