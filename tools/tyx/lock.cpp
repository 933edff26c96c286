// tyx lock: looks at the lock of the application registry, and holds it for scripts.
#include "am/registrylock.h"
#include "platform/system/endsignals.h"
#include "tools/tyx/command.h"

#include <QFile>
#include <QJsonObject>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace tyx {

namespace {

struct Options {
    const CLI::App *run = nullptr; // which keeps the words of the command
    bool json = false;
};

// What the exit status of a program that a signal ended looks like to a shell.
constexpr int kSignalled = 128;

// Of a process, for people; empty when it is gone.
QString programOf(pid_t process)
{
    QFile file(QStringLiteral("/proc/%1/comm").arg(process));
    return file.open(QIODevice::ReadOnly) ? printable(file.readAll().trimmed()) : QString();
}

QString holder(const am::RegistryState &state)
{
    if (!state.wasUsed)
        return QStringLiteral("a process that is just making it, or died meanwhile: tyx doctor tells the cure");
    const QString program = programOf(state.process);
    return QStringLiteral("process %1").arg(state.process)
        + (program.isEmpty() ? QString() : QString(u" (" + program + u')'));
}

tl::expected<key_t, int> registryKey()
{
    const char *directory = am::installedQtDirectory(1);
    if (!directory)
        return tl::make_unexpected(
            fail(QStringLiteral("TYX_INSTALLED_QT_PATH is not set; it names the directory that the lock belongs to")));
    return am::registryKey(directory).map_error([&](const platform::SysError &error) {
        return fail(QStringLiteral("TYX_INSTALLED_QT_PATH=%1: %2; tyx doctor tells more")
                        .arg(printable(directory), error.text()));
    });
}

int status(const Options &options)
{
    const auto key = registryKey();
    if (!key)
        return key.error();
    const auto state = am::RegistryState::look(*key);
    if (!state && state.error().number != ENOENT)
        return fail(
            QStringLiteral("the registry lock: %1; run as its owner, or see tyx doctor").arg(state.error().text()));
    const bool held = state && state->isHeld();
    if (options.json) {
        QJsonObject object{{QStringLiteral("held"), held},
            {QStringLiteral("key"), QStringLiteral("0x%1").arg(quint32(*key), 8, 16, QLatin1Char('0'))}};
        if (state)
            object.insert(QStringLiteral("id"), state->id);
        if (held && state->wasUsed)
            object.insert(QStringLiteral("process"), state->process);
        printJson(QJsonDocument(object));
    } else {
        printLine(held ? QStringLiteral("held by ") + holder(*state) : QStringLiteral("free"));
    }
    return held ? AnsweredNo : Done;
}

// Done, or the exit status when the lock cannot be had.
int take()
{
    const auto key = registryKey();
    if (!key)
        return key.error();
    static platform::SysError why; // of the last thing that failed
    if (am::takeRegistry([](const char *, const platform::SysError &error) { why = error; }))
        return Done;
    const auto state = am::RegistryState::look(*key);
    const bool wentMeanwhile = why.number == EEXIST || why.number == EINVAL || why.number == EIDRM;
    if (why.number != EAGAIN && !wentMeanwhile)
        return fail(QStringLiteral("the registry cannot be locked: %1; see tyx doctor").arg(why.text()));
    std::ignore = fail(QStringLiteral("the registry is busy: %1 has it; try again later")
                           .arg(state && state->isHeld() ? holder(*state) : QStringLiteral("another process")));
    return AnsweredNo;
}

int release(int exit)
{
    static platform::SysError why;
    if (am::releaseRegistry([](const char *, const platform::SysError &error) { why = error; }))
        return exit;
    return fail(QStringLiteral("the lock was taken away meanwhile: %1; look for who ran ipcrm").arg(why.text()));
}

// Until the end of input or a signal.
void waitForEnd(int signals)
{
    std::array<pollfd, 2> watched{pollfd{STDIN_FILENO, POLLIN, 0}, pollfd{signals, POLLIN, 0}};
    std::array<char, 4096> ignored{};
    while (::poll(watched.data(), watched.size(), -1) >= 0 || errno == EINTR) {
        if (watched[1].revents != 0)
            return;
        if (watched[0].revents != 0 && ::read(STDIN_FILENO, ignored.data(), ignored.size()) <= 0)
            return;
    }
}

int hold(const Options & /*options*/)
{
    const platform::EndSignals signals;
    if (const int taken = take(); taken != Done)
        return taken;
    printLine(QStringLiteral("held by process %1").arg(::getpid()));
    if (flushOutput()) // else nobody knows that it is held
        waitForEnd(signals.descriptor());
    return release(Done);
}

// The exit status of the program. What this process is asked to do, it asks of the program; a terminal asks both.
int waitFor(pid_t program, const sigset_t &signals)
{
    while (true) {
        siginfo_t signal = {};
        if (::sigwaitinfo(&signals, &signal) < 0)
            continue;
        int status = 0;
        if (signal.si_signo == SIGHUP || signal.si_signo == SIGTERM)
            ::kill(program, signal.si_signo);
        else if (signal.si_signo == SIGCHLD && ::waitpid(program, &status, WNOHANG) == program)
            return WIFEXITED(status) ? WEXITSTATUS(status) : kSignalled + WTERMSIG(status);
    }
}

int run(const Options &options)
{
    std::vector<std::string> words = options.run->remaining();
    if (words.empty())
        return refuse(QStringLiteral("lock run: which program? See tyx lock run --help"));
    std::vector<char *> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string &word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);

    sigset_t signals = platform::endSignals();
    sigaddset(&signals, SIGQUIT); // of the terminal, for the program
    sigaddset(&signals, SIGCHLD);
    sigset_t before;
    ::sigprocmask(SIG_BLOCK, &signals, &before);
    std::signal(SIGCHLD, SIG_DFL); // who ignores it gets no exit status
    if (const int taken = take(); taken != Done)
        return taken;
    posix_spawnattr_t attributes;
    ::posix_spawnattr_init(&attributes);
    ::posix_spawnattr_setsigmask(&attributes, &before);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    pid_t program = 0;
    const int error = ::posix_spawnp(&program, arguments[0], nullptr, &attributes, arguments.data(), environ);
    ::posix_spawnattr_destroy(&attributes);
    if (error != 0)
        return release(
            fail(QStringLiteral("%1: %2; check the name").arg(printable(words.front()), qt_error_string(error))));
    return release(waitFor(program, signals));
}

}

void addLock(CLI::App &app, int &exit)
{
    const CommandGroup<Options> group(
        app, "lock", "Looks at the lock of the application registry, and holds it.", exit);
    group.addJson(group.add("status", "Tells who has it; 1 when somebody has.", status));
    group.add("hold", "Takes it until the end of input, or until it is stopped; 1 when somebody has it.", hold);
    CLI::App *command = group.add("run",
        "Takes it while PROGRAM [ARGUMENT...] runs, whose exit status it gives back; 1 when somebody has the lock.",
        run);
    command->prefix_command();
    group.options().run = command;
}

}
