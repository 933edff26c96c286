#include "editor/widget/zmultilineedit.h"

#include "appbase/application/zapplication.h"
#include "editor/widget/predictiveinput.h"
#include "editor/widget/zmultilineedit_p.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QScrollBar>

using Operation = ZMultiLineData::Operation;

namespace accessibility {
void install(); // accessibleeditor.cpp
}

ZMultiLineData::ZMultiLineData(ZMultiLineEdit &owner)
    : editor(owner), layout(text, RowRules{}), history([this](EditHistory::List list, bool available) {
        if (list == EditHistory::List::Undo)
            notify(available ? Notice::UndoOn : Notice::UndoOff);
        else
            notify(available ? Notice::RedoOn : Notice::RedoOff);
    })
{
}

ZMultiLineEdit::ZMultiLineEdit(QWidget *parent, const char *name) : QAbstractScrollArea(parent)
{
    init(parent, false, 0, name);
}

ZMultiLineEdit::ZMultiLineEdit(QWidget *parent, bool fieldMode, int reserved, const char *name)
    : QAbstractScrollArea(parent)
{
    init(parent, fieldMode, reserved, name);
}

ZMultiLineEdit::~ZMultiLineEdit()
{
    PredictiveInput *input = PredictiveInput::instance();
    if (input && hasFocus())
        input->contextChanged({});
}

void ZMultiLineEdit::init(QWidget *, bool fieldMode, int, const char *name)
{
    accessibility::install();
    d = std::make_unique<ZMultiLineData>(*this);
    d->fieldMode = fieldMode;
    setObjectName(QString::fromUtf8(name));
    connect(&d->blinkTimer, &QTimer::timeout, this, &ZMultiLineEdit::blinkTimerTimeout);
    connect(&d->scrollTimer, &QTimer::timeout, this, &ZMultiLineEdit::scrollTimerTimeout);
    connect(&d->dndTimer, &QTimer::timeout, this, &ZMultiLineEdit::dndTimeout);
    connect(this, &ZMultiLineEdit::linesChanged, this, &ZMultiLineEdit::changeContentSize);
    connect(this, &ZMultiLineEdit::textChanged, this, qOverload<>(&ZMultiLineEdit::bufferUpdate));
    connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, this, &ZMultiLineEdit::clipboardChanged);
    d->dndTimer.setSingleShot(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_InputMethodEnabled);
    setAttribute(Qt::WA_KeyCompression);
    ZMultiLineEdit::setupViewport(viewport());
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setSizePolicy(QSizePolicy::Expanding, fieldMode ? QSizePolicy::Preferred : QSizePolicy::Expanding);
    d->applyRules();
    if (ZApplication *app = ZApplication::instance()) {
        d->editorId = app->registerEditor(this);
        ZApplication::setMouseMode(this, ZApplication::MouseMode::PressHold);
    }
}

void ZMultiLineEdit::setupViewport(QWidget *viewport)
{
    d->touch.end();
    viewport->setBackgroundRole(QPalette::Base);
    viewport->setCursor(d->readOnly ? Qt::ArrowCursor : Qt::IBeamCursor);
    viewport->setAcceptDrops(true);
    if (ZApplication *app = ZApplication::instance(); app && d->editorId != 0)
        app->registerEditor(this); // the pen on it asks for the keyboard
}

int ZMultiLineEdit::editorId() const { return d->editorId; }
bool ZMultiLineEdit::fieldMode() const { return d->fieldMode; }

QString ZMultiLineEdit::text() const { return d->text.text(); }
int ZMultiLineEdit::length() const { return d->text.length(); }
int ZMultiLineEdit::numLines() const { return d->layout.rows(); }
int ZMultiLineEdit::maxLineWidth() const { return d->layout.widest(); }
bool ZMultiLineEdit::edited() const { return d->edited; }
void ZMultiLineEdit::setEdited(bool on) { d->edited = on; }

QString ZMultiLineEdit::textLine(int row) const
{
    return row < 0 || row >= numLines() ? QString() : d->layout.text(d->layout.row(row));
}

ZMultiLineEdit::ZMultiLineEditRow ZMultiLineEdit::row(int row) const
{
    if (row < 0 || row >= numLines())
        return {};
    const RowLayout::Row at = d->layout.row(row);
    return {d->layout.text(at), at.width, at.last};
}

bool ZMultiLineEdit::isEndOfParagraph(int row) const { return row >= 0 && row < numLines() && d->layout.row(row).last; }

bool ZMultiLineEdit::isReadOnly() const { return d->readOnly; }

void ZMultiLineEdit::setReadOnly(bool on)
{
    if (d->readOnly == on)
        return;
    const Operation operation(*d);
    d->dropComposition();
    d->readOnly = on;
    setAttribute(Qt::WA_InputMethodEnabled, !on);
    viewport()->setCursor(on ? Qt::ArrowCursor : Qt::IBeamCursor);
    if (on) {
        d->blinkTimer.stop();
        d->cursorOn = false;
    } else {
        d->blinkAgain();
    }
    if (hasFocus())
        d->publishContext();
    d->damageAll();
}

bool ZMultiLineEdit::isOverwriteMode() const { return d->overwrite; }

void ZMultiLineEdit::setOverwriteMode(bool on)
{
    const Operation operation(*d);
    d->overwrite = on;
    d->damageAll();
}

bool ZMultiLineEdit::autoUpdate() const { return d->autoUpdate; }

void ZMultiLineEdit::setAutoUpdate(bool on)
{
    const Operation operation(*d);
    d->autoUpdate = on;
    if (on)
        d->damageAll();
}
