#include "tests/support/testfiles.h"

#include <QFile>
#include <QTest>
#include <QWSApplication>
#include <QtEndian>
#include <ZInputMethodState>
#include <memory>
#include <sys/shm.h>

using namespace Qt::StringLiterals;

namespace {

constexpr char kFile[] = "/tmp/imsstate.shm";
constexpr std::size_t kSize = 1932;

const QUuid kPad(u"{01234567-89ab-cdef-0123-456789abcdef}"_s);
const QUuid kWords(u"{637a8a88-af98-41da-969a-2bd16ecdec10}"_s);

// The segment as another process finds it; null when there is none.
class Segment {
public:
    Segment()
    {
        const int id = ::shmget(::ftok(kFile, 'g'), kSize, 0);
        m_bytes = id == -1 ? nullptr : static_cast<uchar *>(::shmat(id, nullptr, 0));
    }
    ~Segment()
    {
        if (m_bytes)
            ::shmdt(m_bytes);
    }
    Q_DISABLE_COPY_MOVE(Segment)
    [[nodiscard]] bool exists() const { return m_bytes; }
    uchar *operator+(std::size_t offset) { return m_bytes + offset; }

private:
    uchar *m_bytes;
};

}

class TstInputMethodState : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void withoutAServerNothingIsKnown();
    void theServerMakesAndRemovesTheSegment();
    void fieldsAreWhereEverybodyExpectsThem();
    void theListHasRoomForTwelve();
    void hostileBytesReadAsNothing();
    void theContextKeepsWhatIsNearTheCursor();
    void cleanupTestCase()
    {
        m_server.reset();
        m_application.reset();
    }

private:
    std::unique_ptr<QWSApplication> m_application;
    std::unique_ptr<ZInputMethodState> m_server;
};

// Runs first: before there is an application object this is no server.
void TstInputMethodState::withoutAServerNothingIsKnown()
{
    ZInputMethodState state;
    int owner = 7;
    QVERIFY(!state.isConnected());
    QVERIFY(!state.insertItem(kPad, u"Pad"_s, true));
    state.clearIMList();
    state.setCurrentOwner(1, u"x"_s);
    state.setEditContext({u"x"_s}, 0, 0);
    QCOMPARE(state.getInputMethodCount(), -1);
    QCOMPARE(state.getIndexOfCheckedInputMethod(), -1);
    QVERIFY(!state.getCurrentOwner(&owner, nullptr));
    QCOMPARE(owner, 7);
    QVERIFY(state.keyboardFilterEnabled());
    QVERIFY(state.imQuuid(0).isNull() && state.imName(0).isEmpty() && !state.isSystemIM(0) && !state.isSystemIM(13));
    QVERIFY(state.getEditContext().lines().isEmpty());
    QVERIFY(!QFile::exists(QString::fromLatin1(kFile)));
}

void TstInputMethodState::theServerMakesAndRemovesTheSegment()
{
    static char name[] = "tst";
    static char platform[] = "--platform=offscreen";
    static char *arguments[] = {name, platform, nullptr};
    static int count = 2;
    m_application = std::make_unique<QWSApplication>(count, arguments, QWSApplication::GuiServer);
    // What a dead server left behind: another key, or the same one with old contents.
    fill(QString::fromLatin1(kFile), "");
    const int left = ::shmget(::ftok(kFile, 'g'), kSize, IPC_CREAT | 0600);
    auto server = std::make_unique<ZInputMethodState>();
    QVERIFY(server->isConnected());
    QVERIFY(left != -1);
    shmid_ds status{};
    QCOMPARE(::shmctl(left, IPC_STAT, &status), -1);
    QCOMPARE(QFile::permissions(QString::fromLatin1(kFile)) & QFile::WriteOther, QFile::WriteOther);
    {
        ZInputMethodState guest; // of the same process: neither clears nor removes what the server has
        QVERIFY(guest.insertItem(kPad, u"Pad"_s, true));
    }
    QCOMPARE(server->getInputMethodCount(), 1);
    server.reset();
    QVERIFY(!Segment().exists());
    QVERIFY(!QFile::exists(QString::fromLatin1(kFile)));

    // For the tests that follow, as a client of it.
    m_server = std::make_unique<ZInputMethodState>();
    QVERIFY(m_server->isConnected());
    QCOMPARE(m_server->getInputMethodCount(), 0);
}

void TstInputMethodState::fieldsAreWhereEverybodyExpectsThem()
{
    ZInputMethodState &state = *m_server;
    Segment segment;
    QVERIFY(segment.exists());
    QCOMPARE(qFromLittleEndian<qint16>(segment + 816), qint16(-1));
    QCOMPARE(*(segment + 1928), uchar(1));
    QVERIFY(state.insertItem(kPad, u"Pad"_s, false));
    QVERIFY(state.insertItem(kWords, u"W\u00f6rter"_s, true));
    state.setIndexOfCheckedInputMethod(kWords);
    state.setCurrentOwner(-5, u"notes"_s);
    state.setEditCursor({-3, 300});
    state.enableKeyboardFilter(false);
    QCOMPARE(QByteArray(reinterpret_cast<char *>(segment + 68), 4), QByteArray("\x88\x8a\x7a\x63"));
    QCOMPARE(QByteArray(reinterpret_cast<char *>(segment + 68 + 16)), QByteArray("W\xc3\xb6rter"));
    QCOMPARE(*(segment + 68 + 66), uchar(1));
    QCOMPARE(qFromLittleEndian<qint16>(segment + 816), qint16(1));
    QCOMPARE(qFromLittleEndian<qint16>(segment + 818), qint16(2));
    QCOMPARE(qFromLittleEndian<qint32>(segment + 820), -5);
    QCOMPARE(QByteArray(reinterpret_cast<char *>(segment + 824)), QByteArray("notes"));
    QCOMPARE(qFromLittleEndian<qint16>(segment + 1924), qint16(-3));
    QCOMPARE(qFromLittleEndian<qint16>(segment + 1926), qint16(300));
    QCOMPARE(*(segment + 1928), uchar(0));

    ZInputMethodState other;
    QCOMPARE(other.findInputMethod(kWords), 1);
    QCOMPARE(other.findInputMethod(u"Pad"_s), 0);
    QCOMPARE(other.findInputMethod(QUuid()), -1);
    QCOMPARE(other.imQuuid(1), kWords);
    QCOMPARE(other.imName(1), u"W\u00f6rter"_s);
    QCOMPARE(other.getIMList(true).keys(), QList<QUuid>{kWords});
    QCOMPARE(other.getIMList(false).size(), 2);
    QCOMPARE(other.editCursor(), QPoint(-3, 300));
    QVERIFY(!other.keyboardFilterEnabled());
    other.setIndexOfCheckedInputMethod(QUuid());
    QCOMPARE(state.getIndexOfCheckedInputMethod(), -1);
}

void TstInputMethodState::theListHasRoomForTwelve()
{
    ZInputMethodState &state = *m_server;
    state.clearIMList();
    const QString longName = QString(24, u'\u00f6') + u"\u20ac\u20ac"_s; // 48 bytes, then three at a time
    for (int i = 0; i < 12; ++i)
        QVERIFY(state.insertItem(QUuid::createUuid(), longName, false));
    QVERIFY(!state.insertItem(kPad, u"Pad"_s, true));
    QCOMPARE(state.getInputMethodCount(), 12);
    QCOMPARE(state.imName(11), QString(24, u'\u00f6'));
    // Promised: index 12 reads what lies behind the table, here the name of the owner from its ninth byte on.
    state.setCurrentOwner(1, u"123456789behind"_s);
    QCOMPARE(state.imName(12), u"9behind"_s);
    QVERIFY(!state.isSystemIM(12));
    for (const int outside : {-1, 13}) {
        QVERIFY(state.imQuuid(outside).isNull());
        QVERIFY(state.imName(outside).isEmpty());
        QVERIFY(state.isSystemIM(outside));
    }
}

void TstInputMethodState::hostileBytesReadAsNothing()
{
    Segment segment;
    for (const int filler : {0xFF, 0x7F, 0x01}) {
        memset(segment + 0, filler, kSize);
        const ZInputMethodState state;
        QVERIFY(state.getIMList(false).size() <= 12);
        QCOMPARE(state.findInputMethod(kPad), -1);
        QVERIFY(state.imName(12).size() <= 50);
        QString owner;
        QVERIFY(state.getCurrentOwner(nullptr, &owner));
        QVERIFY(owner.size() <= 100);
        const ZInputMethodEditContext read = state.getEditContext();
        QVERIFY(read.lines().size() <= 500);
        QVERIFY(read.cursorPosition() <= read.line(read.cursorLine()).size());
    }
}

void TstInputMethodState::theContextKeepsWhatIsNearTheCursor()
{
    const auto kept = [this](const QStringList &lines, int line, int position) {
        m_server->setEditContext(lines, line, position);
        const ZInputMethodEditContext context = ZInputMethodState().getEditContext();
        return context.lines()
            + QStringList{QString::number(context.cursorLine()), QString::number(context.cursorPosition())};
    };
    const QString x(600, u'x');
    const QString pairs = u"\U0001F600"_s.repeated(300);
    const QStringList two{u"a"_s, u"bc"_s};
    QCOMPARE(kept({}, 3, 3), (QStringList{u"0"_s, u"0"_s}));
    QCOMPARE(kept(two, 1, 2), two + QStringList({u"1"_s, u"2"_s}));
    QCOMPARE(kept(two, 9, 9), two + QStringList({u"1"_s, u"2"_s}));
    QCOMPARE(kept(two, -1, -1), two + QStringList({u"0"_s, u"0"_s}));
    QCOMPARE(kept({x}, 0, 600), (QStringList{x.first(496), u"0"_s, u"496"_s}));
    QCOMPARE(kept({x}, 0, 300), (QStringList{x.first(496), u"0"_s, u"248"_s}));
    QCOMPARE(kept({pairs}, 0, 301), (QStringList{pairs.first(494), u"0"_s, u"247"_s}));
    QCOMPARE(kept({x, u"near"_s, u"here"_s, x}, 2, 4), (QStringList{u"near"_s, u"here"_s, u"1"_s, u"4"_s}));
}

QTEST_APPLESS_MAIN(TstInputMethodState)
#include "tst_inputmethodstate.moc"
