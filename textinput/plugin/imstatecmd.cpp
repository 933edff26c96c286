#include "textinput/plugin/imstatecmd.h"

#include "appbase/messaging/wire.h"

namespace {

template <typename Command> QByteArray packed(const Command &command)
{
    wire::Writer writer;
    // The one list of fields serves reading too, so it cannot be const.
    const_cast<Command &>(command).fields([&writer](const auto &field) { writer.value(field); });
    return writer.result();
}

template <typename Command> std::unique_ptr<IMStateCmd> unpacked(const QByteArray &arguments)
{
    auto command = std::make_unique<Command>();
    wire::Reader reader(arguments);
    command->fields([&reader](auto &field) { reader.value(field); });
    if (!reader.ok())
        return nullptr;
    return command;
}

}

IMStateCmd::~IMStateCmd() = default;

QByteArray TipWordCmd::pack() const { return packed(*this); }
QByteArray ShowCompletionCmd::pack() const { return packed(*this); }
QByteArray SetInputModeCmd::pack() const { return packed(*this); }
QByteArray SetFollowCharsCmd::pack() const { return packed(*this); }
QByteArray SetEditContextCmd::pack() const { return packed(*this); }
QByteArray SetContextCmd::pack() const { return packed(*this); }
QByteArray SelectInputMethodCmd::pack() const { return packed(*this); }
QByteArray SetSupportLanguageId::pack() const { return packed(*this); }
QByteArray PhraseCompletionSettingCmd::pack() const { return packed(*this); }
QByteArray HWROptionCmd::pack() const { return packed(*this); }

std::unique_ptr<IMStateCmd> IMStateCmd::unpack(int number, const QByteArray &arguments)
{
    switch (number) {
    case TipWord:
        return unpacked<TipWordCmd>(arguments);
    case ShowCompletion:
        return unpacked<ShowCompletionCmd>(arguments);
    case SetInputMode:
        return unpacked<SetInputModeCmd>(arguments);
    case SetFollowChars:
        return unpacked<SetFollowCharsCmd>(arguments);
    case SetEditContext:
        return unpacked<SetEditContextCmd>(arguments);
    case SelectInputMethod:
        return unpacked<SelectInputMethodCmd>(arguments);
    case SupportLanguageId:
        return unpacked<SetSupportLanguageId>(arguments);
    case SetContext:
        return unpacked<SetContextCmd>(arguments);
    case PhraseCompletionSetting:
        return unpacked<PhraseCompletionSettingCmd>(arguments);
    case HWROption:
        return unpacked<HWROptionCmd>(arguments);
    default:
        return nullptr;
    }
}
