// What the editor remembers of each change of its text, to take it back and to make it again.
#pragma once

#include "platform/tyxexport.h"

#include <QString>

// The types are numbers that travel in the interface; what is no command has type 0.
class TYX_EXPORT ZMultiLineEditCommand {
public:
    // Insert and Delete are played by ZMultiLineEdit::processCmd(), which passes over everything else.
    enum Type { Invalid = 0, Begin = 1, End = 2, Insert = 3, Delete = 4 };

    ZMultiLineEditCommand() = default;
    ZMultiLineEditCommand(const ZMultiLineEditCommand &) = delete;
    ZMultiLineEditCommand &operator=(const ZMultiLineEditCommand &) = delete;

    // The order of the virtual functions is fixed.
    virtual ~ZMultiLineEditCommand();
    virtual int type() const;
    // What a command adds to the depth of groups: one step back or forward ends where the sum is 0 again.
    virtual int terminator() const;
    // Makes one of two: `previous`, the last command that was recorded, then does what both did. False: it cannot.
    virtual bool merge(ZMultiLineEditCommand *previous);
};

// A step that consists of several changes stands between this one, which counts 1, and UTIL_EndCommand.
class TYX_EXPORT UTIL_BeginCommand : public ZMultiLineEditCommand { // name fixed
public:
    int type() const override;
    int terminator() const override;
};

// The end of what UTIL_BeginCommand began; counts -1.
class TYX_EXPORT UTIL_EndCommand : public ZMultiLineEditCommand { // name fixed
public:
    int type() const override;
    int terminator() const override;
};

// Text was deleted. Deletions that walk backwards merge; a repeated deletion forward at one place does not.
class TYX_EXPORT UTIL_DelTextCmd : public ZMultiLineEditCommand { // name fixed
public:
    UTIL_DelTextCmd(int offset, const QString &str); // `str` was deleted, or inserted, and began at `offset`

    int type() const override;
    bool merge(ZMultiLineEditCommand *previous) override;

    int offset; // in the whole text; a line break counts as one character, a row that wraps as none
    QString str; // with U+000A for each line break
};

// Text was inserted. Insertions merge that continue where the last one ended.
class TYX_EXPORT UTIL_InsTextCmd : public UTIL_DelTextCmd { // name fixed
public:
    using UTIL_DelTextCmd::UTIL_DelTextCmd;

    int type() const override;
    bool merge(ZMultiLineEditCommand *previous) override;
};
