// The bytes of resource and skin files: literal ones, hostile ones, and whatever the builder makes.
#include "res/format/headertext.h"
#include "res/format/nameindex.h"
#include "res/format/resbuilder.h"
#include "res/format/rescheck.h"
#include "res/format/resid.h"
#include "tests/support/columns.h"

#include <QTest>
#include <random>

using namespace Qt::StringLiterals;
using res::Version;

namespace {

res::Bytes bytesOf(const QByteArray &file) { return std::as_bytes(std::span(file.constData(), size_t(file.size()))); }

// A whole file of version 1.00. The identifiers are put in order here.
QByteArray resourceFile(std::vector<std::pair<QByteArray, QByteArray>> resources)
{
    std::sort(resources.begin(), resources.end());
    std::vector<res::Entry> entries;
    QByteArray data;
    for (const auto &[id, content] : resources) {
        entries.push_back({id, {quint32(data.size())}});
        data.append(QByteArrayView(res::blockHeader(quint32(content.size())))).append(content);
    }
    return res::buildHead(Version::Resources, entries, quint64(data.size()))->bytes + data;
}

QByteArray dataOf(const res::ResIndex &index, QByteArrayView id)
{
    const auto slot = index.find(id);
    const auto block = slot ? index.block(index.dataOffsetAt(*slot)) : tl::make_unexpected(res::BlockFault::Check);
    return block ? QByteArray(reinterpret_cast<const char *>(block->data()), qsizetype(block->size()))
                 : QByteArray("(none)");
}

QByteArray word(quint32 value)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

// What the rows below damage: three identifiers in four slots.
const QByteArray kSample = resourceFile({{"a.g", "image"}, {"b.a", "sound"}, {"c", ""}});
const qsizetype kIds = res::headerText(Version::Resources).size();
const qsizetype kStart = (kIds + 4 + 4 + 2 + 3) / 4 * 4;
const qsizetype kHash = kStart + 20;
const qsizetype kEntry = 12;
const qsizetype kData = kHash + 4 * kEntry;

}

class TstResFormat : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void identifiers();
    void hashes();
    void goldenBytes();
    void damage_data();
    void damage();
    void probing_data();
    void probing();
    void everySlotIsVisited();
    void aTableHasRoomForItsResourcesOnly();
    void whatIsBuiltIsFound_data();
    void whatIsBuiltIsFound();
};

void TstResFormat::identifiers()
{
    const std::pair<QString, QString> rows[] = {{u"/usr/icons/Phone.JPG"_s, u"Phone.g"_s}, {u"icon.gif"_s, u"icon.g"_s},
        {u"icon.Png"_s, u"icon.g"_s}, {u"a/b.c/icon.jpeg"_s, u"icon.g"_s}, {u"tunes/Ring.Mp3"_s, u"Ring.a"_s},
        {u"r.wav"_s, u"r.a"_s}, {u"r.aac"_s, u"r.a"_s}, {u"r.mid"_s, u"r.a"_s}, {u"r.amr"_s, u"r.a"_s},
        {u"dir.png/notes.txt"_s, u"notes.txt"_s}, {u"twice.png.png"_s, u"twice.png.g"_s}, {u"dir/.png"_s, u".g"_s},
        {u"png"_s, u"png"_s}, {u"folder/"_s, u""_s}};
    for (const auto &[name, id] : rows)
        QCOMPARE(res::createID(name), id);
}

void TstResFormat::hashes()
{
    const std::pair<QByteArray, quint32> rows[] = {
        {QByteArray(), 0xFFFFFFFFU},
        {"", 0U},
        {"a", 0x61U},
        {"ab", 0xA0U},
        {"\xE9t\xE9.g", 0xEAFU}, // bytes without a sign
        {"ringing_tone_of_an_incoming_call.a", 0xE28A09FAU}, // the hash has one, and keeps it
        {"AFLa;./ao5S4KycXf>", 0x00FFFFFFU}, // the hash of nothing
        {QByteArray("a\0b", 3), 0x61U},
    };
    for (const auto &[id, hash] : rows)
        QCOMPARE(res::hashVal(id), hash);
    QCOMPARE(res::bigToLittle(0x01020304), 0x04030201U);
}

void TstResFormat::goldenBytes()
{
    QCOMPARE(kSample.first(16), "kovaskin\n\nv1.00\n");
    QCOMPARE(kSample.mid(16, 8), QByteArray::number(kStart, 16).rightJustified(8, '0'));
    const QByteArray empty(12, '\xFF');
    // The hashes of "a.g", "b.a" and "c" are 0x1BF, 0x1B5 and 0x63; of 4 slots they get 3, 1 and, after 3, slot 0.
    const QByteArray slots =
        word(0x63) + word(8) + word(26) + word(0x1B5) + word(4) + word(13) + empty + word(0x1BF) + word(0) + word(0);
    const QByteArray blocks =
        "\xCD\xAB\xBA\xDC" + word(5) + "image" + "\xCD\xAB\xBA\xDC" + word(5) + "sound" + "\xCD\xAB\xBA\xDC" + word(0);
    const QByteArray startBlock =
        "\xBA\xDC\xCD\xAB" + word(quint32(kIds)) + word(4) + word(quint32(kHash)) + word(quint32(kData));
    const QByteArray padding(kStart - kIds - 10, '\0');
    QCOMPARE(
        kSample.mid(kIds).toHex(' '), QByteArray("a.g\nb.a\nc\n" + padding + startBlock + slots + blocks).toHex(' '));

    const std::vector<res::Entry> rects{{"ok.g", {1, 2, 3, 4}}};
    const auto skin = res::buildHead(Version::Skin, rects, 13);
    QVERIFY(skin);
    const auto text = res::headerText(Version::Skin);
    QCOMPARE(skin->bytes.first(16), "kovaskin\n\nv1.10\n");
    const qsizetype start = skin->bytes.mid(16, 8).toLongLong(nullptr, 16);
    QCOMPARE(start, (text.size() + 5 + 3) / 4 * 4);
    QCOMPARE(skin->startBlockMoved, start != text.size() + 5);
    QCOMPARE(skin->bytes.mid(start + 20).toHex(' '),
        QByteArray(word(res::hashVal("ok.g")) + word(0) + word(1) + word(2) + word(3) + word(4)).toHex(' '));
    QVERIFY(res::ResIndex::parse(bytesOf(skin->bytes), Version::Skin));

    // A file that somebody else wrote with capital digits is as good.
    QByteArray capital = kSample;
    capital.replace(16, 8, capital.mid(16, 8).toUpper());
    QVERIFY(res::ResIndex::parse(bytesOf(capital), Version::Resources));
}

void TstResFormat::damage_data()
{
    using Fault = res::FormatFault;
    // fault: of parse(); -1: it reads, and "a.g" has what stands in the next column
    // flaw: where check() sees it
    const auto add = columns<QByteArray, int, QByteArray, quint64>("file", "fault", "data", "flaw");
    const auto row = [&](const char *name, const QByteArray &file, Fault fault, qsizetype flaw) {
        add(name, file, int(fault), {}, quint64(flaw));
    };
    const auto reads = [&](const char *name, const QByteArray &file, const char *data, qsizetype flaw) {
        add(name, file, -1, data, quint64(flaw));
    };
    const auto with = [](qsizetype at, const QByteArray &bytes) {
        return QByteArray(kSample).replace(at, bytes.size(), bytes);
    };
    const qsizetype end = kSample.size();
    row("nothing", "", Fault::Magic, 0);
    row("another version", with(12, "1"), Fault::Magic, 0);
    row("the magic line only", kSample.first(16), Fault::StartBlockOffset, 16);
    row("no digits", with(16, "-0000001"), Fault::StartBlockCheck, 16);
    row("a start block far away", with(16, "ffffffff"), Fault::StartBlockOffset, 16);
    row("a start block that is cut off", kSample.first(kStart + 19), Fault::StartBlockOffset, 16);
    row("another start block", with(16, "00000004"), Fault::StartBlockCheck, 16);
    row("the ID table outside", with(kStart + 4, word(quint32(end + 1))), Fault::Tables, end);
    row("slots that wrap around", with(kStart + 8, word(0x15555556)), Fault::Tables, end);
    row("very many slots", with(kStart + 8, word(0xFFFFFFFF)), Fault::Tables, end);
    row("the hash table outside", with(kStart + 12, word(0xFFFFFFF0)), Fault::Tables, end);
    row("the data outside", with(kStart + 16, word(0xFFFFFFFF)), Fault::Tables, end);
    row("the hash table cut off", kSample.first(kData - 1), Fault::Tables, kData - 1);

    reads("no slots", with(kStart + 8, word(0)), "(none)", kStart + 16);
    reads("the data at the end", with(kStart + 16, word(quint32(end))), "(none)", kStart + 16);
    const qsizetype slot = kHash + 3 * kEntry; // of "a.g"
    reads("another hash", with(slot, word(7)), "(none)", slot);
    reads("an ID outside", with(slot + 4, word(0xFFFFFFFE)), "(none)", kHash + 12 + 4);
    reads("an ID at the end of the file", with(slot + 4, word(quint32(end - kIds))), "image", kHash + 12 + 4);
    reads("another ID", with(slot + 4, word(1)), "(none)", slot + 4);
    reads("an empty slot", with(slot + 4, word(0xFFFFFFFF)), "(none)", kHash + 12 + 4);
    reads("a block outside", with(slot + 8, word(0xFFFFFFFF)), "(none)", slot + 8);
    reads("a block in another", with(slot + 8, word(13)), "sound", slot + 8);
    reads("no block check", with(kData, "\xCC"), "(none)", kData);
    reads("a size that wraps around", with(kData + 4, word(0xFFFFFFFF)), "(none)", kData);
    reads("a block one too long", with(kData + 4, word(quint32(end - kData - 7))), "(none)", kData);
    reads("a block cut off in its header", kSample.first(end - 2), "image", end - 8);
    reads("padding", QByteArray(kSample).replace(kStart - 1, 1, "x"), "image", kStart - 1);
    reads("more than the data", kSample + "x", "image", end);
    reads("an ID that is not its line", with(kIds, "A"), "(none)", slot);
}

void TstResFormat::damage()
{
    QFETCH(QByteArray, file);
    QFETCH(int, fault);
    file.detach(); // its own allocation: the sanitizer sees what lies outside
    const auto index = res::ResIndex::parse(bytesOf(file), Version::Resources);
    QCOMPARE(index ? -1 : int(index.error()), fault);
    if (index)
        QTEST(dataOf(*index, "a.g"), "data");
    const auto flaw = res::check(bytesOf(file), Version::Resources);
    QVERIFY(flaw);
    QTEST(flaw->offset, "flaw");
    QVERIFY(!res::check(bytesOf(kSample), Version::Resources));
}

void TstResFormat::probing_data()
{
    // found: each identifier's data are the identifier
    const auto row = columns<QList<QByteArray>, QByteArray, QByteArray>("stored", "asked", "found");
    row("the first of one hash", {"ab", "bd"}, "ab", "ab");
    row("the second of one hash", {"ab", "bd"}, "bd", "bd");
    row("around the end", {"c", "g", "k"}, "k", "k"); // 4 slots, all three have 3 for their own
    row("a table without an empty slot", {"a", "b"}, "c", "(none)");
    row("no table", {}, "a", "(none)");
    row("case matters", {"ab", "AB"}, "Ab", "(none)");
    row("the beginning of what was asked for", {"@"}, "@\xC0", "@");
    row("the nearer one", {"@", "@\xC0"}, "@\xC0", "@");
    row("longer than what was asked for", {"@\xC0"}, "@", "(none)");
    row("never found", {"AFLa;./ao5S4KycXf>"}, "AFLa;./ao5S4KycXf>", "(none)");
    row("an empty one begins everything", {""}, QByteArray("\0x", 2), "");
    row("null", {""}, QByteArray(), "(none)");
}

void TstResFormat::probing()
{
    QFETCH(QList<QByteArray>, stored);
    QFETCH(QByteArray, asked);
    std::vector<std::pair<QByteArray, QByteArray>> resources;
    for (const QByteArray &id : stored)
        resources.emplace_back(id, id);
    const QByteArray file = resourceFile(resources);
    const auto index = res::ResIndex::parse(bytesOf(file), Version::Resources);
    QVERIFY(index);
    QTEST(dataOf(*index, asked), "found");
    if (res::hashVal(asked) != res::kHashOfNothing && index->slotCount() > 0)
        QCOMPARE(res::NameIndex(*index).find(*index, res::hashVal(asked), asked), index->find(asked));
}

void TstResFormat::everySlotIsVisited()
{
    QByteArray file = kSample + QByteArray(100, 'x');
    const auto idOffset = [&](int slot) { return kHash + slot * kEntry + 4; };
    const auto ids = [&] {
        const auto index = res::ResIndex::parse(bytesOf(file), Version::Resources);
        QByteArrayList found;
        for (quint32 slot = 0; slot <= index->slotCount(); ++slot)
            found.append(index->idAt(slot).toByteArray());
        return found;
    };
    QCOMPARE(ids(), QByteArrayList({"c", "b.a", "", "a.g", ""}));
    file.replace(idOffset(0), 4, word(quint32(file.size() - kIds - 50))); // no line end
    file.replace(idOffset(1), 4, word(9)); // the line end of "c": an empty text
    file.replace(idOffset(2), 4, word(quint32(file.size() - kIds - 1)));
    QCOMPARE(ids(), QByteArrayList({"", "", "", "a.g", ""}));
    file += '\n';
    QCOMPARE(ids(), QByteArrayList({QByteArray(50, 'x'), "", "x", "a.g", ""}));
}

void TstResFormat::aTableHasRoomForItsResourcesOnly()
{
    const quint32 hashes[] = {2, 2, 5};
    QCOMPARE(*res::placed(hashes, 3), std::vector<quint32>({2, 0, 1}));
    QCOMPARE(res::placed(hashes, 2).error(), res::BuildFault::TableFull);
    const std::vector<res::Entry> one{{"a"}};
    QCOMPARE(res::buildHead(Version::Resources, one, 0xFFFFFFFF).error(), res::BuildFault::TooLarge);
}

void TstResFormat::whatIsBuiltIsFound_data()
{
    // prefix: null for random identifiers
    const auto row = columns<int, QByteArray>("count", "prefix");
    for (const int count : {0, 1, 2, 3, 6, 100, 1000})
        QTest::addRow("%d random", count) << count << QByteArray();
    row("one long chain", 3000, "icon_00");
    row("a long chain of long names", 300, QByteArray(300, 'n'));
}

// Asked twice: the walk answers first, and after enough steps the index does.
void TstResFormat::whatIsBuiltIsFound()
{
    QFETCH(int, count);
    QFETCH(QByteArray, prefix);
    std::mt19937 random(unsigned(count) + 1);
    std::vector<std::pair<QByteArray, QByteArray>> resources;
    for (int i = 0; i < count; ++i) {
        QByteArray id = prefix + QByteArray::number(i).rightJustified(4, '0');
        if (prefix.isNull())
            id += QByteArray::number(random() % 1000, 36) + char('\x80' + random() % 100) + ".g";
        resources.emplace_back(id, QByteArray(int(random() % 5), char('a' + i % 26)));
    }
    const QByteArray file = resourceFile(resources);
    const auto index = res::ResIndex::parse(bytesOf(file), Version::Resources);
    QVERIFY(index);
    QCOMPARE(index->slotCount(), quint32(count + count / 3));
    const res::NameIndex names(*index);
    for (int round = 0; round < 2; ++round) {
        for (const auto &[id, content] : resources) {
            QCOMPARE(dataOf(*index, id), content);
            QCOMPARE(names.find(*index, res::hashVal(id), id), index->find(id));
            QCOMPARE(dataOf(*index, QByteArray(id + "\1")), "(none)");
        }
    }
    const auto flaw = res::check(bytesOf(file), Version::Resources);
    QVERIFY2(!flaw, flaw ? qPrintable(flaw->text) : "");
}

QTEST_APPLESS_MAIN(TstResFormat)
#include "tst_resformat.moc"
