// What every process can know of the input methods: which there are, which one is chosen, and what is typed into.
#pragma once

#include "platform/tyxexport.h"
#include "textinput/state/zinputmethodeditcontext.h"

#include <QMap>
#include <QPoint>
#include <QString>
#include <QUuid>
#include <memory>

class ZInputMethodStateData;

// The state of the input method server, in a segment of memory that all processes share.
//
// The GUI server makes the segment, and removes it when its object dies; one object there is the rule. Everybody else
// uses the one that is there: each call connects when it has to, so that a client that was started before the server
// finds it later. Without a connection a question has the answer that is given here, and everything else does nothing.
// There is no lock: a reader may see a field while it is written. Bytes that make no sense read as nothing.
class TYX_EXPORT ZInputMethodState {
public:
    ZInputMethodState();
    ~ZInputMethodState();
    ZInputMethodState(const ZInputMethodState &) = delete;
    ZInputMethodState &operator=(const ZInputMethodState &) = delete;

    [[nodiscard]] bool isConnected() const; // connects, like all others

    // The list. It has room for 12.
    [[nodiscard]] int getInputMethodCount() const; // -1 without a connection
    // False when there is no room. A name of more than 49 bytes of UTF-8 is cut between two characters.
    bool insertItem(const QUuid &method, const QString &name, bool system);
    void clearIMList(); // none is checked then
    [[nodiscard]] int findInputMethod(const QString &name) const; // its index, -1 for none
    [[nodiscard]] int findInputMethod(const QUuid &method) const;
    [[nodiscard]] QMap<QUuid, QString> getIMList(bool systemOnly) const; // names by identifier

    // One of them. Promised: an index of 12 is accepted, and reads what lies behind the table. For any other one
    // outside they answer the null identifier, an empty name, and true.
    [[nodiscard]] QUuid imQuuid(int index) const;
    [[nodiscard]] QString imName(int index) const;
    [[nodiscard]] bool isSystemIM(int index) const; // false without a connection

    // The one that is chosen: -1 for none. Choosing one that is not in the list chooses none.
    [[nodiscard]] int getIndexOfCheckedInputMethod() const;
    void setIndexOfCheckedInputMethod(const QUuid &method);

    // The application that is typed into: its editor (0: none), and its name, which is cut to 99 bytes. Both pointers
    // may be null. False without a connection, which leaves them as they are.
    bool getCurrentOwner(int *id, QString *name) const;
    void setCurrentOwner(int id, const QString &name);

    // Whether the keys of the phone go to an input method that wants them; on while nobody switched it off. The server
    // asks at each press.
    void enableKeyboardFilter(bool enable);
    [[nodiscard]] bool keyboardFilterEnabled() const; // true without a connection

    // The text around the cursor, of which as much is kept as there is room for. The application that is typed into
    // writes it, and no lines for what nobody may learn or show. Without a connection: no lines.
    void setEditContext(const QStringList &lines, int cursorLine, int cursorPosition);
    [[nodiscard]] ZInputMethodEditContext getEditContext() const;

    // Where the cursor is on the screen, in pixels.
    void setEditCursor(QPoint position);
    [[nodiscard]] QPoint editCursor() const;

private:
    std::unique_ptr<ZInputMethodStateData> d;
};
