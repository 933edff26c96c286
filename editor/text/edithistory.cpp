#include "editor/text/edithistory.h"

EditHistory::Command EditHistory::takeLast(Commands &commands)
{
    Command last = std::move(commands.back());
    commands.pop_back();
    return last;
}

void EditHistory::record(Command command)
{
    if (!enabled || !command)
        return;
    if (m_undo.empty()) {
        m_announce(List::Undo, true);
        m_undo.push_back(std::move(command));
    } else if (!command->merge(m_undo.back().get())) {
        if (m_undo.size() >= size_t(std::max(depth, 1))) // one only: a list that is too long shrinks no faster
            m_undo.pop_front();
        m_undo.push_back(std::move(command));
    }
    // After a merge too: what was undone meanwhile belongs to another text.
    if (!m_redo.empty()) {
        m_redo.clear();
        m_announce(List::Redo, false);
    }
}

void EditHistory::addRedo(Command command)
{
    if (m_redo.empty())
        m_announce(List::Redo, true);
    m_redo.push_back(std::move(command));
}

void EditHistory::undo(const Play &play)
{
    int sum = 0;
    do {
        if (m_undo.empty())
            return;
        Command command = takeLast(m_undo);
        const bool played = play(*command, true);
        sum += command->terminator();
        if (m_undo.empty())
            m_announce(List::Undo, false);
        if (!played)
            return clear();
        addRedo(std::move(command));
    } while (sum != 0);
}

void EditHistory::redo(const Play &play)
{
    int sum = 0;
    do {
        if (m_redo.empty())
            return;
        Command command = takeLast(m_redo);
        const bool played = play(*command, false);
        sum += command->terminator();
        if (m_redo.empty())
            m_announce(List::Redo, false);
        if (!played)
            return clear();
        if (m_undo.empty())
            m_announce(List::Undo, true);
        m_undo.push_back(std::move(command));
    } while (sum != 0);
}

void EditHistory::clear()
{
    if (!m_undo.empty()) {
        m_undo.clear();
        m_announce(List::Undo, false);
    }
    if (!m_redo.empty()) {
        m_redo.clear();
        m_announce(List::Redo, false);
    }
}
