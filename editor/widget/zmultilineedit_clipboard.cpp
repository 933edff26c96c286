// Clipboard, and text that is dragged.
#include "appbase/application/zapplication.h"
#include "editor/widget/zmultilineedit_p.h"

#include <QClipboard>
#include <QDrag>
#include <QDropEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QPainter>

using Operation = ZMultiLineData::Operation;

namespace {

// What follows the pen while text is dragged: the beginning of it.
QPixmap pictureOf(const QString &text, const QWidget &widget)
{
    constexpr int kMostWidth = 120; // pixels, half of the screen
    constexpr int kMostText = 200; // more of it is not looked at
    constexpr int kMargin = 3;
    const QFontMetrics metrics = widget.fontMetrics();
    const QString shown = metrics.elidedText(text.left(kMostText).simplified(), Qt::ElideRight, kMostWidth);
    const QSize size(metrics.horizontalAdvance(shown) + 2 * kMargin, metrics.height() + 2 * kMargin);
    QPixmap picture(size);
    picture.fill(widget.palette().color(QPalette::Highlight));
    QPainter painter(&picture);
    painter.setFont(widget.font());
    painter.setPen(widget.palette().color(QPalette::HighlightedText));
    painter.drawText(kMargin, kMargin + metrics.ascent(), shown);
    return picture;
}

QString textOf(const QMimeData *data, const QString &subType)
{
    if (!data)
        return {};
    const QString type = QStringLiteral("text/") + subType;
    if (subType == u"plain")
        return data->text();
    return QString::fromUtf8(data->data(type));
}

}

// What is shown as stars stays secret.
void ZMultiLineEdit::copyText()
{
    if (d->isMarked() && d->echoMode != Password)
        QGuiApplication::clipboard()->setText(markedText());
}

void ZMultiLineEdit::copy() { copyText(); }

void ZMultiLineEdit::cut()
{
    const Operation operation(*d);
    if (d->readOnly || !d->isMarked())
        return;
    copyText();
    del();
}

void ZMultiLineEdit::paste() { pasteSubType("plain"); }

void ZMultiLineEdit::pasteSubType(const QCString &subType)
{
    const Operation operation(*d);
    if (d->readOnly)
        return;
    const QString type = subType.isEmpty() ? QStringLiteral("plain") : QString::fromLatin1(subType);
    d->insertTyped(textOf(QGuiApplication::clipboard()->mimeData(), type), false);
}

// The popup asks the clipboard itself; input methods show whether there is something to paste.
void ZMultiLineEdit::clipboardChanged()
{
    if (hasFocus())
        updateMicroFocus();
}

// A pen that is held opens the menu instead; it drags by moving.
void ZMultiLineEdit::dndTimeout()
{
    if (d->dndPending && ZApplication::mouseMode(this) != ZApplication::MouseMode::PressHold)
        d->startDrag();
}

// A drag that ends in this editor is a move, done by dropEvent() as one step; elsewhere the receiver says what it was.
void ZMultiLineData::startDrag()
{
    dndPending = false;
    dndTimer.stop();
    if (!isMarked() || echoMode == ZMultiLineEdit::Password)
        return;
    auto *data = new QMimeData;
    data->setText(editor.markedText());
    QPointer<QDrag> drag = new QDrag(&editor);
    drag->setMimeData(data);
    drag->setPixmap(pictureOf(data->text(), editor));
    const QPointer<ZMultiLineEdit> alive = &editor;
    const Qt::DropActions possible = readOnly ? Qt::CopyAction : Qt::CopyAction | Qt::MoveAction;
    const Qt::DropAction done = drag->exec(possible, readOnly ? Qt::CopyAction : Qt::MoveAction);
    if (!alive || !drag)
        return;
    if (done == Qt::MoveAction && drag->target() != &editor && drag->target() != editor.viewport())
        editor.deleteText();
}

void ZMultiLineEdit::dragEnterEvent(QDragEnterEvent *event)
{
    event->setAccepted(!d->readOnly && event->mimeData()->hasText());
    d->dndPending = event->isAccepted();
}

// Near an edge the text scrolls under the pen; the marked text stays what it is.
void ZMultiLineEdit::dragMoveEvent(QDragMoveEvent *event)
{
    constexpr int kEdge = 16;
    event->setAccepted(!d->readOnly && event->mimeData()->hasText());
    d->pointer = event->position().toPoint();
    if (!viewport()->rect().adjusted(kEdge, kEdge, -kEdge, -kEdge).contains(d->pointer))
        startAutoScroll();
}

void ZMultiLineEdit::dragLeaveEvent(QDragLeaveEvent *)
{
    d->dndPending = false;
    stopAutoScroll();
}

void ZMultiLineEdit::dropEvent(QDropEvent *event)
{
    const Operation operation(*d);
    d->dndPending = false;
    stopAutoScroll();
    const QString text = event->mimeData()->text();
    if (d->readOnly || text.isEmpty())
        return event->ignore();
    const int at = d->layout.offset(d->cellAt(event->position().toPoint()));
    const bool own = event->source() == this || event->source() == viewport();
    const bool move = own && event->dropAction() == Qt::MoveAction && d->isMarked();
    event->acceptProposedAction();
    if (!move) {
        const int before = d->text.length();
        d->moveCursor({at});
        d->insertTyped(text, true);
        if (d->text.length() - before == TextModel::normalized(text).size())
            return;
        // What found no room must stay where it came from.
        event->setDropAction(event->possibleActions() & Qt::CopyAction ? Qt::CopyAction : Qt::IgnoreAction);
        return event->accept();
    }
    d->moveMarked(at);
}

// Limits do not hold: the text is no longer than before, and what was taken away must not get lost.
void ZMultiLineData::moveMarked(int at)
{
    const int first = from();
    const int last = to();
    if (at >= first && at <= last)
        return; // onto itself
    const QString moved = text.text(first, last);
    record(new UTIL_BeginCommand);
    deleteRange(first, last);
    at = at > last ? at - (last - first) : at;
    insertText(at, moved);
    record(new UTIL_InsTextCmd(at, moved));
    mark(at, at + int(moved.size()));
    record(new UTIL_EndCommand);
}
