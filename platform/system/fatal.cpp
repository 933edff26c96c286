#include "platform/system/fatal.h"

#include <cstdio>
#include <unistd.h>

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
