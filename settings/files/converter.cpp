// The converter: a program of the phone's maker that brings data of older versions into today's form.
#include "settings/files/converter.h"

#include "platform/system/fd.h"
#include "settings/files/setup_utility.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <grp.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <tuple>
#include <unistd.h>

using platform::Fd;

namespace {

enum class Step : int { None, Launch, SetUser, SetGroup };

// How far the new process came, told to the one that started it. Of one that became the converter nothing is heard.
struct Report {
    Step failed = Step::None;
    int error = 0;
};

const char *textOf(Step step)
{
    switch (step) {
    case Step::SetUser:
        return "setreuid error:";
    case Step::SetGroup:
        return "setregid error:";
    default:
        return "launch convert process error:";
    }
}

// In the new process, where only calls are made that are safe behind a fork. Returns when something failed.
Report becomeConverter(const struct stat &file)
{
    // The other groups of root are nothing for the converter. Who may not drop them may not change the user either.
    std::ignore = ::setgroups(1, &file.st_gid);
    if (::setregid(file.st_gid, file.st_gid) != 0)
        return {Step::SetGroup, errno};
    if (::setreuid(file.st_uid, file.st_uid) != 0)
        return {Step::SetUser, errno};
    ::execl(settings::kConverter, settings::kConverter, static_cast<char *>(nullptr));
    return {Step::Launch, errno};
}

// The process in between ends at once: nobody has to wait for the converter's end.
[[noreturn]] void startInBetween(const struct stat &file, int answers)
{
    const pid_t pid = ::fork();
    if (pid > 0)
        ::_exit(0);
    const Report report = pid == 0 ? becomeConverter(file) : Report{Step::Launch, errno};
    std::ignore = ::write(answers, &report, sizeof report); // whoever would read it is gone if this fails
    ::_exit(1);
}

Report launch()
{
    struct stat file = {};
    if (::stat(settings::kConverter, &file) != 0)
        return {Step::Launch, errno};
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC) != 0)
        return {Step::Launch, errno};
    const Fd reading = Fd::own(ends[0]);
    Fd writing = Fd::own(ends[1]);
    const pid_t pid = ::fork();
    if (pid < 0)
        return {Step::Launch, errno};
    if (pid == 0)
        startInBetween(file, writing.get());
    writing.reset();
    while (::waitpid(pid, nullptr, 0) < 0 && errno == EINTR) { }
    Report report;
    ssize_t size = 0;
    do { // nothing comes when the last end for writing was closed by the exec
        size = ::read(reading.get(), &report, sizeof report);
    } while (size < 0 && errno == EINTR);
    return size == ssize_t(sizeof report) ? report : Report{};
}

}

bool SETUP_Utility::dcDSMInit()
{
    const Report report = launch();
    if (report.failed == Step::None)
        return true;
    std::fprintf(stderr, "%s %s\n", textOf(report.failed), std::strerror(report.error));
    return false;
}
