// How an input method is written: a library with one class (docs/input-methods.md tells all of it).
#pragma once

#include "textinput/plugin/imstatecmd.h"

#include <QString>
#include <QtPlugin>

class QWidget;

// Where an input method's output goes: the editor that has the input widget. Each call may be made at any time; while
// no editor has it, the text goes to the window with the focus.
class ZInputMethodSink {
public:
    ZInputMethodSink() = default;
    ZInputMethodSink(const ZInputMethodSink &) = delete;
    ZInputMethodSink &operator=(const ZInputMethodSink &) = delete;
    virtual ~ZInputMethodSink() = default;

    virtual void sendText(const QString &text) = 0; // at the cursor; at most 1000 characters of it
    virtual void sendKey(int key, Qt::KeyboardModifiers modifiers = {}) = 0; // Qt::Key, pressed and released
    virtual void setUnconfirmedText(const QString &text) = 0; // shown underlined; sendText() and empty take it away
    virtual void setCompletionTip(const QString &word) = 0; // in the title strip; empty: none
    virtual void hide() = 0; // the input widget
};

// Lives in a process of its own: what goes wrong here costs the user this keyboard for a moment, and nothing else.
// All calls come on the GUI thread.
class ZInputMethodPlugin {
public:
    ZInputMethodPlugin() = default;
    ZInputMethodPlugin(const ZInputMethodPlugin &) = delete;
    ZInputMethodPlugin &operator=(const ZInputMethodPlugin &) = delete;
    virtual ~ZInputMethodPlugin() = default;

    // The keyboard. It is as wide as the screen, and as high as its sizeHint() says: 40 pixels at least, half of the
    // screen at most. The caller owns it and may destroy it at any time, to call this again later; the sink outlives
    // it.
    virtual QWidget *createWidget(ZInputMethodSink &sink) = 0;

    // See IMStateCmd for what there is; what an input method does not know it ignores. The widget may not exist yet.
    virtual void runCommand(const IMStateCmd &command) = 0;

    // Keys of the phone, while the keyboard is shown: those that type, and Backspace; between the first of these and
    // the confirmed text also those that move the cursor, Return and Enter. Only for an input method that says "keys":
    // true of itself; the application does not get them then, and what is not used goes back by sendKey().
    struct HardKey {
        int unicode = 0; // 0 or 0xFFFF: as the key says
        int key = 0; // Qt::Key
        Qt::KeyboardModifiers modifiers; // that are held with it
        bool isPress = true; // each press that came here is followed by its release here
        bool autoRepeat = false; // a further press of a key that is held
    };
    // Here it uses no key and gives none back, so that the key is lost.
    virtual void keyEvent(const HardKey & /*key*/) { }
};

// For the plug-in's Q_PLUGIN_METADATA. The number is another one when libraries have to be built anew: those with the
// old one are not loaded.
#define ZInputMethodPlugin_iid "tyx.InputMethod/1"
Q_DECLARE_INTERFACE(ZInputMethodPlugin, ZInputMethodPlugin_iid)
