// System V shared memory, semaphores and message queues, keyed by a file as every program of the phone does.
// Objects outlive processes on purpose: no destructor removes one, only the explicit remove calls do.
#pragma once

#include "platform/system/result.h"
#include "platform/tyxexport.h"

#include <chrono>
#include <cstddef>
#include <span>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <sys/shm.h>
#include <utility>
#include <vector>

namespace platform {

// ftok(3): the file must exist. Two programs that name the same file and project id mean the same object.
Result<key_t> ipcKey(const char *file, char project);

// How an object is found: `flags` are those of shmget, semget and msgget (IPC_CREAT, IPC_EXCL and the mode bits).
struct IpcName {
    key_t key;
    int flags;
};

// One attachment of a shared segment; detached with the object.
class TYX_EXPORT ShmAttachment {
public:
    enum class Access { ReadOnly, ReadWrite };

    // Finds (or with IPC_CREAT makes) a segment; its identifier. A size of 0 accepts what is there.
    static Result<int> segment(IpcName name, std::size_t size);
    static Result<ShmAttachment> attach(int id, Access access);
    static Result<shmid_ds> status(int id);
    static Result<> remove(int id); // it is gone once the last process has detached

    ShmAttachment(ShmAttachment &&other) noexcept : m_bytes(std::exchange(other.m_bytes, {})) { }
    ShmAttachment &operator=(ShmAttachment &&other) noexcept
    {
        std::swap(m_bytes, other.m_bytes);
        return *this;
    }
    ~ShmAttachment();

    Result<> detach(); // with the answer that the destructor cannot give
    // As many bytes as the system says the segment has, whoever made it. Valid while this object lives.
    [[nodiscard]] std::span<std::byte> bytes() const { return m_bytes; }

private:
    explicit ShmAttachment(std::span<std::byte> bytes) : m_bytes(bytes) { }

    std::span<std::byte> m_bytes;
};

// shmat(2) for who knows the size, which an attachment has to ask for, and detaches by himself or never.
Result<void *> attachRaw(int id, ShmAttachment::Access access);

// A set of counting semaphores; a plain value, since the set belongs to no process.
class SemaphoreSet {
public:
    static Result<SemaphoreSet> open(IpcName name, int count);

    // All operations or none; EAGAIN where one with IPC_NOWAIT would have to wait. Retried after a signal.
    Result<> apply(std::span<sembuf> operations) const;
    [[nodiscard]] Result<int> value(int index) const;
    [[nodiscard]] Result<pid_t> lastProcess(int index) const; // that changed this semaphore
    Result<> setValue(int index, int value) const;
    [[nodiscard]] Result<semid_ds> status() const;
    Result<> remove() const;
    [[nodiscard]] int id() const { return m_id; }

private:
    explicit SemaphoreSet(int id) : m_id(id) { }

    int m_id;
};

// A message queue; a plain value like the semaphore set.
class MessageQueue {
public:
    struct Message {
        long type;
        std::vector<std::byte> bytes;
    };

    static Result<MessageQueue> open(IpcName name);

    // These never wait: EAGAIN when the queue is full or, on receiving, empty.
    Result<> send(long type, std::span<const std::byte> bytes) const;
    [[nodiscard]] Result<Message> receive(std::size_t maxBytes) const;
    [[nodiscard]] Result<Message> wait(
        std::size_t maxBytes) const; // for one; EIDRM when the queue is removed meanwhile
    [[nodiscard]] Result<std::size_t> pending() const; // messages waiting
    Result<> remove() const;
    [[nodiscard]] int id() const { return m_id; }

private:
    explicit MessageQueue(int id) : m_id(id) { }
    [[nodiscard]] Result<Message> receive(std::size_t maxBytes, int flags) const;

    int m_id;
};

}
