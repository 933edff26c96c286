// What happens before the toolkit's application object is built: choosing the plug-in that it draws with.
#pragma once

#include "platform/window/qwsapplication.h"
#include "platform/window/serveroptions.h"

namespace startup {

// Sets the environment for the toolkit, takes the server's own options out of the arguments, and ends the process with
// one line on standard error when there is no point in going on. Returns argc, to stand in the base class's
// initializer.
int &prepare(int &argc, char **argv, QWSApplication::Type type);

// After the base is built: programs started from here shall find the phone's screen, not this process's own plug-in.
void settle();
void serverStarted(); // the server is up: what is fatal from here on is a crash again

const ServerOptions &serverOptions(); // of the server that prepare() was called for

}
