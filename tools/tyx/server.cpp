#include "tools/tyx/server.h"

#include "appbase/messaging/wire.h"
#include "platform/bus/businspector.h"
#include "platform/bus/qcopchannel.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <cerrno>

namespace tyx {

QString whyNoServer(const std::optional<platform::SysError> &error)
{
    const QString place = QString::fromLocal8Bit(platform::BusInspector::socketPath());
    if (error && error->number != ENOENT && error->number != ECONNREFUSED)
        return QStringLiteral("the bus at %1 cannot be used: %2; tyx doctor tells the cure").arg(place, error->text());
    return QStringLiteral("no phone is running: %1 at %2; %3")
        .arg(error ? QStringLiteral("nothing listens") : QStringLiteral("there is no GUI server"), place,
            QLatin1String(kStartIt));
}

std::optional<Reply> askServer(const QCString &request, const QByteArray &arguments, std::chrono::milliseconds patience)
{
    const QCString name("TYX/Tool/" + QByteArray::number(QCoreApplication::applicationPid()));
    QCopChannel channel(name);
    std::optional<Reply> reply;
    QEventLoop loop;
    QObject::connect(&channel, &QCopChannel::received, &loop, [&](const QCString &message, const QByteArray &content) {
        reply = Reply{message, content};
        loop.quit();
    });
    QTimer::singleShot(patience, &loop, &QEventLoop::quit);
    if (QCopChannel::send("TYX/Screen", request, wire::pack(name) + arguments))
        loop.exec();
    return reply;
}

}
