#include "platform/window/windowserverloader.h"

#include "platform/window/windowserverbackend.h"

#include <QFile>
#include <QFileInfo>
#include <QLibrary>
#include <dlfcn.h>

namespace {

QString moduleFile()
{
    static const char somethingInThisLibrary = 0;
    Dl_info library{};
    dladdr(&somethingInThisLibrary, &library);
    const QFileInfo file(QFile::decodeName(library.dli_fname));
    return QFileInfo(file.canonicalFilePath()).path() + QStringLiteral("/tyxappbase/libtyxwindowserver.so");
}

}

tl::expected<std::unique_ptr<WindowServerBackend>, QString> loadWindowServer()
{
    QLibrary module(moduleFile());
    const auto create = reinterpret_cast<CreateWindowServer>(module.resolve(kWindowServerEntry));
    if (!create)
        return tl::make_unexpected(QStringLiteral("cannot load the window server: %1").arg(module.errorString()));
    return std::unique_ptr<WindowServerBackend>(create());
}
