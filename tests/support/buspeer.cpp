// Another process on the bus, led by a test: a command a line on standard input, an answer a line on standard output.
// Started with "early" it has a channel of that name before it has an application object.
//
//   host [GROUP]             hosts the broker             -> "hosting" or "failed REASON"
//   open CHANNEL             makes a channel              -> "opened"; from then on "got CHANNEL MESSAGE HEX"
//   close CHANNEL            deletes it                   -> "closed"
//   send CHANNEL MESSAGE HEX [COUNT]                      -> "sent 1"; with a count the data ends in the 4-byte number
//   die CHANNEL MESSAGE HEX COUNT                         sends as above and is gone with _exit()
//   registered CHANNEL                                    -> "registered 1"
#include "platform/bus/busbroker.h"
#include "platform/bus/qcopchannel.h"

#include <QCoreApplication>
#include <QHash>
#include <QSocketNotifier>
#include <QtEndian>
#include <cstdio>
#include <unistd.h>

namespace {

struct Peer {
    std::unique_ptr<platform::BusBroker> broker;
    QHash<QByteArray, QCopChannel *> channels;
    ~Peer() { qDeleteAll(channels); }
};

void answer(const QByteArray &line)
{
    std::printf("%s\n", line.constData());
    std::fflush(stdout);
}

bool sendMany(const QList<QByteArray> &words)
{
    const QByteArray data = QByteArray::fromHex(words.value(3));
    if (words.size() < 5)
        return QCopChannel::send(words.value(1), words.value(2), data);
    bool all = true;
    for (quint32 i = 0; i < words[4].toUInt(); ++i) {
        const quint32 number = qToBigEndian(i);
        const QByteArray numbered = data + QByteArray(reinterpret_cast<const char *>(&number), sizeof number);
        all = QCopChannel::send(words[1], words[2], numbered) && all;
    }
    return all;
}

void host(Peer &peer, const QByteArray &group)
{
    auto broker = platform::BusBroker::listen({.group = group});
    answer(broker ? QByteArrayLiteral("hosting") : "failed " + broker.error().text().toUtf8());
    if (broker)
        peer.broker = std::move(*broker);
}

void open(Peer &peer, const QByteArray &name)
{
    auto *channel = new QCopChannel(name);
    QObject::connect(channel, &QCopChannel::received, channel, [name](const QCString &message, const QByteArray &data) {
        answer("got " + name + ' ' + message + ' ' + data.toHex());
    });
    peer.channels[name] = channel;
    answer("opened");
}

void obey(Peer &peer, const QByteArray &line)
{
    const QList<QByteArray> words = line.split(' ');
    if (words[0] == "host") {
        host(peer, words.value(1));
    } else if (words[0] == "open") {
        open(peer, words.value(1));
    } else if (words[0] == "close") {
        delete peer.channels.take(words.value(1));
        answer("closed");
    } else if (words[0] == "send") {
        answer(sendMany(words) ? "sent 1" : "sent 0");
    } else if (words[0] == "die") {
        sendMany(words);
        _exit(0);
    } else if (words[0] == "registered") {
        answer(QCopChannel::isRegistered(words.value(1)) ? "registered 1" : "registered 0");
    } else {
        answer("what? " + line);
    }
}

}

int main(int argc, char **argv)
{
    Peer peer;
    if (argc > 1)
        open(peer, argv[1]);
    QCoreApplication app(argc, argv);
    QByteArray pending;
    QSocketNotifier commands(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&commands, &QSocketNotifier::activated, &app, [&] {
        char buffer[65536];
        const ssize_t size = ::read(STDIN_FILENO, buffer, sizeof buffer);
        if (size <= 0)
            return QCoreApplication::quit();
        pending.append(buffer, size);
        for (qsizetype end = pending.indexOf('\n'); end >= 0; end = pending.indexOf('\n')) {
            const QByteArray line = pending.first(end);
            pending.remove(0, end + 1);
            obey(peer, line);
        }
    });
    return QCoreApplication::exec();
}
