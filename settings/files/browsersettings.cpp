// The browser's features and shortcuts.
#include "settings/files/entryname.h"
#include "settings/files/settingaccess.h"
#include "settings/files/settingkeys.h"
#include "settings/files/setup_utility.h"

#include <QMap>
#include <algorithm>
#include <memory>

using settings::load;
using settings::Setting;
using settings::store;
namespace keys = settings::keys;

namespace {

constexpr qsizetype kMaxShortcuts = 255; // their number is handed out as a byte
constexpr qsizetype kMaxBlock = 255;
const QString kShortcutGroup = QStringLiteral("BRW_SHORTCUT_TABLE");

template <typename T, size_t N> const Setting<T> *feature(const Setting<T> (&all)[N], int number)
{
    return number >= 0 && size_t(number) < N ? &all[number] : nullptr;
}

template <typename T, typename Value> bool get(const Setting<T> *setting, Value &value)
{
    return setting != nullptr && load(*setting, value);
}
template <typename T, typename Value> bool set(const Setting<T> *setting, const Value &value)
{
    return setting != nullptr && store(*setting, value);
}

QString shortcutFile() { return ZConfig::getSettingDirectory() + SETUP_Utility::getShortcutFileName(); }

qsizetype mostShortcuts()
{
    unsigned limit = 0;
    SETUP_Utility::getBrowserFeatureValue(BROWSER_SHORTCUT_MAX_NUMBER, limit);
    return limit == 0 ? kMaxShortcuts : std::min(qsizetype(limit), kMaxShortcuts);
}

}

// clang-format off
bool SETUP_Utility::getBrowserFeatureValue(BROWSER_FEATURE_VALUE_T number, unsigned int &value) { return get(feature(keys::browserValues, number), value); }
bool SETUP_Utility::setBrowserFeatureValue(BROWSER_FEATURE_VALUE_T number, unsigned int value) { return set(feature(keys::browserValues, number), value); }
bool SETUP_Utility::getBrowserFeatureState(BROWSER_FEATURE_STATE_T number, unsigned int &state) { return get(feature(keys::browserStates, number), state); }
bool SETUP_Utility::setBrowserFeatureState(BROWSER_FEATURE_STATE_T number, unsigned int state) { return set(feature(keys::browserStates, number), state); }
bool SETUP_Utility::getBrowserFeatureString(BROWSER_FEATURE_STRING_T number, QString &text) { return get(feature(keys::browserStrings, number), text); }
bool SETUP_Utility::setBrowserFeatureString(BROWSER_FEATURE_STRING_T number, QString text) { return set(feature(keys::browserStrings, number), text); }
// clang-format on

bool SETUP_Utility::getBrowserFeatureBlock(BROWSER_FEATURE_BLOCK_T number, unsigned char *&block, unsigned char &length)
{
    QByteArray bytes;
    if (!get(feature(keys::browserBlocks, number), bytes))
        return false;
    bytes.truncate(kMaxBlock);
    auto copy = bytes.isEmpty() ? nullptr : std::make_unique<unsigned char[]>(size_t(bytes.size()));
    std::copy(bytes.cbegin(), bytes.cend(), copy.get());
    block = copy.release();
    length = static_cast<unsigned char>(bytes.size());
    return true;
}

bool SETUP_Utility::setBrowserFeatureBlock(
    BROWSER_FEATURE_BLOCK_T number, const unsigned char *block, unsigned char length)
{
    if (block == nullptr && length > 0)
        return false;
    return set(feature(keys::browserBlocks, number), QByteArray(reinterpret_cast<const char *>(block), length));
}

bool SETUP_Utility::shortcutGetAllRecords(unsigned char &count, SHORTCUT_RECORD *&records)
{
    SETUP_SET_Manager file(shortcutFile(), false);
    const auto *entries = file.getGroupEntriesKeyList(kShortcutGroup);
    const qsizetype size = entries ? std::min(entries->size(), kMaxShortcuts) : 0;
    auto all = size == 0 ? nullptr : std::make_unique<SHORTCUT_RECORD[]>(size_t(size));
    if (size > 0) {
        auto entry = entries->cbegin();
        for (size_t at = 0; at < size_t(size); ++at, ++entry)
            all[at] = {settings::fromEntryName(entry.key()), entry.value()};
    }
    count = static_cast<unsigned char>(size);
    records = all.release();
    return true;
}

bool SETUP_Utility::shortcutCreateRecord(SHORTCUT_RECORD record)
{
    if (record.name.isEmpty() || !settings::isStorable(record.url) || !settings::isChangeable(shortcutFile()))
        return false;
    SETUP_SET_Manager file(shortcutFile(), true);
    const QString key = settings::entryName(record.name);
    const auto *entries = file.getGroupEntriesKeyList(kShortcutGroup);
    if (entries && (entries->contains(key) || entries->size() >= mostShortcuts()))
        return false;
    return file.writeEntry(kShortcutGroup, key, record.url.isNull() ? QStringLiteral("") : record.url);
}

bool SETUP_Utility::shortcutDeleteRecord(QString name)
{
    if (!settings::isChangeable(shortcutFile()))
        return false;
    SETUP_SET_Manager file(shortcutFile(), true);
    const QString key = settings::entryName(name);
    const auto *entries = file.getGroupEntriesKeyList(kShortcutGroup);
    return entries && entries->contains(key) && file.removeEntry(kShortcutGroup, key);
}

bool SETUP_Utility::shortcutDeleteAllRecords()
{
    if (!settings::isChangeable(shortcutFile()))
        return false;
    SETUP_SET_Manager file(shortcutFile(), true);
    return file.clearGroup(kShortcutGroup);
}
