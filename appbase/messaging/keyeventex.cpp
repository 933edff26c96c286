#include "appbase/messaging/keyeventex.h"

#include "appbase/messaging/wire.h"

namespace {

constexpr int kFirstWithoutCharacter = 0x0100'0000; // of Qt::Key
constexpr int kFirstInMessage = 0x1000;
constexpr int kWithoutCharacter = 0x1000; // as many of them have a number in messages
constexpr quint16 kNoUnicode = 0xFFFF;

// The wire order, for both directions.
template <typename Visitor, typename Event> void keyEventFields(Visitor visit, Event &event)
{
    visit(event.unicode);
    visit(event.keyCode);
    visit(event.modifiers);
    visit(event.text);
}

bool isWithin(int number, int first) { return number >= first && number - first < kWithoutCharacter; }

}

QString IM_KeyEventEx::typed() const
{
    const bool types = text.isEmpty() && unicode != 0 && unicode != kNoUnicode && !QChar(unicode).isSurrogate();
    return types ? QString(QChar(unicode)) : text;
}

int IM_KeyEventEx::qtKey() const
{
    return isWithin(keyCode, kFirstInMessage) ? kFirstWithoutCharacter + (keyCode - kFirstInMessage) : keyCode;
}

quint16 IM_KeyEventEx::keyCodeOf(int qtKey)
{
    if (isWithin(qtKey, kFirstWithoutCharacter))
        return quint16(kFirstInMessage + (qtKey - kFirstWithoutCharacter));
    const bool fits = qtKey >= 0 && qtKey <= 0xFFFF && !isWithin(qtKey, kFirstInMessage);
    return fits ? quint16(qtKey) : quint16(0);
}

IM_KeyEventEx decodeKeyEventEx(QDataStream &stream, bool &complete)
{
    IM_KeyEventEx event;
    keyEventFields([&stream](auto &field) { stream >> field; }, event);
    complete = stream.status() == QDataStream::Ok;
    return complete ? event : IM_KeyEventEx();
}

QByteArray encodeKeyEventEx(const IM_KeyEventEx &event)
{
    wire::Writer writer;
    keyEventFields([&writer](const auto &field) { writer.value(field); }, event);
    return writer.result();
}
