// Where the socket of the bus is, who may use it, and what is done about one that is left over.
#include "platform/bus/busaddress.h"
#include "tests/support/testfiles.h"

#include <QDir>
#include <grp.h>
#include <unistd.h>

using namespace platform::bus;

class TstBusAddress : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void folderUnderTmpIsOursAlone();
    void givenFolderIsTakenUnlessAnybodyMayWriteThere();
    void socketHasThePermissionsItPromises();
    void deadSocketIsReplacedAndALiveOneIsNot();
    void groupMustExist();
};

namespace {

const QByteArray kSocket = "/tmp/place/bus";

mode_t modeOf(const QByteArray &path) { return ::modeOf(QFile::decodeName(path)); }

int errorOf(const platform::Result<QByteArray> &result) { return result ? 0 : result.error().number; }
int errorOf(const platform::Result<Listener> &result) { return result ? 0 : result.error().number; }

}

void TstBusAddress::init()
{
    QDir(QStringLiteral("/tmp/place")).removeRecursively();
    QVERIFY(QDir().mkpath(QStringLiteral("/tmp/place")));
}

void TstBusAddress::folderUnderTmpIsOursAlone()
{
    qunsetenv("XDG_RUNTIME_DIR");
    const QByteArray folder = "/tmp/tyx-" + QByteArray::number(getuid());
    QCOMPARE(errorOf(standardSocket()), ENOENT);
    QCOMPARE(makeStandardSocket().value(), folder + "/tyx-bus");
    QCOMPARE(modeOf(folder), mode_t(S_IFDIR | 0700));
    QCOMPARE(standardSocket().value(), folder + "/tyx-bus");
    QCOMPARE(makeStandardSocket().value(), folder + "/tyx-bus");

    QCOMPARE(chmod(folder.constData(), 0755), 0);
    QCOMPARE(errorOf(standardSocket()), EPERM);
    QCOMPARE(errorOf(makeStandardSocket()), EPERM);
    QCOMPARE(rmdir(folder.constData()), 0);
    QCOMPARE(symlink("/tmp/run", folder.constData()), 0);
    QCOMPARE(errorOf(standardSocket()), EPERM);
    QCOMPARE(unlink(folder.constData()), 0);
}

void TstBusAddress::givenFolderIsTakenUnlessAnybodyMayWriteThere()
{
    qputenv("XDG_RUNTIME_DIR", "/tmp/place");
    QCOMPARE(makeStandardSocket().value(), "/tmp/place/tyx-bus");
    qputenv("XDG_RUNTIME_DIR", "/tmp");
    QCOMPARE(errorOf(makeStandardSocket()), EPERM);
    qputenv("XDG_RUNTIME_DIR", "/tmp/place");
    QCOMPARE(chmod("/tmp/place", 0770), 0);
    QCOMPARE(errorOf(makeStandardSocket()), EPERM);
    QVERIFY(makeStandardSocket(true));
    QCOMPARE(chmod("/tmp/place", 0700), 0);
    QVERIFY(QDir::setCurrent(QStringLiteral("/tmp")));
    qputenv("XDG_RUNTIME_DIR", "place");
    QCOMPARE(errorOf(standardSocket()), EINVAL);
    qputenv("XDG_RUNTIME_DIR", "/tmp/place/absent");
    QCOMPARE(errorOf(makeStandardSocket()), ENOENT);
    QVERIFY(!QFile::exists(QStringLiteral("/tmp/place/absent")));
    QCOMPARE(errorOf(listenAt("/tmp/place/" + QByteArray(120, 'x'), {})), ENAMETOOLONG);
}

void TstBusAddress::socketHasThePermissionsItPromises()
{
    const mode_t mask = umask(0);
    {
        const auto closed = listenAt(kSocket, {});
        QVERIFY(closed);
        QCOMPARE(modeOf(kSocket), mode_t(S_IFSOCK | 0600));
    }
    const group *own = getgrgid(getgid());
    QVERIFY(own != nullptr);
    const auto shared = listenAt(kSocket, own->gr_name);
    QVERIFY(shared);
    QCOMPARE(modeOf(kSocket), mode_t(S_IFSOCK | 0660));
    umask(mask);
}

void TstBusAddress::deadSocketIsReplacedAndALiveOneIsNot()
{
    {
        auto dead = listenAt(kSocket, {}); // leaves its socket behind, as after a crash
        QVERIFY(dead);
        QVERIFY(connectTo(kSocket));
        QCOMPARE(errorOf(listenAt(kSocket, {})), EADDRINUSE);
        QVERIFY(connectTo(kSocket));
    }
    QVERIFY(!connectTo(kSocket));
    const auto alive = listenAt(kSocket, {});
    QVERIFY(alive);
    QVERIFY(connectTo(kSocket));
}

void TstBusAddress::groupMustExist()
{
    QCOMPARE(errorOf(listenAt(kSocket, "no-such-group")), ENOENT);
    QVERIFY(!QFile::exists(QString::fromLatin1(kSocket)));
    QVERIFY(listenAt(kSocket, {})); // and nothing of the attempt is in the way
}

QTEST_GUILESS_MAIN(TstBusAddress)
#include "tst_busaddress.moc"
