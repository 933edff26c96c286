// What the input method server tells an input method: records, each with its number.
#pragma once

#include "platform/tyxexport.h"

#include <QByteArray>
#include <QString>
#include <QUuid>
#include <memory>

struct TYX_EXPORT IMStateCmd { // the names of all of them are fixed
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

    const Number number;

    // The arguments as they travel to the process of the input methods.
    [[nodiscard]] virtual QByteArray pack() const = 0;

    // Null for a number that is none, and when bytes are missing.
    static std::unique_ptr<IMStateCmd> unpack(int number, const QByteArray &arguments);

protected:
    explicit IMStateCmd(Number which) : number(which) { }
};

// Each lists its fields once, in the order in which they travel.
#define TYX_IM_COMMAND(Name, which)                                                                                    \
    Name() : IMStateCmd(which) { }                                                                                     \
    [[nodiscard]] QByteArray pack() const override;

// The user accepted this completion.
struct TYX_EXPORT TipWordCmd : IMStateCmd {
    TYX_IM_COMMAND(TipWordCmd, TipWord)
    QString word;
    template <typename Visitor> void fields(Visitor visit) { visit(word); }
};

// Completions are to be shown from now on; false: those that are shown are to go.
struct TYX_EXPORT ShowCompletionCmd : IMStateCmd {
    TYX_IM_COMMAND(ShowCompletionCmd, ShowCompletion)
    bool show = false;
    template <typename Visitor> void fields(Visitor visit) { visit(show); }
};

// What the editor takes: 0 any text, 1 numbers, 3 what nobody may learn or show. The shift of the title strip comes as
// mode 2.
struct TYX_EXPORT SetInputModeCmd : IMStateCmd {
    TYX_IM_COMMAND(SetInputModeCmd, SetInputMode)
    enum Mode { Text = 0, Numbers = 1, NextShift = 2, Secret = 3 };
    qint32 mode = Text;
    template <typename Visitor> void fields(Visitor visit) { visit(mode); }
};

// Whose words are looked for: a language as settings::inputLanguageNumber() has it.
enum DICTLANGTYPE : quint32 { // name fixed
    DICTLANG_INPUT = 0xFFFF'FFFF // the language that is typed
};

enum class WordCompletionType : quint8 { // name fixed
    Word, // words that begin with the characters
    Phrase // words that follow them
};

// What is to be completed.
struct TYX_EXPORT SetFollowCharsCmd : IMStateCmd {
    TYX_IM_COMMAND(SetFollowCharsCmd, SetFollowChars)
    QString characters;
    quint32 language = DICTLANG_INPUT;
    quint8 type = quint8(WordCompletionType::Word);
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
    enum State {
        Changed = 0,
        Confirmed = 1 // the user went elsewhere: what the method had not confirmed stands in the editor by now
    };
    qint32 state = Changed; // the editor's, as in "updateEditorState(int,int,int)"; an application may have others
    qint32 detail = 0;
    template <typename Visitor> void fields(Visitor visit)
    {
        visit(state);
        visit(detail);
    }
};

// Only for the predictive input method.
struct TYX_EXPORT SetContextCmd : IMStateCmd {
    TYX_IM_COMMAND(SetContextCmd, SetContext)
    quint8 kind = 0;
    QString text;
    quint16 position = 0;
    template <typename Visitor> void fields(Visitor visit)
    {
        visit(kind);
        visit(text);
        visit(position);
    }
};

// It was selected, for this language (settings::inputLanguageNumber()).
struct TYX_EXPORT SelectInputMethodCmd : IMStateCmd {
    TYX_IM_COMMAND(SelectInputMethodCmd, SelectInputMethod)
    QUuid method;
    quint32 language = 0;
    template <typename Visitor> void fields(Visitor visit)
    {
        visit(method);
        visit(language);
    }
};

// The languages that the user types.
struct TYX_EXPORT SetSupportLanguageId : IMStateCmd {
    TYX_IM_COMMAND(SetSupportLanguageId, SupportLanguageId)
    quint32 preferred = 0;
    quint32 secondary = 0;
    template <typename Visitor> void fields(Visitor visit)
    {
        visit(preferred);
        visit(secondary);
    }
};

struct TYX_EXPORT PhraseCompletionSettingCmd : IMStateCmd {
    TYX_IM_COMMAND(PhraseCompletionSettingCmd, PhraseCompletionSetting)
    bool wordCompletion = true;
    bool nextWordPrediction = true;
    bool userDictionary = true;
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
    bool rightHand = true;
    qint32 speed = 50; // percent
    bool waterMark = true;
    template <typename Visitor> void fields(Visitor visit)
    {
        visit(rightHand);
        visit(speed);
        visit(waterMark);
    }
};

#undef TYX_IM_COMMAND
