// The applications of the phone by number, and where the platform is installed.
#pragma once

#include "platform/tyxexport.h"

#include <QString>

class TYX_EXPORT AM_Global {
public:
    // The platform's directory on a storage device: of device 1, the phone's own, that is $TYX_INSTALLED_QT_PATH. Null
    // when that is not set, and for every other device: nothing is installed there.
    static QString getInstalledQtDir(int device);

    // Programs agree on the numbers. Other values are allowed wherever one is taken.
    enum Apps : int {
        Sms = 3,
        Call = 4,
        Email = 64,
        People = 65,
        Calendar = 66,
        MediaPlayer = 71,
        Camera = 72,
        Theme = 76,
        System = 77,
        Connection = 82,
        Browser = 85,
        SyncML = 88,
        Bluetooth = 92,
        InstantMessaging = 100,
        VideoShare = 101,
        Provision = 102,
        Vpn = 600,
        AlertStyle = 604,
    };
};
