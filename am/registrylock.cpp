#include "am/registrylock.h"

#include <array>

namespace am {

namespace {

using platform::SemaphoreSet;

// Where takeRegistry() looked last, also without success.
platform::Result<SemaphoreSet> lastOpened = platform::failed("semop", EINVAL);

platform::Result<> change(const SemaphoreSet &set, short by)
{
    std::array operation{sembuf{0, by, IPC_NOWAIT | SEM_UNDO}};
    return set.apply(operation);
}

platform::Result<SemaphoreSet> openOrMake(key_t key, Report report)
{
    const auto made = SemaphoreSet::open({key, IPC_CREAT | IPC_EXCL | 0777}, 1);
    if (made) {
        if (const auto ready = made->setValue(0, 1); !ready)
            report("sem_initialize error:", ready.error());
        return made;
    }
    report("semget error or sem already exists:", made.error());
    return made.error().number == EEXIST ? SemaphoreSet::open({key, 0}, 1) : made;
}

}

platform::Result<key_t> registryKey(const char *directory)
{
    const auto key = platform::ipcKey(directory, 0);
    if (key && *key == IPC_PRIVATE)
        return platform::failed("ftok", EINVAL);
    return key;
}

bool takeRegistry(Report report)
{
    const char *directory = installedQtDirectory(1);
    if (!directory)
        return false;
    const auto key = registryKey(directory);
    if (!key) {
        report("ftokey error:", key.error());
        return false;
    }
    lastOpened = openOrMake(*key, report);
    if (!lastOpened)
        return false;
    const auto taken = change(*lastOpened, -1);
    if (!taken)
        report("sem_wait error:", taken.error());
    return taken.has_value();
}

bool releaseRegistry(Report report)
{
    if (lastOpened && lastOpened->remove())
        return true;
    // The set is gone, or belongs to another user, who alone may remove it: it stays, free.
    const auto released = lastOpened ? change(*lastOpened, 1) : platform::failed("semop", EINVAL);
    if (!released)
        report("sem_post:", released.error());
    return released.has_value();
}

platform::Result<RegistryState> RegistryState::look(key_t key)
{
    const auto set = SemaphoreSet::open({key, 0}, 0);
    if (!set)
        return tl::make_unexpected(set.error());
    const auto status = set->status();
    if (!status)
        return tl::make_unexpected(status.error());
    const auto value = set->value(0);
    if (!value)
        return tl::make_unexpected(value.error());
    const auto process = set->lastProcess(0);
    if (!process)
        return tl::make_unexpected(process.error());
    return RegistryState{.id = set->id(),
        .semaphores = status->sem_nsems,
        .value = *value,
        .process = *process,
        .wasUsed = status->sem_otime != 0,
        .since = status->sem_ctime};
}

}
