// Random sequences of operations on an editor and on a plain string. After each step text, cursor, marks, both lists of
// commands and the signals must be the same. A sequence that fails is made as short as possible and printed.
#include "editor/text/graphemes.h"
#include "editor/widget/zmultilineedit_p.h"

#include <QApplication>
#include <QClipboard>
#include <QRandomGenerator>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

struct Step {
    int operation; // index into kOperations
    int a;
    int b;
    QString s;
};

struct Command {
    int type = 0;
    int offset = 0;
    QString s = {};
    bool operator==(const Command &) const = default;
};

struct Model {
    QString text;
    int cursor = 0;
    int anchor = 0;
    bool marked = false;
    QList<Command> undoList;
    QList<Command> redoList;
    int depth = 256;
    int maxLength = -1;
    bool enabled = true;
    bool readOnly = false;
    QStringList told;
    bool changed = false;

    int from() const { return std::min(anchor, cursor); }
    int to() const { return std::max(anchor, cursor); }
    bool hasMarked() const { return marked && anchor != cursor; }
    QStringView paragraph(int at, int &start) const
    {
        start = at == 0 ? 0 : int(text.lastIndexOf(u'\n', at - 1)) + 1;
        const qsizetype end = text.indexOf(u'\n', at);
        return QStringView(text).mid(start, end < 0 ? -1 : end - start);
    }
    int snapped(int at) const
    {
        int start = 0;
        at = std::clamp(at, 0, int(text.size()));
        const QStringView line = paragraph(at, start);
        return start + graphemes::snapped(line, at - start);
    }
    int neighbour(bool forward) const
    {
        if (forward && (cursor >= text.size() || text[cursor] == u'\n'))
            return std::min(cursor + 1, int(text.size()));
        if (!forward && (cursor == 0 || text[cursor - 1] == u'\n'))
            return std::max(cursor - 1, 0);
        int start = 0;
        const QStringView line = paragraph(cursor, start);
        return start + (forward ? graphemes::next(line, cursor - start) : graphemes::previous(line, cursor - start));
    }
    void move(int at)
    {
        cursor = anchor = snapped(at);
        marked = false;
    }
    void moveExactly(int at)
    {
        cursor = anchor = at;
        marked = false;
    }
    void mark(int first, int last)
    {
        move(first);
        cursor = snapped(last);
        marked = true;
    }
    void extend(int at)
    {
        anchor = marked ? anchor : cursor;
        cursor = snapped(at);
        marked = true;
    }
    void put(int at, const QString &s)
    {
        const bool atEnd = hasMarked() && at == to();
        text.insert(at, s);
        for (int *place : {&cursor, &anchor})
            *place += *place > at || (*place == at && !atEnd) ? int(s.size()) : 0;
        changed = true;
    }
    void take(int first, int last)
    {
        text.remove(first, last - first);
        for (int *place : {&cursor, &anchor})
            *place = *place <= first ? *place : std::max(first, *place - (last - first));
        changed = true;
    }
    void record(const Command &c)
    {
        if (!enabled)
            return;
        Command *last = undoList.isEmpty() ? nullptr : &undoList.last();
        if (!last) {
            told << u"undo"_s;
            undoList << c;
        } else if (c.type == 3 && last->type == 3 && c.offset == last->offset + last->s.size()) {
            last->s += c.s;
        } else if (c.type == 4 && last->type == 4 && c.offset + c.s.size() == last->offset) {
            *last = {4, c.offset, c.s + last->s};
        } else {
            if (undoList.size() >= std::max(depth, 1))
                undoList.removeFirst();
            undoList << c;
        }
        if (!redoList.isEmpty()) {
            redoList.clear();
            told << u"no redo"_s;
        }
    }
    int insert(int at, const QString &s)
    {
        QString part = s;
        if (maxLength > 0 && part.size() > maxLength - text.size()) {
            int room = std::max(0, maxLength - int(text.size()));
            if (room > 0 && part[room - 1].isHighSurrogate() && part[room].isLowSurrogate())
                --room;
            part.truncate(room);
            told << u"cut"_s;
        }
        if (part.isEmpty())
            return 0;
        put(at, part);
        record({3, at, part});
        return int(part.size());
    }
    void erase(int first, int last)
    {
        if (first >= last)
            return;
        const QString gone = text.mid(first, last - first);
        take(first, last);
        record({4, first, gone});
    }
    void eraseMarked()
    {
        record({1});
        const int at = from();
        erase(at, to());
        move(at);
        record({2});
    }
    void type(const QString &s)
    {
        if (readOnly || s.isEmpty())
            return;
        const bool group = hasMarked();
        if (group) {
            record({1});
            const int at = from();
            erase(at, to());
            moveExactly(at);
        }
        const int at = cursor;
        moveExactly(at + insert(at, s));
        if (group)
            record({2});
    }
    void clearHistory()
    {
        if (!undoList.isEmpty())
            told << u"no undo"_s;
        if (!redoList.isEmpty())
            told << u"no redo"_s;
        undoList.clear();
        redoList.clear();
    }
    bool play(const Command &c, bool back)
    {
        if (c.type < 3)
            return true;
        if (c.offset > text.size())
            return false;
        if ((c.type == 4) == back) {
            move(c.offset);
            put(c.offset, c.s);
            move(c.offset + int(c.s.size()));
            return true;
        }
        if (text.mid(c.offset, c.s.size()) != c.s)
            return false;
        take(c.offset, c.offset + int(c.s.size()));
        move(c.offset);
        return true;
    }
    void replay(bool back)
    {
        QList<Command> &source = back ? undoList : redoList;
        QList<Command> &target = back ? redoList : undoList;
        int sum = 0;
        do {
            if (readOnly || source.isEmpty())
                return;
            const Command c = source.takeLast();
            const bool played = play(c, back);
            sum += c.type == 1 ? 1 : c.type == 2 ? -1 : 0;
            if (source.isEmpty())
                told << (back ? u"no undo"_s : u"no redo"_s);
            if (!played)
                return clearHistory();
            if (target.isEmpty())
                told << (back ? u"redo"_s : u"undo"_s);
            target << c;
        } while (sum != 0);
    }
    void step(bool forward, bool extends)
    {
        const int at = neighbour(forward);
        extends ? extend(at) : move(at);
    }
    void backspace()
    {
        if (!readOnly && !hasMarked()) {
            if (cursor == 0)
                return;
            move(neighbour(false));
        }
        del();
    }
    void del()
    {
        if (readOnly)
            return;
        if (hasMarked())
            return eraseMarked();
        marked = false;
        erase(cursor, neighbour(true));
    }
    void killLine(int rowEnd)
    {
        if (readOnly)
            return;
        marked = false;
        record({1});
        erase(cursor, cursor < rowEnd ? rowEnd : neighbour(true));
        record({2});
    }
    void setText(const QString &whole)
    {
        const QString before = text;
        clearHistory();
        text = maxLength > 0 ? whole.left(maxLength) : whole;
        if (text.size() < whole.size())
            told.prepend(u"cut"_s);
        changed = text != before;
        move(0);
    }
};

// An editor and its model, side by side.
struct Pair {
    Pair()
    {
        editor.resize(90, 200);
        QObject::connect(&editor, &ZMultiLineEdit::undoAvailable, &editor,
            [this](bool on) { told << (on ? u"undo"_s : u"no undo"_s); });
        QObject::connect(&editor, &ZMultiLineEdit::redoAvailable, &editor,
            [this](bool on) { told << (on ? u"redo"_s : u"no redo"_s); });
        QObject::connect(&editor, &ZMultiLineEdit::textTrancated, &editor, [this] { told << u"cut"_s; });
        QObject::connect(&editor, &ZMultiLineEdit::textChanged, &editor, [this] { ++changes; });
        QObject::connect(&editor, &ZMultiLineEdit::copyAvailable, &editor, [this](bool on) { copy = on; });
        QObject::connect(&editor, &ZMultiLineEdit::cursorChanged, &editor, [this](int r, int c) { cell = {r, c}; });
    }

    QString run(const Step &step); // what differs then
    QString difference() const;
    static QList<Command> commands(const EditHistory::Commands &list);

    int place(int any) const { return any % (int(model.text.size()) + 1); }
    Cell at(int any) { return ZMultiLineData::of(editor).layout.cell(place(any)); }
    int rowEnd()
    {
        int row = 0;
        int column = 0;
        editor.cursorPosition(&row, &column);
        return model.cursor - column + int(editor.textLine(row).size());
    }

    mutable ZMultiLineEdit editor;
    Model model;
    QStringList told;
    int changes = 0;
    bool copy = false;
    Cell cell;
};

struct Operation {
    const char *name;
    void (*perform)(Pair &, const Step &);
};

const Operation kOperations[] = {
    {"Type", [](Pair &p, const Step &s) { p.editor.insert(s.s), p.model.type(s.s); }},
    {"Backspace", [](Pair &p, const Step &) { p.editor.backspace(), p.model.backspace(); }},
    {"Delete", [](Pair &p, const Step &) { p.editor.del(), p.model.del(); }},
    {"Undo", [](Pair &p, const Step &) { p.editor.undo(), p.model.replay(true); }},
    {"Redo", [](Pair &p, const Step &) { p.editor.redo(), p.model.replay(false); }},
    {"Select",
        [](Pair &p, const Step &s) {
            p.editor.setSelection(p.at(s.a).row, p.at(s.a).column, p.at(s.b).row, p.at(s.b).column);
            p.model.mark(p.place(s.a), p.place(s.b));
        }},
    {"Place",
        [](Pair &p, const Step &s) {
            p.editor.setCursorPosition(p.at(s.a).row, p.at(s.a).column);
            p.model.move(p.place(s.a));
        }},
    {"InsertAt",
        [](Pair &p, const Step &s) {
            p.editor.insertAt(s.s, p.at(s.a).row, p.at(s.a).column);
            p.model.insert(p.place(s.a), s.s);
        }},
    {"KillLine",
        [](Pair &p, const Step &) {
            const int end = p.rowEnd();
            p.editor.killLine(), p.model.killLine(end);
        }},
    {"NewLine", [](Pair &p, const Step &) { p.editor.newLine(), p.model.type(u"\n"_s); }},
    {"Left", [](Pair &p, const Step &s) { p.editor.cursorLeft(s.a % 2), p.model.step(false, s.a % 2); }},
    {"Right", [](Pair &p, const Step &s) { p.editor.cursorRight(s.a % 2), p.model.step(true, s.a % 2); }},
    {"SelectAll", [](Pair &p, const Step &) { p.editor.selectAll(), p.model.mark(0, int(p.model.text.size())); }},
    {"Deselect", [](Pair &p, const Step &) { p.editor.deselect(), p.model.marked = false; }},
    {"Clear",
        [](Pair &p, const Step &) {
            p.editor.clear();
            p.model.marked = false;
            p.model.erase(0, int(p.model.text.size()));
            p.model.move(0);
        }},
    {"Append",
        [](Pair &p, const Step &s) {
            p.editor.append(s.s);
            p.model.insert(int(p.model.text.size()), p.model.text.isEmpty() ? s.s : u'\n' + s.s);
        }},
    {"SetText", [](Pair &p, const Step &s) { p.editor.setText(s.s), p.model.setText(s.s); }},
    {"Paste",
        [](Pair &p, const Step &s) {
            QApplication::clipboard()->setText(s.s);
            p.editor.paste(), p.model.type(s.s);
        }},
    {"Cut",
        [](Pair &p, const Step &) {
            p.editor.cut();
            if (p.model.hasMarked())
                p.model.del();
        }},
    {"Depth", [](Pair &p, const Step &s) { p.editor.setUndoDepth(p.model.depth = s.a % 12 - 2); }},
    {"Enable", [](Pair &p, const Step &s) { p.editor.setUndoEnabled(p.model.enabled = s.a % 4 != 0); }},
    {"MaxLength",
        [](Pair &p, const Step &s) { // setText() does not cut here
            p.model.maxLength = std::max(int(p.model.text.size()) + 1, 40) + s.a % 100;
            p.editor.setMaxLength(p.model.maxLength);
        }},
    {"ReadOnly", [](Pair &p, const Step &s) { p.editor.setReadOnly(p.model.readOnly = s.a % 8 == 0); }},
};

QString describe(const Step &step)
{
    return u"{%1, %2, %3, %4}"_s.arg(QLatin1StringView(kOperations[step.operation].name))
        .arg(step.a)
        .arg(step.b)
        .arg(QDebug::toString(step.s));
}

QString Pair::run(const Step &step)
{
    model.told.clear();
    told.clear();
    model.changed = false;
    changes = 0;
    kOperations[step.operation].perform(*this, step);
    return difference();
}

QList<Command> Pair::commands(const EditHistory::Commands &list)
{
    QList<Command> result;
    for (const EditHistory::Command &command : list) {
        const auto *text = command->type() < 3 ? nullptr : static_cast<const UTIL_DelTextCmd *>(command.get());
        result << Command{command->type(), text ? text->offset : 0, text ? text->str : QString()};
    }
    return result;
}

QString Pair::difference() const
{
    const ZMultiLineData &data = ZMultiLineData::of(editor);
    QString rows;
    for (int i = 0; i < editor.numLines(); ++i)
        rows += editor.textLine(i) + (editor.isEndOfParagraph(i) ? u"\n"_s : QString());
    rows.chop(1);
    if (editor.text() != model.text || rows != model.text || editor.length() != model.text.size())
        return u"text: "_s + editor.text();
    if (data.cursor != model.cursor)
        return u"cursor: %1, not %2"_s.arg(data.cursor).arg(model.cursor);
    if (editor.hasMarkedText() != model.hasMarked()
        || editor.markedText()
            != (model.hasMarked() ? model.text.mid(model.from(), model.to() - model.from()) : QString()))
        return u"marked: "_s + editor.markedText();
    if (commands(data.history.undoList()) != model.undoList || commands(data.history.redoList()) != model.redoList)
        return u"commands"_s;
    if (told != model.told || changes != int(model.changed) || copy != model.hasMarked() || cell != data.cursorCell())
        return u"signals: %1; not %2; textChanged() %3 times, not %4"_s.arg(told.join(u','), model.told.join(u','))
            .arg(changes)
            .arg(int(model.changed));
    return {};
}

QString firstDifference(const QList<Step> &steps)
{
    Pair pair;
    for (const Step &step : steps) {
        if (const QString difference = pair.run(step); !difference.isEmpty())
            return describe(step) + u": "_s + difference;
    }
    return {};
}

QList<Step> shortest(QList<Step> steps)
{
    for (qsizetype part = steps.size() / 2; part > 0; part /= 2) {
        for (qsizetype i = 0; i + part <= steps.size();) {
            QList<Step> fewer = steps;
            fewer.remove(i, part);
            if (firstDifference(fewer).isEmpty())
                i += part;
            else
                steps = fewer;
        }
    }
    return steps;
}

}

class TstEditorModel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void randomOperations();
};

void TstEditorModel::randomOperations()
{
    const QStringList texts{u"a"_s, u"b"_s, u" "_s, u"\n"_s, u"hello world "_s, u"two\nlines"_s, u"\u0301"_s,
        u"\U0001F600"_s, QString(QChar(0xD83D)), QString(QChar(0)), u"\u65E5\u672C\u8A9E"_s, QString(), u"a\tb"_s};
    for (quint32 seed = 1; seed <= 300; ++seed) {
        QRandomGenerator dice(seed);
        QList<Step> steps;
        for (int i = 0; i < 120; ++i) {
            static constexpr int kOften[] = {0, 0, 0, 1, 2, 3, 3, 4, 5, 6}; // the history is what can go wrong
            const int operation = dice.bounded(2) ? kOften[dice.bounded(int(std::size(kOften)))]
                                                  : dice.bounded(int(std::size(kOperations)));
            steps << Step{operation, dice.bounded(1 << 20), dice.bounded(1 << 20), texts[dice.bounded(texts.size())]};
        }
        if (firstDifference(steps).isEmpty())
            continue;
        const QList<Step> few = shortest(steps);
        QStringList lines;
        for (const Step &step : few)
            lines << describe(step);
        QFAIL(qPrintable(u"seed %1\n%2\n%3"_s.arg(seed).arg(lines.join(u'\n'), firstDifference(few))));
    }
}

QTEST_MAIN(TstEditorModel)
#include "tst_editormodel.moc"
