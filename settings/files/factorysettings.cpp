#include "settings/files/factorysettings.h"

#include "appbase/config/configcheck.h"
#include "appbase/config/configfile.h"
#include "appbase/config/configtext.h"
#include "platform/system/filereplace.h"
#include "settings/files/converter.h"
#include "settings/files/settingaccess.h"
#include "settings/files/setup_utility.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <cstring>

namespace settings {

QByteArray merged(const QByteArray &user, const QByteArray &factory)
{
    config::ConfigText result(config::decoded(user));
    const config::ConfigText delivered(config::decoded(factory));
    bool anyNew = false;
    for (const config::Group &group : delivered.groups()) {
        config::Group *own = result.find(group.name);
        for (const config::Entry &entry : group.entries) {
            if (own && own->find(entry.key))
                continue;
            if (!own)
                own = &result.ensure(config::copied(group.name));
            own->set(config::copied(entry.key), config::copied(entry.value));
            anyNew = true;
        }
    }
    return anyNew ? result.format() : QByteArray();
}

namespace {

using platform::Result;

// One delivery: the files that are taken over together, and the one that says which delivery it is. The latter comes
// last: until all files have been taken over, the next start begins again.
struct Delivery {
    QStringList files;
    QString timestampFile;
};

bool say(const QString &file, const platform::SysError &error)
{
    qWarning("settings: %s: %s; the next start tries again", qPrintable(file), qPrintable(error.text()));
    return false;
}

Result<> write(const QString &file, const QByteArray &bytes)
{
    return platform::replaceFile(file, std::as_bytes(std::span(bytes)), config::kFileMode);
}

Result<> copy(const QString &from, const QString &to)
{
    return config::readFile(from).and_then([&](const QByteArray &bytes) { return write(to, bytes); });
}

bool isMissing(const QString &file) { return !QFile::exists(file); }

// Whatever group it is in; null when there is none.
QString timestamp(const QString &file)
{
    const auto bytes = config::readFile(file);
    const config::ConfigText text(config::decoded(bytes.value_or(QByteArray())));
    for (const config::Group &group : text.groups()) {
        if (const config::Entry *entry = group.find(u"tyx_timestamp"))
            return config::copied(entry->value);
    }
    return {};
}

Result<> mergeInto(const QString &file, const QByteArray &factory)
{
    const auto user = config::readFile(file);
    if (!user && user.error().number == ENOENT)
        return write(file, factory);
    if (!user)
        return tl::make_unexpected(user.error());
    const QByteArray result = merged(*user, factory);
    if (result.isNull())
        return {};
    // No program reads what stands behind a damaged line, but a person may still want to.
    if (config::whereReadingStops(*user)) {
        if (auto kept = write(file + QStringLiteral(".damaged"), *user); !kept)
            return kept;
    }
    return write(file, result);
}

// The whole delivery when it is another one than last time; else only files that are gone.
bool takeOver(const Delivery &delivery, const QString &directory)
{
    const QString stamp = timestamp(kFactoryDirectory + delivery.timestampFile);
    const bool isNew = stamp != timestamp(directory + delivery.timestampFile);
    bool all = true;
    for (const QString &file : delivery.files) {
        if (!isNew && !isMissing(directory + file))
            continue;
        const auto done = config::readFile(kFactoryDirectory + file).and_then([&](const QByteArray &factory) {
            return mergeInto(directory + file, factory);
        });
        if (!done)
            all = say(directory + file, done.error());
    }
    if (!all || !isNew || stamp.isNull())
        return all;
    const auto done = copy(kFactoryDirectory + delivery.timestampFile, directory + delivery.timestampFile);
    return done || say(directory + delivery.timestampFile, done.error());
}

// Where settings are looked for, and the directory of a handset even where nobody looks there yet: the environment
// that names it may come after this.
QStringList writableDirectories()
{
    QStringList directories{ZConfig::initSettingDirectory()};
    if (directories.first() != kHandsetDirectory && QDir(QFileInfo(kHandsetDirectory.chopped(1)).path()).exists()
        && QDir().mkpath(kHandsetDirectory))
        directories += kHandsetDirectory;
    return directories;
}

bool takeOver(Delivery delivery)
{
    delivery.files.removeIf([](const QString &file) { return isMissing(kFactoryDirectory + file); });
    bool all = true;
    for (const QString &directory : writableDirectories())
        all = takeOver(delivery, directory) && all;
    return all;
}

const QStringList kThemeFiles{QStringLiteral("tyx_theme.cfg"), QStringLiteral("colorpalette.cfg")};
const QStringList kAlertStyleFiles{QStringLiteral("tyx_alertstyle.cfg")};
const QStringList kWorkingCopies{
    QStringLiteral("tyx_system.cfg"), QStringLiteral("tyx_theme.cfg"), QStringLiteral("tyx_alertstyle.cfg")};

// Makes a copy of what is there; a copy without an original stays.
bool copyIfThere(const QString &from, const QString &to)
{
    if (isMissing(from))
        return true;
    const auto done = copy(from, to);
    return done || say(to, done.error());
}

}

}

using namespace settings;

bool SETUP_Utility::copyFile(QString from, QString to) { return copy(from, to).has_value(); }

bool SETUP_Utility::dcSetupInit()
{
    const QString flexBits = getFlexBitFileName().mid(kFactoryDirectory.size());
    const QStringList others = kThemeFiles + kAlertStyleFiles
        + QStringList{flexBits, getTimestampFileName(), getThemeTimestampFileName(), getAlertStyleTimestampFileName()};
    QStringList files = QDir(kFactoryDirectory).entryList({QStringLiteral("*.cfg")}, QDir::Files);
    files.removeIf([&](const QString &file) { return others.contains(file); });
    return takeOver({files, getTimestampFileName()});
}

bool SETUP_Utility::dcThemeInit()
{
    const bool taken = takeOver({kThemeFiles, getThemeTimestampFileName()});
    const QString &palette = kThemeFiles.last();
    return copyIfThere(ZConfig::getSettingDirectory() + palette, QStringLiteral("/tmp/") + palette) && taken;
}

bool SETUP_Utility::dcAlertStyleInit() { return takeOver({kAlertStyleFiles, getAlertStyleTimestampFileName()}); }

bool SETUP_Utility::systemDataInit()
{
    const QString directory = ZConfig::getSettingDirectory();
    bool all = true;
    for (const QString &file : kWorkingCopies)
        all = copyIfThere(directory + file, QStringLiteral("/tmp/") + file) && all;
    // The calibration of the factory, until the user calibrates.
    const QString calibration = directory + QStringLiteral("pointercal");
    return (!isMissing(calibration) || copyIfThere(QStringLiteral("/etc/pointercal"), calibration)) && all;
}

bool SETUP_Utility::setupInitialize()
{
    ZConfig::initSettingDirectory();
    bool all = dcSetupInit();
    all = dcThemeInit() && all;
    all = dcAlertStyleInit() && all;
    all = systemDataInit() && all;
    if (QFile::exists(QString::fromLatin1(kConverter)))
        all = dcDSMInit() && all;
    return all;
}
