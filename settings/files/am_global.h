// The applications of the phone by number.
#pragma once

class AM_Global {
public:
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
