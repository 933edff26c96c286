// Who shows the input widget (a keyboard on the screen, a field to write in) on behalf of the applications' editors.
#pragma once

#include "platform/tyxexport.h"
#include "platform/values/qcstring.h"

#include <QUuid>

// Implemented by the input method server and made in the GUI server's process: its constructor registers it, its
// destructor takes it out. There is one at a time; a later one replaces an earlier one. While there is none, what
// applications ask of the input widget is ignored. Called on the GUI thread, while a message is handled.
class TYX_EXPORT InputWidgetHost {
public:
    // Whose text is typed. Answers go to the channel.
    struct Owner {
        int editor = 0; // an editor that is registered
        int window = 0; // the editor's window; 0 when it was never shown
        QCString channel; // of the editor's application
    };

    InputWidgetHost();
    virtual ~InputWidgetHost();
    InputWidgetHost(const InputWidgetHost &) = delete;
    InputWidgetHost &operator=(const InputWidgetHost &) = delete;

    static InputWidgetHost *instance(); // null when there is none

    // The method that the next showInputWidget() is for; null: the one that is in use.
    virtual void selectInputMethod(const QUuid &method) = 0;

    // `show` is 0 to hide the input widget, anything else to show it. `inputType` is what the editor takes, as the
    // input methods number it.
    virtual void showInputWidget(const Owner &owner, int show, int inputType) = 0;

    // The numbers are the application's, as the input methods understand them.
    virtual void editorStateChanged(const Owner &owner, int state, int detail) = 0;

    // The editor takes no more text. Not called for applications that die: their windows go (QWSServer::Destroy).
    virtual void editorGone(int editor) = 0;
};
