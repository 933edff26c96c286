// What all windows of an application share.
#pragma once

#include "platform/tyxexport.h"

class TYX_EXPORT ZGlobal { // name fixed
public:
    ZGlobal() = delete;

    // The input widget is hidden while a window has the focus that is no ZMainWidget: nothing has to be made larger,
    // but text that the input method has not confirmed is confirmed as it stands. When it was hidden `automatically`
    // (something came in its way; it may come back) the text is left unconfirmed. `editor` and `window` are those of
    // the message; the text of a ZApplication is where its focus is. Without a ZApplication this does nothing.
    static void hideInputWidgetAux(int editor, int window, bool automatically);
};
