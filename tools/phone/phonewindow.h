// The viewer's window: the phone, the panel with its state, and what is done with whole sessions.
#pragma once

#include "tools/phone/hand.h"
#include "tools/phone/screenlink.h"

#include <QProcess>
#include <QWidget>

class PhoneView;
class QLabel;
class QPushButton;
class StatusPanel;

class PhoneWindow : public QWidget {
    Q_OBJECT

public:
    struct Options {
        QString name; // of the phone, for people who have several
        QString folder; // where pictures and recordings go unless the user says otherwise
    };

    PhoneWindow(platform::Fd orders, Options options);
    ~PhoneWindow() override;

    [[nodiscard]] PhoneView &view() { return *m_view; }
    [[nodiscard]] const ScreenLink &screen() const { return m_screen; }

    // Puts what the screen shows into a PNG of its own pixels. The window says what came of it.
    bool savePicture(const QString &file);

private:
    QWidget *makePanel();
    QPushButton *addButton(QWidget &parent, const QString &text, void (PhoneWindow::*act)());
    void askForPicture();
    void toggleRecording();
    void askForReplay();
    void startTool(const QStringList &arguments);
    void onToolEnd();
    void onAttachedChanged();
    void say(const QString &text);
    QString proposedFile(const QString &kind, const QString &ending) const;

    const Options m_options;
    ScreenLink m_screen;
    Hand m_hand;
    QProcess m_tool; // `tyx keys record` or `tyx keys replay`
    PhoneView *m_view = nullptr;
    StatusPanel *m_status = nullptr;
    QPushButton *m_record = nullptr;
    QPushButton *m_replay = nullptr;
    QLabel *m_news = nullptr;
};
