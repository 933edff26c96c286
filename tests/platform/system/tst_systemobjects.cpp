// Descriptors, locks, mappings and System V objects: who releases what, and what a refusal looks like.
#include "platform/system/fd.h"
#include "platform/system/filelock.h"
#include "platform/system/mapping.h"
#include "platform/system/sysv.h"

#include <QFile>
#include <QTest>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace platform;

namespace {

std::span<const std::byte> bytesOf(const char *text) { return std::as_bytes(std::span(text, strlen(text))); }

bool isOpen(int fd) { return ::fcntl(fd, F_GETFD) >= 0; }

int inChild(auto action)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(action());
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}

class TstSystemObjects : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aDescriptorHasOneOwner();
    void aLockExcludesOthersUntilItIsReleased();
    void anEmptyFileIsAnEmptyMapping();
    void segmentsAreSharedAndOutliveTheAttachment();
    void messagesKeepTheirTypeOrderAndBytes();
};

void TstSystemObjects::aDescriptorHasOneOwner()
{
    auto opened = Fd::open("/dev/null", O_RDWR);
    QVERIFY(opened.has_value());
    const int number = opened->get();
    {
        Fd owner = std::move(*opened);
        QVERIFY(!*opened);
        QVERIFY(::fcntl(number, F_GETFD) & FD_CLOEXEC);
        Fd other = Fd::own(::dup(number));
        const int replaced = other.get();
        other = std::move(owner);
        QVERIFY(!isOpen(replaced));
        QVERIFY(isOpen(number));
    }
    QVERIFY(!isOpen(number));
}

void TstSystemObjects::aLockExcludesOthersUntilItIsReleased()
{
    const auto first = Fd::open("/tmp/lock", O_RDWR | O_CREAT, 0600);
    const auto second = Fd::open("/tmp/lock", O_RDONLY);
    QVERIFY(first && second);
    {
        const auto lock = FileLock::exclusive(first->get(), FileLock::Wait::No);
        QVERIFY(lock.has_value());
        const auto refused = FileLock::exclusive(second->get(), FileLock::Wait::No);
        QVERIFY(!refused);
        QCOMPARE(refused.error().number, EWOULDBLOCK);
    }
    QVERIFY(FileLock::exclusive(second->get(), FileLock::Wait::No).has_value());
}

void TstSystemObjects::anEmptyFileIsAnEmptyMapping()
{
    const auto file = Fd::open("/tmp/mapped", O_RDWR | O_CREAT, 0600);
    QVERIFY(file.has_value());
    const auto empty = Mapping::readOnly(file->get());
    QVERIFY(empty && empty->bytes().empty());
}

void TstSystemObjects::segmentsAreSharedAndOutliveTheAttachment()
{
    const auto key = ipcKey("/tmp", 's');
    QVERIFY(key.has_value());
    QVERIFY(!ipcKey("/tmp/absent", 's'));
    const auto id = ShmAttachment::segment({*key, IPC_CREAT | IPC_EXCL | 0600}, 100);
    QVERIFY(id.has_value());
    QCOMPARE(ShmAttachment::segment({*key, IPC_CREAT | IPC_EXCL | 0600}, 100).error().number, EEXIST);
    const int wrote = inChild([&] {
        const auto child = ShmAttachment::attach(*id, ShmAttachment::Access::ReadWrite);
        child->bytes()[99] = std::byte(7);
        return child->bytes().size() == 100 ? 0 : 1;
    });
    QCOMPARE(wrote, 0);
    {
        const auto seen = ShmAttachment::attach(*id, ShmAttachment::Access::ReadOnly);
        QCOMPARE(seen->bytes()[99], std::byte(7));
    }
    QVERIFY(ShmAttachment::remove(*id).has_value());
    QVERIFY(!ShmAttachment::attach(*id, ShmAttachment::Access::ReadOnly));
}

void TstSystemObjects::messagesKeepTheirTypeOrderAndBytes()
{
    const auto queue = MessageQueue::open({IPC_PRIVATE, 0600});
    QVERIFY(queue.has_value());
    QCOMPARE(queue->receive(16).error().number, EAGAIN);
    QVERIFY(queue->send(5, bytesOf("first")).has_value());
    QVERIFY(queue->send(1, {}).has_value());
    QCOMPARE(*queue->pending(), 2U);
    QCOMPARE(queue->receive(2).error().number, E2BIG);
    const auto first = queue->receive(16);
    QCOMPARE(first->type, 5);
    QCOMPARE(first->bytes.size(), 5U);
    QCOMPARE(char(first->bytes[4]), 't');
    QVERIFY(queue->receive(16)->bytes.empty());
    QVERIFY(queue->remove().has_value());
}

QTEST_APPLESS_MAIN(TstSystemObjects)
#include "tst_systemobjects.moc"
