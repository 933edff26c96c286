// The input method server: which input methods there are, and whose text the chosen one types.
#pragma once

#include "appbase/application/inputwidgethost.h"
#include "appbase/messaging/keyeventex.h"
#include "platform/tyxexport.h"
#include "settings/files/inputsetting.h"
#include "textinput/plugin/imstatecmd.h"

#include <QObject>
#include <QRect>
#include <QUuid>
#include <memory>

class ZIMServerData;

// One in the GUI server, made after the window server. The input methods run in a process of their own, tyx-imhost;
// while that one starts, hangs or has died, the server shows a plain keypad of its own. Answers the channel
// "TYX/IMServer" and what applications ask of the input widget.
class TYX_EXPORT ZIMServer : public QObject, public InputWidgetHost {
    Q_OBJECT

public:
    // Brings commands to the input method in use.
    class TYX_EXPORT IMSService {
    public:
        explicit IMSService(ZIMServerData &server) : m_server(server) { } // which must outlive it

        // False while none runs; of a SetContextCmd, also when it is not the predictive one. The caller keeps it.
        bool runCommand(IMStateCmd *command);

    private:
        ZIMServerData &m_server;
    };

    // What the window server asks of each key of the phone: an input method that wants keys gets those that type, while
    // it is shown and as long as ZInputMethodState::enableKeyboardFilter() has not been switched off.
    class IMSKeyboardFilter;

    // Starts tyx-imhost, with the settings as they are stored. Nothing is shown yet.
    explicit ZIMServer(QObject *parent = nullptr);
    ~ZIMServer() override;

    // What applications ask; see InputWidgetHost. An editor that hides the input widget while another one shows it does
    // not make it flicker: hiding waits a moment for that.
    void selectInputMethod(const QUuid &method) override;
    void showInputWidget(const Owner &owner, int show, int inputType) override;
    void editorStateChanged(const Owner &owner, int state, int detail) override;
    void editorGone(int editor) override;

    // Whose text is typed; in the shared state as well. The name is that of the application.
    void setInputMethodOwner(int editor, int window, const QString &application);

    // False when there is none of that identifier. A method that was set aside because its process died is tried again.
    bool selectInputMethod(const QUuid &method, unsigned int language);
    [[nodiscard]] bool isExternalInputMethod(const QUuid &method) const;
    [[nodiscard]] QString externalInputMethodName(const QUuid &method) const; // empty when it is none
    // The identifier of the method that suits the settings best: of the preferred type and language, else of that type,
    // else of that language, else the first that can be used. Null when there is none.
    [[nodiscard]] QUuid createPrimaryInputMethodID(const INPUT_SETTING_T &setting) const;

    // The keyboard of the input method in use, or the plain keypad in its place. The owner's application is told
    // "inputWidgetShown(int,int,int,QUuid,int)" when one is there.
    void showKbd();
    void hideKbd(); // the application is told "hideInputWidget(int,int,int)"

    // Acts on a hide request that is pending, and clears it: the input widget is hidden, and when it was not asked for
    // again five minutes later, its memory is given back.
    void delayHideInputMethod();

    // A keystroke to the owner, or to the window with the focus when there is no owner.
    void sendKey(unsigned short unicode, unsigned short keycode, unsigned short modifiers);
    void showWordCompletionTip(const QString &word); // empty: none

    // Asks the input method in use for completions; what was shown before goes. It answers with a tip in the title
    // strip, or shows them itself. Ignored while the user's settings say no to such completions.
    void requestWordCompletionEvent(const QString &beginning, DICTLANGTYPE language); // empty: none any more
    void requestPhraseCompletion(const QString &before, DICTLANGTYPE language);
    void handleWordCompletion(QString text, DICTLANGTYPE language, WordCompletionType type);

    // A line over the title strip; off at first. While it is on, and a keyboard is shown, it takes what is typed, and
    // its owner's application is told "sendTextToContact(QString)" at each change. Switched off, it forgets its text.
    void enableFindBar(bool enable);

    // Reads one from where the stream is; `complete` tells whether all of it was there.
    static IM_KeyEventEx translateKeyEventEx(QDataStream &stream, bool &complete);

    [[nodiscard]] QRect
    inputWidgetRect() const; // on the screen, with its title strip and find bar; empty while it is hidden
    [[nodiscard]] int currentIMWinId() const; // of the input method's window; 0 while there is none

    // The stored settings: true, and the default for what is missing.
    static bool getInputSetting(INPUT_SETTING_T &setting);

    // Stores them; false when that failed. The server goes on with those that it has, until
    // "setInputMethodSettings(INPUT_SETTING_T)" brings it the new ones.
    static bool setDefaultInputSetting(); // those of a new phone
    static bool setInputSetting(const INPUT_SETTING_T &setting);

public Q_SLOTS:
    void slotKbMenu(); // the menu of the input methods
    void slotSelectMenu(int entry); // of those that the menu offers
    void slotHideKbd(); // the user wants it: hideKbd()
    void slotFindBarTextChanged(const QString &text); // the owner's application is told "sendTextToContact(QString)"
    void slotTipClicked(); // the word of the tip is taken: the input method gets a TipWordCmd
    // The pen went down or up on the screen: an input method under it has to answer. `buttons` as Qt::MouseButtons.
    void checkMouseEvent(const QPoint &position, int buttons);

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    friend class ZIMServerData;
    std::unique_ptr<ZIMServerData> d;
};
