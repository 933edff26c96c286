// Any bytes for what travels between editors, the input method server and the process of the input methods. The first
// byte chooses the form. What can be read must come out the same when it is written and read again.
#include "appbase/messaging/keyeventex.h"
#include "settings/files/inputsetting.h"
#include "tests/fuzz/require.h"
#include "textinput/plugin/imstatecmd.h"
#include "textinput/plugin/inputmethodinfo.h"

#include <QDataStream>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdint>

namespace {

void setting(const QByteArray &bytes)
{
    INPUT_SETTING_T read;
    INPUT_SETTING_T again;
    if (settings::unpackInputSetting(bytes, read))
        require(settings::unpackInputSetting(settings::packInputSetting(read), again) && again == read);
}

IM_KeyEventEx decoded(const QByteArray &bytes, bool &complete)
{
    QDataStream stream(bytes);
    return decodeKeyEventEx(stream, complete);
}

void keyEvent(const QByteArray &bytes)
{
    bool complete = false;
    const IM_KeyEventEx event = decoded(bytes, complete);
    require(complete || event == IM_KeyEventEx());
    require(decoded(encodeKeyEventEx(event), complete) == event && complete);
    require(event.typed().size() <= bytes.size());
    std::ignore = IM_KeyEventEx::keyCodeOf(event.qtKey());
}

void command(const QByteArray &bytes)
{
    for (int number = IMStateCmd::TipWord; number <= IMStateCmd::HWROption; ++number) {
        const auto read = IMStateCmd::unpack(number, bytes);
        if (!read)
            continue;
        const auto again = IMStateCmd::unpack(read->number, read->pack());
        require(again && again->pack() == read->pack());
    }
}

void methods(const QByteArray &bytes)
{
    const QList<InputMethodInfo> read = unpackMethods(bytes);
    require(unpackMethods(packMethods(read)) == read);
    for (const InputMethodInfo &info : read)
        require(!info.id.isNull() && !info.name.isEmpty());
}

void metaData(const QByteArray &bytes)
{
    if (const auto info = readMethodInfo(QJsonDocument::fromJson(bytes).object()))
        require(unpackMethods(packMethods({*info})) == QList{*info});
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    constexpr void (*forms[])(const QByteArray &) = {setting, keyEvent, command, methods, metaData};
    forms[*data % std::size(forms)](QByteArray(reinterpret_cast<const char *>(data) + 1, qsizetype(size) - 1));
    return 0;
}
