#include "textinput/host/pluginlibrary.h"

#include "textinput/plugin/imresdir.h"
#include "textinput/plugin/zinputmethodplugin.h"

#include <QSet>
#include <algorithm>
#include <cstdio>

namespace {

using Libraries = std::vector<std::unique_ptr<PluginLibrary>>;

void leaveOut(const QString &file, const char *reason)
{
    std::fprintf(stderr, "tyx-imhost: %s is left out: %s\n", qUtf8Printable(file), reason);
}

void add(Libraries &libraries, const QString &file, bool system)
{
    auto library = std::make_unique<PluginLibrary>(file);
    const auto info = readMethodInfo(library->loader.metaData());
    if (!info) {
        leaveOut(file, "it is no input method");
        return;
    }
    library->info = *info;
    library->info.system = system;
    if (std::ranges::any_of(libraries, [&](const auto &other) { return other->info.id == info->id; }))
        leaveOut(file, "another one has its identifier");
    else
        libraries.push_back(std::move(library));
}

}

ZInputMethodPlugin *PluginLibrary::plugin()
{
    // Code of others: what it throws here must not take the rest of the keyboards along.
    try {
        return qobject_cast<ZInputMethodPlugin *>(loader.instance());
    } catch (...) {
        return nullptr;
    }
}

std::vector<std::unique_ptr<PluginLibrary>> loadInputMethods()
{
    Libraries libraries;
    QSet<QString> folders; // two variables may name one
    for (int kind = 0; kind < IM_ResDir::kKinds; ++kind) {
        const QString folder = IM_ResDir::getIMPluginDir(kind);
        if (folders.contains(folder))
            continue;
        folders.insert(folder);
        for (const QString &file : IM_ResDir::libraries(kind))
            add(libraries, file, kind == IM_ResDir::Phone);
    }
    return libraries;
}
