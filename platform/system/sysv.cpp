#include "platform/system/sysv.h"

#include <cstring>
#include <sys/msg.h>
#include <sys/shm.h>

namespace platform {

namespace {

// semctl(2) leaves declaring its fourth argument to the caller.
union SemaphoreArgument {
    int val;
    semid_ds *buf;
};

// What msgsnd(2) and msgrcv(2) read and write: the type, then the bytes.
std::vector<std::byte> messageBuffer(std::size_t size) { return std::vector<std::byte>(sizeof(long) + size); }

}

Result<key_t> ipcKey(const char *file, char project)
{
    const key_t key = ::ftok(file, project);
    if (key == -1)
        return failed("ftok");
    return key;
}

Result<int> ShmAttachment::segment(IpcName name, std::size_t size)
{
    const int id = ::shmget(name.key, size, name.flags);
    if (id < 0)
        return failed("shmget");
    return id;
}

Result<ShmAttachment> ShmAttachment::attach(int id, Access access)
{
    const auto address = attachRaw(id, access);
    if (!address)
        return tl::make_unexpected(address.error());
    ShmAttachment attachment(std::span(static_cast<std::byte *>(*address), 1));
    const auto known = status(id);
    if (!known)
        return tl::make_unexpected(known.error());
    attachment.m_bytes = std::span(attachment.m_bytes.data(), known->shm_segsz);
    return attachment;
}

Result<shmid_ds> ShmAttachment::status(int id)
{
    shmid_ds status = {};
    if (::shmctl(id, IPC_STAT, &status) != 0)
        return failed("shmctl");
    return status;
}

Result<> ShmAttachment::remove(int id)
{
    if (::shmctl(id, IPC_RMID, nullptr) != 0)
        return failed("shmctl");
    return {};
}

Result<> ShmAttachment::detach()
{
    if (::shmdt(std::exchange(m_bytes, {}).data()) != 0)
        return failed("shmdt");
    return {};
}

ShmAttachment::~ShmAttachment()
{
    if (!m_bytes.empty())
        ::shmdt(m_bytes.data());
}

Result<void *> attachRaw(int id, ShmAttachment::Access access)
{
    void *address = ::shmat(id, nullptr, access == ShmAttachment::Access::ReadOnly ? SHM_RDONLY : 0);
    if (address == reinterpret_cast<void *>(-1)) // NOLINT(performance-no-int-to-ptr): shmat's own answer
        return failed("shmat");
    return address;
}

Result<SemaphoreSet> SemaphoreSet::open(IpcName name, int count)
{
    const int id = ::semget(name.key, count, name.flags);
    if (id < 0)
        return failed("semget");
    return SemaphoreSet(id);
}

Result<> SemaphoreSet::apply(std::span<sembuf> operations) const
{
    while (::semop(m_id, operations.data(), operations.size()) != 0) {
        if (errno != EINTR)
            return failed("semop");
    }
    return {};
}

Result<int> SemaphoreSet::value(int index) const
{
    const int value = ::semctl(m_id, index, GETVAL);
    if (value < 0)
        return failed("semctl");
    return value;
}

Result<pid_t> SemaphoreSet::lastProcess(int index) const
{
    const pid_t pid = ::semctl(m_id, index, GETPID);
    if (pid < 0)
        return failed("semctl");
    return pid;
}

Result<> SemaphoreSet::setValue(int index, int value) const
{
    if (::semctl(m_id, index, SETVAL, SemaphoreArgument{value}) != 0)
        return failed("semctl");
    return {};
}

Result<semid_ds> SemaphoreSet::status() const
{
    semid_ds status = {};
    SemaphoreArgument argument = {};
    argument.buf = &status;
    if (::semctl(m_id, 0, IPC_STAT, argument) != 0)
        return failed("semctl");
    return status;
}

Result<> SemaphoreSet::remove() const
{
    if (::semctl(m_id, 0, IPC_RMID) != 0)
        return failed("semctl");
    return {};
}

Result<MessageQueue> MessageQueue::open(IpcName name)
{
    const int id = ::msgget(name.key, name.flags);
    if (id < 0)
        return failed("msgget");
    return MessageQueue(id);
}

Result<> MessageQueue::send(long type, std::span<const std::byte> bytes) const
{
    std::vector<std::byte> buffer = messageBuffer(bytes.size());
    std::memcpy(buffer.data(), &type, sizeof type);
    if (!bytes.empty())
        std::memcpy(buffer.data() + sizeof type, bytes.data(), bytes.size());
    while (::msgsnd(m_id, buffer.data(), bytes.size(), IPC_NOWAIT) != 0) {
        if (errno != EINTR)
            return failed("msgsnd");
    }
    return {};
}

Result<MessageQueue::Message> MessageQueue::receive(std::size_t maxBytes) const
{
    return receive(maxBytes, IPC_NOWAIT);
}

Result<MessageQueue::Message> MessageQueue::wait(std::size_t maxBytes) const { return receive(maxBytes, 0); }

Result<MessageQueue::Message> MessageQueue::receive(std::size_t maxBytes, int flags) const
{
    std::vector<std::byte> buffer = messageBuffer(maxBytes);
    ssize_t size = -1;
    while ((size = ::msgrcv(m_id, buffer.data(), maxBytes, 0, flags)) < 0) {
        if (errno != EINTR)
            return failed("msgrcv", errno == ENOMSG ? EAGAIN : errno);
    }
    Message message = {};
    std::memcpy(&message.type, buffer.data(), sizeof message.type);
    const auto first = buffer.begin() + static_cast<std::ptrdiff_t>(sizeof(long));
    message.bytes.assign(first, first + size);
    return message;
}

Result<std::size_t> MessageQueue::pending() const
{
    msqid_ds status = {};
    if (::msgctl(m_id, IPC_STAT, &status) != 0)
        return failed("msgctl");
    return status.msg_qnum;
}

Result<> MessageQueue::remove() const
{
    if (::msgctl(m_id, IPC_RMID, nullptr) != 0)
        return failed("msgctl");
    return {};
}

}
