// Runs the input methods beside the GUI server, which starts it, watches over it and starts it again.
#include "appbase/application/zapplication.h"
#include "textinput/host/inputmethodhost.h"

#include <cstdio>
#include <string_view>

int main(int argc, char **argv)
{
    if (argc > 1 && std::string_view(argv[1]) == "--help") {
        std::puts("tyx-imhost: runs the input methods. The GUI server starts it; there is nothing to set.");
        return 0;
    }
    ZApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    const InputMethodHost host;
    return ZApplication::exec();
}
