#include "settings/status/statusboard.h"

#include "platform/system/sysv.h"
#include "settings/status/statuslayout.h"
#include "settings/status/statustable.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace status {

namespace {

constexpr quint8 kBoardProject = 'w';

// The board that this process has attached, and the table it belongs to. Two words, so that another thread may see one
// of them older than the other: it then advances a board that belongs to another table, and watchers see its change a
// little later, with their next look.
std::atomic<Board *> attached{nullptr};
std::atomic<key_t> attachedFor{-1};

// As ftok(3) would answer for the key file: the project id is the highest byte.
key_t boardKey(key_t table) { return key_t((quint32(table) & 0x00FFFFFFU) | quint32(kBoardProject) << 24); }

platform::Result<Board *> attach(key_t table, int flags)
{
    const auto id = platform::ShmAttachment::segment({boardKey(table), flags}, sizeof(Board));
    if (!id)
        return tl::make_unexpected(id.error());
    const auto address = platform::attachRaw(*id, platform::ShmAttachment::Access::ReadWrite);
    if (!address)
        return tl::make_unexpected(address.error());
    auto *board = static_cast<Board *>(*address); // pages are aligned, and zeros are its first state
    // The one before, of another key file, stays: another thread may be about to write there.
    attachedFor = table;
    attached = board;
    return board;
}

Board *current(key_t table)
{
    Board *board = attached;
    return board && attachedFor == table ? board : nullptr;
}

}

void Board::announce(key_t table)
{
    Board *board = current(table);
    if (!board)
        board = attach(table, 0666).value_or(nullptr);
    if (!board)
        return; // nobody ever watched
    ++board->sequence;
    if (board->armed.load() != 0 && board->armed.exchange(0) != 0)
        ::utimensat(AT_FDCWD, kKeyFile, nullptr, AT_SYMLINK_NOFOLLOW);
}

platform::Result<Board *> Board::open()
{
    const auto table = platform::ipcKey(kKeyFile, kTableProject);
    if (!table)
        return tl::make_unexpected(table.error());
    if (Board *board = current(*table))
        return board;
    return attach(*table, IPC_CREAT | 0666);
}

}
