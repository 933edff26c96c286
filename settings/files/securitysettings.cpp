// The codes and locks of the phone.
#include "settings/files/settingaccess.h"
#include "settings/files/settingkeys.h"
#include "settings/files/setup_utility.h"

#include <QByteArray>
#include <cstdio>

using settings::load;
using settings::Setting;
using settings::store;
namespace keys = settings::keys;

namespace {

// Takes as long for a code that is wrong at its first digit as for one that is wrong at its last.
bool isSame(const QByteArray &entered, const QByteArray &stored)
{
    unsigned different = entered.size() == stored.size() ? 0 : 1;
    for (qsizetype i = 0; i < entered.size(); ++i)
        different |= unsigned(uchar(entered[i]) ^ uchar(stored[i % stored.size()]));
    return different == 0;
}

bool verify(const Setting<QStringView> &setting, const QString &code, bool &right)
{
    QString stored;
    load(setting, stored);
    if (stored.isEmpty()) // nobody could enter that one
        stored = settings::literal(setting.absent);
    right = isSame(code.toUtf8(), stored.toUtf8());
    return true;
}

}

// clang-format off
bool SETUP_Utility::getPhoneAutoLockTime(int &minutes) { return load(keys::autoLockTime, minutes); }
bool SETUP_Utility::setPhoneAutoLockTime(SETUP_PHONELOCK_TYPE_T minutes) { return store(keys::autoLockTime, int(minutes)); }
bool SETUP_Utility::setPhoneLockFlag(bool locked) { return store(keys::phoneLock, locked); }
bool SETUP_Utility::setPhoneLockTimeOutFlag(bool timedOut) { return store(keys::phoneLockTimeOut, timedOut); }
bool SETUP_Utility::getMinUnlockCodeLength(unsigned int &digits) { return load(keys::minUnlockCodeLength, digits); }
bool SETUP_Utility::setMinUnlockCodeLength(unsigned int digits) { return store(keys::minUnlockCodeLength, digits); }
bool SETUP_Utility::getKeyLockTime(int &seconds) { return load(keys::keyLockTime, seconds); }
bool SETUP_Utility::setKeyLockTime(int seconds) { return store(keys::keyLockTime, seconds); }
bool SETUP_Utility::getInstantPhoneLockStatus(bool &on) { return load(keys::instantLock, on); }
bool SETUP_Utility::setInstantPhoneLockStatus(bool on) { return store(keys::instantLock, on); }

bool SETUP_Utility::setPhoneLockCode(QString const &code) { return store(keys::unlockCode, code); }
bool SETUP_Utility::verifyUnlockCode(QString const &code, bool &right) { return verify(keys::unlockCode, code, right); }
bool SETUP_Utility::verifySecurityCode(QString const &code, bool &right) { return verify(keys::securityCode, code, right); }
// clang-format on

bool SETUP_Utility::getPhoneAutoLockStatus(bool &on)
{
    int minutes = 0;
    load(keys::autoLockTime, minutes);
    std::printf("phone lock value = %d\n", minutes);
    on = minutes != 0;
    return true;
}

bool SETUP_Utility::getPhoneLockFlags(bool &locked, bool &timedOut)
{
    SETUP_SET_Manager system(AM_Global::System, false);
    return settings::loadFrom(system, keys::phoneLock, locked)
        && settings::loadFrom(system, keys::phoneLockTimeOut, timedOut);
}
