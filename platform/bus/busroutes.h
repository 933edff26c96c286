// Which clients want which channel.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace platform::bus {

struct Peer;

class Routes {
public:
    void add(QByteArrayView channel, Peer *peer);
    void remove(QByteArrayView channel, Peer *peer);

    // In the order of registration; empty when nobody wants it. Valid until the next change.
    [[nodiscard]] const QList<Peer *> &of(QByteArrayView channel) const;

    template <typename Visitor> void forEach(Visitor &&visit) const // visit(channel, peer)
    {
        for (const auto &[channel, peers] : m_peers) {
            for (Peer *peer : peers)
                visit(QByteArrayView(channel), peer);
        }
    }

private:
    struct Hash {
        using is_transparent = void;
        size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    };
    // A standard map, because it is asked with a view into the received bytes.
    std::unordered_map<std::string, QList<Peer *>, Hash, std::equal_to<>> m_peers;
};

}
