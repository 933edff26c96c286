#include "appbase/application/unconfirmedtext.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QInputMethodEvent>
#include <QTextCharFormat>

namespace {

using Attribute = QInputMethodEvent::Attribute;

QVariant surroundings(const QWidget &editor)
{
    return QVariantList{editor.inputMethodQuery(Qt::ImSurroundingText), editor.inputMethodQuery(Qt::ImCursorPosition)};
}

QList<Attribute> underlined(const QString &text)
{
    QTextCharFormat format;
    format.setUnderlineStyle(QTextCharFormat::SingleUnderline);
    const int length = int(text.size());
    return {Attribute(QInputMethodEvent::TextFormat, 0, length, format),
        Attribute(QInputMethodEvent::Cursor, length, 1, QVariant())};
}

}

UnconfirmedText::UnconfirmedText() { connect(qApp, &QApplication::focusChanged, this, &UnconfirmedText::focusMoved); }

void UnconfirmedText::show(const QString &text)
{
    const QPointer<QWidget> editor = QApplication::focusWidget();
    if (!editor || !editor->testAttribute(Qt::WA_InputMethodEnabled))
        return;
    if (m_editor != editor)
        confirm();
    if (!editor)
        return;
    QInputMethodEvent event(text, text.isEmpty() ? QList<Attribute>() : underlined(text));
    QCoreApplication::sendEvent(editor, &event);
    if (editor && !text.isEmpty() && m_editor != editor)
        watch(*editor);
    m_editor = text.isEmpty() ? nullptr : editor;
    m_text = text;
    m_surroundings = editor ? surroundings(*editor) : QVariant();
}

// An editor whose cursor was moved or whose text changed has dropped the unconfirmed text by itself.
void UnconfirmedText::confirm()
{
    QWidget *editor = m_editor;
    m_editor = nullptr;
    if (!editor || surroundings(*editor) != m_surroundings)
        return;
    QInputMethodEvent event;
    event.setCommitString(m_text);
    QCoreApplication::sendEvent(editor, &event);
}

// What scrolls gets the pen on its viewport.
void UnconfirmedText::watch(QWidget &editor)
{
    editor.installEventFilter(this);
    if (const auto *area = qobject_cast<QAbstractScrollArea *>(&editor))
        area->viewport()->installEventFilter(this);
}

// Before the cursor moves: the text belongs where it stands.
bool UnconfirmedText::eventFilter(QObject *watched, QEvent *event)
{
    const QPointer<QObject> alive = watched; // the application may close what it is told of
    if (event->type() == QEvent::MouseButtonPress)
        confirmForUser();
    return !alive;
}

void UnconfirmedText::confirmForUser()
{
    if (!m_editor)
        return;
    confirm();
    Q_EMIT confirmedByUser();
}

// Not at once: the editor may be about to be destroyed with its window.
void UnconfirmedText::focusMoved(const QWidget *old)
{
    if (old && old == m_editor)
        QMetaObject::invokeMethod(this, &UnconfirmedText::confirmForUser, Qt::QueuedConnection);
}
