#include "platform/bus/busroutes.h"

namespace platform::bus {

namespace {

std::string_view key(QByteArrayView channel) { return {channel.data(), size_t(channel.size())}; }

}

void Routes::add(QByteArrayView channel, Peer *peer) { m_peers[std::string(key(channel))].append(peer); }

void Routes::remove(QByteArrayView channel, Peer *peer)
{
    const auto found = m_peers.find(key(channel));
    if (found == m_peers.end())
        return;
    found->second.removeOne(peer);
    if (found->second.isEmpty())
        m_peers.erase(found);
}

const QList<Peer *> &Routes::of(QByteArrayView channel) const
{
    static const QList<Peer *> nobody;
    const auto found = m_peers.find(key(channel));
    return found == m_peers.end() ? nobody : found->second;
}

}
