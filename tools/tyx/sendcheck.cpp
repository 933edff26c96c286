#include "tools/tyx/sendcheck.h"

#include "tools/tyx/catalogue.h"
#include "tools/tyx/command.h"

#include <algorithm>

namespace tyx {

namespace {

bool haveForms(const QList<const Kind *> &kinds, const QList<Argument> &arguments)
{
    return std::equal(kinds.begin(), kinds.end(), arguments.begin(), arguments.end(),
        [](const Kind *kind, const Argument &argument) { return haveSameForm(*kind, *argument.kind); });
}

// Typed kinds are compared as they are: many bytes can be read as several of them. Raw bytes have to be read.
bool fits(const Encoded &encoded, const KnownMessage &known)
{
    const QList<Argument> arguments = argumentsOf(known);
    const Kind *raw = kindNamed(u"raw");
    const bool takesAll = !arguments.isEmpty() && arguments.first().kind == raw;
    if (!takesAll && !encoded.kinds.isEmpty() && !encoded.kinds.contains(raw))
        return haveForms(encoded.kinds, arguments);
    const Decoded decoded = decode(known, encoded.data);
    return decoded.complete && decoded.rest.isEmpty();
}

template <typename Predicate> const KnownMessage *firstOf(Predicate predicate)
{
    const auto all = knownMessages();
    const auto row = std::ranges::find_if(all, predicate);
    return row == all.end() ? nullptr : &*row;
}

bool isListed(QByteArrayView channel)
{
    const QList<QByteArrayView> rows = rowsOf(channel);
    return firstOf([&](const KnownMessage &row) { return row.channel == rows.first(); }) != nullptr;
}

QString quoted(QByteArrayView text) { return u'"' + printable(text) + u'"'; }

QString unknownName(const Draft &draft)
{
    if (!isListed(draft.channel))
        return {};
    const QList<QByteArrayView> rows = rowsOf(draft.channel);
    const auto isMeant = [&](const KnownMessage &row) { return isLike(row.name, draft.message); };
    if (const auto *here = firstOf([&](const KnownMessage &row) { return rows.contains(row.channel) && isMeant(row); }))
        return QStringLiteral("%1 is not known; there is %2").arg(quoted(draft.message), quoted(here->name));
    if (const auto *elsewhere = firstOf(isMeant))
        return QStringLiteral("%1 is not known there; %2 belongs on %3")
            .arg(quoted(draft.message), quoted(elsewhere->name), printable(elsewhere->channel));
    return {};
}

}

QString objectionTo(const Draft &draft)
{
    const KnownMessage *known = knownMessage(draft.channel, draft.message);
    if (!known)
        return unknownName(draft);
    return fits(draft.arguments, *known) ? QString() : whatItTakes(*known);
}

bool belongsToProcess(const Draft &draft)
{
    const KnownMessage *known = knownMessage(draft.channel, draft.message);
    return known && known->channel == kProcessChannel && rowsOf(draft.channel).first() == kProgramChannel;
}

}
