// The bytes of values in messages: as written, read back, cut anywhere, and with lengths that lie.
#include "appbase/messaging/keyeventex.h"
#include "appbase/messaging/wire.h"

#include <QTest>
#include <functional>

using wire::Reader;

class TstWire : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void bytes_data();
    void bytes();
    void hostileLengths_data();
    void hostileLengths();
    void textEndsAtTheFirstNul();
    void badReaderStaysBadAndYieldsNothing();
    void keyCodesHave16Bits();
};

namespace {

// Writes one value, and tells whether reading it yields the same, null or empty as it was.
struct Case {
    std::function<QByteArray()> write;
    std::function<bool(const QByteArray &)> readsBack;
};

template <typename T> bool sameNullness(const T &a, const T &b)
{
    if constexpr (requires { a.isNull(); })
        return a.isNull() == b.isNull();
    return true;
}

template <typename T> Case of(const T &value)
{
    const auto back = [value](const QByteArray &bytes) {
        T read{};
        Reader reader(bytes);
        reader.value(read);
        return reader.ok() && reader.atEnd() && read == value && sameNullness(read, value);
    };
    return {[value] { return wire::pack(value); }, back};
}

template <> Case of(const IM_KeyEventEx &event)
{
    const auto back = [event](const QByteArray &bytes) {
        Reader reader(bytes);
        bool complete = false;
        return decodeKeyEventEx(reader.stream(), complete) == event && complete && reader.atEnd();
    };
    return {[event] { return encodeKeyEventEx(event); }, back};
}

QByteArray hex(const char *text) { return QByteArray::fromHex(text); }

}

Q_DECLARE_METATYPE(Case)

void TstWire::bytes_data()
{
    QTest::addColumn<Case>("value");
    QTest::addColumn<QByteArray>("expected");
    const QUuid uuid(QStringLiteral("{01234567-89ab-cdef-0123-456789abcdef}"));
    QTest::newRow("int") << of(qint32(-2)) << hex("fffffffe");
    QTest::newRow("unsigned") << of(quint32(0x01020304)) << hex("01020304");
    QTest::newRow("16 bits") << of(quint16(0x0102)) << hex("0102");
    QTest::newRow("8 bits") << of(quint8(0xA5)) << hex("a5");
    QTest::newRow("bool true") << of(true) << hex("00000001");
    QTest::newRow("bool false") << of(false) << hex("00000000");
    QTest::newRow("string") << of(QStringLiteral("a\u20ac")) << hex("00000004 0061 20ac");
    QTest::newRow("empty string") << of(QStringLiteral("")) << hex("00000000");
    QTest::newRow("null string") << of(QString()) << hex("ffffffff");
    QTest::newRow("8-bit string") << of(QCString("ab")) << hex("00000003 616200");
    QTest::newRow("empty 8-bit string") << of(QCString("")) << hex("00000001 00");
    QTest::newRow("null 8-bit string") << of(QCString()) << hex("00000000");
    QTest::newRow("byte array") << of(QByteArray("\0\xFF", 2)) << hex("00000002 00ff");
    QTest::newRow("null byte array") << of(QByteArray()) << hex("00000000");
    QTest::newRow("uuid") << of(uuid) << hex("01234567 89ab cdef 0123456789abcdef");
    QTest::newRow("list") << of(QValueList<int>{1, -1}) << hex("00000002 00000001 ffffffff");
    QTest::newRow("empty list") << of(QValueList<QString>{}) << hex("00000000");
    QTest::newRow("map") << of(QMap<int, QCString>{{2, "b"}, {1, QCString()}})
                         << hex("00000002 00000001 00000000 00000002 00000002 6200");
    QTest::newRow("key event") << of(IM_KeyEventEx{0x61, 0x41, Qt::ShiftModifier, QStringLiteral("a")})
                               << hex("0061 0041 02000000 00000002 0061");
}

void TstWire::bytes()
{
    QFETCH(Case, value);
    QFETCH(QByteArray, expected);
    QCOMPARE(value.write().toHex(' '), expected.toHex(' '));
    QVERIFY(value.readsBack(expected));
    for (qsizetype size = 0; size < expected.size(); ++size)
        QVERIFY2(!value.readsBack(expected.first(size)), qPrintable(QString::number(size)));
}

void TstWire::hostileLengths_data()
{
    QTest::addColumn<QByteArray>("length");
    QTest::newRow("2^32 - 1") << hex("ffffffff");
    QTest::newRow("2^32 - 2") << hex("fffffffe");
    QTest::newRow("2^31") << hex("80000000");
    QTest::newRow("2^31 - 2") << hex("7ffffffe");
    QTest::newRow("one too many") << hex("00000005");
}

void TstWire::hostileLengths()
{
    QFETCH(QByteArray, length);
    const QByteArray bytes = length + "abcd";
    const bool nullString = length == hex("ffffffff");
    QString string;
    QCString cstring;
    QByteArray array;
    QValueList<quint8> list;
    QMap<quint8, quint8> map;
    QCOMPARE(wire::unpack(bytes, string), nullString);
    QVERIFY(!wire::unpack(bytes, cstring));
    QCOMPARE(wire::unpack(bytes, array), nullString);
    QVERIFY(!wire::unpack(bytes, list));
    QVERIFY(!wire::unpack(bytes, map));
    QVERIFY(string.isNull() && cstring.isNull() && array.isNull() && list.isEmpty() && map.isEmpty());

    // The types' own operators, for those who are handed a stream.
    QValueList<QCString> strings;
    Reader reader(bytes);
    reader.stream() >> cstring;
    QVERIFY(!reader.ok() && cstring.isNull());
    Reader listReader(bytes);
    listReader.stream() >> strings;
    QVERIFY(!listReader.ok() && strings.isEmpty());
}

void TstWire::textEndsAtTheFirstNul()
{
    QCString text;
    int after = 0;
    QVERIFY(wire::unpack(hex("00000005 61 00 62 63 00 00000007"), text, after));
    QCOMPARE(text, "a");
    QCOMPARE(after, 7);
    QVERIFY(wire::unpack(hex("00000002 6162 00000007"), text, after)); // a sender that forgot the NUL
    QCOMPARE(text, "ab");
    QCOMPARE(wire::pack(QCString(QByteArray("a\0b", 3))).toHex(), hex("00000002 6100").toHex());
}

void TstWire::badReaderStaysBadAndYieldsNothing()
{
    Reader reader(hex("0000 0001"));
    QString odd;
    qint32 number = 5;
    Reader oddReader(hex("00000003 006100"));
    oddReader.string(odd);
    QVERIFY(!oddReader.ok());

    QUuid uuid;
    reader.uuid(uuid);
    QVERIFY(!reader.ok());
    reader.i32(number); // its four bytes are there, and no longer to be trusted
    QCOMPARE(number, 0);
}

void TstWire::keyCodesHave16Bits()
{
    const QList<std::pair<int, int>> known{
        {Qt::Key_A, 0x41}, {Qt::Key_Escape, 0x1000}, {Qt::Key_F1, 0x1030}, {Qt::Key_Call, 0}, {0x1234, 0}, {-1, 0}};
    for (const auto &[key, code] : known) {
        QCOMPARE(int(IM_KeyEventEx::keyCodeOf(key)), code);
        if (code != 0)
            QCOMPARE((IM_KeyEventEx{0, quint16(code), 0, {}}.qtKey()), key);
    }
    QCOMPARE((IM_KeyEventEx{u'x', 0, 0, {}}.typed()), QStringLiteral("x"));
    QVERIFY((IM_KeyEventEx{0xD800, 0, 0, {}}.typed().isEmpty()));
}

QTEST_GUILESS_MAIN(TstWire)
#include "tst_wire.moc"
