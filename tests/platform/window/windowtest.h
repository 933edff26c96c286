// A window server in the test's own process, and real clients that the test leads.
#pragma once

#include "platform/system/keyfile.h"
#include "platform/window/qwsapplication.h"
#include "platform/window/qwsserver.h"

#include <QProcess>
#include <QTest>

// The status bar's height; what is below it is the work area of these tests.
inline constexpr int kBarHeight = 20;
inline constexpr QRect kScreen(0, 0, 240, 320);
inline constexpr QRect kWorkArea(0, kBarHeight, 240, 320 - kBarHeight);

inline QWSServer &server() { return *QWSServer::instance(); }

// A program started by the test. While it waits for a line it runs the event loop, in which the server works.
class Client {
public:
    explicit Client(
        const QString &program = QStringLiteral(TYX_BINARY_DIR "/tests/windowpeer"), const QStringList &arguments = {})
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(program, arguments);
    }
    ~Client()
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    Client(const Client &) = delete;
    Client &operator=(const Client &) = delete;

    void tell(const QString &command) { m_process.write(command.toUtf8() + '\n'); }

    // True once a line that begins with `line` came; the lines before it are dropped.
    bool says(const QString &line)
    {
        return QTest::qWaitFor(
            [&] {
                while (m_process.canReadLine()) {
                    m_line = QString::fromUtf8(m_process.readLine()).trimmed();
                    if (m_line == line || m_line.startsWith(line + u' '))
                        return true;
                }
                return false;
            },
            20'000);
    }
    bool does(const QString &command) // and says so
    {
        tell(command);
        return says(QStringLiteral("done ") + command.section(u' ', 1, 1));
    }
    // Makes a window and waits until the server shows it; a main window until it drew itself in its place.
    bool shows(
        const QString &name, const QString &kind, const QString &colour = QStringLiteral("red"), QSize size = {100, 60})
    {
        tell(QStringLiteral("make %1 %2 %3 %4 %5").arg(name, kind).arg(size.width()).arg(size.height()).arg(colour));
        if (!says(QStringLiteral("made ") + name) || !does(QStringLiteral("show ") + name))
            return false;
        const bool fills = kind == QLatin1String("main");
        return QTest::qWaitFor(
            [&] {
                const QWSWindow *shown = window(name);
                return shown && shown->isVisible() && (!fills || shown->geometry() == server().workArea());
            },
            20'000);
    }
    QString line() const { return m_line; } // the one that says() found

    QWSWindow *window(const QString &name) const
    {
        for (QWSWindow *window : server().clientWindows()) {
            if (window->clientPid() == pid() && window->name() == name)
                return window;
        }
        return nullptr;
    }
    bool hasWindows() const
    {
        const QList<QWSWindow *> all = server().clientWindows();
        return std::any_of(
            all.cbegin(), all.cend(), [this](const QWSWindow *window) { return window->clientPid() == pid(); });
    }
    pid_t pid() const { return static_cast<pid_t>(m_process.processId()); }
    QProcess &process() { return m_process; }

private:
    QProcess m_process;
    QString m_line;
};

inline QColor pixel(QPoint position) { return server().grabScreen().pixelColor(position); }

// A test program whose process is the GUI server.
template <typename Test, typename Application = QWSApplication> int runOnServer(int argc, char **argv)
{
    // Whatever the developer's display is, the tests' screen is their own.
    char platform[] = "--platform=offscreen";
    std::vector<char *> arguments(argv, argv + argc);
    arguments.push_back(platform);
    arguments.push_back(nullptr);
    int count = argc + 1;
    std::ignore = platform::makeKeyFile("/tmp/key_testcommand"); // as the server's program does
    Application application(count, arguments.data(), QWSApplication::GuiServer);
    QWSApplication::setQuitOnLastWindowClosed(false);
    server().setWorkArea(kWorkArea);
    Test test;
    return QTest::qExec(&test, count, arguments.data());
}
