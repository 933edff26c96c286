// The editor as a widget: keys, limits, popup, composition, pen, and handlers that interfere. What operations do to
// text, marks and history is compared with a model in tst_editormodel.
#include "editor/widget/predictiveinput.h"
#include "editor/widget/zmultilineedit_p.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QIntValidator>
#include <QMenu>
#include <QMimeData>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

class Editor : public ZMultiLineEdit {
public:
    explicit Editor(bool field = false) : ZMultiLineEdit(nullptr, field, 0)
    {
        setFont(QFont(u"DejaVu Sans"_s, 9));
        resize(120, 100);
        show();
    }
    using ZMultiLineEdit::startAutoScroll;

    ZMultiLineData &data() { return ZMultiLineData::of(*this); }
    // Whether the parent would get it.
    bool press(int key, const QString &text = {}, Qt::KeyboardModifiers modifiers = {})
    {
        QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
        keyPressEvent(&event);
        return event.isAccepted();
    }
    void compose(const QString &preedit, const QString &commit = {})
    {
        QInputMethodEvent event(preedit, {});
        event.setCommitString(commit);
        QApplication::sendEvent(this, &event);
    }
    QString rows() const
    {
        QStringList all;
        for (int i = 0; i < numLines(); ++i)
            all << textLine(i);
        return all.join(u'|');
    }
    QPoint point(int row, int column)
    {
        return {data().rowLeft(row) + int(data().layout.x({row, column})) + 1, data().rowTop(row) + 2};
    }
};

class Guess : public PredictiveInput {
public:
    bool filterKey(ZMultiLineEdit &, const QKeyEvent &key) override { return key.key() == Qt::Key_Q; }
    void contextChanged(const EditContext &next) override { context = next; }
    EditContext context;
};

}

class TstZMultiLineEdit : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keys();
    void readOnlyKeysScroll();
    void fieldLeavesKeysToItsForm();
    void limits();
    void limitsCutTheTextThatIsThere();
    void filtersAndValidators();
    void popupEntries();
    void compositionIsNoText();
    void compositionOverMarkedTextIsOneStep();
    void predictiveInput();
    void smartPunctuation();
    void autoScrollGetsFaster();
    void clicks();
    void aHeldPenMarksTheWord();
    void movedTextIsOneStep();
    void handlersMayDoAnything();
    void hostileCommandsDoNothing();
    void growingTellsTheLayout();
    void drawsWhateverItHolds();
    void accessibility();
};

void TstZMultiLineEdit::keys()
{
    // Of letters, and names of keys in angle brackets: the text, with the cursor as "|".
    const auto typed = [](const QString &keys) -> QString {
        Editor editor;
        static const QRegularExpression token(u"<([^>]+)>|(.)"_s);
        for (const QRegularExpressionMatch &match : token.globalMatch(keys)) {
            const QString name = match.captured(1);
            const QKeyCombination key = QKeySequence(name)[0];
            if (name.isEmpty())
                editor.press(match.captured(2)[0].toUpper().unicode(), match.captured(2));
            else if (!editor.press(key.key(), {}, key.keyboardModifiers()))
                return u"not taken: "_s + name;
        }
        return editor.text().insert(editor.data().cursor, u'|');
    };
    QCOMPARE(typed(u"a <Return>b<Enter>"_s), u"a \nb\n|"_s);
    QCOMPARE(typed(u"a<Return><Backspace>b"_s), u"ab|"_s);
    QCOMPARE(typed(u"abc<Home><Delete>"_s), u"|bc"_s);
    QCOMPARE(typed(u"abc<Ctrl+A>1<Ctrl+E>2<Ctrl+B><Ctrl+B>3<Ctrl+F>4<Ctrl+H><Ctrl+D>"_s), u"1ab3c|"_s);
    QCOMPARE(typed(u"ab<Return>cd<Ctrl+P>1<Ctrl+N>2<Up><Up>3"_s), u"ab13|\ncd2"_s);
    QCOMPARE(typed(u"abc<Ctrl+Z><Ctrl+Y><F14>d<Ctrl+Y>"_s), u"d|"_s); // undo and redo
    QCOMPARE(typed(u"ab<Shift+Left><F16><Right><F18><Shift+Left><Shift+Left><F20>"_s), u"a|"_s); // copy, paste, cut
    QCOMPARE(typed(u"abc<Shift+Home>x"_s), u"x|"_s);
    QCOMPARE(typed(u"a<Return>b<PgUp>1<PgDown>2"_s), u"a1\nb2|"_s);
    // From right to left.
    QCOMPARE(typed(u"\u05D0\u05D1\u05D0\u05D1\u05D0\u05D1<Return>\u05D0<Up>a"_s),
        u"\u05D0a|\u05D1\u05D0\u05D1\u05D0\u05D1\n\u05D0"_s);
    QCOMPARE(typed(u"\u05D0\u05D1<Right><Right>a<Ctrl+A>"_s), u"|a\u05D0\u05D1"_s);
}

void TstZMultiLineEdit::readOnlyKeysScroll()
{
    Editor editor;
    editor.setText(u"row\n"_s.repeated(50) + u"end"_s);
    editor.setCursorPosition(20, 1);
    editor.setReadOnly(true);
    const int top = editor.verticalScrollBar()->value();
    QVERIFY(top > 0 && editor.press(Qt::Key_Up) && editor.press(Qt::Key_Up) && editor.press(Qt::Key_Down));
    QCOMPARE(editor.verticalScrollBar()->value(), top - 1);
    QVERIFY(editor.press(Qt::Key_PageUp));
    QCOMPARE(editor.verticalScrollBar()->value(), std::max(0, top - 1 - editor.data().visibleRows()));
    for (const int key :
        {int(Qt::Key_A), int(Qt::Key_Return), int(Qt::Key_Backspace), int(Qt::Key_Delete), int(Qt::Key_F14)})
        QVERIFY(!editor.press(key, key == Qt::Key_A ? u"a"_s : QString()));
    QCOMPARE(editor.data().cursorCell(), (Cell{20, 1}));
}

void TstZMultiLineEdit::fieldLeavesKeysToItsForm()
{
    Editor editor(true);
    editor.setText(u"a\nb\nc"_s);
    QVERIFY(!editor.press(Qt::Key_PageDown) && !editor.press(Qt::Key_PageUp) && editor.press(Qt::Key_Down));
    QVERIFY(!editor.press(Qt::Key_F5) && !editor.press(Qt::Key_K, {}, Qt::ControlModifier));
    editor.setReadOnly(true);
    QVERIFY(!editor.press(Qt::Key_Down) && !editor.press(Qt::Key_Up) && editor.press(Qt::Key_Right));
}

void TstZMultiLineEdit::limits()
{
    // With a dot where it was cut.
    const auto limited = [](int length, int line, int rows, bool wrap = true) -> QString {
        Editor editor;
        QSignalSpy truncated(&editor, &ZMultiLineEdit::textTrancated);
        editor.setWordWrap(wrap ? ZMultiLineEdit::WidgetWidth : ZMultiLineEdit::NoWrap);
        editor.setMaxLength(length);
        editor.setMaxLineLength(line);
        editor.setMaxLines(rows);
        editor.insert(u"abcd\nefgh\ni"_s);
        return editor.text() + QString(truncated.count(), u'.');
    };
    QCOMPARE(limited(-1, -1, -1), u"abcd\nefgh\ni"_s);
    QCOMPARE(limited(7, -1, -1), u"abcd\nef."_s);
    QCOMPARE(limited(-1, 3, -1, false), u"abc\nefg\ni."_s);
    QCOMPARE(limited(-1, 4, -1, false), u"abcd\nefgh\ni"_s);
    QCOMPARE(limited(-1, -1, 2), u"abcd\nefgh."_s);
    QCOMPARE(limited(-1, -1, 0), u"abcd\nefgh\ni"_s); // no limit
    QCOMPARE(limited(8, 3, 2, false), u"abc\nefg."_s);
    Editor editor;
    editor.setMaxLines(2);
    QCOMPARE(editor.maxLines(), 2);
    editor.setMaxLines(0);
    QCOMPARE(editor.maxLines(), -1);
}

void TstZMultiLineEdit::limitsCutTheTextThatIsThere()
{
    Editor full;
    QSignalSpy changes(&full, &ZMultiLineEdit::textChanged);
    full.setText(u"abcd\nefgh\ni"_s);
    full.setCursorPosition(1, 4);
    full.setMaxLineLength(2);
    QCOMPARE(full.text(), u"ab\nef\ni"_s);
    QCOMPARE(full.data().cursorCell(), (Cell{1, 2}));
    full.setEdited(true);
    full.setMaxLength(4);
    QVERIFY(full.edited());
    QCOMPARE(full.text(), u"ab\ne"_s);
    full.undo();
    QCOMPARE(full.text(), u"ab\ne"_s);
    QCOMPARE(changes.count(), 3);
    full.setWrapColumnOrWidth(8);
    full.setWordWrap(ZMultiLineEdit::FixedColumnWidth);
    full.setMaxLineLength(-1);
    full.setMaxLength(-1);
    full.setText(u"one two three four\nend"_s); // of four rows
    full.removeLine(2);
    full.insertLine(u"2"_s, 1);
    QCOMPARE(full.text(), u"one two \n2\nthree \nend"_s);
    full.setText(u"one two three four\nend"_s);
    full.setMaxLineLength(3);
    QCOMPARE(full.rows(), u"one|thr|fou|end"_s);
    full.setMaxLines(3);
    QCOMPARE(full.sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
    full.setMaxLines(7);
    QCOMPARE(full.sizePolicy().verticalPolicy(), QSizePolicy::Expanding);
}

void TstZMultiLineEdit::filtersAndValidators()
{
    Editor editor;
    editor.setFilter(QRegExp(u"[0-9]"_s));
    editor.press(Qt::Key_1, u"1"_s);
    editor.press(Qt::Key_A, u"a"_s);
    editor.insert(u"2b\n3\U0001F600"_s);
    QCOMPARE(editor.text(), u"12\n3"_s);
    editor.setFilter(QRegExp(u"[0-9]"_s), false);
    editor.insert(u"4c"_s);
    QCOMPARE(editor.text(), u"12\n3c"_s);
    editor.setFilter(QRegExp(u"("_s)); // none that could be asked
    QIntValidator validator(0, 99);
    editor.setText(u"1"_s);
    editor.setValidator(&validator);
    editor.selectAll();
    editor.insert(u"x"_s);
    QVERIFY(editor.text() == u"1" && editor.hasMarkedText());
    editor.insert(u"42"_s);
    editor.insert(u"7"_s);
    QCOMPARE(editor.text(), u"42"_s);
    editor.backspace();
    QCOMPARE(editor.text(), u"4"_s);
}

void TstZMultiLineEdit::popupEntries()
{
    Editor editor;
    editor.setText(u"some text"_s);
    const auto open = [&editor] {
        delete editor.findChild<QMenu *>();
        QTest::mousePress(editor.viewport(), Qt::RightButton, {}, {5, 5});
        return editor.findChild<QMenu *>();
    };
    const auto enabled = [&] { // entries of it
        const QMenu *menu = open();
        QStringList entries;
        for (const QAction *action : menu && menu->isVisible() ? menu->actions() : QList<QAction *>()) {
            if (!action->isSeparator() && action->isEnabled())
                entries << action->text();
        }
        return entries.join(u',');
    };
    QApplication::clipboard()->setText(u"x"_s);
    QCOMPARE(enabled(), u"Paste,Select All"_s);
    editor.setSelection(0, 0, 0, 4);
    QCOMPARE(enabled(), u"Cut,Copy,Delete,Paste,Select All"_s);
    editor.setReadOnly(true);
    QCOMPARE(enabled(), u"Copy,Select All"_s);
    editor.setReadOnly(false);
    editor.setEchoMode(ZMultiLineEdit::Password);
    QCOMPARE(enabled(), u"Cut,Delete,Paste,Select All"_s);
    editor.copy();
    QCOMPARE(QApplication::clipboard()->text(), u"x"_s);
    editor.setEchoMode(ZMultiLineEdit::Normal);
    QApplication::clipboard()->clear();
    QCOMPARE(enabled(), u"Cut,Copy,Delete,Select All"_s);
    const QMenu *menu = open();
    QContextMenuEvent second(QContextMenuEvent::Mouse, {5, 5}, editor.viewport()->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(editor.viewport(), &second);
    QCOMPARE(editor.findChildren<QMenu *>().size(), 1);
    menu->actions().back()->trigger();
    QCOMPARE(editor.markedText(), u"some text"_s);
    editor.copy();
    QCOMPARE(QApplication::clipboard()->text(), u"some text"_s);
}

void TstZMultiLineEdit::compositionIsNoText()
{
    Editor editor;
    editor.setText(u"one two"_s);
    editor.setCursorPosition(0, 4);
    const int rows = editor.numLines();
    QSignalSpy changes(&editor, &ZMultiLineEdit::textChanged);
    editor.compose(u"something very long that wraps "_s);
    QVERIFY(editor.numLines() > rows);
    QCOMPARE(editor.text(), u"one two"_s);
    QCOMPARE(editor.rows().remove(u'|'), u"one two"_s);
    QVERIFY(editor.cursorPoint().y() > editor.data().rowTop(1));
    editor.grab();
    QCOMPARE(editor.inputMethodQuery(Qt::ImSurroundingText).toString(), u"one two"_s);
    QCOMPARE(editor.inputMethodQuery(Qt::ImCursorPosition).toInt(), 4);
    editor.compose({}, u"more "_s);
    QCOMPARE(editor.text(), u"one more two"_s);
    QCOMPARE(changes.count(), 1);
    editor.compose(u"lost"_s);
    editor.setCursorPosition(0, 0);
    editor.compose({});
    editor.undo();
    QCOMPARE(editor.text(), u"one two"_s);
    editor.setCursorPosition(0, 3);
    QInputMethodEvent replacing;
    replacing.setCommitString(u"1"_s, -3, 3);
    QApplication::sendEvent(&editor, &replacing);
    QCOMPARE(editor.text(), u"1 two"_s);
    editor.undo();
    QCOMPARE(editor.text(), u"one two"_s);
}

void TstZMultiLineEdit::compositionOverMarkedTextIsOneStep()
{
    using Change = std::function<void(Editor &)>;
    const std::pair<Change, QString> ends[] = {{[](Editor &e) { e.compose({}, u"word"_s); }, u"one word"_s},
        {[](Editor &e) { e.compose(u"next"_s, u"word"_s); }, u"one word"_s},
        {[](Editor &e) { e.compose({}); }, u"one "_s}, {[](Editor &e) { e.home(); }, u"one "_s},
        {[](Editor &e) { e.setUndoEnabled(false), e.setUndoEnabled(true); }, u"one "_s}};
    for (const auto &[end, text] : ends) {
        Editor editor;
        editor.insert(u"one two"_s);
        editor.setSelection(0, 4, 0, 7);
        editor.compose(u"w"_s);
        editor.compose(u"wo"_s);
        end(editor);
        QCOMPARE(editor.text(), text);
        editor.undo();
        QCOMPARE(editor.text(), u"one two"_s);
        editor.redo();
        QCOMPARE(editor.text(), text);
        editor.insert(u"!"_s);
        editor.undo();
        QCOMPARE(editor.text(), text);
    }
    Editor editor;
    editor.insert(u"one two"_s);
    editor.setSelection(0, 4, 0, 7);
    editor.compose(u"w"_s);
    editor.undo(); // in the middle of it
    QCOMPARE(editor.text(), u"one two"_s);
    editor.setFilter(QRegExp(u"[0-9]"_s));
    editor.setSelection(0, 4, 0, 7);
    editor.compose(u"w"_s);
    editor.compose({}, u"w"_s); // refused
    QCOMPARE(editor.text(), u"one two"_s);
    editor.selectAll();
    editor.compose(u"w"_s);
    editor.setText(u"three"_s);
    QVERIFY(editor.data().history.undoList().empty());
}

void TstZMultiLineEdit::predictiveInput()
{
    Guess guess;
    PredictiveInput::install(&guess);
    Editor editor;
    editor.show();
    QApplication::setActiveWindow(&editor);
    editor.setFocus();
    QTRY_VERIFY(editor.hasFocus());
    editor.press(Qt::Key_A, u"a"_s);
    const QRect cursor = editor.data().cursorRect();
    const auto cursorIsSeen = [&] {
        return editor.viewport()->grab().toImage().pixelColor(cursor.center())
            == editor.palette().color(QPalette::Text);
    };
    QVERIFY(cursorIsSeen());
    QVERIFY(QMetaObject::invokeMethod(&editor, "blinkTimerTimeout") && !cursorIsSeen());
    editor.press(Qt::Key_Q, u"q"_s);
    QVERIFY(editor.text() == u"a" && guess.context.paragraph == u"a" && guess.context.cursor == 1);
    editor.setEchoMode(ZMultiLineEdit::Password);
    editor.press(Qt::Key_Q, u"q"_s);
    QVERIFY(editor.text() == u"aq" && guess.context.paragraph.isEmpty() && !guess.context.predictable);
    editor.setEchoMode(ZMultiLineEdit::Normal);
    editor.press(Qt::Key_B, u"b"_s);
    QCOMPARE(guess.context.paragraph, u"aqb"_s);
    editor.setReadOnly(true);
    QVERIFY(guess.context.paragraph.isEmpty());
}

void TstZMultiLineEdit::smartPunctuation()
{
    Guess guess;
    PredictiveInput::install(&guess);
    const auto typed = [](const QString &key, const QString &behind = {}) -> QString { // after "word "
        Editor editor;
        QSignalSpy happened(&editor, &ZMultiLineEdit::rightSmartPuncOccurred);
        editor.setText(behind);
        editor.compose({}, u"word "_s);
        editor.press(Qt::Key_unknown, key);
        return editor.text().insert(editor.data().cursor, u'|') + QString(happened.count(), u'!');
    };
    QCOMPARE(typed(u"."_s), u"word.|!"_s);
    QCOMPARE(typed(u"\u3002"_s), u"word\u3002|!"_s);
    QCOMPARE(typed(u"("_s), u"word (|"_s);
    QCOMPARE(typed(u"a"_s), u"word a|"_s);
    QCOMPARE(typed(u"."_s, u"5"_s), u"word .|5"_s);
    Editor editor;
    editor.compose({}, u"word "_s);
    editor.setText(u"other "_s); // not pending any more
    editor.setCursorPosition(0, 6);
    editor.press(Qt::Key_unknown, u"."_s);
    QCOMPARE(editor.text(), u"other ."_s);
    editor.insert(u" ,"_s);
    editor.smartPunctuation();
    QVERIFY(editor.text().contains(u" ,"_s));
}

void TstZMultiLineEdit::autoScrollGetsFaster()
{
    Editor editor;
    editor.setText(u"row\n"_s.repeated(900));
    ZMultiLineData &data = editor.data();
    data.pointer = {5, 5000};
    editor.startAutoScroll();
    QCOMPARE(data.scrollTime, 50);
    int row = 0;
    for (int tick = 1; tick <= 60; ++tick) {
        const int before = data.cursorCell().row;
        QVERIFY(QMetaObject::invokeMethod(&editor, "scrollTimerTimeout"));
        row = data.cursorCell().row;
        QCOMPARE(row - before, std::max(1, (50 - data.scrollTime) / 5));
    }
    QCOMPARE(data.scrollTime, 40);
    QVERIFY(editor.hasMarkedText() && data.from() == 0);
    data.pointer = {5, 5};
    QVERIFY(QMetaObject::invokeMethod(&editor, "scrollTimerTimeout"));
    QVERIFY(!data.dragScrolling && data.cursorCell().row == row);
}

void TstZMultiLineEdit::clicks()
{
    Editor editor;
    editor.setText(u"one, two\nthree"_s);
    QSignalSpy clicked(&editor, &ZMultiLineEdit::clicked);
    QTest::mouseClick(editor.viewport(), Qt::LeftButton, {}, editor.point(0, 6));
    QCOMPARE(editor.data().cursor, 6);
    QCOMPARE(clicked.count(), 1);
    QTest::mouseDClick(editor.viewport(), Qt::LeftButton, {}, editor.point(0, 6));
    QCOMPARE(editor.markedText(), u"two"_s);
    QTest::mousePress(editor.viewport(), Qt::LeftButton, {}, editor.point(0, 6));
    QCOMPARE(editor.markedText(), u"one, two"_s);
    QTest::mouseRelease(editor.viewport(), Qt::LeftButton, {}, editor.point(0, 6));
    QTest::mouseClick(editor.viewport(), Qt::LeftButton, {}, {500, 500});
    QVERIFY(editor.atEnd() && !editor.hasMarkedText());
}

void TstZMultiLineEdit::aHeldPenMarksTheWord()
{
    Editor editor;
    editor.setText(u"one, two\nthree"_s);
    const auto hold = [&](QPoint place) { // what a held pen sends
        QTest::mousePress(editor.viewport(), Qt::LeftButton, {}, place);
        QTest::mouseRelease(editor.viewport(), Qt::LeftButton, {}, {-1, -1});
        QContextMenuEvent held(QContextMenuEvent::Mouse, place, editor.viewport()->mapToGlobal(place));
        QApplication::sendEvent(editor.viewport(), &held);
        auto *menu = editor.findChild<QMenu *>();
        const bool open = menu && menu->isVisible();
        delete menu;
        return open;
    };
    const auto handles = [&] {
        QList<QWidget *> seen = editor.viewport()->findChildren<QWidget *>();
        seen.removeIf([](const QWidget *handle) { return !handle->isVisible(); });
        return seen;
    };
    const auto glasses = [&] {
        const QList<QWidget *> all = editor.findChildren<QWidget *>(Qt::FindDirectChildrenOnly);
        return std::ranges::count_if(all, [](const QWidget *child) {
            return child->isVisible() && child->testAttribute(Qt::WA_TransparentForMouseEvents);
        });
    };
    const auto send = [&](QWidget *to, QEvent::Type type, QPoint inViewport) {
        const QPoint place = to->mapFrom(editor.viewport(), inViewport);
        QMouseEvent event(type, place, to->mapToGlobal(place), Qt::LeftButton, Qt::LeftButton, {});
        QApplication::sendEvent(to, &event);
    };
    QVERIFY(hold(editor.point(0, 6)));
    QCOMPARE(editor.markedText(), u"two"_s);
    QVERIFY(hold(editor.point(0, 6))); // what is marked stays so
    QCOMPARE(editor.markedText(), u"two"_s);
    QCOMPARE(handles().size(), 2);

    QWidget *end = handles()[1];
    const QPoint pen = end->geometry().center();
    const QPoint way = editor.point(1, 3) - editor.point(0, 8);
    send(end, QEvent::MouseButtonPress, pen);
    QCOMPARE(glasses(), 1);
    send(end, QEvent::MouseMove, pen + way);
    QCOMPARE(editor.markedText(), u"two\nthr"_s);
    send(end, QEvent::MouseMove, pen + editor.point(0, 5) - editor.point(0, 8)); // on the other one
    QVERIFY(editor.hasMarkedText());
    send(end, QEvent::MouseMove, pen + editor.point(0, 0) - editor.point(0, 8));
    QCOMPARE(editor.markedText(), u"one, "_s);
    send(end, QEvent::MouseMove, pen + QPoint(0, 500));
    QVERIFY(editor.data().dragScrolling);
    send(end, QEvent::MouseButtonRelease, pen);
    QVERIFY(glasses() == 0 && !editor.data().dragScrolling);
    editor.press(Qt::Key_Left, {}, Qt::ShiftModifier);
    QVERIFY(handles().isEmpty() && editor.hasMarkedText());

    QVERIFY(hold(editor.point(0, 6)));
    connect(&editor, &ZMultiLineEdit::cursorChanged, &editor, [&editor] { editor.clear(); }); // under the pen
    send(end, QEvent::MouseButtonPress, end->geometry().center());
    send(end, QEvent::MouseMove, end->geometry().center() + way);
    QVERIFY(handles().isEmpty() && editor.text().isEmpty());

    disconnect(&editor, &ZMultiLineEdit::cursorChanged, nullptr, nullptr);
    editor.setText(u"one, two"_s);
    QVERIFY(hold(editor.point(0, 6)));
    editor.setViewport(new QWidget); // the handles go with the old one
    QVERIFY(handles().isEmpty() && editor.viewport()->acceptDrops());
    QVERIFY(hold(editor.point(0, 2)) && handles().size() == 2);
}

void TstZMultiLineEdit::movedTextIsOneStep()
{
    Editor editor;
    editor.setText(u"abc def"_s);
    editor.setSelection(0, 0, 0, 4);
    QMimeData mime;
    mime.setText(u"xyz"_s);
    const auto drop = [&](Qt::DropAction action) { // from another application: the events have no source
        QDragEnterEvent enter(editor.point(0, 7), action, &mime, Qt::LeftButton, {});
        QApplication::sendEvent(editor.viewport(), &enter);
        QDropEvent event(editor.point(0, 7), action, &mime, Qt::LeftButton, {});
        QApplication::sendEvent(editor.viewport(), &event);
        return enter.isAccepted() ? event.dropAction() : Qt::IgnoreAction;
    };
    QCOMPARE(drop(Qt::CopyAction), Qt::CopyAction);
    QCOMPARE(editor.text(), u"abc defxyz"_s);
    QCOMPARE(editor.markedText(), u"xyz"_s);
    editor.undo();
    QCOMPARE(editor.text(), u"abc def"_s);

    editor.setMaxLength(7);
    mime.setText(u"too long"_s);
    QVERIFY(drop(Qt::MoveAction) != Qt::MoveAction && editor.text() == u"abc def");
    editor.setText(u"a\nb c"_s);
    editor.setMaxLines(1); // fewer than there are
    editor.setSelection(0, 0, 1, 1);
    editor.data().moveMarked(5);
    QCOMPARE(editor.text(), u" ca\nb"_s);
    editor.undo();
    QCOMPARE(editor.text(), u"a\nb c"_s);
}

void TstZMultiLineEdit::handlersMayDoAnything()
{
    auto *editor = new Editor;
    const auto upper =
        connect(editor, &ZMultiLineEdit::textChanged, editor, [editor] { editor->setText(editor->text().toUpper()); });
    editor->press(Qt::Key_A, u"a"_s);
    editor->append(u"b"_s);
    QCOMPARE(editor->text(), u"A\nB"_s);
    editor->append(u"word "_s.repeated(100)); // the scroll bar comes, and changes the rows
    editor->setText(u"a\nb"_s); // and goes
    disconnect(upper);
    const auto undoing = connect(editor, &ZMultiLineEdit::undoAvailable, editor, [editor](bool on) {
        if (on)
            editor->undo();
    });
    editor->selectAll();
    editor->insert(u"c"_s);
    QCOMPARE(editor->text(), u"A\nB"_s);
    disconnect(undoing);
    QPointer<Editor> alive = editor;
    connect(editor, &ZMultiLineEdit::cursorChanged, editor, [editor] { delete editor; });
    editor->press(Qt::Key_Return);
    QVERIFY(!alive);
    const std::function<void(Editor &)> changes[] = {[](Editor &e) { e.resize(60, 100); },
        [](Editor &e) { e.setFont(QFont(u"DejaVu Sans"_s, 30)); }, [](Editor &e) { e.setHMargin(40); }};
    for (const auto &change : changes) {
        alive = editor = new Editor;
        editor->setText(u"some words that wrap"_s);
        connect(editor, &ZMultiLineEdit::linesChanged, editor, [editor] { delete editor; });
        change(*editor);
        QTRY_VERIFY(!alive);
    }
}

void TstZMultiLineEdit::hostileCommandsDoNothing()
{
    Editor editor;
    editor.setText(u"aXYZbc"_s);
    editor.addUndoCmd(new UTIL_DelTextCmd(-5, u"x"_s));
    editor.undo();
    editor.addUndoCmd(new UTIL_InsTextCmd(INT_MAX, u"x"_s));
    editor.undo();
    UTIL_DelTextCmd nothing(1, QString());
    editor.processCmd(&nothing, false);
    UTIL_InsTextCmd inserted(0, u"aX"_s);
    QCOMPARE(editor.text(), u"aXYZbc"_s);
    editor.processCmd(&inserted, true);
    QVERIFY(editor.text() == u"YZbc" && editor.data().history.undoList().empty());
}

void TstZMultiLineEdit::growingTellsTheLayout()
{
    Editor editor(true);
    QSignalSpy lines(&editor, &ZMultiLineEdit::linesChanged);
    QSignalSpy sizes(&editor, &ZMultiLineEdit::changeSizeHint);
    const int height = editor.sizeHint().height();
    editor.insert(u"a\nb"_s);
    QCOMPARE(lines.count(), 1);
    QCOMPARE(sizes.count(), 1);
    QCOMPARE(sizes[0][3].toInt(), 2);
    QVERIFY(editor.sizeHint().height() > height);
    editor.insert(u"c"_s);
    QCOMPARE(sizes.count(), 1);
}

void TstZMultiLineEdit::drawsWhateverItHolds()
{
    const QString texts[] = {QString(), QString(QChar(0)) + QChar(0xDC00) + u"a"_s, u"x"_s.repeated(1 << 20),
        u"\n"_s.repeated(100000), u"\u05D0\u05D1 abc \u0627\u0644 (1) \u200F!"_s, u"a\u0301\tb\u2028c\u2029d\r\ne"_s};
    for (const QString &text : texts) {
        for (const auto wrap :
            {ZMultiLineEdit::WidgetWidth, ZMultiLineEdit::NoWrap, ZMultiLineEdit::FixedColumnWidth}) {
            Editor editor;
            editor.setWrapColumnOrWidth(10);
            editor.setWordWrap(wrap);
            editor.setUnderline(true);
            editor.setDefaultTabStop(INT_MAX);
            editor.setFixedVisibleLines(INT_MAX);
            editor.setText(text);
            editor.selectAll();
            editor.show();
            editor.grab();
            editor.setCursorPosition(INT_MAX, INT_MAX);
            editor.setSelection(-5, -5, INT_MAX, INT_MIN);
            editor.insertAt(u"!"_s, INT_MAX, -1);
            editor.removeLine(editor.numLines() - 1);
            QInputMethodEvent replacing;
            replacing.setCommitString(u"?"_s, INT_MAX, INT_MAX);
            QApplication::sendEvent(&editor, &replacing);
            QVERIFY(editor.sizeHint().height() > 0);
            for (const auto echo : {ZMultiLineEdit::Password, ZMultiLineEdit::NoEcho}) {
                editor.setEchoMode(echo);
                editor.grab();
            }
            editor.resize(7, 5);
            editor.undo();
            QVERIFY(editor.text().size() == editor.length());
        }
    }
}

void TstZMultiLineEdit::accessibility()
{
    Editor editor;
    editor.setText(u"one\ntwo"_s);
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(&editor);
    QVERIFY(interface && interface->textInterface() && interface->editableTextInterface());
    interface->textInterface()->setSelection(0, 4, 7);
    QCOMPARE(editor.markedText(), u"two"_s);
    interface->editableTextInterface()->replaceText(0, 3, u"1"_s);
    QCOMPARE(interface->text(QAccessible::Value), u"1\ntwo"_s);
    editor.setEchoMode(ZMultiLineEdit::Password);
    QCOMPARE(interface->textInterface()->text(INT_MIN, INT_MAX), u"*****"_s);
    editor.setReadOnly(true);
    QVERIFY(!interface->editableTextInterface());
}

QTEST_MAIN(TstZMultiLineEdit)
#include "tst_zmultilineedit.moc"
