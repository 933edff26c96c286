// Tells watchers that a field has changed: a sequence number in a segment of our own, and a touch of the key file that
// an event loop can wait for with inotify.
//
// The segment is made by the first watcher and never removed: writers keep it attached, so that a setter pays for its
// own attachment only. On a phone that nobody watches there is none.
//
// A writer stores its field, advances the sequence and touches the file when a watcher asked for it (`armed`), clearing
// that wish: of many writes in a row only the first wakes anybody. A watcher asks again before it reads the table, so
// that no change falls between reading and waiting.
#pragma once

#include "platform/system/result.h"

#include <QtGlobal>
#include <atomic>
#include <sys/types.h>

namespace status {

struct Board {
    std::atomic<quint32> sequence;
    std::atomic<quint32> armed;

    // For a writer: advances, and wakes who waits. `table` is the key of the table that was written.
    static void announce(key_t table);
    // For a watcher: the board beside the table, made when it is missing. It stays attached for the process's life.
    static platform::Result<Board *> open();
};
// Processes share it. "Sometimes" free of locks (1) is the handset's processor, whose kernel does the exchange.
static_assert(sizeof(Board) == 8 && ATOMIC_INT_LOCK_FREE > 0);

}
