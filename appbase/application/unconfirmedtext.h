// Text that an input method shows in an editor while the user has not confirmed it.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariant>
#include <QWidget>

// It stands underlined at the cursor and is no part of the editor's text yet. Each show() replaces what is shown;
// nothing typed is lost: when the editor loses the focus or the pen sets its cursor, what stands there then is
// confirmed as it is.
class UnconfirmedText : public QObject {
    Q_OBJECT

public:
    UnconfirmedText();

    void show(const QString &text); // in the widget with the focus; empty takes it away
    void confirm();

Q_SIGNALS:
    void confirmedByUser(); // who went elsewhere: the input method has to forget it

protected:
    bool eventFilter(QObject *watched, QEvent *event) override; // of the editor

private:
    void watch(QWidget &editor);
    void confirmForUser();
    void focusMoved(const QWidget *old);

    QPointer<QWidget> m_editor; // that shows the text; null: there is none
    QString m_text;
    QVariant m_surroundings; // what the editor held when the text was put there
};
