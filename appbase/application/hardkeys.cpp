#include "appbase/application/hardkeys.h"

#include "appbase/application/phonestatus.h"
#include "appbase/messaging/wire.h"
#include "platform/bus/qcopchannel.h"

#include <QKeyEvent>
#include <algorithm>
#include <iterator>

namespace {

constexpr int kSend = Qt::Key_F6;
constexpr int kEnd = Qt::Key_F7;
constexpr int kVolumeLeft = Qt::Key_F9;
constexpr int kVolumeRight = Qt::Key_F10;

enum class When { Always, InCall, OutOfCall };

struct Row {
    int key;
    KeyEdge edge;
    When when;
    HardKeyMessage send;
};

// clang-format off
constexpr Row rows[] = {
    {kSend,        KeyEdge::Press,   When::InCall,    {"/TYX/CLI", "voice_call_answer"}},
    {kEnd,         KeyEdge::Press,   When::InCall,    {"TYX/CLI_INCOMINGCALL", "voice_call_reject"}},
    {kEnd,         KeyEdge::Press,   When::OutOfCall, {"/AM/Launcher", "launchApp"}},
    {kSend,        KeyEdge::Release, When::OutOfCall, {"TYX/Phone/", "SendKeyRelease"}},
    {kVolumeLeft,  KeyEdge::Press,   When::Always,    {"/TYX/Volume", "LKeyPress"}},
    {kVolumeRight, KeyEdge::Press,   When::Always,    {"/TYX/Volume", "RKeyPress"}},
};
// clang-format on

bool applies(When when, CallState call)
{
    return when == When::Always || (when == When::InCall) == (call == CallState::ComesIn);
}

}

bool isHardKey(int key)
{
    return std::any_of(std::begin(rows), std::end(rows), [key](const Row &row) { return row.key == key; });
}

const HardKeyMessage *hardKeyMessage(int key, KeyEdge edge, CallState call)
{
    const auto *found = std::find_if(std::begin(rows), std::end(rows),
        [=](const Row &row) { return row.key == key && row.edge == edge && applies(row.when, call); });
    return found == std::end(rows) ? nullptr : &found->send;
}

bool HardKeys::filter(const QKeyEvent &event)
{
    if (!isHardKey(event.key()))
        return false;
    if (event.isAutoRepeat())
        return true; // once for a key, however long it is held
    if (event.type() == QEvent::KeyRelease) {
        send(event.key(), KeyEdge::Release, m_atPress);
        return true;
    }
    m_atPress = callComesIn() ? CallState::ComesIn : CallState::Quiet;
    send(event.key(), KeyEdge::Press, m_atPress);
    return true;
}

void HardKeys::send(int key, KeyEdge edge, CallState call)
{
    if (const HardKeyMessage *message = hardKeyMessage(key, edge, call))
        QCopChannel::send(message->channel, message->message, wire::pack(key));
}
