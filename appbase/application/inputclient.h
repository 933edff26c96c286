// The application's side of text input: its editors, and what it does when the input widget comes and goes.
#pragma once

#include "appbase/application/unconfirmedtext.h"
#include "platform/values/qcstring.h"
#include "textinput/state/zinputmethodstate.h"

#include <QHash>
#include <QPointer>
#include <optional>

class ZMainWidget;
struct IM_KeyEventEx;

// Editors have identifiers that are unique on the whole phone: the process id (22 bits) and a number within the process
// (9 bits, the least recently used first).
class InputClient : public QObject {
    Q_OBJECT

public:
    explicit InputClient(const QCString &channel); // of the application
    ~InputClient() override; // tells the server that the editors are gone

    int registerEditor(QWidget *editor); // 0 when there are 511 already
    void unregisterEditor(const QObject *editor);
    [[nodiscard]] QWidget *editor(int id) const; // null when it is none of this process

    // The input widget covers this much of the screen's bottom.
    void inputWidgetShown(int editor, int height);
    void inputWidgetHidden(int editor, int window, bool automatically);
    void endTyping(bool automatically);

    void sendKey(const IM_KeyEventEx &event);

    UnconfirmedText unconfirmed;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Registration {
        int id;
        int window; // as last told
    };
    int freeId();
    void tellServer(const QWidget &editor, Registration &registration);
    static void requestInputWidget(const QWidget &editor, const Registration &registration, bool show);
    void publishContext(); // what stands around the cursor
    void withdrawContext();
    void tellState(int state) const; // of the editor that is typed into

    const QCString m_channel;
    QHash<const QObject *, Registration> m_editors;
    int m_lastNumber = 0;
    QPointer<QWidget> m_typedInto; // the editor that has the input widget; null: none
    std::optional<ZInputMethodState> m_state; // made when there is something to tell
    QPointer<ZMainWidget> m_shrunk; // the window that made room for the input widget
};
