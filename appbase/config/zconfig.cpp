#include "appbase/config/zconfig.h"

#include "appbase/config/zconfigdata.h"

#include <QDir>
#include <QFile>
#include <charconv>
#include <sys/stat.h>

ZConfig::ZConfig(const QString &file, bool writeThrough) : d(std::make_unique<ZConfigData>(file, writeThrough)) { }

ZConfig::~ZConfig()
{
    if (d->isDirty())
        write(QString());
}

void ZConfig::setGroup(const QString &group) { d->setGroup(group); }

bool ZConfig::writeEntry(const QString &group, const QString &key, const QString &value)
{
    if (!d->enterForChange(group))
        return false;
    d->store(key, value);
    return d->saved();
}

bool ZConfig::writeEntry(const QString &group, const QString &key, const char *value)
{
    return writeEntry(group, key, QString::fromUtf8(value));
}

bool ZConfig::writeEntry(const QString &group, const QString &key, int value)
{
    return writeEntry(group, key, QString::number(value));
}

bool ZConfig::writeEntry(const QString &group, const QString &key, unsigned int value)
{
    return writeEntry(group, key, QString::number(value));
}

bool ZConfig::writeEntry(const QString &group, const QString &key, double value)
{
    // printf's "%g", but in every locale with a point.
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 6).ptr;
    return writeEntry(group, key, QString::fromLatin1(text, end - text));
}

bool ZConfig::writeEntry(const QString &group, const QString &key, bool value)
{
    return writeEntry(group, key, value ? QStringLiteral("1") : QStringLiteral("0"));
}

bool ZConfig::writeEntry(const QString &group, const QString &key, const QStringList &value, const QChar &separator)
{
    QString joined = QStringLiteral(""); // an empty list is an empty value, not an absent one
    for (const QString &element : value)
        joined += element % separator;
    return writeEntry(group, key, joined);
}

QString ZConfig::readEntry(const QString &group, const QString &key, const QString &defaultValue)
{
    return readEntryDirect(group, key, defaultValue);
}

QString ZConfig::readEntryDirect(const QString &group, const QString &key, const QString &defaultValue)
{
    const auto value = d->value(group, key);
    return value ? config::copied(*value) : defaultValue;
}

int ZConfig::readNumEntry(const QString &group, const QString &key, int defaultValue)
{
    const QStringView value = d->value(group, key).value_or(QStringView());
    return value.isEmpty() ? defaultValue : value.toInt();
}

unsigned int ZConfig::readUIntEntry(const QString &group, const QString &key, unsigned int defaultValue)
{
    const QStringView value = d->value(group, key).value_or(QStringView());
    return value.isEmpty() ? defaultValue : value.toUInt();
}

bool ZConfig::readBoolEntry(const QString &group, const QString &key, bool defaultValue)
{
    const QStringView value = d->value(group, key).value_or(QStringView());
    return value.isEmpty() ? defaultValue : value.toInt() != 0;
}

QStringList ZConfig::readListEntry(const QString &group, const QString &key, const QChar &separator)
{
    return config::copied(d->value(group, key).value_or(QStringView())).split(separator, Qt::SkipEmptyParts);
}

bool ZConfig::removeEntry(const QString &group, const QString &key)
{
    if (!d->enterForChange(group))
        return true; // Promised: what is not there has been removed.
    d->remove(key);
    return d->saved();
}

bool ZConfig::clearGroup(const QString &group)
{
    if (!d->enterForChange(group))
        return true;
    d->clearCurrentGroup();
    return d->saved();
}

bool ZConfig::flush() { return !d->isDirty() || write(QString()); }

bool ZConfig::write(const QString &file)
{
    if (!file.isEmpty())
        d->rename(file);
    return d->save();
}

const QMap<QString, QString> *ZConfig::getGroupEntriesKeyList(const QString &group) { return d->listing(group); }

namespace {

constexpr mode_t kDirectoryMode = 0777;

QString writePath()
{
    const QByteArray value = qgetenv("TYX_APP_WRITE_PATH");
    return value.isEmpty() ? QStringLiteral("/") : QFile::decodeName(value);
}

void allowEveryone(const QString &directory) { ::chmod(QFile::encodeName(directory).constData(), kDirectoryMode); }

}

QString ZConfig::initSettingDirectory()
{
    const QString base = writePath();
    if (!QDir(base).exists()) {
        QDir().mkpath(base);
        allowEveryone(base);
    }
    QString directory = getSettingDirectory();
    QDir().mkdir(directory);
    allowEveryone(directory);
    return directory;
}

QString ZConfig::getSettingDirectory()
{
    const QString base = writePath();
    return base % (base.endsWith(u'/') ? u"setup/" : u"/setup/");
}
