#include "guiserver/statuscontent.h"

#include "settings/status/statuslayout.h"

#include <algorithm>

using status::valueOf;

namespace {

constexpr int kFullLevel = 4;
constexpr quint8 kNotKnown = 0xFF;

// What is no UTF-8 is Latin-1; on one line, since anybody may write anything.
QString text(std::string_view bytes)
{
    const QUtf8StringView utf8(bytes.data(), qsizetype(bytes.size()));
    QString text = utf8.isValidUtf8() ? utf8.toString() : QString::fromLatin1(bytes.data(), qsizetype(bytes.size()));
    const auto harmful = [](QChar c) { return !c.isPrint() && !c.isSurrogate(); };
    std::replace_if(text.begin(), text.end(), harmful, u' ');
    return text.simplified();
}

int percentOf(const SystemTableCopy &table)
{
    const int percent = valueOf(table, status::batteryPercent)[0];
    const int level = valueOf(table, status::batteryLevel);
    if (percent > 0)
        return std::min(percent, 100);
    if (level > 0)
        return std::min(level, kFullLevel) * 100 / kFullLevel;
    return valueOf(table, status::battery) == kNotKnown ? StatusContent::kUnknown : 0;
}

}

StatusContent contentOf(const SystemTableCopy &table)
{
    StatusContent content;
    content.signalBars = std::min<int>(valueOf(table, status::signalQuality), status::signalQuality.max);
    content.roaming = valueOf(table, status::roaming) != 0;
    const QString network = text(valueOf(table, status::serviceName));
    const QString simCard = text(valueOf(table, status::spnName));
    content.operatorName =
        content.roaming ? (network.isEmpty() ? simCard : network) : (simCard.isEmpty() ? network : simCard);
    content.headset = valueOf(table, status::headset) || valueOf(table, status::bluetoothHeadset);
    content.locked = valueOf(table, status::phoneLock);
    content.call = valueOf(table, status::incomingCall) ? StatusContent::Call::Incoming
        : valueOf(table, status::phoneInCall)           ? StatusContent::Call::Up
                                                        : StatusContent::Call::None;
    content.batteryPercent = percentOf(table);
    content.charging = valueOf(table, status::charging);
    return content;
}
