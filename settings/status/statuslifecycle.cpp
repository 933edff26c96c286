// Making, initialising and removing the tables.
#include "platform/system/fatal.h"
#include "platform/system/sysv.h"
#include "settings/status/statusboard.h"
#include "settings/status/statustable.h"
#include "settings/status/switchprobe.h"
#include "settings/status/systemstatus.h"

#include <cstdio>
#include <cstring>
#include <sys/shm.h>

using namespace status;

namespace {

constexpr int kCreateFlags = IPC_CREAT | 0777;
// Promised: decimal on purpose (octal 01232). It contains the create bit, so that a lookup makes the table too.
constexpr int kApplicationManagerFlags = 666;
constexpr char kApplicationManagerProject = 'n';

constexpr auto kAccess = platform::ShmAttachment::Access::ReadWrite;

// What the creating process remembers of a table, even after its release.
struct Owned {
    key_t key = -1;
    int id = -1;
    void *address = nullptr; // null also where it could not be attached
    bool released = false; // the address means nothing any more

    [[nodiscard]] bool isAttached() const { return address && !released; }
};

Owned systemTable;
Owned applicationManagerTable;

const SwitchProbe *probe = nullptr;

void create(Owned &table, char project, const char *fatalText)
{
    table.key = ::ftok(kKeyFile, project);
    if (table.key == -1)
        platform::fatal(QString::fromLatin1(fatalText));
    // Promised: where the fatal-error handler returns, things go on with the failed key.
    table.id = ::shmget(table.key, kTableBytes, kCreateFlags);
    if (table.id < 0) {
        std::perror("System table allocates main ram shared memory\n"); // the same for both tables
        platform::leave(-1);
    }
    table.released = false;
    table.address = platform::attachRaw(table.id, kAccess).value_or(nullptr);
    if (!table.address)
        std::perror("Cannot attach to main ram shared memory\n");
}

// Promised: the remembered address and id stay as they are.
void release(Owned &table)
{
    if (table.isAttached())
        ::shmdt(table.address);
    table.released = true;
    if (table.id != -1)
        ::shmctl(table.id, IPC_RMID, nullptr);
}

void storeInitial(quint8 *table, const Row &row)
{
    if (row.kind == Row::Characters || row.kind == Row::Unused)
        return;
    for (std::size_t i = 0; i < row.size(); ++i)
        table[row.offset + i] = quint8(row.initial[i / row.width] >> (8 * (i % row.width)));
}

}

SwitchProbe::SwitchProbe() { probe = this; }

SwitchProbe::~SwitchProbe()
{
    if (probe == this)
        probe = nullptr;
}

const SwitchProbe *SwitchProbe::installed() { return probe; }

void UTIL_CreateSystemStatusTable() { create(systemTable, kTableProject, "System table in error..."); }

void UTIL_InitSystemTable()
{
    if (!systemTable.isAttached())
        return;
    auto *table = static_cast<quint8 *>(systemTable.address);
    std::memset(table, 0, kUsedBytes);
    for (const Row &row : rows)
        storeInitial(table, row);
    table[headset.offset] = probe && probe->headsetState() != 0 ? 1 : 0;
    Board::announce(systemTable.key);
    // Promised: the table's flip and the keypad's flip word count opposite states.
    UTIL_SetFlipStatus(!probe || probe->flipState() == 0);
}

void UTIL_ReleaseSystemTable()
{
    release(systemTable);
    Board::announce(systemTable.key);
}

void UTIL_CreateApplicationManagerStatusTable()
{
    create(applicationManagerTable, kApplicationManagerProject, "Application Manager table in error...");
    if (applicationManagerTable.isAttached())
        std::memset(applicationManagerTable.address, 0, kTableBytes);
}

void UTIL_ReleaseApplicationManagerStatusTable() { release(applicationManagerTable); }

void *UTIL_GetApplicationManagerTableAddress()
{
    const auto key = platform::ipcKey(kKeyFile, kApplicationManagerProject);
    if (!key)
        return nullptr;
    const auto id = platform::ShmAttachment::segment({*key, kApplicationManagerFlags}, kTableBytes);
    return id ? platform::attachRaw(*id, kAccess).value_or(nullptr) : nullptr;
}
