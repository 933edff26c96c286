// Profiles of the network services that work behind applications. A kind has a group that lists the names of its
// profiles, and each profile a group of its own, named by both.
#include "settings/files/entryname.h"
#include "settings/files/settingaccess.h"
#include "settings/files/setup_utility.h"

#include <QMap>
#include <optional>

using settings::entryName;

namespace {

const QString kServiceAddress = QStringLiteral("ServiceAddress");
const QString kUrl = QStringLiteral("Url");

QString listGroup(ENUM_INVL_T kind)
{
    switch (kind) {
    case INVL_BLOG:
        return QStringLiteral("Invl_Blog_Profile_List");
    case INVL_PICTURE:
        return QStringLiteral("Invl_Pic_Profile_List");
    case INVL_AUDIO:
        return QStringLiteral("Invl_Aud_Profile_List");
    case INVL_VIDEO:
        return QStringLiteral("Invl_Vid_Profile_List");
    case INVL_GAME:
        return QStringLiteral("Invl_Game_Profile_List");
    }
    return {};
}

// The file of all profiles, opened for one operation on those of one kind. Saved by save() alone.
class Profiles {
public:
    static QString fileName() { return ZConfig::getSettingDirectory() + QStringLiteral("tyx_invnet.cfg"); }

    explicit Profiles(ENUM_INVL_T kind) : m_list(listGroup(kind)), m_file(fileName(), false) { }

    [[nodiscard]] bool isKind() const { return !m_list.isNull(); }
    QStringList names()
    {
        QStringList names;
        if (const auto *entries = m_file.getGroupEntriesKeyList(m_list)) {
            for (auto entry = entries->cbegin(); entry != entries->cend(); ++entry)
                names += settings::fromEntryName(entry.key());
        }
        return names;
    }
    bool has(const QString &name)
    {
        const auto *entries = isKind() ? m_file.getGroupEntriesKeyList(m_list) : nullptr;
        return entries && entries->contains(entryName(name));
    }
    INVL_DATA_T data(const QString &name)
    {
        return {m_file.readEntry(group(name), kServiceAddress), m_file.readEntry(group(name), kUrl)};
    }
    void add(const QString &name, const INVL_DATA_T &data)
    {
        m_file.setSettingInfo(m_list, entryName(name), true);
        m_file.setSettingInfo(group(name), kServiceAddress, data.serviceAddress, false);
        m_file.setSettingInfo(group(name), kUrl, data.url, false);
    }
    void remove(const QString &name)
    {
        m_file.clearGroup(group(name));
        m_file.removeEntry(m_list, entryName(name));
    }
    bool save() { return m_file.flush(); }

private:
    [[nodiscard]] QString group(const QString &name) const { return m_list % u':' % entryName(name); }

    QString m_list; // null when there is no such kind
    SETUP_SET_Manager m_file;
};

bool isChangeable() { return settings::isChangeable(Profiles::fileName()); }

std::optional<INVL_DATA_T> dataOf(ENUM_INVL_T kind, const QString &name)
{
    Profiles profiles(kind);
    return profiles.has(name) ? std::optional(profiles.data(name)) : std::nullopt;
}

// Null texts are left as they are.
bool change(ENUM_INVL_T kind, const QString &name, INVL_DATA_T data)
{
    if (!isChangeable() || !settings::isStorable(data.serviceAddress) || !settings::isStorable(data.url))
        return false;
    Profiles profiles(kind);
    if (!profiles.has(name))
        return false;
    const INVL_DATA_T old = profiles.data(name);
    profiles.add(name,
        {data.serviceAddress.isNull() ? old.serviceAddress : data.serviceAddress,
            data.url.isNull() ? old.url : data.url});
    return profiles.save();
}

QString notNull(const QString &text) { return text.isNull() ? QStringLiteral("") : text; }

}

bool SETUP_Utility::getInvLProfiles(ENUM_INVL_T kind, QStringList &names)
{
    Profiles profiles(kind);
    if (profiles.isKind())
        names = profiles.names();
    return profiles.isKind();
}

bool SETUP_Utility::addInvLProfile(ENUM_INVL_T kind, QString name)
{
    Profiles profiles(kind);
    if (name.isEmpty() || !profiles.isKind() || profiles.has(name) || !isChangeable())
        return false;
    profiles.add(name, {QStringLiteral(""), QStringLiteral("")});
    return profiles.save();
}

bool SETUP_Utility::delInvLProfile(ENUM_INVL_T kind, QString name)
{
    Profiles profiles(kind);
    if (!profiles.has(name) || !isChangeable())
        return false;
    profiles.remove(name);
    return profiles.save();
}

bool SETUP_Utility::renInvLProfile(ENUM_INVL_T kind, QString oldName, QString newName)
{
    Profiles profiles(kind);
    if (newName.isEmpty() || !profiles.has(oldName) || profiles.has(newName) || !isChangeable())
        return false;
    profiles.add(newName, profiles.data(oldName));
    profiles.remove(oldName);
    return profiles.save();
}

bool SETUP_Utility::getDataByInvLProfile(ENUM_INVL_T kind, QString name, INVL_DATA_T &data)
{
    const auto found = dataOf(kind, name);
    data = found.value_or(data);
    return found.has_value();
}

bool SETUP_Utility::setDataByInvLProfile(ENUM_INVL_T kind, QString name, INVL_DATA_T data)
{
    return change(kind, name, {notNull(data.serviceAddress), notNull(data.url)});
}

bool SETUP_Utility::getServerAddrByInvLProfile(ENUM_INVL_T kind, QString name, QString &address)
{
    const auto found = dataOf(kind, name);
    if (found)
        address = found->serviceAddress;
    return found.has_value();
}

bool SETUP_Utility::setServerAddrByInvLProfile(ENUM_INVL_T kind, QString name, QString address)
{
    return change(kind, name, {notNull(address), QString()});
}

bool SETUP_Utility::getUrlByInvLProfile(ENUM_INVL_T kind, QString name, QString &url)
{
    const auto found = dataOf(kind, name);
    if (found)
        url = found->url;
    return found.has_value();
}

bool SETUP_Utility::setUrlByInvLProfile(ENUM_INVL_T kind, QString name, QString url)
{
    return change(kind, name, {QString(), notNull(url)});
}
