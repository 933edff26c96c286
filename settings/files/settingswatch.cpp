#include "settings/files/settingswatch.h"

#include <QFile>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <map>
#include <sys/stat.h>

namespace {

// What tells one content of a file from another without reading it. A file that is replaced has another number.
struct Version {
    dev_t device = 0;
    ino_t number = 0;
    off_t size = -1;
    qint64 seconds = 0;
    long nanoseconds = 0;

    bool operator==(const Version &) const = default;
};

Version versionOf(const QString &file)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(file).constData(), &status) != 0)
        return {};
    return {status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

}

class SettingsWatchData {
public:
    QFileSystemWatcher watcher;
    std::map<QString, Version> versions;
    QStringList unwatched;

    // A replaced file is watched no more, and its directory tells only of names: both are needed.
    void watchFiles()
    {
        for (const auto &[file, version] : versions) {
            if (version != Version() && !watcher.files().contains(file))
                watcher.addPath(file);
        }
    }
};

SettingsWatch::SettingsWatch(const QStringList &files, QObject *parent)
    : QObject(parent), d(std::make_unique<SettingsWatchData>())
{
    for (const QString &file : files) {
        const QString directory = QFileInfo(file).path();
        if (!d->watcher.directories().contains(directory) && !d->unwatched.contains(directory)
            && !d->watcher.addPath(directory))
            d->unwatched += directory;
        d->versions[file] = versionOf(file);
    }
    d->watchFiles();
    const auto look = [this] {
        QStringList different;
        for (auto &[file, version] : d->versions) {
            const Version now = versionOf(file);
            if (std::exchange(version, now) != now)
                different += file;
        }
        d->watchFiles();
        for (const QString &file : different)
            Q_EMIT changed(file);
    };
    connect(&d->watcher, &QFileSystemWatcher::directoryChanged, this, look);
    connect(&d->watcher, &QFileSystemWatcher::fileChanged, this, look);
}

SettingsWatch::~SettingsWatch() = default;

QStringList SettingsWatch::unwatched() const { return d->unwatched; }
