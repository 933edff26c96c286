// What screen readers see of an editor.
#include "editor/widget/zmultilineedit_p.h"

#include <QAccessibleWidget>

namespace {

// Offsets are those of the whole text. A password is as many stars.
class AccessibleEditor : public QAccessibleWidget,
                         public QAccessibleTextInterface,
                         public QAccessibleEditableTextInterface {
public:
    explicit AccessibleEditor(ZMultiLineEdit &editor) : QAccessibleWidget(&editor, QAccessible::EditableText) { }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::TextInterface)
            return static_cast<QAccessibleTextInterface *>(this);
        if (type == QAccessible::EditableTextInterface && !editor().isReadOnly())
            return static_cast<QAccessibleEditableTextInterface *>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    [[nodiscard]] QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Value ? shown(0, INT_MAX) : QAccessibleWidget::text(kind);
    }
    void setText(QAccessible::Text kind, const QString &text) override
    {
        if (kind == QAccessible::Value && !editor().isReadOnly())
            editor().setText(text);
    }
    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.multiLine = true;
        state.selectableText = true;
        state.editable = !editor().isReadOnly();
        state.readOnly = editor().isReadOnly();
        state.passwordEdit = editor().echoMode() != ZMultiLineEdit::Normal;
        return state;
    }

    void selection(int index, int *from, int *to) const override
    {
        const bool marked = index == 0 && data().isMarked();
        *from = marked ? data().from() : 0;
        *to = marked ? data().to() : 0;
    }
    [[nodiscard]] int selectionCount() const override { return data().isMarked() ? 1 : 0; }
    void addSelection(int from, int to) override { setSelection(0, from, to); }
    void removeSelection(int) override { editor().deselect(); }
    void setSelection(int index, int from, int to) override
    {
        if (index == 0)
            select(from, to);
    }
    [[nodiscard]] int cursorPosition() const override { return data().cursor; }
    void setCursorPosition(int offset) override
    {
        const ZMultiLineData::Operation operation(data());
        data().moveCursor({offset});
    }
    [[nodiscard]] QString text(int from, int to) const override { return shown(from, to); }
    [[nodiscard]] int characterCount() const override { return editor().length(); }
    [[nodiscard]] QRect characterRect(int offset) const override
    {
        const Cell from = data().layout.cell(offset);
        const Cell to = data().layout.cell(data().nextCharacter(offset), true);
        return editor().globalRect(from.row, from.column, to.row, to.column);
    }
    [[nodiscard]] int offsetAtPoint(const QPoint &place) const override
    {
        return data().layout.offset(data().cellAt(editor().viewport()->mapFromGlobal(place)));
    }
    void scrollToSubstring(int from, int) override { setCursorPosition(from); }
    [[nodiscard]] QString attributes(int, int *from, int *to) const override
    {
        *from = 0;
        *to = characterCount();
        return {};
    }

    void deleteText(int from, int to) override { replaceText(from, to, {}); }
    void insertText(int offset, const QString &text) override { replaceText(offset, offset, text); }
    void replaceText(int from, int to, const QString &text) override
    {
        const ZMultiLineData::Operation operation(data());
        select(from, to);
        if (text.isEmpty())
            editor().deleteText();
        else
            editor().insert(text);
    }

private:
    [[nodiscard]] ZMultiLineEdit &editor() const { return *static_cast<ZMultiLineEdit *>(widget()); }
    [[nodiscard]] ZMultiLineData &data() const { return ZMultiLineData::of(editor()); }
    [[nodiscard]] QString shown(int from, int to) const
    {
        const QString part = data().text.text(from, std::min(to, editor().length()));
        return data().layout.breaker().shown(part);
    }
    void select(int from, int to) const
    {
        const ZMultiLineData::Operation operation(data());
        data().mark(from, to);
    }
};

QAccessibleInterface *makeInterface(const QString &, QObject *object)
{
    auto *editor = qobject_cast<ZMultiLineEdit *>(object);
    return editor ? new AccessibleEditor(*editor) : nullptr;
}

}

namespace accessibility {

void install() { [[maybe_unused]] static const bool once = (QAccessible::installFactory(makeInterface), true); }

}
