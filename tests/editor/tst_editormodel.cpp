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

enum Kind {
    Type,
    InsertAt,
    Backspace,
    Delete,
    KillLine,
    NewLine,
    Left,
    Right,
    Place,
    Select,
    SelectAll,
    Deselect,
    Clear,
    Append,
    Undo,
    Redo,
    SetText,
    Paste,
    Cut,
    Depth,
    Enable,
    MaxLength,
    ReadOnly,
    Kinds
};

struct Step {
    Kind kind;
    int a;
    int b;
    QString s;
};

QString describe(const Step &step)
{
    static const char *const names[Kinds] = {"Type", "InsertAt", "Backspace", "Delete", "KillLine", "NewLine", "Left",
        "Right", "Place", "Select", "SelectAll", "Deselect", "Clear", "Append", "Undo", "Redo", "SetText", "Paste",
        "Cut", "Depth", "Enable", "MaxLength", "ReadOnly"};
    return u"{%1, %2, %3, %4}"_s.arg(QLatin1StringView(names[step.kind]))
        .arg(step.a)
        .arg(step.b)
        .arg(QDebug::toString(step.s));
}

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
    int snapped(int at) const
    {
        at = std::clamp(at, 0, int(text.size()));
        const int start = at == 0 ? 0 : int(text.lastIndexOf(u'\n', at - 1)) + 1;
        const qsizetype end = text.indexOf(u'\n', at);
        return start + graphemes::snapped(QStringView(text).mid(start, end < 0 ? -1 : end - start), at - start);
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
    int neighbour(bool forward) const
    {
        const int at = cursor;
        if (forward && (at >= text.size() || text[at] == u'\n'))
            return std::min(at + 1, int(text.size()));
        if (!forward && (at == 0 || text[at - 1] == u'\n'))
            return std::max(at - 1, 0);
        const int start = at == 0 ? 0 : int(text.lastIndexOf(u'\n', at - 1)) + 1;
        const qsizetype end = text.indexOf(u'\n', at);
        const QStringView line = QStringView(text).mid(start, end < 0 ? -1 : end - start);
        return start + (forward ? graphemes::next(line, at - start) : graphemes::previous(line, at - start));
    }
};

// An editor and its model, side by side.
class Pair {
public:
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

    QString run(const Step &step)
    {
        model.told.clear();
        told.clear();
        model.changed = false;
        changes = 0;
        const QString before = model.text;
        perform(step);
        if (step.kind == SetText && before == model.text)
            model.changed = false;
        return difference();
    }

private:
    void perform(const Step &step);
    void performCursor(const Step &step, int at, int other);
    void erase(const Step &step);
    QString difference() const;
    static QList<Command> commands(const EditHistory::Commands &list);

    Cell at(int offset) { return ZMultiLineData::of(editor).layout.cell(offset); }
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

void Pair::perform(const Step &step)
{
    const int size = int(model.text.size()) + 1;
    const int place = step.a % size;
    switch (step.kind) {
    case Type:
        editor.insert(step.s);
        return model.type(step.s);
    case InsertAt:
        editor.insertAt(step.s, at(place).row, at(place).column);
        model.insert(place, step.s);
        return;
    case NewLine:
        editor.newLine();
        return model.type(u"\n"_s);
    case Append:
        editor.append(step.s);
        model.insert(int(model.text.size()), model.text.isEmpty() ? step.s : u'\n' + step.s);
        return;
    case Undo:
    case Redo:
        step.kind == Undo ? editor.undo() : editor.redo();
        return model.replay(step.kind == Undo);
    case SetText:
        editor.setText(step.s);
        model.clearHistory();
        model.text = model.maxLength > 0 ? step.s.left(model.maxLength) : step.s;
        if (model.text.size() < step.s.size())
            model.told.prepend(u"cut"_s);
        model.changed = true;
        return model.move(0);
    case Paste:
        QApplication::clipboard()->setText(step.s);
        editor.paste();
        return model.type(step.s);
    case Depth:
        editor.setUndoDepth(model.depth = step.a % 12 - 2);
        return;
    case Enable:
        editor.setUndoEnabled(model.enabled = step.a % 4 != 0);
        return;
    case MaxLength:
        model.maxLength = std::max(size, 40) + step.a % 100; // setText() does not cut here
        return editor.setMaxLength(model.maxLength);
    case ReadOnly:
        editor.setReadOnly(model.readOnly = step.a % 8 == 0);
        return;
    default:
        erase(step);
        performCursor(step, place, step.b % size);
    }
}

void Pair::erase(const Step &step)
{
    if (step.kind == Clear) {
        editor.clear();
        model.marked = false;
        model.erase(0, int(model.text.size()));
        return model.move(0);
    }
    const bool marked = model.hasMarked();
    const int end = rowEnd();
    if (step.kind == Backspace)
        editor.backspace();
    else if (step.kind == Delete)
        editor.del();
    else if (step.kind == Cut)
        editor.cut();
    else if (step.kind == KillLine)
        editor.killLine();
    else
        return;
    if (model.readOnly)
        return;
    if (step.kind == KillLine) {
        model.marked = false;
        model.record({1});
        model.erase(model.cursor, model.cursor < end ? end : model.neighbour(true));
        model.record({2});
    } else if (marked) {
        model.eraseMarked();
    } else if (step.kind != Cut) {
        if (step.kind == Backspace && model.cursor == 0)
            return;
        if (step.kind == Backspace)
            model.move(model.neighbour(false));
        model.marked = false;
        model.erase(model.cursor, model.neighbour(true));
    }
}

void Pair::performCursor(const Step &step, int place, int other)
{
    switch (step.kind) {
    case Left:
    case Right:
        step.kind == Left ? editor.cursorLeft(step.a % 2) : editor.cursorRight(step.a % 2);
        if (step.a % 2)
            model.extend(model.neighbour(step.kind == Right));
        else
            model.move(model.neighbour(step.kind == Right));
        return;
    case Place:
        editor.setCursorPosition(at(place).row, at(place).column);
        return model.move(place);
    case Select:
        editor.setSelection(at(place).row, at(place).column, at(other).row, at(other).column);
        return model.mark(place, other);
    case SelectAll:
        editor.selectAll();
        return model.mark(0, int(model.text.size()));
    case Deselect:
        editor.deselect();
        model.marked = false;
        return;
    default:
        return;
    }
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
            const bool often = dice.bounded(2); // the history is what can go wrong
            static constexpr Kind kOften[] = {Type, Type, Type, Backspace, Delete, Undo, Undo, Redo, Select, Place};
            const Kind kind = often ? kOften[dice.bounded(int(std::size(kOften)))] : Kind(dice.bounded(int(Kinds)));
            steps << Step{kind, dice.bounded(1 << 20), dice.bounded(1 << 20), texts[dice.bounded(texts.size())]};
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
