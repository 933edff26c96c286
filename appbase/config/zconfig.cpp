#include "appbase/config/zconfig.h"

#include "appbase/config/configfile.h"
#include "appbase/config/configtext.h"
#include "platform/system/filereplace.h"

#include <QDir>
#include <QFile>
#include <charconv>
#include <fcntl.h>
#include <map>
#include <optional>
#include <sys/stat.h>
#include <utility>

using config::ConfigText;

namespace {

constexpr mode_t kDirectoryMode = 0777;

}

// A text is asked once, in most objects: the language at start-up, one setting. So the first question is answered from
// the text as it was read, and only a second one, or a change, builds the sorted store.
class ZConfigData {
public:
    ZConfigData(const QString &file, bool writeThrough) : m_fileName(file), m_writeThrough(writeThrough) { read(); }

    void setGroup(const QString &group);
    bool enterForChange(const QString &group); // whether there is a current group now
    std::optional<QStringView> value(const QString &group, const QString &key);
    void store(const QString &key, const QString &value);
    void remove(const QString &key);
    void clearCurrentGroup();
    const QMap<QString, QString> *listing(const QString &group);
    bool saved() { return !m_writeThrough || save(); } // ends every modifying operation
    bool save();
    void rename(const QString &file) { m_fileName = file; }
    [[nodiscard]] bool isDirty() const { return m_dirty; }

private:
    struct Listing {
        QMap<QString, QString> map;
        int asOf = -1; // m_changes when it was made
    };

    void read();
    std::optional<QStringView> firstAnswer(const QString &group, const QString &key);
    ConfigText &whole();
    config::Group *currentGroup();
    void enter(const QString &group, config::Group *found);
    void leave();
    bool isOther(const QString &group) const { return !group.isEmpty() && group != m_groupName; }
    void changed();
    void openToEveryone() const;

    QString m_fileName;
    QString m_text; // of the file; the answers of a first question point into it
    std::optional<ConfigText> m_whole;
    QString m_groupName; // the last one that was named, even if there is no current group
    config::Group *m_current = nullptr; // the current group once it has been looked for
    // Handed out. They are valid until the next change, but live on: a caller may well change what he walks through.
    std::map<QString, Listing> m_listings;
    int m_changes = 0; // ever made
    bool m_hasGroup = false; // whether m_groupName is current, and then it exists
    bool m_asked = false;
    bool m_dirty = false;
    bool m_writeThrough;
};

void ZConfigData::read()
{
    m_dirty = false;
    if (const auto bytes = config::readFile(m_fileName))
        m_text = config::decoded(*bytes);
    leave();
}

ConfigText &ZConfigData::whole()
{
    if (!m_whole)
        m_whole.emplace(m_text);
    return *m_whole;
}

void ZConfigData::changed()
{
    m_dirty = true;
    ++m_changes;
}

config::Group *ZConfigData::currentGroup()
{
    if (m_hasGroup && !m_current)
        m_current = whole().find(m_groupName);
    return m_current;
}

void ZConfigData::enter(const QString &group, config::Group *found)
{
    m_groupName = group;
    m_hasGroup = true;
    m_current = found;
}

void ZConfigData::leave()
{
    m_hasGroup = false;
    m_current = nullptr;
}

void ZConfigData::setGroup(const QString &group)
{
    if (group.isEmpty())
        return;
    config::Group *found = whole().find(group);
    if (!found) {
        found = &whole().ensure(group);
        changed();
    }
    enter(group, found);
}

bool ZConfigData::enterForChange(const QString &group)
{
    if (isOther(group))
        setGroup(group);
    return m_hasGroup;
}

std::optional<QStringView> ZConfigData::firstAnswer(const QString &group, const QString &key)
{
    m_asked = true;
    const config::Answer answer = config::lookUp(m_text, group, key);
    if (answer.groupExists)
        enter(group, nullptr);
    return answer.value.isNull() ? std::nullopt : std::optional(answer.value);
}

std::optional<QStringView> ZConfigData::value(const QString &group, const QString &key)
{
    if (isOther(group)) {
        if (!m_asked && !m_whole)
            return firstAnswer(group, key);
        config::Group *found = whole().find(group);
        if (!found)
            return std::nullopt;
        enter(group, found);
    }
    const config::Group *current = currentGroup();
    const config::Entry *entry = current ? current->find(key) : nullptr;
    return entry ? std::optional<QStringView>(entry->value) : std::nullopt;
}

void ZConfigData::store(const QString &key, const QString &value)
{
    config::Group *group = currentGroup();
    const config::Entry *entry = group->find(key);
    const QString present = entry ? entry->value : QString();
    // A null value is the absence of one; an empty value is a value.
    if (present == value && present.isNull() == value.isNull())
        return;
    group->set(key, value);
    changed();
}

void ZConfigData::remove(const QString &key)
{
    currentGroup()->remove(key);
    changed(); // Promised: even if the key was not there.
}

void ZConfigData::clearCurrentGroup()
{
    // Promised: a group that is empty already stays.
    if (currentGroup()->entries.empty())
        return;
    whole().remove(m_groupName);
    leave();
    changed();
}

const QMap<QString, QString> *ZConfigData::listing(const QString &group)
{
    if (group.isEmpty() && !m_hasGroup)
        return nullptr;
    const QString &name = group.isEmpty() ? m_groupName : group;
    const config::Group *found = whole().find(name);
    if (!found)
        return nullptr;
    Listing &listing = m_listings[name];
    if (std::exchange(listing.asOf, m_changes) != m_changes) {
        listing.map.clear();
        for (const config::Entry &entry : found->entries)
            listing.map.insert(listing.map.cend(), config::copied(entry.key), config::copied(entry.value));
    }
    return &listing.map;
}

// Read and write for everyone, but only on a regular file at this very path: a link may lead to anybody's file.
void ZConfigData::openToEveryone() const
{
    const auto file = platform::Fd::open(QFile::encodeName(m_fileName).constData(), O_PATH | O_NOFOLLOW);
    struct stat status = {};
    if (file && ::fstat(file->get(), &status) == 0 && S_ISREG(status.st_mode))
        ::chmod(QByteArray("/proc/self/fd/" + QByteArray::number(file->get())).constData(), config::kFileMode);
}

bool ZConfigData::save()
{
    auto file = platform::FileReplacement::begin(m_fileName, config::kFileMode);
    if (!file) {
        leave();
        return false;
    }
    const QByteArray text = whole().format();
    if (!file->write(std::as_bytes(std::span(text))) || !file->sync())
        return false;
    // Promised: a failed rename counts as saved, and the file that stays gets the mode.
    if (!file->publish())
        openToEveryone();
    m_dirty = false;
    return true;
}

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
