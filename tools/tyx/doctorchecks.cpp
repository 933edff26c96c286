#include "tools/tyx/doctorchecks.h"

#include "am/registrylock.h"
#include "appbase/config/configcheck.h"
#include "appbase/config/configfile.h"
#include "appbase/messaging/queuefile.h"
#include "platform/bus/businspector.h"
#include "tools/tyx/command.h"
#include "tools/tyx/packfile.h"
#include "tools/tyx/server.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <ZConfig>
#include <algorithm>
#include <cstring>
#include <ctime>
#include <optional>
#include <sys/msg.h>
#include <sys/shm.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>
#include <vector>

namespace tyx {

namespace {

using platform::BusInspector;
using State = Finding::State;

Finding fine(const QString &about, const QString &text) { return {State::Fine, about, text, {}}; }
Finding note(const QString &about, const QString &text) { return {State::Note, about, text, {}}; }
Finding wrong(const QString &about, const QString &text, const QString &cure)
{
    return {State::Wrong, about, text, cure};
}

Finding unset(const QString &variable, const QString &effect)
{
    return note(variable,
        QStringLiteral("is not set: %1; set it as the installed file share/tyxappbase/environment does").arg(effect));
}

QString errorText(int number) { return QString::fromLocal8Bit(std::strerror(number)); }

QString owner(uid_t user) { return user == ::geteuid() ? QStringLiteral("you") : QStringLiteral("user %1").arg(user); }

// What the disk of a folder lacks, whatever the folder's mode says; none where it takes what is written.
std::optional<Finding> diskFault(const QString &folder)
{
    constexpr quint64 kRoom = 64ULL * 1024; // a large file of settings, which is written beside the old one
    struct statvfs disk = {};
    if (::statvfs(QFile::encodeName(folder).constData(), &disk) != 0)
        return std::nullopt;
    if ((disk.f_flag & ST_RDONLY) != 0)
        return wrong(folder, QStringLiteral("its disk is mounted read-only: nothing can be kept there"),
            QStringLiteral("mount it for writing (mount -o remount,rw)"));
    const quint64 room = quint64(disk.f_bavail) * disk.f_frsize;
    const bool hasNoNames = disk.f_files > 0 && disk.f_favail == 0; // some file systems do not count them
    if (room >= kRoom && !hasNoNames)
        return std::nullopt;
    return wrong(folder,
        hasNoNames ? QStringLiteral("its disk has no room for another file")
                   : QStringLiteral("its disk is full: %1 bytes are left").arg(room),
        QStringLiteral("remove there what is not needed"));
}

QList<Finding> temporaryFolder()
{
    const QString place = QStringLiteral("/tmp");
    struct stat status = {};
    if (::stat("/tmp", &status) != 0 || !S_ISDIR(status.st_mode))
        return {wrong(place, QStringLiteral("there is no such folder"), QStringLiteral("mkdir -m 1777 /tmp"))};
    if (::access("/tmp", R_OK | W_OK | X_OK) != 0)
        return {wrong(place, QStringLiteral("you may not write there"), QStringLiteral("chmod 1777 /tmp"))};
    if ((status.st_mode & S_IWOTH) != 0 && (status.st_mode & S_ISVTX) == 0)
        return {
            wrong(place, QStringLiteral("everybody may remove everybody's files"), QStringLiteral("chmod +t /tmp"))};
    if (const auto fault = diskFault(place))
        return {*fault};
    return {fine(place, QStringLiteral("can be written"))};
}

QList<Finding> bus()
{
    const QString place = QString::fromLocal8Bit(BusInspector::socketPath());
    const auto bus = BusInspector::open();
    if (!bus) {
        switch (bus.error().number) {
        case ENOENT:
            return {note(place, QStringLiteral("no phone is running; ") + QLatin1String(kStartIt))};
        case ECONNREFUSED:
            return {wrong(place, QStringLiteral("left behind by a server that died"),
                QStringLiteral("start tyx-guiserver, which replaces it"))};
        case EACCES:
            return {wrong(place, QStringLiteral("belongs to somebody else's phone"),
                QStringLiteral("run as the user of that phone, or start tyx-guiserver with --group"))};
        default:
            return {wrong(place, bus.error().text(),
                QStringLiteral("set XDG_RUNTIME_DIR to a folder of your own with mode 0700"))};
        }
    }
    const auto registrations = (*bus)->registrations();
    if (!registrations)
        return {wrong(place, QStringLiteral("the server does not answer"),
            QStringLiteral("stop tyx-guiserver and "
                           "start it again"))};
    QSet<quint32> programs;
    bool hasServer = false;
    for (const auto &[channel, pid] : *registrations) {
        programs.insert(pid);
        hasServer = hasServer || channel == "TYX/QtServer";
    }
    if (!hasServer)
        return {
            note(place, QStringLiteral("a bus without a GUI server; %1 programs have channels").arg(programs.size()))};
    return {fine(place, QStringLiteral("%1 programs have channels").arg(programs.size()))};
}

struct Keyed {
    const char *file;
    char project;
    const char *what;
    std::size_t segmentSize; // 0: no shared memory
};
constexpr Keyed kKeyed[] = {
    {"/tmp/key_testcommand", 'm', "status table", 4096},
    {"/tmp/key_testcommand", 'n', "application manager's table", 4096},
    {"/tmp/key_testcommand", 'w', "changes of the status table", 8},
    {"/tmp/touch_sound_msg", 't', "sound queue", 0},
};

QString nameOf(const Keyed &keyed)
{
    return QStringLiteral("%1 '%2' (%3)")
        .arg(QLatin1String(keyed.file), QChar::fromLatin1(keyed.project), QLatin1String(keyed.what));
}

std::vector<const char *> keyFiles()
{
    std::vector<const char *> files;
    for (const Keyed &keyed : kKeyed) {
        if (files.empty() || std::strcmp(files.back(), keyed.file) != 0)
            files.push_back(keyed.file);
    }
    return files;
}

QList<Finding> keyFileFindings()
{
    QList<Finding> findings;
    for (const char *file : keyFiles()) {
        const QString place = QString::fromLatin1(file);
        struct stat status = {};
        if (::lstat(file, &status) != 0)
            findings.append(errno == ENOENT
                    ? note(place, QStringLiteral("missing; tyx-guiserver makes it when it starts"))
                    : wrong(place, errorText(errno), QStringLiteral("check the folder")));
        else if (!S_ISREG(status.st_mode))
            findings.append(wrong(place,
                QStringLiteral("is no regular file: whoever owns what it names decides "
                               "which shared memory all programs use"),
                QStringLiteral("remove it and start tyx-guiserver again")));
        else
            findings.append(fine(place, QStringLiteral("belongs to %1").arg(owner(status.st_uid))));
    }
    return findings;
}

int idOf(const Keyed &keyed, key_t key, int access)
{
    return keyed.segmentSize != 0 ? ::shmget(key, 0, access) : ::msgget(key, access);
}

// Another program's object under one of our keys shows by its size or its mode. Ours among themselves cannot collide:
// the project id is the key's highest byte.
Finding keyedObject(const Keyed &keyed, key_t key)
{
    const int id = idOf(keyed, key, 0);
    if (id < 0)
        return errno == ENOENT ? note(nameOf(keyed), QStringLiteral("not made yet; tyx-guiserver makes it"))
                               : wrong(nameOf(keyed), errorText(errno), QStringLiteral("run as its owner"));
    const QString remove = QStringLiteral("stop the phone, ipcrm %1 %2, and start again")
                               .arg(keyed.segmentSize != 0 ? QStringLiteral("-m") : QStringLiteral("-q"))
                               .arg(id);
    if (idOf(keyed, key, 0666) < 0) // as the programs of the phone ask for it
        return wrong(nameOf(keyed), QStringLiteral("you may not use it: %1").arg(errorText(errno)), remove);
    if (keyed.segmentSize == 0)
        return fine(nameOf(keyed), QStringLiteral("can be used"));
    shmid_ds status = {};
    if (::shmctl(id, IPC_STAT, &status) != 0)
        return wrong(nameOf(keyed), errorText(errno), remove);
    if (status.shm_segsz != keyed.segmentSize)
        return wrong(nameOf(keyed),
            QStringLiteral("has %1 bytes instead of %2").arg(status.shm_segsz).arg(keyed.segmentSize), remove);
    return fine(
        nameOf(keyed), QStringLiteral("%1 bytes, belongs to %2").arg(status.shm_segsz).arg(owner(status.shm_perm.uid)));
}

QList<Finding> keyedObjects()
{
    QList<Finding> findings;
    for (const Keyed &keyed : kKeyed) {
        const key_t key = ::ftok(keyed.file, keyed.project);
        if (key != -1) // otherwise told with the file
            findings.append(keyedObject(keyed, key));
    }
    return findings;
}

Finding registryLock(const QString &place, const am::RegistryState &state)
{
    constexpr int kSecondsToMakeIt = 2;
    const QString remove = QStringLiteral("ipcrm -s %1").arg(state.id);
    if (state.semaphores != 1)
        return wrong(
            place, QStringLiteral("%1 semaphores lie under the key instead of 1").arg(state.semaphores), remove);
    if (state.value > 1)
        return wrong(place, QStringLiteral("%1 processes can lock the registry at once").arg(state.value), remove);
    if (state.isHeld() && !state.wasUsed && std::time(nullptr) - state.since > kSecondsToMakeIt)
        return wrong(place, QStringLiteral("a process died while it made the lock, which nobody can take now"), remove);
    return state.isHeld() ? note(place, QStringLiteral("process %1 has the registry locked").arg(state.process))
                          : fine(place, QStringLiteral("the registry can be locked"));
}

QList<Finding> registryLocks()
{
    const char *directory = am::installedQtDirectory(1);
    const QString place = QStringLiteral("TYX_INSTALLED_QT_PATH=%1").arg(printable(directory));
    if (!directory)
        return {unset(QStringLiteral("TYX_INSTALLED_QT_PATH"), QStringLiteral("the registry counts as busy"))};
    const auto key = am::registryKey(directory);
    if (!key && key.error().number == EINVAL)
        return {
            wrong(place, QStringLiteral("its device and inode number make a private key: nobody can lock the registry"),
                QStringLiteral("copy the directory and put the copy in its place, which gives it another number"))};
    if (!key)
        return {wrong(place, key.error().text(), QStringLiteral("make the directory, or correct the variable"))};
    const auto state = am::RegistryState::look(*key);
    if (state)
        return {registryLock(place, *state)};
    if (state.error().number == ENOENT)
        return {fine(place, QStringLiteral("the registry can be locked"))};
    return {wrong(place, state.error().text(), QStringLiteral("run as its owner"))};
}

Finding settingsFolder()
{
    const QString settings = ZConfig::getSettingDirectory();
    const QFileInfo info(settings);
    if (!info.isDir())
        return wrong(settings, QStringLiteral("there is no such folder: no setting can be kept"),
            QStringLiteral("make it, or set TYX_APP_WRITE_PATH to the folder that holds setup/"));
    if (const auto fault = diskFault(settings))
        return *fault;
    if (!info.isWritable())
        return wrong(settings, QStringLiteral("you may not write there: no setting can be kept"),
            QStringLiteral("give it to the user of the phone"));
    return fine(settings, QStringLiteral("settings can be kept"));
}

// Where the programs of a phone look for what they show.
struct Variable {
    const char *name;
    const char *without; // what it is like while it is not set; null: as it mostly is
    std::optional<QString> (*fault)(const QString &path);
};

std::optional<QString> folderFault(const QString &path)
{
    return QFileInfo(path).isDir() ? std::nullopt : std::optional(QStringLiteral("there is no such folder"));
}

std::optional<QString> skinFault(const QString &path)
{
    const auto skin = res::MappedFile::open(path, res::Version::Skin);
    return skin ? std::nullopt : std::optional(reasonOf(skin.error(), res::Version::Skin));
}

constexpr Variable kVariables[] = {
    {"TYX_RES_STRING_PATH", "texts are English", folderFault},
    {"TYX_RES_FONT_PATH", "texts have the toolkit's fonts", folderFault},
    {"TYX_RES_ICON_PATH", "there are no built-in icons", folderFault},
    {"TYX_RES_SKIN_FILE", "controls are plain", skinFault},
    {"TYX_LANG", nullptr, folderFault},
};

QList<Finding> folders()
{
    QList<Finding> findings{settingsFolder()};
    for (const Variable &variable : kVariables) {
        const QString name = QString::fromLatin1(variable.name);
        const QString path = qEnvironmentVariable(variable.name);
        const QString place = name + u'=' + printable(path.toUtf8());
        if (!path.isEmpty()) {
            const auto fault = variable.fault(path);
            findings.append(fault ? wrong(place, *fault, QStringLiteral("correct the variable, or unset it"))
                                  : fine(place, QStringLiteral("is there")));
        } else if (variable.without) {
            findings.append(unset(name, QString::fromLatin1(variable.without)));
        }
    }
    return findings;
}

Finding configuration(const QString &path)
{
    const auto bytes = config::readFile(path);
    if (!bytes)
        return wrong(path, bytes.error().text(),
            QStringLiteral("put a readable file there, or remove it: its settings have their defaults meanwhile"));
    const auto stop = config::whereReadingStops(*bytes);
    if (stop)
        return wrong(path, QStringLiteral("line %1: %2").arg(stop->line).arg(stop->text),
            QStringLiteral("tyx config check %1 tells more").arg(path));
    return fine(path, QStringLiteral("can be read"));
}

QList<Finding> configurations()
{
    QList<Finding> findings;
    const QStringList pattern{QStringLiteral("*.cfg")};
    for (const QString &folder :
        {QStringLiteral("/tmp/"), ZConfig::getSettingDirectory(), QStringLiteral("/usr/setup/")}) {
        for (const QString &name : QDir(folder).entryList(pattern, QDir::AllEntries | QDir::System, QDir::Name))
            findings.append(configuration(folder + name));
    }
    return findings;
}

QList<Finding> waitingMessages()
{
    QList<Finding> findings;
    const QFileInfo prefix(QString::fromLatin1(queue::kFilePrefix));
    const QStringList pattern{QString(prefix.fileName() + u'*')};
    for (const QString &file : QDir(prefix.path()).entryList(pattern, QDir::AllEntries | QDir::System, QDir::Name)) {
        const QString name = file.mid(prefix.fileName().size());
        const QString place = prefix.path() + u'/' + printable(file.toUtf8());
        const auto glance = queue::glance(QFile::encodeName(name));
        if (!glance)
            findings.append(wrong(place, glance.error().text(), QStringLiteral("remove it: senders make it anew")));
        else if (glance->contents.damaged)
            findings.append(
                wrong(place, QStringLiteral("damaged behind message %1").arg(glance->contents.records.size()),
                    QStringLiteral("tyx queue drop %1").arg(printable(name.toUtf8()))));
        else
            findings.append(fine(place, QStringLiteral("%1 messages wait").arg(glance->contents.records.size())));
    }
    return findings;
}

QList<Finding> devices()
{
    QList<Finding> findings;
    for (const char *device : {"/dev/keypad0", "/dev/button", "/dev/tyx_ts"}) {
        const QString place = QString::fromLatin1(device);
        if (::access(device, F_OK) != 0)
            findings.append(note(place, QStringLiteral("not on this machine")));
        else if (::access(device, R_OK) != 0)
            findings.append(wrong(place, QStringLiteral("you may not read it"),
                QStringLiteral("give it to the group of the phone's user")));
        else
            findings.append(fine(place, QStringLiteral("can be read")));
    }
    return findings;
}

}

QList<Check> doctorChecks()
{
    return {
        {"temporary files", temporaryFolder},
        {"bus", bus},
        {"key files", keyFileFindings},
        {"shared objects", keyedObjects},
        {"registry lock", registryLocks},
        {"folders", folders},
        {"configuration", configurations},
        {"waiting messages", waitingMessages},
        {"devices", devices},
    };
}

}
