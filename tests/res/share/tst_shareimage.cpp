// One image in several processes; segments and lock files that others spoil.
#include "tests/support/standarderror.h"
#include "tests/support/testfiles.h"

#include <QBitmap>
#include <QBuffer>
#include <QPainter>
#include <QPixmap>
#include <QtEndian>
#include <UTIL_ShareImage>
#include <array>
#include <cerrno>
#include <csignal>
#include <optional>
#include <sys/mman.h>
#include <sys/shm.h>
#include <sys/wait.h>

using namespace Qt::StringLiterals;

namespace {

const QString kName = QStringLiteral("T");
constexpr char kLockFile[] = "/tmp/UTIL_ShareImage_T";

int segmentId(std::size_t size = 0, int flags = 0) { return ::shmget(::ftok(kLockFile, 0x5A), size, flags); }

shmid_ds segmentStatus()
{
    shmid_ds status = {};
    ::shmctl(segmentId(), IPC_STAT, &status);
    return status;
}

// A segment that nobody has stored an image in, but for these bytes.
void makeSegment(std::size_t size, const QByteArray &bytes = {})
{
    ::close(::open(kLockFile, O_CREAT | O_CLOEXEC, 0666));
    void *segment = ::shmat(segmentId(size, IPC_CREAT | 0666), nullptr, 0);
    ::memcpy(segment, bytes.constData(), std::min(std::size_t(bytes.size()), size));
    ::shmdt(segment);
}

void removeAll()
{
    ::shmctl(segmentId(), IPC_RMID, nullptr);
    run(u"/bin/rm"_s, {u"-rf"_s, QString::fromLatin1(kLockFile), u"/tmp/target"_s});
}

// One pixel is transparent, the others have the colour.
QByteArray png(const QSize &size, QColor color)
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(color);
    image.setPixelColor(0, 0, color.alpha() == 255 ? color : Qt::transparent);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    return image.save(&buffer, "PNG") ? bytes : QByteArray();
}

bool create(UTIL_ShareImage &shared, const QByteArray &bytes)
{
    return shared.create(bytes.constData(), unsigned(bytes.size()));
}

bool set(UTIL_ShareImage &shared, const QByteArray &bytes)
{
    return shared.set(bytes.constData(), unsigned(bytes.size()));
}

// The answer of what is done, and what is printed on standard error meanwhile; "* " stands for the class.
QByteArray told(const auto &action)
{
    const StandardError error;
    const bool answer = action();
    return (answer ? "true\n" : "false\n") + StandardError::text().replace("UTIL_ShareImage::", "* ");
}

// Another process; its exit status is 0 for true.
pid_t startChild(const auto &action)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(action() ? 0 : 1);
    return child;
}

int statusOf(pid_t child)
{
    int status = -1;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) { } // the toolkit may be told of children by a signal
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// The type of lock that another process finds in its way.
int lockSeenByOthers()
{
    return statusOf(startChild([]() -> bool {
        struct flock lock = {};
        lock.l_type = F_WRLCK;
        ::fcntl(::open(kLockFile, O_RDWR | O_CLOEXEC), F_GETLK, &lock);
        ::_exit(lock.l_type);
    }));
}

QRgb pixel(const QPixmap &pixmap) { return pixmap.toImage().pixel(1, 1); }

}

class TstShareImage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_quiet.emplace(); }
    void cleanup()
    {
        m_quiet.reset();
        removeAll();
    }
    void statesAndMessages();
    void pixmapsUseTheSegmentItself();
    void theSegmentHasTheAgreedBytes();
    void brokenSegmentsAreRefused();
    void anotherImageInTheSameSegment();
    void whatIsNoImageChangesNothing();
    void whatLiesAtTheLockFile();
    void processesAtOnceAndKilled();
    void aHalfStoredImageIsRefused();

private:
    std::optional<StandardError> m_quiet;
};

void TstShareImage::statesAndMessages()
{
    std::optional<UTIL_ShareImage> shared;
    QPixmap pixmap(3, 3);
    const QByteArray image = png({4, 4}, Qt::red);
    const auto made = [&] {
        shared.emplace(kName);
        return true;
    };
    const auto lock = [&] { return shared->lock(); };
    const auto unlock = [&] { return shared->unlock(); };
    const auto exists = [&] { return shared->exists(); };
    const auto get = [&] { return shared->getImage(pixmap); };
    const auto destroy = [&] { return shared->destroy(); };
    const mode_t mask = ::umask(0077);
    QCOMPARE(told(made), "true\n* constructor error: shmget failed: No such file or directory\n");
    QCOMPARE(::umask(mask), mode_t(0077));
    QCOMPARE(modeOf(QString::fromLatin1(kLockFile)), mode_t(S_IFREG | 0666));
    QCOMPARE(told(exists), "false\n* shared memory does not exist\n");
    QCOMPARE(told(get), "true\n");
    QCOMPARE(pixmap.width(), 3);
    QCOMPARE(told(unlock), "false\n* unlock() error: not holding lock\n");
    QCOMPARE(told([&] { return set(*shared, image); }), "false\n* set() error: not attached to a pixmap\n");
    QVERIFY(lock() && lock()); // beside the one that set() left
    for (const int seen : {F_RDLCK, F_RDLCK, F_UNLCK}) {
        QCOMPARE(told(unlock), "true\n");
        QCOMPARE(lockSeenByOthers(), seen);
    }
    QCOMPARE(told([&] { return create(*shared, image); }),
        "true\nCreate new shared memory\n* setData() reset the new skin contents\n");
    QCOMPARE(segmentStatus().shm_perm.mode & 0777, 0666);
    QCOMPARE(told(exists), "true\n");
    QCOMPARE(told([&] { return set(*shared, image); }), "true\n* setData() reset the new skin contents\n");
    QCOMPARE(told(get), "true\n");
    QCOMPARE(pixmap.size(), QSize(4, 4));
    QCOMPARE(told([&] {
        return create(*shared, png({5, 5}, Qt::red));
    }),
        "false\nCreate new shared memory\n* create() error: shmget failed: Invalid argument\n");
    QCOMPARE(lockSeenByOthers(), F_UNLCK);
    QCOMPARE(told(destroy), "true\n* destroy()\n* destroy() : data detched\n");
    QCOMPARE(told(exists), "false\n* shared memory does not exist\n");
    QCOMPARE(told(destroy), "true\n* destroy()\n");
    QCOMPARE(told(made), "true\n* destroy()\n");
    QCOMPARE(told(exists), "true\n");
}

void TstShareImage::pixmapsUseTheSegmentItself()
{
    const QColor colors[] = {QColor(200, 0, 0, 128), QColor(0, 0, 200, 128)};
    std::optional<UTIL_ShareImage> shared(kName);
    QPixmap pixmap;
    QBitmap mask;
    QVERIFY(create(*shared, png({40, 30}, colors[0])) && shared->getImage(pixmap) && shared->getMask(mask));
    QCOMPARE(pixel(pixmap), qPremultiply(colors[0].rgba()));
    QVERIFY(mask.isQBitmap() && mask.toImage().pixelIndex(1, 1) == 1 && mask.toImage().pixelIndex(0, 0) == 0);
    QCOMPARE(statusOf(startChild([&] {
        UTIL_ShareImage theirs(kName);
        return set(theirs, png({40, 30}, colors[1]));
    })),
        0);
    QCOMPARE(pixel(pixmap), qPremultiply(colors[1].rgba()));
    auto *bytes = static_cast<char *>(::shmat(segmentId(), nullptr, 0));
    constexpr std::size_t kMask = std::size_t{30} * 8; // rows of 40 bits, padded to words
    ::memset(bytes + 28, 0xFF, std::size_t{40} * 30 * 4);
    ::memset(bytes + segmentStatus().shm_segsz - kMask, 0, kMask);
    ::shmdt(bytes);
    QCOMPARE(pixel(pixmap), qRgb(255, 255, 255));
    QCOMPARE(mask.toImage().pixelIndex(1, 1), 0);

    QPixmap painted = pixmap;
    QPainter(&painted).fillRect(painted.rect(), Qt::green); // on pixels of its own
    QVERIFY(pixel(painted) == qRgb(0, 255, 0) && pixel(pixmap) == qRgb(255, 255, 255));

    // The segment stays as long as it is in use, and no longer.
    shared.reset();
    QCOMPARE(segmentStatus().shm_nattch, shmatt_t(1));
    QCOMPARE(pixel(std::exchange(pixmap, QPixmap())), qRgb(255, 255, 255));
    QCOMPARE(std::exchange(mask, QBitmap()).toImage().pixelIndex(1, 1), 0);
    QCOMPARE(segmentStatus().shm_nattch, shmatt_t(0));
}

void TstShareImage::theSegmentHasTheAgreedBytes()
{
    const QByteArray row32 = QByteArray("5a3c1eff").repeated(3);
    const struct {
        QImage::Format format;
        bool masked;
        QByteArray bytes; // behind magic, width and height
    } cases[] = {
        {QImage::Format_RGB32, false, "200000000c0000000000000000000000" + row32 + row32},
        {QImage::Format_ARGB32_Premultiplied, true,
            "200000000c0000000800000004000000" + row32 + row32 + "0500000005000000"},
        // Padding of rows is room only: none lies between them, all of it behind the last one.
        {QImage::Format_RGB16, false, "10000000060000000000000000000000eb19eb19eb19eb19eb19eb1900000000"},
    };
    for (const auto &[format, masked, bytes] : cases) {
        makeSegment(std::size_t(12 + bytes.size() / 2));
        UTIL_ShareImage shared(kName);
        QImage image(3, 2, format);
        image.fill(QColor(30, 60, 90));
        QImage bits(3, 2, QImage::Format_MonoLSB);
        bits.setColorTable({0xFFFFFFFF, 0xFF000000});
        bits.scanLine(0)[0] = bits.scanLine(1)[0] = 5;
        shared.setData(
            QPixmap::fromImage(image, Qt::NoFormatConversion), masked ? QBitmap::fromImage(bits) : QBitmap());
        const auto *segment = static_cast<const char *>(::shmat(segmentId(), nullptr, 0));
        QCOMPARE(QByteArray(segment, 12 + bytes.size() / 2).toHex(), "aabacada0300000002000000" + bytes);
        ::shmdt(segment);
        QPixmap pixmap;
        QBitmap mask(9, 9);
        QVERIFY(shared.getImage(pixmap) && shared.getMask(mask));
        QCOMPARE(pixmap.toImage(), image); // format included
        QCOMPARE(mask.isNull(), !masked);
        removeAll();
    }
}

void TstShareImage::brokenSegmentsAreRefused()
{
    std::vector<std::array<int, 3>> cases = {{1, 0, 0}, {108, 0, 1}, {27, 0, int(0xDACABAAA)}, {107, 1, 4}};
    for (const int value : {0, -1, 5, 1 << 30, INT_MIN, INT_MAX}) {
        for (int word = 1; word < 7; ++word) {
            if (word != 5 || value != 0) // 0 says that there is no mask
                cases.push_back({108, word, value});
        }
    }
    for (const auto &[size, word, value] : cases) {
        qint32 header[] = {qint32(0xDACABAAA), 4, 4, 32, 16, 16, 4}; // what fits into 108 bytes
        header[word] = value;
        for (qint32 &each : header)
            each = qToLittleEndian(each);
        makeSegment(std::size_t(size), QByteArray(reinterpret_cast<const char *>(header), sizeof header));
        UTIL_ShareImage shared(kName);
        QPixmap pixmap(1, 1);
        QBitmap mask(1, 1);
        QCOMPARE(told([&] { return shared.getImage(pixmap); }), "false\n* attach() error: check failed\n");
        QVERIFY(shared.getMask(mask) && pixmap.width() == 1 && mask.width() == 1);
        QCOMPARE(lockSeenByOthers(), F_UNLCK);
        QVERIFY(set(shared, png({4, 4}, Qt::blue))); // which mends it where it fits
        QCOMPARE(shared.getImage(pixmap), size > 28);
        removeAll();
    }
}

void TstShareImage::anotherImageInTheSameSegment()
{
    UTIL_ShareImage shared(kName);
    QVERIFY(create(shared, png({8, 8}, Qt::red)));
    QPixmap before;
    QVERIFY(shared.getImage(before));
    for (const QSize size : {QSize(8, 8), QSize(5, 3), QSize(4, 16), QSize(8, 9), QSize(500, 500)}) {
        QVERIFY(set(shared, png({8, 8}, Qt::red)));
        QVERIFY(set(shared, png(size, Qt::blue)));
        QVERIFY(before.size() == QSize(8, 8) && pixel(before) == qRgb(0, 0, 255));
        QPixmap after(1, 1);
        const bool fits = size.width() * size.height() <= 64;
        QCOMPARE(shared.getImage(after), fits);
        QCOMPARE(after.size(), fits ? size : QSize(1, 1));
    }
}

void TstShareImage::whatIsNoImageChangesNothing()
{
    const QByteArray inputs[] = {
        QByteArray(), QByteArray(1000, 'x'), png({40, 40}, Qt::blue).left(40), "P6 100000 100000 255\n"};
    for (const QByteArray &bytes : inputs) {
        UTIL_ShareImage shared(kName);
        QVERIFY(!told([&] { return create(shared, bytes); }).contains("* ")); // the decoder may print
        QCOMPARE(segmentId(), -1);
        QVERIFY(create(shared, png({4, 4}, Qt::red)));
        QCOMPARE(told([&] { return set(shared, bytes); }).left(6), "false\n");
        QCOMPARE(lockSeenByOthers(), F_UNLCK);
        QPixmap pixmap;
        QVERIFY(shared.getImage(pixmap) && pixel(pixmap) == qRgb(255, 0, 0));
        removeAll();
    }
}

void TstShareImage::whatLiesAtTheLockFile()
{
    for (const char *command : {"ln -s /tmp/target", "touch /tmp/target; ln -s /tmp/target", "mkdir", "mkfifo"}) {
        QCOMPARE(
            run(u"/bin/sh"_s, {u"-c"_s, QString::fromLatin1(command) + u' ' + QLatin1String(kLockFile)}).status, 0);
        const bool exists = QFile::exists(QString::fromLatin1(kLockFile));
        QVERIFY(!exists || segmentId(1000, IPC_CREAT | 0666) >= 0); // under the key of what a link names
        std::optional<UTIL_ShareImage> shared;
        QCOMPARE(told([&] {
            shared.emplace(kName);
            return true;
        }),
            "true\n* UTIL_ShareImage() error opening image file\n* constructor error: shmget failed: Invalid "
            "argument\n");
        QCOMPARE(QFile::exists(QString::fromLatin1(kLockFile)), exists);
        QPixmap pixmap;
        QCOMPARE(told([&] { return shared->getImage(pixmap); }),
            "false\n* unlock() error: fd not valid\n* attach() error: lock failed\n* unlock() error: not holding "
            "lock\n");
        QCOMPARE(told([&] {
            return create(*shared, png({4, 4}, Qt::red));
        }),
            "false\n* unlock() error: fd not valid\n* create() error: lock failed\n");
        removeAll();
    }
}

// Eight create the same image while somebody locks the file for writing; all go on when he is killed.
void TstShareImage::processesAtOnceAndKilled()
{
    const QByteArray image = png({200, 100}, QColor(0, 200, 0, 99));
    makeSegment(28 + 200 * 100 * 4 + 28 * 100);
    int ready[2] = {-1, -1};
    QCOMPARE(::pipe2(ready, O_CLOEXEC), 0);
    const pid_t holder = startChild([&] {
        struct flock lock = {};
        lock.l_type = F_WRLCK;
        const int fd = ::open(kLockFile, O_RDWR | O_CLOEXEC);
        if (::fcntl(fd, F_SETLK, &lock) == 0 && ::write(ready[1], "x", 1) == 1)
            ::pause();
        return false;
    });
    char byte = 0;
    QCOMPARE(::read(ready[0], &byte, 1), ssize_t(1));
    std::array<pid_t, 8> children{};
    for (pid_t &child : children)
        child = startChild([&] {
            UTIL_ShareImage theirs(kName);
            return ::write(ready[1], "x", 1) == 1 && create(theirs, image);
        });
    for (int i = 0; i < 8; ++i)
        QCOMPARE(::read(ready[0], &byte, 1), ssize_t(1));
    UTIL_ShareImage shared(kName);
    QVERIFY(QTest::qWaitFor([&] { // until all of them wait for the lock
        return std::all_of(children.begin(), children.end(),
            [](pid_t child) { return content(u"/proc/%1/stat"_s.arg(child)).contains(") S "); });
    }));
    ::kill(holder, SIGKILL);
    QCOMPARE(statusOf(holder), -1);
    for (const pid_t child : children)
        QCOMPARE(statusOf(child), 0);
    QPixmap pixmap;
    QVERIFY(shared.getImage(pixmap));
    QCOMPARE(pixmap.toImage(), QImage::fromData(image).convertToFormat(QImage::Format_ARGB32_Premultiplied));
    ::close(ready[0]);
    ::close(ready[1]);
}

// A process that dies while it copies rows: the source is memory that may not be read.
void TstShareImage::aHalfStoredImageIsRefused()
{
    UTIL_ShareImage shared(kName);
    QPixmap pixmap;
    QVERIFY(create(shared, png({64, 64}, Qt::red)) && shared.getImage(pixmap));
    QVERIFY(statusOf(startChild([&] {
        constexpr std::size_t kRows = std::size_t{64} * 64 * 4;
        void *rows = ::mmap(nullptr, kRows, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        const QImage unreadable(static_cast<const uchar *>(rows), 64, 64, QImage::Format_RGB32);
        const QPixmap source = QPixmap::fromImage(unreadable, Qt::NoFormatConversion);
        ::mprotect(rows, kRows, PROT_NONE);
        ::signal(SIGSEGV, SIG_DFL);
        shared.setData(source, QBitmap());
        return true;
    })) != 0);
    QVERIFY(!shared.getImage(pixmap) && set(shared, png({64, 64}, Qt::red)) && shared.getImage(pixmap));
    shared.setData(pixmap, QBitmap()); // onto itself
    QVERIFY(shared.getImage(pixmap) && pixel(pixmap) == qRgb(255, 0, 0));
}

QTEST_MAIN(TstShareImage)
#include "tst_shareimage.moc"
