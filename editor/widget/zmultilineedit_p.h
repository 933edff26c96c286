// The editor's state, and the few ways to change it. See zmultilineedit_*.cpp for what uses them.
#pragma once

#include "editor/text/edithistory.h"
#include "editor/text/graphemes.h"
#include "editor/text/rowlayout.h"
#include "editor/text/textmodel.h"
#include "editor/widget/touchselection.h"
#include "editor/widget/zmultilineedit.h"

#include <QElapsedTimer>
#include <QMenu>
#include <QPointer>
#include <QTimer>
#include <deque>
#include <optional>

class QInputMethodEvent;
class QKeyEvent;
class QPainter;

class ZMultiLineData {
public:
    explicit ZMultiLineData(ZMultiLineEdit &owner);
    static ZMultiLineData &of(ZMultiLineEdit &editor) { return *editor.d; }

    // Everything that changes something is one of these, from its first line to its last. They nest; the end of the
    // outermost one brings the view up to date and emits the signals, the editor may be gone afterwards.
    class Operation {
    public:
        // `later`: the toolkit called and goes on with the editor, which must not be gone then. The view is up to date
        // at the end, the signals come from the event loop.
        explicit Operation(ZMultiLineData &data, bool later = false) : m_data(data), m_later(later) { ++m_data.depth; }
        ~Operation()
        {
            if (--m_data.depth == 0)
                m_later ? m_data.finishLater() : m_data.finish();
        }
        Operation(const Operation &) = delete;
        Operation &operator=(const Operation &) = delete;

    private:
        ZMultiLineData &m_data;
        bool m_later;
    };

    enum class Notice {
        Lines,
        UndoOn,
        UndoOff,
        RedoOn,
        RedoOff,
        Truncated,
        Return,
        SmartPunctuation,
        Clicked,
        Copy,
        Cursor,
        Text
    };

    // The only ways to change the text. They record nothing, and carry cursor and marks along.
    void insertText(int offset, const QString &text);
    void removeText(int from, int to);
    void setText(const QString &whole, bool isNew = true);

    // The only way to move the cursor. `rowEnd`: where the text wraps, it stands at the end of the row before.
    struct Motion {
        int offset;
        bool mark = false;
        bool rowEnd = false;
        bool keepGoal = false; // up and down go back to the column where they came from
        bool exact = false; // within a character too: what is typed before a mark goes on behind itself
    };
    void moveCursor(const Motion &motion);
    void moveRows(int rows, bool mark);
    void markTo(QPoint place); // in the viewport; outside, the text scrolls
    void markWordAt(QPoint place);
    void mark(int from, int to); // the cursor goes to `to`
    void unmark();

    // With undo. What they cannot do, they leave.
    int insertLimited(int offset, const QString &text); // answers how much
    bool insertTyped(const QString &text, bool mark); // in the place of what is marked; false: it is refused
    QString deleteRange(int from, int to); // what it was
    void putBack(); // what was replaced
    void deleteMarked();
    void beginReplacing(bool exact); // opens a group, and takes away what is marked
    void moveMarked(int at);
    void record(ZMultiLineEditCommand *command); // takes ownership
    void replay(bool undo);

    [[nodiscard]] int from() const { return std::min(anchor, dragEnd); }
    [[nodiscard]] int to() const { return std::max(anchor, dragEnd); }
    [[nodiscard]] bool isMarked() const { return markIsOn && anchor != dragEnd; }
    [[nodiscard]] Cell cursorCell() const { return layout.cell(cursor, cursorAtRowEnd); }
    [[nodiscard]] QString paragraph() const { return text.paragraph(text.place(cursor).paragraph); }
    [[nodiscard]] int nextCharacter(int offset) const;
    [[nodiscard]] int previousCharacter(int offset) const;
    [[nodiscard]] graphemes::ClassOf wordClasses() const;
    void dropComposition();

    bool confirm(const QInputMethodEvent &event); // false: what it brings is refused
    void compose(QString preedit, int place, bool inGroup);
    bool typeKey(const QKeyEvent &event); // false: it types nothing

    // Limits, in zmultilineedit_limits.cpp.
    [[nodiscard]] QString cutToLimits(int offset, const QString &text);
    [[nodiscard]] bool fits(int offset, const QString &text);
    [[nodiscard]] bool isWithinRows(const TextModel::Change &change, int rowsBefore) const;
    [[nodiscard]] bool isAccepted(const QString &text) const; // by the validator, in the place of what is marked

    // The view.
    void applyRules();
    [[nodiscard]] RowRules rules() const;
    void finish();
    void finishLater();
    void settleAll();
    void settle();
    [[nodiscard]] std::optional<Notice> nextNotice();
    void emitNotice(Notice notice);
    void damageRows(int first, int last);
    void damageAll() { damageRows(0, INT_MAX); }
    void flushDamage();
    void updateScrollBars();
    void showCursor();
    [[nodiscard]] int topRow() const;
    [[nodiscard]] int visibleRows() const;
    [[nodiscard]] int rowLeft(int row) const; // of its text, in the viewport
    [[nodiscard]] int rowTop(int row) const;
    [[nodiscard]] QRect cursorRect() const; // in the viewport
    [[nodiscard]] Cell cellAt(QPoint place, bool *rowEnd = nullptr) const;
    void publishContext();
    void blinkAgain();
    void popup(QPoint place);
    void markHeld(QPoint place);
    void startDrag();
    void scrollStep();
    void stopScrolling() { editor.stopAutoScroll(); }
    [[nodiscard]] bool overMarked(QPoint place) const;

    // Drawing, in zmultilineedit_paint.cpp.
    void paintRow(QPainter &painter, int row);
    void paintPlain(QPainter &painter, int row, const RowLayout::Drawing &drawing);
    void paintLaidOut(QPainter &painter, int row, const RowLayout::Drawing &drawing);
    void paintRowLines(QPainter &painter, const QRect &area);

    ZMultiLineEdit &editor;
    TextModel text;
    RowLayout layout;
    EditHistory history;

    // Offsets.
    int cursor = 0;
    bool cursorAtRowEnd = false;
    int anchor = 0;
    int dragEnd = 0;
    bool markIsOn = false;
    std::optional<qreal> goalX;
    bool cursorMoved = false; // since the view was brought up to date

    // As set.
    int maxLines = -1;
    int maxLineLength = -1;
    int maxLength = -1;
    Qt::Alignment align = Qt::AlignLeft;
    ZMultiLineEdit::EchoMode echoMode = ZMultiLineEdit::Normal;
    ZMultiLineEdit::WordWrap wordWrap = ZMultiLineEdit::WidgetWidth;
    ZMultiLineEdit::WrapPolicy wrapPolicy = ZMultiLineEdit::AtWhiteSpace;
    int wrapColumnOrWidth = 0;
    int tabStop = 0; // 0: eight spaces
    int hMargin = 3;
    int fixedVisibleLines = 0;
    bool underline = false;
    bool readOnly = false;
    bool overwrite = false;
    bool fieldMode = false;
    bool autoUpdate = true;
    bool edited = false;
    QRegExp filter;
    bool filterAccepts = true;
    QPointer<const QValidator> validator;

    RowLayout::Composition pending; // unconfirmed text, as the layout has it, once it is wrapped
    bool pendingReplaces = false; // marked text: a group is open until it is confirmed or dropped
    struct {
        int offset = 0;
        QString text;
    } replaced; // by what is being typed or composed

    // Replaying and typing.
    bool replaying = false; // limits and filters do not hold
    bool replayFailed = false;
    int smartPunctuationAt = -1; // the offset behind a guessed word and its space; -1: not pending

    // Pen, blinking, scrolling.
    bool cursorOn = false;
    bool dragMarking = false;
    bool dragScrolling = false;
    bool dndPending = false;
    QPointer<QMenu> menu; // while it is open
    QPoint dragStart;
    QPoint pointer; // in the viewport
    TouchSelection touch{*this};
    QTimer blinkTimer;
    QTimer scrollTimer;
    QTimer dndTimer;
    QElapsedTimer sinceDoubleClick;
    int scrollTime = 0; // ms
    int scrollAccel = 0; // ticks until the interval shrinks

    int editorId = 0;
    QSize reportedSize;

private:
    int depth = 0; // of operations
    std::deque<Notice> notices;
    bool textChanged = false;
    int announcedRows = 1;
    bool announcedCopy = false;
    Cell announcedCell;
    Cell paintedCursor;
    int damagedFrom = INT_MAX;
    int damagedTo = -1;

public:
    void notify(Notice notice) { notices.push_back(notice); }
};
