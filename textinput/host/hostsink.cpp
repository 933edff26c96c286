#include "textinput/host/hostsink.h"

#include "appbase/messaging/keyeventex.h"
#include "appbase/messaging/wire.h"
#include "platform/bus/qcopchannel.h"
#include "textinput/plugin/inputmethodinfo.h"

#include <QCoreApplication>

namespace {

constexpr qsizetype kLongestText = 1000;

template <typename... T> void tell(const char *message, const T &...values)
{
    QCopChannel::send(
        imhost::kServerChannel, message, wire::pack(qint32(QCoreApplication::applicationPid()), values...));
}

void tellKey(const IM_KeyEventEx &event) { tell(imhost::kKey, encodeKeyEventEx(event)); }

}

void HostSink::sendText(const QString &text)
{
    if (text.isEmpty())
        return;
    if (m_unconfirmed)
        setUnconfirmedText({}); // what it stood for is here now
    IM_KeyEventEx event;
    event.text = text.left(kLongestText);
    if (event.text.size() == 1) {
        event.unicode = event.text.front().unicode();
        event.keyCode = IM_KeyEventEx::keyCodeOf(event.text.front().toUpper().unicode());
    }
    tellKey(event);
}

void HostSink::sendKey(int key, Qt::KeyboardModifiers modifiers)
{
    IM_KeyEventEx event;
    event.keyCode = IM_KeyEventEx::keyCodeOf(key);
    event.modifiers = modifiers.toInt();
    if (event.keyCode != 0)
        tellKey(event);
}

void HostSink::setUnconfirmedText(const QString &text)
{
    m_unconfirmed = !text.isEmpty();
    tell(imhost::kUnconfirmed, text.left(kLongestText));
}

void HostSink::setCompletionTip(const QString &word) { tell(imhost::kTip, word.left(kLongestText)); }

void HostSink::hide() { tell(imhost::kLeave); }
