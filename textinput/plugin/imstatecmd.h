// What the input method server tells an input method: records, each with its number.
#pragma once

#include "platform/tyxexport.h"

#include <QByteArray>
#include <QString>
#include <QUuid>
#include <memory>

// An input method gets them by ZInputMethodPlugin::runCommand(), and knows by the number which one it is:
//
//     if (command.number == IMStateCmd::SelectInputMethod)
//         select(static_cast<const SelectInputMethodCmd &>(command).language);
//
// The template fields(visit) of each calls visit(field) for its fields, in the order in which they travel.
struct TYX_EXPORT IMStateCmd { // the names of all of them are fixed
    // One for each of the records below. They travel, so that none ever changes.
    enum Number : int {
        TipWord = 16,
        ShowCompletion = 17,
        SetInputMode = 18,
        SetFollowChars = 19,
        SetEditContext = 20,
        SelectInputMethod = 21,
        SupportLanguageId = 22,
        SetContext = 23,
        PhraseCompletionSetting = 24,
        HWROption = 25
    };

    virtual ~IMStateCmd();
    IMStateCmd(const IMStateCmd &) = delete;
    IMStateCmd &operator=(const IMStateCmd &) = delete;

    const Number number; // which of the records this is

    // The arguments as they travel to the process of the input methods.
    [[nodiscard]] virtual QByteArray pack() const = 0;

    // Null for a number that is none, and when bytes are missing.
    static std::unique_ptr<IMStateCmd> unpack(int number, const QByteArray &arguments);

protected:
    // Only a record below calls it, with its own number.
    explicit IMStateCmd(Number which) : number(which) { }
};

// Each lists its fields once, in the order in which they travel.
#define TYX_IM_COMMAND(Name, which)                                                                                    \
    Name() : IMStateCmd(which) { }                                                                                     \
    [[nodiscard]] QByteArray pack() const override;

// The user accepted this completion.
struct TYX_EXPORT TipWordCmd : IMStateCmd {
    TYX_IM_COMMAND(TipWordCmd, TipWord)
    QString word; // as it was offered
    template <typename Visitor> void fields(Visitor visit) { visit(word); } // for pack() and unpack()
};

// Whether completions are wanted: no before each request, and yes behind the SetFollowCharsCmd that says of what.
struct TYX_EXPORT ShowCompletionCmd : IMStateCmd {
    TYX_IM_COMMAND(ShowCompletionCmd, ShowCompletion)
    bool show = false; // from now on; false: those that are shown are to go
    template <typename Visitor> void fields(Visitor visit) { visit(show); } // for pack() and unpack()
};

// What the editor takes. Comes whenever the keyboard is shown, and when the shift of the title strip is tapped.
struct TYX_EXPORT SetInputModeCmd : IMStateCmd {
    TYX_IM_COMMAND(SetInputModeCmd, SetInputMode)
    // What kind of text. NextShift is none: it comes from the title strip, never from an editor.
    enum Mode {
        Text = 0, // any
        Numbers = 1, // digits, and what else belongs to a number
        NextShift = 2, // the user tapped the shift: from small letters to capitals, say
        Secret = 3 // any text that nobody may learn or show, as a password
    };
    qint32 mode = Text; // a Mode; any other number comes from an application, and is best taken for Text
    template <typename Visitor> void fields(Visitor visit) { visit(mode); } // for pack() and unpack()
};

// Whose words are looked for: a language as settings::inputLanguageNumber() has it.
enum DICTLANGTYPE : quint32 { // name fixed
    DICTLANG_INPUT = 0xFFFF'FFFF // the language that is typed
};

// What completes the characters.
enum class WordCompletionType : quint8 { // name fixed
    Word, // words that begin with the characters
    Phrase // words that follow them
};

// What is to be completed.
struct TYX_EXPORT SetFollowCharsCmd : IMStateCmd {
    TYX_IM_COMMAND(SetFollowCharsCmd, SetFollowChars)
    QString characters; // the beginning of a word, or what stands before one; not empty
    quint32 language = DICTLANG_INPUT; // a DICTLANGTYPE
    quint8 type = quint8(WordCompletionType::Word); // a WordCompletionType
    // For pack() and unpack().
    template <typename Visitor> void fields(Visitor visit)
    {
        visit(characters);
        visit(language);
        visit(type);
    }
};

// The text around the cursor in ZInputMethodState is another one.
struct TYX_EXPORT SetEditContextCmd : IMStateCmd {
    TYX_IM_COMMAND(SetEditContextCmd, SetEditContext)
    // Why it is another one.
    enum State {
        Changed = 0, // text or cursor changed, or another editor is typed into
        Confirmed = 1 // the user went elsewhere: what the method had not confirmed stands in the editor by now
    };
    qint32 state = Changed; // the editor's, as in "updateEditorState(int,int,int)"; an application may have others
    qint32 detail = 0; // 0 from the library's editors; what it means with another state is the application's matter
    // For pack() and unpack().
    template <typename Visitor> void fields(Visitor visit)
    {
        visit(state);
        visit(detail);
    }
};

// What an application says of its text by "setContextString(QString)". Only for the predictive input method, which
// agrees with the application on what it means: the server passes all of it on as it came.
struct TYX_EXPORT SetContextCmd : IMStateCmd {
    TYX_IM_COMMAND(SetContextCmd, SetContext)
    quint8 kind = 0; // what the text is
    QString text; // around the cursor
    quint16 position = 0; // in the text
    // For pack() and unpack().
    template <typename Visitor> void fields(Visitor visit)
    {
        visit(kind);
        visit(text);
        visit(position);
    }
};

// It was selected. Comes before its keyboard is shown, each time.
struct TYX_EXPORT SelectInputMethodCmd : IMStateCmd {
    TYX_IM_COMMAND(SelectInputMethodCmd, SelectInputMethod)
    QUuid method; // its own identifier: a plug-in is one method
    quint32 language = 0; // to be typed, as settings::inputLanguageNumber() has it
    // For pack() and unpack().
    template <typename Visitor> void fields(Visitor visit)
    {
        visit(method);
        visit(language);
    }
};

// The languages that the user types, as settings::inputLanguageNumber() has them. This and the next two come from the
// settings: when the input method is loaded, and when the user changed them.
struct TYX_EXPORT SetSupportLanguageId : IMStateCmd {
    TYX_IM_COMMAND(SetSupportLanguageId, SupportLanguageId)
    quint32 preferred = 0; // what SelectInputMethodCmd says too, unless the user chose another
    quint32 secondary = 0; // for a key that changes between the two; may be the same
    // For pack() and unpack().
    template <typename Visitor> void fields(Visitor visit)
    {
        visit(preferred);
        visit(secondary);
    }
};

// What the user wants to be offered and learnt. In a secret field none of it holds.
struct TYX_EXPORT PhraseCompletionSettingCmd : IMStateCmd {
    TYX_IM_COMMAND(PhraseCompletionSettingCmd, PhraseCompletionSetting)
    bool wordCompletion = true; // longer words than what was typed
    bool nextWordPrediction = true; // words that may follow
    bool userDictionary = true; // words that the user typed are remembered
    // For pack() and unpack().
    template <typename Visitor> void fields(Visitor visit)
    {
        visit(wordCompletion);
        visit(nextWordPrediction);
        visit(userDictionary);
    }
};

// For handwriting.
struct TYX_EXPORT HWROptionCmd : IMStateCmd {
    TYX_IM_COMMAND(HWROptionCmd, HWROption)
    bool rightHand = true; // that the user writes with; false: the left one
    qint32 speed = 50; // percent
    bool waterMark = true; // the writing area shows a mark
    // For pack() and unpack().
    template <typename Visitor> void fields(Visitor visit)
    {
        visit(rightHand);
        visit(speed);
        visit(waterMark);
    }
};

#undef TYX_IM_COMMAND
