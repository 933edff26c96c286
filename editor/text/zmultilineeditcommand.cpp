#include "editor/text/zmultilineeditcommand.h"

ZMultiLineEditCommand::~ZMultiLineEditCommand() = default;
int ZMultiLineEditCommand::type() const { return Invalid; }
int ZMultiLineEditCommand::terminator() const { return 0; }
bool ZMultiLineEditCommand::merge(ZMultiLineEditCommand *) { return false; }

int UTIL_BeginCommand::type() const { return Begin; }
int UTIL_BeginCommand::terminator() const { return 1; }

int UTIL_EndCommand::type() const { return End; }
int UTIL_EndCommand::terminator() const { return -1; }

UTIL_DelTextCmd::UTIL_DelTextCmd(int at, const QString &text) : offset(at), str(text) { }
int UTIL_DelTextCmd::type() const { return Delete; }
int UTIL_InsTextCmd::type() const { return Insert; }

// Promised: only backspacing merges.
bool UTIL_DelTextCmd::merge(ZMultiLineEditCommand *previous)
{
    if (!previous || previous->type() != type())
        return false;
    auto *last = static_cast<UTIL_DelTextCmd *>(previous);
    if (qint64(offset) + str.size() != last->offset)
        return false;
    last->str.prepend(str);
    last->offset = offset;
    return true;
}

bool UTIL_InsTextCmd::merge(ZMultiLineEditCommand *previous)
{
    if (!previous || previous->type() != type())
        return false;
    auto *last = static_cast<UTIL_InsTextCmd *>(previous);
    if (offset != qint64(last->offset) + last->str.size())
        return false;
    last->str.append(str);
    return true;
}
