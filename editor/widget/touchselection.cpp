#include "editor/widget/touchselection.h"

#include "appbase/application/zapplication.h"
#include "appbase/look/tyxskin.h"
#include "editor/widget/zmultilineedit_p.h"

#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr int kHandle = 24; // pixels: what a fingertip meets
constexpr int kKnob = 14; // what is seen of it
constexpr QSize kGlass(120, 52);
constexpr int kZoom = 2;
constexpr int kGap = 6; // between the row and the glass

}

// It hangs below its row, or stands on it where there is no room below.
class TouchSelection::Handle : public QWidget {
public:
    Handle(TouchSelection &selection, QWidget &viewport) : QWidget(&viewport), m_selection(selection)
    {
        hide();
        resize(kHandle, kHandle);
        setCursor(Qt::ArrowCursor);
        ZApplication::setMouseMode(this, ZApplication::MouseMode::Plain); // being held is what it is for
    }

    void pointAt(const QRect &end) // of the marked text: a line as high as its row
    {
        m_below = end.bottom() + kHandle < parentWidget()->height();
        const int lowest = std::max(0, parentWidget()->height() - kHandle); // in a low field it lies over the row
        move(end.left() - kHandle / 2, std::clamp(m_below ? end.bottom() + 1 : end.top() - kHandle, 0, lowest));
        m_middle = end.center();
    }
    [[nodiscard]] bool isHeld() const { return m_held; }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        const QRect knob((kHandle - kKnob) / 2, m_below ? 3 : kHandle - kKnob - 3, kKnob, kKnob);
        if (TYXSkin::draw(painter, knob, QStringLiteral("handle"), {.on = m_held}))
            return;
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(palette().color(QPalette::HighlightedText));
        painter.setBrush(palette().highlight());
        painter.drawEllipse(knob);
    }
    void mousePressEvent(QMouseEvent *event) override
    {
        if (event->button() != Qt::LeftButton)
            return event->ignore();
        m_held = true;
        m_grip = m_middle - mapToParent(event->position().toPoint());
        m_selection.take(*this);
    }
    void mouseMoveEvent(QMouseEvent *event) override
    {
        if (m_held)
            m_selection.drag(mapToParent(event->position().toPoint()) + m_grip); // the editor may be gone then
    }
    void mouseReleaseEvent(QMouseEvent *) override
    {
        m_held = false;
        m_selection.letGo();
    }
    void mouseDoubleClickEvent(QMouseEvent *event) override { mousePressEvent(event); }

private:
    TouchSelection &m_selection;
    QPoint m_middle; // of the row, where the marked text ends
    QPoint m_grip; // from the pen to there
    bool m_below = true;
    bool m_held = false;
};

// Shows, larger, what the finger covers.
class TouchSelection::Glass : public QWidget {
public:
    explicit Glass(QWidget &window) : QWidget(&window)
    {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        resize(kGlass);
    }

    void showOf(QWidget &viewport, const QRect &cursor)
    {
        const QSize part = kGlass / kZoom;
        QPixmap seen(part);
        seen.fill(viewport.palette().color(viewport.backgroundRole()));
        const QPoint corner = cursor.center() - QPoint(part.width() / 2, part.height() / 2);
        const QRect inside = QRect(corner, part) & viewport.rect();
        viewport.render(&seen, inside.topLeft() - corner, inside, QWidget::DrawWindowBackground);
        m_picture = seen.scaled(kGlass, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        const QPoint row = viewport.mapTo(parentWidget(), cursor.topLeft());
        const int above = row.y() - kGap - height();
        const int below = row.y() + cursor.height() + kHandle + kGap;
        const int left = std::clamp(row.x() - width() / 2, 0, std::max(0, parentWidget()->width() - width()));
        move(left, above >= 0 ? above : below);
        raise();
        show();
        update();
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.drawPixmap(0, 0, m_picture);
        painter.setPen(palette().color(QPalette::Highlight));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }

private:
    QPixmap m_picture;
};

TouchSelection::TouchSelection(ZMultiLineData &editor) : m_editor(editor) { }

TouchSelection::~TouchSelection()
{
    delete m_fixed.data();
    delete m_moving.data();
}

void TouchSelection::begin()
{
    for (QPointer<Handle> *handle : {&m_fixed, &m_moving}) {
        if (!*handle)
            *handle = new Handle(*this, *m_editor.editor.viewport());
    }
    m_active = true;
    follow();
}

// The handles stay for the next time: one of them may be what the pen is on.
void TouchSelection::end()
{
    if (!std::exchange(m_active, false))
        return;
    for (Handle *handle : {m_fixed.data(), m_moving.data()}) {
        if (handle) // else it went with its viewport
            handle->hide();
    }
    letGo(); // a hidden one may not see the pen go up
}

void TouchSelection::follow()
{
    if (!m_active)
        return;
    if (!m_editor.isMarked() || !m_fixed || !m_moving)
        return end();
    put(*m_fixed, m_editor.anchor);
    put(*m_moving, m_editor.dragEnd);
    if (m_glass)
        showGlass();
}

void TouchSelection::put(Handle &handle, int offset)
{
    const Cell cell = m_editor.layout.cell(offset, offset == m_editor.to());
    const QPoint top(m_editor.rowLeft(cell.row) + int(m_editor.layout.x(cell)), m_editor.rowTop(cell.row));
    QRect end(top, QSize(1, m_editor.layout.breaker().rowHeight()));
    const QRect seen = m_editor.editor.viewport()->rect();
    if (m_editor.wordWrap == ZMultiLineEdit::WidgetWidth) // white space hangs over the edge
        end.moveLeft(std::clamp(end.left(), 0, std::max(0, seen.right())));
    handle.pointAt(end);
    handle.setVisible(handle.isHeld() || seen.intersects(end)); // hidden, it would not see the pen go up
    handle.update();
}

void TouchSelection::showGlass() { m_glass->showOf(*m_editor.editor.viewport(), m_editor.cursorRect()); }

void TouchSelection::take(const Handle &handle)
{
    const ZMultiLineData::Operation operation(m_editor);
    if (&handle == m_fixed) {
        std::swap(m_fixed, m_moving);
        m_editor.mark(m_editor.dragEnd, m_editor.anchor);
    }
    m_glass = std::make_unique<Glass>(*m_editor.editor.window());
    showGlass();
}

void TouchSelection::drag(QPoint place)
{
    const ZMultiLineData::Operation operation(m_editor);
    if (!m_active)
        return;
    const bool inside = m_editor.editor.viewport()->rect().contains(place);
    if (!inside || m_editor.layout.offset(m_editor.cellAt(place)) != m_editor.anchor)
        return m_editor.markTo(place);
    m_editor.pointer = place;
    m_editor.stopScrolling();
}

bool TouchSelection::isHeld() const { return m_glass != nullptr; }

void TouchSelection::letGo()
{
    m_editor.stopScrolling();
    m_glass.reset();
}
