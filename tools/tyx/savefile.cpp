#include "tools/tyx/savefile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <cerrno>
#include <sys/statvfs.h>
#include <unistd.h>

namespace tyx {

namespace {

// What keeps files out of a folder; 0 when nothing does.
int obstacleIn(const QByteArray &folder)
{
    struct statvfs disk = {};
    if (::access(folder.constData(), W_OK | X_OK) != 0 || ::statvfs(folder.constData(), &disk) != 0)
        return errno;
    return disk.f_bavail == 0 ? ENOSPC : 0;
}

QString cureOf(const QString &name, int number)
{
    switch (number) {
    case ENOENT:
    case ENOTDIR:
        return QStringLiteral("make its folder first");
    case EACCES:
    case EPERM:
        return QStringLiteral("make its folder writable, or run as its owner");
    case EROFS:
        return QStringLiteral("mount its disk for writing (mount -o remount,rw)");
    case ENOSPC:
    case EDQUOT:
        return QStringLiteral("make room on its disk");
    case EWOULDBLOCK:
        return QStringLiteral("another program holds %1.new; try again").arg(name);
    case EISDIR:
    case EEXIST:
    case ELOOP:
        return QStringLiteral("remove %1.new").arg(name);
    default:
        return QStringLiteral("check its disk, and that nobody holds %1.new").arg(name);
    }
}

}

tl::expected<void, QString> saveFile(const QString &name, const QByteArray &bytes)
{
    QSaveFile out(name);
    // commit() does not see that what was buffered found no room: it would put a half file in place of the old one.
    if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.flush() || !out.commit())
        return tl::make_unexpected(out.errorString());
    return {};
}

QString notSaved(const QString &name, const QString &why, int number)
{
    const int known = number != 0 ? number : obstacleIn(QFile::encodeName(QFileInfo(name).path()));
    const QString reason = why.isEmpty() && known != 0 ? qt_error_string(known) : why;
    return name + QStringLiteral(": could not be saved") + (reason.isEmpty() ? QString() : QString(u": " + reason))
        + u"; " + cureOf(name, known);
}

}
