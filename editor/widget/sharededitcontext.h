// Shows the text around the cursor to the input methods of other processes, in the state that all share.
#pragma once

#include "textinput/state/zinputmethodeditcontext.h"
#include "textinput/state/zinputmethodstate.h"

#include <QPoint>
#include <QStringList>
#include <optional>

// Of the editor with the focus. Without a GUI server nothing happens.
class SharedEditContext {
public:
    struct Context {
        QStringList lines;
        int line = 0; // with the cursor
        int column = 0;
        QPoint cursor; // on the screen
    };

    [[nodiscard]] bool isWanted(); // asked for anew whenever the focus comes; nothing is published unless it is
    void publish(const Context &context);
    // When the focus goes. What the next editor, of another process, has published meanwhile stays.
    void withdraw();

private:
    // Attached while the editor has the focus only: a GUI server that comes back has another state.
    std::optional<ZInputMethodState> m_state;
    bool m_connected = false;
    ZInputMethodEditContext m_published;
};
