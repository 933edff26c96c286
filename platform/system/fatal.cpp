#include "platform/system/fatal.h"

#include <QStringList>
#include <cerrno>
#include <cstdio>
#include <unistd.h>
#include <utility>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TYX_LEAK_CHECK
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define TYX_LEAK_CHECK
#endif

#ifdef TYX_LEAK_CHECK
#include <sanitizer/lsan_interface.h>
#endif
#ifdef TYX_COVERAGE
extern "C" void __gcov_dump(void);
#endif

namespace platform {

namespace {

// Null when messages go to the toolkit's own handler, which is only told by asking twice.
QtMessageHandler installedHandler()
{
    const QtMessageHandler current = qInstallMessageHandler(nullptr);
    const QtMessageHandler standard = qInstallMessageHandler(nullptr);
    if (current == standard)
        return nullptr;
    qInstallMessageHandler(current);
    return current;
}

// What is to be done about a fatal message while the toolkit starts.
struct Start {
    QtMessageHandler before = nullptr;
    int status = 0;
    const char *cure = "";
    QStringList complaints; // of plug-ins, which are told when all went well
};
Start theStart;

void whileStarting(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (type == QtFatalMsg) { // which itself advises to install the toolkit again
        const QString &reason = theStart.complaints.isEmpty() ? text : theStart.complaints.first();
        giveUp(QStringLiteral("%1; %2").arg(reason.section(u'\n', 0, 0), QString::fromUtf8(theStart.cure)),
            theStart.status);
    }
    if (type != QtDebugMsg && QByteArrayView(context.category).startsWith("qt.qpa"))
        theStart.complaints.append(text);
    else
        theStart.before(type, context, text);
}

}

GiveUpOnFatal::GiveUpOnFatal(int status, const char *cure)
{
    theStart = {qInstallMessageHandler(whileStarting), status, cure, {}};
}

GiveUpOnFatal::~GiveUpOnFatal()
{
    qInstallMessageHandler(theStart.before);
    for (const QString &complaint : std::exchange(theStart.complaints, {}))
        qWarning("%s", qPrintable(complaint));
}

void giveUp(const QString &why, int status)
{
    std::fprintf(stderr, "%s: %s\n", program_invocation_short_name, qPrintable(why));
    leave(status);
}

void fatal(const QString &text)
{
    if (const QtMessageHandler handler = installedHandler()) {
        handler(QtFatalMsg, QMessageLogContext(), text);
        return;
    }
    std::fprintf(stderr, "%s\n", qPrintable(text));
    leave(1);
}

void leave(int status)
{
    std::fflush(nullptr);
#ifdef TYX_COVERAGE
    __gcov_dump();
#endif
#ifdef TYX_LEAK_CHECK
    if (status == 0)
        __lsan_do_leak_check(); // a failing process leaves things behind, and its status is what matters
#endif
    _exit(status);
}

bool isFlexBitSet()
{
    const QByteArray value = qgetenv("TYX_FLEX_BIT");
    return !value.isEmpty() && value != "0";
}

}
