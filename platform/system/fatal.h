// The end of a process: for want of something it cannot do without, or in good order.
#pragma once

#include <QString>

namespace platform {

// Tells the installed message handler of the toolkit (QtFatalMsg) and returns when the handler does; without a handler
// prints the text and ends the process with status 1. (qFatal() aborts in either case.)
void fatal(const QString &text);

// One line on standard error that names the program, and leave().
[[noreturn]] void giveUp(const QString &why, int status);

// While it lives, what the toolkit cannot start with (a display, a device, a name) is no crash: giveUp() tells the
// first thing that its plug-ins said, and `cure`, a literal. One at a time.
class GiveUpOnFatal {
public:
    GiveUpOnFatal(int status, const char *cure);
    ~GiveUpOnFatal();
    GiveUpOnFatal(const GiveUpOnFatal &) = delete;
    GiveUpOnFatal &operator=(const GiveUpOnFatal &) = delete;
};

// Ends the process at once with `status`: buffered output is written, no destructor and no exit handler runs. A
// Wayland client leaves this way, because the toolkit's event thread can hang in an ordinary exit.
[[noreturn]] void leave(int status);

// True while the environment variable TYX_FLEX_BIT holds something other than "" and "0": the phone is under test.
bool isFlexBitSet();

}
