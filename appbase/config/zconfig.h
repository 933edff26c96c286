// Configuration files: small UTF-8 text files of named groups of keys and values.
#pragma once

#include "platform/tyxexport.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <memory>

class ZConfigData;

// One configuration file, wholly in memory. It is read once, by the constructor; changes are written back by replacing
// the whole file, so that other processes see the old file or the new one. What others write to the file after the
// construction is not seen, and is overwritten by the next save here: the last writer wins.
//
//     ZConfig config(QStringLiteral("/tmp/tyx_system.cfg"), true);
//     const int language = config.readNumEntry(QStringLiteral("SYS_SYSTEM_SET"), QStringLiteral("LanguageType"), 0);
//
// A file that is missing or cannot be read is an empty configuration; nothing reports an error except by its result.
// The first line that is neither a "[group]" header nor a "key = value" entry ends the reading: what follows it is lost
// at the next save (`tyx config check` finds such a line). The form of the file is described in docs/formats/config.md.
//
// Every operation takes the name of a group. An empty name means the current group: the one that setGroup() or the last
// operation named. An operation that changes something creates a group that is missing; one that reads does not, and
// leaves the current group as it was. After a reading, after clearGroup() removed the current group, and after a save
// whose temporary file could not be opened there is no current group: changes then answer false, removals true,
// readings their default. setGroup() ends that, and so does an operation that names another group than the last one.
//
// Values are stored as text. One that contains a line break or begins or ends with white space does not come back from
// the file as it was; neither does a key of that kind, one that contains "=", or one that begins with "[".
//
// An object belongs to its creator and is used from one thread.
class TYX_EXPORT ZConfig {
public:
    // Reads `file`, a path that is used as it stands. With `writeThrough` every operation that modifies something saves
    // the file before it returns, and its result is the save's; otherwise flush(), write() or the destructor saves.
    ZConfig(const QString &file, bool writeThrough);

    // The order of the virtual functions is fixed: destructor, removeEntry, clearGroup, flush.
    virtual ~ZConfig(); // saves when something has changed; a failure is not reported, call flush() to see it

    ZConfig(const ZConfig &) = delete;
    ZConfig &operator=(const ZConfig &) = delete;

    // Makes `group` current and creates it, empty, when it is missing. Never saves by itself. "" changes nothing.
    void setGroup(const QString &group);

    // Stores a value and makes `group` current. False when there is no current group or the save failed. With
    // write-through the file is saved even when the value was the same.
    bool writeEntry(
        const QString &group, const QString &key, const QString &value); // a null value of a new key: nothing
    bool writeEntry(const QString &group, const QString &key, const char *value); // UTF-8
    bool writeEntry(const QString &group, const QString &key, int value);
    bool writeEntry(const QString &group, const QString &key, unsigned int value);
    bool writeEntry(const QString &group, const QString &key, double value); // as "%g": 6 significant digits
    bool writeEntry(const QString &group, const QString &key, bool value); // "1" or "0"
    // Every element followed by `separator`, the last one too. Elements that are empty or contain it do not come back.
    bool writeEntry(const QString &group, const QString &key, const QStringList &value, const QChar &separator);

    // The value, or `defaultValue` when the group or the key is missing. An existing group becomes current.
    QString readEntry(const QString &group, const QString &key, const QString &defaultValue = QString());
    QString readEntryDirect(const QString &group, const QString &key, const QString &defaultValue = QString());
    // The same for numbers. An empty value reads as the default too, one that is no decimal number in range as 0.
    int readNumEntry(const QString &group, const QString &key, int defaultValue = 0);
    unsigned int readUIntEntry(const QString &group, const QString &key, unsigned int defaultValue = 0);
    bool readBoolEntry(const QString &group, const QString &key, bool defaultValue = false); // true: a number but 0
    // The value cut at `separator`, without the empty pieces; an empty list when it is missing.
    QStringList readListEntry(const QString &group, const QString &key, const QChar &separator);

    // Removes a key, and counts as a change even if it was not there. A missing group is created. False: a save failed.
    virtual bool removeEntry(const QString &group, const QString &key);

    // Removes a group with its entries; then there is no current group. A group that is empty already stays, and so
    // does its header in the file. False: a save failed.
    virtual bool clearGroup(const QString &group);

    // Saves what has changed. False: the file could not be written; it is as it was, the changes are still here and
    // the next save tries again.
    virtual bool flush();

    // Saves everything, changed or not. A `file` that is not empty becomes the file of this object first, also for
    // later saves. The file is readable and writable for everyone (0666) afterwards. True also when only the last step,
    // the rename over the old file, failed.
    bool write(const QString &file);

    // Keys and values of a group in ascending order; null when there is no such group. Belongs to this object and is
    // valid until its next change. The current group stays.
    const QMap<QString, QString> *getGroupEntriesKeyList(const QString &group);

    // The directory of the setting files, "setup/" under $TYX_APP_WRITE_PATH ("/" when that is unset or empty), with a
    // slash at its end. init... also creates it and gives it mode 0777; whether that worked is not reported.
    static QString initSettingDirectory();
    static QString getSettingDirectory();

private:
    std::unique_ptr<ZConfigData> d;
};
