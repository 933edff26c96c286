#include "textinput/state/zinputmethodstate.h"

#include "platform/values/utf8.h"
#include "textinput/state/inputmethodsegment.h"
#include "textinput/state/zinputmethodstatedata.h"

#include <QByteArrayView>
#include <QtEndian>
#include <algorithm>
#include <cstring>

namespace {

using Bytes = std::span<std::byte>;

template <typename T> T load(Bytes bytes, std::size_t at) { return qFromLittleEndian<T>(bytes.data() + at); }
template <typename T> void store(Bytes bytes, std::size_t at, T value) { qToLittleEndian(value, bytes.data() + at); }

// Up to the first NUL, or the end of the field.
QString loadText(Bytes field)
{
    const auto *text = reinterpret_cast<const char *>(field.data());
    return QString::fromUtf8(text, qsizetype(::strnlen(text, field.size())));
}

// Terminated and padded with NULs; cut between two characters.
void storeText(Bytes field, const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    const qsizetype length = platform::fittingUtf8(utf8, qsizetype(field.size()) - 1);
    std::fill(field.begin(), field.end(), std::byte{0});
    std::memcpy(field.data(), utf8.constData(), std::size_t(length));
}

// Index 12 is behind the table, and inside the segment.
bool isReadable(int index) { return index >= 0 && index <= imsegment::kItems; }

Bytes item(Bytes segment, int index)
{
    return segment.subspan(std::size_t(index) * imsegment::kItemSize, imsegment::kItemSize);
}

QUuid identifier(Bytes item)
{
    QUuid method; // in memory as the toolkit has it: three numbers in the order of the processor, then eight bytes
    static_assert(sizeof method == imsegment::kItemName);
    std::memcpy(&method, item.data(), sizeof method);
    return method;
}

Bytes nameOf(Bytes item) { return item.subspan(imsegment::kItemName, imsegment::kItemNameSize); }

// As many as the table can have, whatever the segment says.
int count(Bytes segment) { return std::clamp<int>(load<qint16>(segment, imsegment::kCount), 0, imsegment::kItems); }

template <typename Matches> int indexOf(Bytes segment, Matches matches)
{
    for (int i = 0; i < count(segment); ++i) {
        if (matches(item(segment, i)))
            return i;
    }
    return -1;
}

int indexOf(Bytes segment, const QUuid &method)
{
    return indexOf(segment, [&](Bytes item) { return identifier(item) == method; });
}

qint16 coordinate(int value)
{
    return qint16(std::clamp<int>(value, std::numeric_limits<qint16>::min(), std::numeric_limits<qint16>::max()));
}

}

ZInputMethodState::ZInputMethodState() : d(std::make_unique<ZInputMethodStateData>()) { }

ZInputMethodState::~ZInputMethodState() = default;

bool ZInputMethodState::isConnected() const { return d->connectIMServer(); }

int ZInputMethodState::getInputMethodCount() const
{
    const Bytes segment = d->connected();
    return segment.empty() ? -1 : load<qint16>(segment, imsegment::kCount);
}

bool ZInputMethodState::insertItem(const QUuid &method, const QString &name, bool system)
{
    const Bytes segment = d->connected();
    if (segment.empty() || count(segment) == imsegment::kItems)
        return false;
    const int index = count(segment);
    const Bytes free = item(segment, index);
    std::memcpy(free.data(), &method, sizeof method);
    storeText(nameOf(free), name);
    free[imsegment::kItemSystem] = std::byte{system};
    store(segment, imsegment::kCount, qint16(index + 1));
    return true;
}

void ZInputMethodState::clearIMList()
{
    const Bytes segment = d->connected();
    if (segment.empty())
        return;
    std::fill_n(segment.begin(), imsegment::kTableSize, std::byte{0});
    store(segment, imsegment::kCount, qint16(0));
    store(segment, imsegment::kChecked, qint16(-1));
}

int ZInputMethodState::findInputMethod(const QString &name) const
{
    const Bytes segment = d->connected();
    return segment.empty() ? -1 : indexOf(segment, [&](Bytes item) { return loadText(nameOf(item)) == name; });
}

int ZInputMethodState::findInputMethod(const QUuid &method) const
{
    const Bytes segment = d->connected();
    return segment.empty() ? -1 : indexOf(segment, method);
}

QMap<QUuid, QString> ZInputMethodState::getIMList(bool systemOnly) const
{
    const Bytes segment = d->connected();
    QMap<QUuid, QString> list;
    for (int i = 0; !segment.empty() && i < count(segment); ++i) {
        if (!systemOnly || item(segment, i)[imsegment::kItemSystem] != std::byte{0})
            list.insert(identifier(item(segment, i)), loadText(nameOf(item(segment, i))));
    }
    return list;
}

QUuid ZInputMethodState::imQuuid(int index) const
{
    const Bytes segment = d->connected();
    return segment.empty() || !isReadable(index) ? QUuid() : identifier(item(segment, index));
}

QString ZInputMethodState::imName(int index) const
{
    const Bytes segment = d->connected();
    return segment.empty() || !isReadable(index) ? QString() : loadText(nameOf(item(segment, index)));
}

bool ZInputMethodState::isSystemIM(int index) const
{
    const Bytes segment = d->connected();
    if (segment.empty())
        return false;
    return !isReadable(index) || item(segment, index)[imsegment::kItemSystem] != std::byte{0};
}

int ZInputMethodState::getIndexOfCheckedInputMethod() const
{
    const Bytes segment = d->connected();
    return segment.empty() ? -1 : load<qint16>(segment, imsegment::kChecked);
}

void ZInputMethodState::setIndexOfCheckedInputMethod(const QUuid &method)
{
    if (const Bytes segment = d->connected(); !segment.empty())
        store(segment, imsegment::kChecked, qint16(indexOf(segment, method)));
}

bool ZInputMethodState::getCurrentOwner(int *id, QString *name) const
{
    const Bytes segment = d->connected();
    if (segment.empty())
        return false;
    if (id)
        *id = load<qint32>(segment, imsegment::kOwner);
    if (name)
        *name = loadText(segment.subspan(imsegment::kOwnerName, imsegment::kOwnerNameSize));
    return true;
}

void ZInputMethodState::setCurrentOwner(int id, const QString &name)
{
    const Bytes segment = d->connected();
    if (segment.empty())
        return;
    store(segment, imsegment::kOwner, qint32(id));
    storeText(segment.subspan(imsegment::kOwnerName, imsegment::kOwnerNameSize), name);
}

void ZInputMethodState::enableKeyboardFilter(bool enable)
{
    if (const Bytes segment = d->connected(); !segment.empty())
        segment[imsegment::kKeyboardFilter] = std::byte{enable};
}

bool ZInputMethodState::keyboardFilterEnabled() const
{
    const Bytes segment = d->connected();
    return segment.empty() || segment[imsegment::kKeyboardFilter] != std::byte{0};
}

void ZInputMethodState::setEditContext(const QStringList &lines, int cursorLine, int cursorPosition)
{
    const Bytes segment = d->connected();
    if (segment.empty())
        return;
    ZInputMethodEditContext context;
    context.setEditContext(lines, cursorLine, cursorPosition);
    std::ranges::copy(context.bytes(), segment.begin() + imsegment::kContext);
}

ZInputMethodEditContext ZInputMethodState::getEditContext() const
{
    const Bytes segment = d->connected();
    if (segment.empty())
        return {};
    return ZInputMethodEditContext(segment.subspan<imsegment::kContext, imsegment::kContextSize>());
}

void ZInputMethodState::setEditCursor(QPoint position)
{
    const Bytes segment = d->connected();
    if (segment.empty())
        return;
    store(segment, imsegment::kCursorX, coordinate(position.x()));
    store(segment, imsegment::kCursorY, coordinate(position.y()));
}

QPoint ZInputMethodState::editCursor() const
{
    const Bytes segment = d->connected();
    if (segment.empty())
        return {};
    return {load<qint16>(segment, imsegment::kCursorX), load<qint16>(segment, imsegment::kCursorY)};
}
