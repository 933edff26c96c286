// Changes to a settings file that no other change gets in between of.
#pragma once

#include "platform/tyxexport.h"

#include <QString>
#include <memory>

class SettingsTransactionData;

// Holds the file from the moment it is read until it is saved, so that what several programs change is all there in
// the end, even in one value:
//
//     SettingsTransaction change(SETUP_SET_Manager::getSettingFileName(AM_Global::Call));
//     change.set(kGroup, kMinutes, change.number(kGroup, kMinutes, 0) + minutes);
//     if (!change.commit())
//         qWarning("call time: %s", qPrintable(change.errorText()));
//
// Without commit() nothing changes. Between the constructor and commit() lies arithmetic, no waiting: every save of the
// file, by whatever program, waits for this one (and gives up after 300 ms). A program that read the file before and
// saves it afterwards with ZConfig still overwrites what was changed here.
class TYX_EXPORT SettingsTransaction {
public:
    // Waits up to five seconds for other transactions and saves, then reads `file`. One that is missing is empty.
    explicit SettingsTransaction(const QString &file);
    ~SettingsTransaction();
    SettingsTransaction(const SettingsTransaction &) = delete;
    SettingsTransaction &operator=(const SettingsTransaction &) = delete;

    // False when the file is held by somebody else, cannot be read or written, or has a damaged line behind which
    // saving would lose something (`tyx config check` finds it). Everything then reads as the default, and commit() is
    // false.
    [[nodiscard]] bool isOpen() const;
    [[nodiscard]] QString errorText() const; // of the constructor or commit(): "read: Permission denied"

    // What the file has, with what set() and remove() did to it since. `absent` when there is no such key, and for
    // number() also when its text is empty.
    [[nodiscard]] QString text(const QString &group, const QString &key, const QString &absent = QString()) const;
    [[nodiscard]] int number(const QString &group, const QString &key, int absent = 0) const; // 0 for what is no number

    // A name or text that would not come back as it was given (a line break, white space at its ends, '=' in a key)
    // makes commit() false.
    void set(const QString &group, const QString &key, const QString &value);
    void set(const QString &group, const QString &key, int value);
    void set(const QString &group, const QString &key, const char *value) = delete;
    void remove(const QString &group, const QString &key);

    // Saves and lets go of the file. False: it is as it was.
    [[nodiscard]] bool commit();

private:
    std::unique_ptr<SettingsTransactionData> d;
};
