// The values that system settings take. Numbers are what stands in the files; a file may hold others too, which come
// back from a get as they are.
#pragma once

#include <QString>

// What rings, sounds or alerts. Each operation takes its own part of them, and answers false for the others.
enum SETUP_SOUND_ALERT_TYPE_T : int {
    // get- and setSoundVolume(): 0 (silent) to 9
    SETUP_SOUND_SPEAKER = 0,
    SETUP_SOUND_TOUCH_SCREEN = 1,
    SETUP_SOUND_SYSTEM = 2,
    // getSoundFile()
    SETUP_SOUND_RING_TONE_1 = 10,
    SETUP_SOUND_RING_TONE_2 = 11,
    SETUP_SOUND_TEXT_MESSAGE = 12,
    SETUP_SOUND_INSTANT_MESSAGE = 13,
    SETUP_SOUND_PUSH_TO_TALK = 14,
    SETUP_SOUND_ALARM = 15,
    SETUP_SOUND_REMINDER = 16,
    // get- and setAlertStatus()
    SETUP_ALERT_MESSAGE = 20,
    SETUP_ALERT_MISSED_EVENT = 21,
    SETUP_ALERT_GENERAL = 22,
};

// How a call is announced.
enum RING_TONE_TYPE_T : unsigned int {
    RING_TONE_RING = 0,
    RING_TONE_VIBRATE = 1,
    RING_TONE_VIBRATE_THEN_RING = 2,
    RING_TONE_VIBRATE_AND_RING = 3,
    RING_TONE_SILENT = 4,
};

// Seconds without a key or pen until the screen goes dark.
enum SETUP_LCD_SLEEP_TIME_T : int {
    SETUP_LCD_SLEEP_NEVER = 0,
    SETUP_LCD_SLEEP_15_SECONDS = 15,
    SETUP_LCD_SLEEP_30_SECONDS = 30,
    SETUP_LCD_SLEEP_1_MINUTE = 60,
    SETUP_LCD_SLEEP_2_MINUTES = 120,
    SETUP_LCD_SLEEP_5_MINUTES = 300,
};

// Minutes without a key or pen until the phone locks itself.
enum SETUP_PHONELOCK_TYPE_T : int {
    SETUP_PHONELOCK_NEVER = 0,
    SETUP_PHONELOCK_1_MINUTE = 1,
    SETUP_PHONELOCK_5_MINUTES = 5,
    SETUP_PHONELOCK_10_MINUTES = 10,
    SETUP_PHONELOCK_30_MINUTES = 30,
};

// Whether Java programs may make sounds.
enum SETUP_JAVASOUND_TYPE_T : int {
    SETUP_JAVASOUND_AS_RING_TONE = 0, // as the type of the ring tone says
    SETUP_JAVASOUND_ON = 1,
    SETUP_JAVASOUND_OFF = 2,
};

// Whether only numbers of the card's list can be called.
enum FIXED_DIAL_STATUS_T : unsigned int {
    FIXED_DIAL_OFF = 0,
    FIXED_DIAL_ON = 1,
    FIXED_DIAL_UNSUPPORTED = 2, // the card has no list of fixed numbers
};

// What a phone has, by the number of its flex bit (0 to 255).
enum SETUP_FLEX_ID_T : int {
    SETUP_FLEX_BLUETOOTH = 0,
    SETUP_FLEX_IRDA = 1,
    SETUP_FLEX_USB = 2,
    SETUP_FLEX_JAVA = 3,
    SETUP_FLEX_BROWSER = 4,
    SETUP_FLEX_CAMERA = 5,
    SETUP_FLEX_INSTANT_MESSAGING = 6,
    SETUP_FLEX_VOICE_RECOGNITION = 7,
};

// Numbers that the browser keeps.
enum BROWSER_FEATURE_VALUE_T : int {
    BROWSER_IDLE_TIMEOUT, // seconds
    BROWSER_WTAT_CONFIG,
    BROWSER_CONFIRM_VALUE,
    BROWSER_SHORTCUT_MAX_NUMBER, // 0: as many as there is room for, 255
    BROWSER_MMS_SIZE_LIMIT, // bytes; 0: none
    BROWSER_SERVICE_LOAD_VALUE,
    BROWSER_PHONE_NUMBER_DISPLAY_FORMAT,
    BROWSER_CURRENT_SCROLL,
    BROWSER_CURRENT_ZOOM,
    BROWSER_22_BACKLIGHT_VALUE,
    BROWSER_CURRENT_BACKLIGHT,
    BROWSER_CARD_SLOT,
};

// What the browser has switched on (1) or off (0).
enum BROWSER_FEATURE_STATE_T : int {
    BROWSER_WEB_ACCESS_LOCK,
    BROWSER_UPDATE_PENDING,
    BROWSER_IMAGE_INFO,
    BROWSER_SOUND_INFO,
    BROWSER_CACHE_STARTUP,
    BROWSER_LOCK,
    BROWSER_WTLS_CLASS_3_STATUS,
    BROWSER_CURRENT_ANIMATION,
    BROWSER_SIGN_TEXT_SELECT,
    BROWSER_WEB_SESSION_LOCK,
    BROWSER_SHORTCUTS_LOCK,
};

// Addresses that the browser keeps.
enum BROWSER_FEATURE_STRING_T : int { BROWSER_OPERATOR_URL, BROWSER_HOMEPAGE };

// Quality-of-service profiles of the network, in its own encoding.
enum BROWSER_FEATURE_BLOCK_T : int { BROWSER_QOS_MIN, BROWSER_QOS_REQUESTED };

// A shortcut of the browser.
struct SHORTCUT_RECORD {
    QString name; // of which there is one each
    QString url; // a line of text; nobody looks whether it is an address
};

// Kinds of network services that work behind an application, without a page of their own.
enum ENUM_INVL_T : int { INVL_BLOG, INVL_PICTURE, INVL_AUDIO, INVL_VIDEO, INVL_GAME };

// Where a network service is reached: any texts.
struct INVL_DATA_T {
    QString serviceAddress; // of the server, as SETUP_Utility::getServerAddrByInvLProfile() has it
    QString url; // as getUrlByInvLProfile() has it
};
