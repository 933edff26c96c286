// Every limit of the bus, and why it has its size. docs/bus.md tells them to other programs.
#pragma once

#include <QtGlobal>
#include <chrono>

namespace platform::bus {

constexpr quint32 kMaxFrame = 1024 * 1024; // what follows the length word
constexpr quint32 kMaxMessage = kMaxFrame - 4; // of a message's frame: observers get it with the sender's process id
constexpr quint32 kMaxGreeting = 64; // a frame before the greeting was understood: nobody buffers for a stranger
constexpr int kMaxChannelName = 255; // its length is one byte
constexpr int kMaxChannelsPerClient = 1024;
constexpr int kMaxClients = 256;
constexpr qsizetype kMaxBacklog = qsizetype{4} * 1024 * 1024; // bytes that a client left unread before it is sent away

constexpr std::chrono::milliseconds kGreetingWait{5'000};
constexpr std::chrono::milliseconds kFarewellWait{5'000}; // for a client that is sent away to read why
constexpr std::chrono::milliseconds kEndingWait{200}; // for clients to read what a server that ends still has for them
constexpr std::chrono::milliseconds kAnswerWait{3'000}; // a server that is stopped is not waited for any longer
constexpr std::chrono::milliseconds kRoomWait{200}; // a sender lets the server catch up, then keeps what it sends
constexpr std::chrono::milliseconds kConnectWait{1'000}; // with a full queue of new connections
constexpr std::chrono::milliseconds kRetryFirst{50}; // after the connection was lost; doubles up to the next
constexpr std::chrono::milliseconds kRetryLast{1'000};

}
