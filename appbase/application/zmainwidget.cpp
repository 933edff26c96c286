#include "appbase/application/zmainwidget.h"

#include "appbase/application/zapplication.h"

#include <QApplication>
#include <QPointer>
#include <QScreen>
#include <QScrollArea>
#include <QVBoxLayout>
#include <algorithm>

class ZMainWidgetData {
public:
    explicit ZMainWidgetData(ZMainWidget &widget)
        : window(widget), layout(*new QVBoxLayout(&widget)), area(*new QScrollArea(&widget))
    {
    }

    [[nodiscard]] int covered() const;
    [[nodiscard]] QWidget *editor() const;
    void arrange();
    void reveal();

    ZMainWidget &window;
    QVBoxLayout &layout; // both are children of the window, and die with it
    QScrollArea &area;
    int inputWidgetHeight = 0; // 0 while it is hidden
    QPointer<QWidget> typedInto;
    QRect announced;
};

// The pixels of the window that lie under the input widget. A window that ends above it, because the server made it
// smaller, has none.
int ZMainWidgetData::covered() const
{
    if (inputWidgetHeight == 0)
        return 0;
    const QRect screen = window.screen()->geometry();
    const int top = screen.bottom() + 1 - std::min(inputWidgetHeight, screen.height());
    const int bottom = window.mapToGlobal(QPoint(0, window.height())).y();
    return std::clamp(bottom - top, 0, window.height());
}

QWidget *ZMainWidgetData::editor() const
{
    const QWidget *content = area.widget();
    for (QWidget *candidate : {typedInto.data(), window.focusWidget()}) {
        if (content && candidate && content->isAncestorOf(candidate))
            return candidate;
    }
    return nullptr;
}

void ZMainWidgetData::arrange()
{
    layout.setContentsMargins(0, 0, 0, covered());
    layout.activate();
    if (inputWidgetHeight != 0)
        reveal();
    const QRect rect = window.editorRect();
    if (rect == announced)
        return;
    announced = rect;
    Q_EMIT window.editorRectChanged(rect); // last: whoever hears it may destroy the window
}

void ZMainWidgetData::reveal()
{
    QWidget *shown = editor();
    if (!shown)
        return;
    const bool fits = shown->height() <= area.viewport()->height();
    const QRect part = fits ? shown->rect() : shown->inputMethodQuery(Qt::ImCursorRectangle).toRect();
    const QPoint middle = shown->mapTo(area.widget(), part.center());
    area.ensureVisible(middle.x(), middle.y(), 0, part.height() / 2 + 1);
}

ZMainWidget::ZMainWidget(const QString &title, QWidget *parent)
    : QWidget(parent, Qt::Window), d(std::make_unique<ZMainWidgetData>(*this))
{
    setWindowTitle(title);
    d->area.setWidgetResizable(true);
    d->area.setFrameShape(QFrame::NoFrame);
    d->area.setFocusPolicy(Qt::NoFocus);
    d->layout.setSizeConstraint(QLayout::SetNoConstraint); // or the room for the input widget makes the window grow
    d->layout.setContentsMargins(0, 0, 0, 0);
    d->layout.addWidget(&d->area);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, QWidget *now) {
        if (d->inputWidgetHeight == 0 || !isAncestorOf(now))
            return;
        d->typedInto = now;
        d->reveal();
    });
}

ZMainWidget::~ZMainWidget() { disconnect(qApp, nullptr, this, nullptr); }

void ZMainWidget::setContentWidget(QWidget *content)
{
    d->area.setWidget(content);
    d->arrange();
}

QWidget *ZMainWidget::contentWidget() const { return d->area.widget(); }

QRect ZMainWidget::editorRect() const { return rect().adjusted(0, 0, 0, -d->layout.contentsMargins().bottom()); }

QRect ZMainWidget::getEditorRect(int editor, int height, bool shown)
{
    const ZApplication *application = ZApplication::instance();
    d->typedInto = application ? application->editor(editor) : nullptr;
    d->inputWidgetHeight = shown ? std::max(height, 0) : 0;
    const QPointer<ZMainWidget> alive = this;
    d->arrange();
    return alive ? editorRect() : QRect();
}

void ZMainWidget::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    d->arrange();
}

void ZMainWidget::moveEvent(QMoveEvent *event)
{
    QWidget::moveEvent(event);
    d->arrange();
}
