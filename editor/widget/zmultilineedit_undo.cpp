// Undo and redo: the editor's side of the history.
#include "editor/widget/zmultilineedit_p.h"

using Operation = ZMultiLineData::Operation;

void ZMultiLineEdit::addUndoCmd(ZMultiLineEditCommand *c)
{
    const Operation operation(*d);
    d->history.record(EditHistory::Command(c));
}

void ZMultiLineEdit::addRedoCmd(ZMultiLineEditCommand *c)
{
    const Operation operation(*d);
    if (c)
        d->history.addRedo(EditHistory::Command(c));
}

// A command whose text is not there any more (it was changed while nothing was recorded) changes nothing.
void ZMultiLineEdit::processCmd(ZMultiLineEditCommand *c, bool undo)
{
    const int type = c ? c->type() : ZMultiLineEditCommand::Invalid;
    if (type != ZMultiLineEditCommand::Insert && type != ZMultiLineEditCommand::Delete)
        return;
    const Operation operation(*d);
    const auto &command = static_cast<const UTIL_DelTextCmd &>(*c);
    if (command.str.isEmpty())
        return;
    d->dropComposition(); // whose end is recorded
    const bool outer = std::exchange(d->replaying, true);
    const int from = command.offset;
    const int to = int(std::min<qint64>(qint64(from) + command.str.size(), INT_MAX));
    const bool inside = from >= 0 && from <= d->text.length();
    const bool inserts = (type == ZMultiLineEditCommand::Delete) == undo;
    if (inside && inserts) {
        const Cell cell = d->layout.cell(from);
        d->moveCursor({from});
        insertAt(command.str, cell.row, cell.column, false);
        d->moveCursor({to});
    } else if (inside && d->text.text(from, to) == command.str) {
        d->mark(from, to);
        del();
    } else {
        d->replayFailed = true;
    }
    d->replaying = outer;
}

void ZMultiLineData::replay(bool undo)
{
    if (readOnly || replaying || (undo ? history.undoList() : history.redoList()).empty())
        return;
    const Operation operation(*this);
    dropComposition();
    const bool enabled = std::exchange(history.enabled, false);
    replaying = true;
    replayFailed = false;
    bool moved = false;
    const EditHistory::Play play = [&](ZMultiLineEditCommand &command, bool back) {
        editor.processCmd(&command, back);
        moved |= !replayFailed && command.type() >= ZMultiLineEditCommand::Insert;
        return !replayFailed;
    };
    if (undo)
        history.undo(play);
    else
        history.redo(play);
    replaying = false;
    history.enabled = enabled;
    if (moved)
        moveCursor({cursor}); // to a whole character
}

void ZMultiLineEdit::undo() { d->replay(true); }
void ZMultiLineEdit::redo() { d->replay(false); }

void ZMultiLineEdit::setUndoEnabled(bool on)
{
    const Operation operation(*d);
    d->dropComposition(); // its group ends while that is recorded
    d->history.enabled = on;
}

bool ZMultiLineEdit::isUndoEnabled() const { return d->history.enabled; }
void ZMultiLineEdit::setUndoDepth(int n) { d->history.depth = n; }
int ZMultiLineEdit::undoDepth() const { return d->history.depth; }
