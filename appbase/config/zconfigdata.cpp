#include "appbase/config/zconfigdata.h"

#include "appbase/config/configfile.h"
#include "platform/system/filereplace.h"

#include <QFile>
#include <fcntl.h>
#include <sys/stat.h>
#include <utility>

void ZConfigData::read()
{
    m_dirty = false;
    if (const auto bytes = config::readFile(m_fileName))
        m_text = config::decoded(*bytes);
    leave();
}

config::ConfigText &ZConfigData::whole()
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
