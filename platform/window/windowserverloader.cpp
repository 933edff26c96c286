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
    if (!module.load())
        return tl::make_unexpected(QStringLiteral("cannot load the window server: %1").arg(module.errorString()));
    const auto create = reinterpret_cast<CreateWindowServer>(module.resolve(QT_STRINGIFY(TYX_WINDOW_SERVER_ENTRY)));
    if (!create)
        return tl::make_unexpected(
            QStringLiteral("%1 is of another version than this library: install both of one").arg(module.fileName()));
    return std::unique_ptr<WindowServerBackend>(create());
}
