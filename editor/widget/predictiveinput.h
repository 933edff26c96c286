// What an input method that guesses words gets from editors, and how it takes keys before they do.
#pragma once

#include "platform/tyxexport.h"

#include <QRect>
#include <QString>

class QKeyEvent;
class ZMultiLineEdit;

// Where the cursor of the editor with the focus stands.
struct EditContext {
    int editor = 0; // its identifier on the phone; 0: no editor has the focus, or the GUI server does not know it
    QString paragraph; // the one with the cursor, without its line break; empty when it is not predictable
    int cursor = 0; // column in the paragraph
    QRect cursorRect; // on the screen
    bool predictable = false; // false: nothing typed here may be learned or shown (passwords, read-only text)
};

// One for the process; the caller of install() keeps it, and takes it back with null before it dies.
class TYX_EXPORT PredictiveInput {
public:
    static void install(PredictiveInput *input); // in the place of the one before, which is told nothing
    static PredictiveInput *instance(); // null when none is installed

    virtual ~PredictiveInput();

    // Sees every key that an editor is about to act on; true swallows it. May write into the editor, by
    // QInputMethodEvent or otherwise, but not destroy it.
    virtual bool filterKey(ZMultiLineEdit &editor, const QKeyEvent &key) = 0;

    // After each change of text or cursor in the editor with the focus, and when the focus comes or goes.
    virtual void contextChanged(const EditContext &context) = 0;
};
