// tyx share: looks at the images that processes share.
#include "res/share/sharedimages.h"
#include "res/share/sharedpixels.h"
#include "tools/tyx/command.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <algorithm>
#include <cerrno>
#include <unistd.h>

namespace tyx {

namespace {

using res::SharedImageView;

struct Options {
    std::string name;
    std::string file;
    bool json = false;
};

// Of one line of a process's memory map: addresses, rights, offset, device, inode, name.
bool isSegment(const QByteArray &line, int segment)
{
    const QList<QByteArray> fields = line.simplified().split(' ');
    return fields.size() > 5 && fields[5].startsWith("/SYSV") && fields[4].toLongLong() == segment;
}

// Whose memory has the segment, as far as this user may look. The system tells their number, but not who they are.
QList<qint64> processesOf(int segment)
{
    QList<qint64> processes;
    for (const QString &entry : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        const qint64 process = entry.toLongLong();
        QFile maps(QStringLiteral("/proc/%1/maps").arg(process));
        if (process == 0 || !maps.open(QIODevice::ReadOnly))
            continue;
        const QList<QByteArray> lines = maps.readAll().split('\n');
        if (std::any_of(lines.begin(), lines.end(), [&](const auto &line) { return isSegment(line, segment); }))
            processes.append(process);
    }
    std::sort(processes.begin(), processes.end());
    return processes;
}

QString keyText(key_t key) { return QStringLiteral("0x%1").arg(quint32(key), 8, 16, QLatin1Char('0')); }

// Looked for before this process attaches itself.
struct Entry {
    explicit Entry(const QString &imageName)
        : name(imageName), key(res::keyOfSharedImage(imageName)), view(SharedImageView::open(imageName))
    {
        if (view)
            processes = processesOf(view->id);
        processes.removeOne(qint64(::getpid()));
    }

    QString name;
    platform::Result<key_t> key;
    platform::Result<SharedImageView> view;
    QList<qint64> processes;

    // What keeps it from being used; null: nothing.
    [[nodiscard]] QString fault() const
    {
        if (!view)
            return view.error().number == ENOENT ? QStringLiteral("nobody has stored an image yet")
                                                 : view.error().text();
        return view->header ? QString() : res::describe(view->header.error());
    }
};

QJsonObject json(const Entry &entry)
{
    QJsonObject object{
        {QStringLiteral("name"), entry.name}, {QStringLiteral("file"), QFile::decodeName(res::lockFileOf(entry.name))}};
    if (entry.key)
        object.insert(QStringLiteral("key"), keyText(*entry.key));
    if (entry.view) {
        QJsonArray processes;
        for (const qint64 process : entry.processes)
            processes.append(process);
        object.insert(QStringLiteral("id"), entry.view->id);
        object.insert(QStringLiteral("bytes"), qint64(entry.view->status.shm_segsz));
        object.insert(QStringLiteral("attached"), qint64(entry.view->status.shm_nattch));
        object.insert(QStringLiteral("processes"), processes);
    }
    if (const QString fault = entry.fault(); !fault.isNull()) {
        object.insert(QStringLiteral("error"), fault);
        return object;
    }
    object.insert(QStringLiteral("width"), entry.view->header->width);
    object.insert(QStringLiteral("height"), entry.view->header->height);
    object.insert(QStringLiteral("depth"), entry.view->header->depth);
    object.insert(QStringLiteral("mask"), entry.view->header->maskSize != 0);
    return object;
}

QString line(const Entry &entry)
{
    QStringList parts{printable(entry.name.toUtf8())};
    if (entry.key)
        parts << keyText(*entry.key);
    if (entry.view)
        parts << QStringLiteral("segment %1").arg(entry.view->id)
              << QStringLiteral("%1 bytes").arg(entry.view->status.shm_segsz);
    if (const QString fault = entry.fault(); !fault.isNull()) {
        parts << fault;
    } else {
        const res::SharedHeader &header = *entry.view->header;
        parts << QStringLiteral("%1x%2").arg(header.width).arg(header.height)
              << QStringLiteral("%1 bits").arg(header.depth)
              << (header.maskSize != 0 ? QStringLiteral("mask") : QStringLiteral("no mask"));
    }
    if (entry.view) {
        QStringList processes;
        for (const qint64 process : entry.processes)
            processes << QString::number(process);
        parts << QStringLiteral("%1 attached").arg(entry.view->status.shm_nattch) << processes.join(u' ');
    }
    return parts.join(QStringLiteral("  ")).trimmed();
}

int list(const Options &options)
{
    QJsonArray array;
    for (const QString &name : res::sharedImageNames()) {
        const Entry entry(name);
        if (options.json)
            array.append(json(entry));
        else
            printLine(line(entry));
    }
    if (options.json)
        printJson(QJsonDocument(array));
    return Done;
}

// Why an image cannot be looked at.
int unusable(const QString &name, const platform::SysError &error)
{
    const QString shown = printable(name.toUtf8());
    if (error.number == ENOENT) {
        std::ignore = fail(QStringLiteral("nobody shares an image \"%1\"; tyx share list shows the names").arg(shown));
        return AnsweredNo;
    }
    return fail(QStringLiteral("%1: %2; %3")
                    .arg(printable(res::lockFileOf(name)), error.text(),
                        error.number == EACCES ? QStringLiteral("run as its owner")
                                               : QStringLiteral("if it is no regular file, remove it")));
}

int dump(const Options &options)
{
    const QString name = QString::fromStdString(options.name);
    const auto view = SharedImageView::open(name);
    if (!view)
        return unusable(name, view.error());
    const QImage image = res::copyWithMask(view->segment);
    if (image.isNull())
        return fail(QStringLiteral("\"%1\": segment %2 %3; store an image, or remove it with ipcrm -m %2")
                        .arg(printable(options.name), QString::number(view->id),
                            res::describe(view->header ? res::SharedImageFault::Size : view->header.error())));
    QByteArray png;
    QBuffer buffer(&png);
    if (!image.save(&buffer, "PNG"))
        return fail(QStringLiteral("\"%1\" cannot be written as PNG; free some memory").arg(printable(options.name)));
    return saveTo(options.file, png);
}

}

void addShare(CLI::App &app, int &exit)
{
    const CommandGroup<Options> group(app, "share", "Looks at the images that processes share.", exit);
    group.addJson(
        group.add("list", "Lists them: name, key, segment, size, form, and the processes that have it.", list));
    CLI::App *command = group.add("dump", "Saves one as a PNG; 1 when there is none of the name.", dump);
    command->add_option("NAME", group.options().name, "The image, for example SkinImage")->required();
    command->add_option("FILE", group.options().file, "Where to; - is standard output")->required();
}

}
