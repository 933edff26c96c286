// What can be undone and redone. Knows no view and no text: it hands out commands, the editor plays them.
#pragma once

#include "editor/text/zmultilineeditcommand.h"

#include <deque>
#include <functional>
#include <memory>

//   step      = command | Begin command* End         one undo() or redo()
//   record    appends to the undo list, or merges with its last command; forgets the redo list
//   undo      moves commands from the undo list to the redo list, last one first, until the depth of groups is 0
//   redo      moves them back
// A list that becomes empty, or stops being so, is announced; nothing else is. A group that lost its other half to the
// limit of the list ends where the list does.
class EditHistory {
public:
    using Command = std::unique_ptr<ZMultiLineEditCommand>;
    using Commands = std::deque<Command>;
    enum class List { Undo, Redo };
    using Announce = std::function<void(List, bool available)>;
    // Makes or takes back one change; false: the text is not as the command left it, and nothing was changed.
    using Play = std::function<bool(ZMultiLineEditCommand &, bool undo)>;

    static constexpr int kDepth = 256;

    explicit EditHistory(Announce announce) : m_announce(std::move(announce)) { }

    bool enabled = true; // while false, what is recorded is thrown away
    int depth = kDepth; // of the undo list; at least one command is kept

    void record(Command command);
    void addRedo(Command command);
    void undo(const Play &play);
    void redo(const Play &play);
    void clear();

    [[nodiscard]] const Commands &undoList() const { return m_undo; }
    [[nodiscard]] const Commands &redoList() const { return m_redo; }

private:
    static Command takeLast(Commands &commands);

    Announce m_announce;
    Commands m_undo;
    Commands m_redo;
};
