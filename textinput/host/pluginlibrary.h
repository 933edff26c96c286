// One library with an input method.
#pragma once

#include "textinput/plugin/inputmethodinfo.h"

#include <QPluginLoader>
#include <memory>
#include <vector>

class ZInputMethodPlugin;

struct PluginLibrary {
    explicit PluginLibrary(const QString &file) : loader(file) { }

    QPluginLoader loader;
    InputMethodInfo info;

    // Runs the library's code, which may end the process. Null when it is no input method after all.
    ZInputMethodPlugin *plugin();
};

// All of the phone. Reads what the libraries say of themselves and runs none of their code, so that a bad one does no
// harm before it is chosen. Of two with one identifier the first counts; folders come in the order of their kinds. What
// is left out is told in one line on standard error.
std::vector<std::unique_ptr<PluginLibrary>> loadInputMethods();
