#include "res/share/sharedimages.h"

#include "platform/system/keyfile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace res {

QByteArray lockFileOf(const QString &name) { return kLockFilePrefix + QFile::encodeName(name); }

platform::Result<key_t> keyOfSharedImage(const QString &name)
{
    constexpr char kProject = 0x5A;
    return platform::keyOfFile(lockFileOf(name).constData(), kProject);
}

QStringList sharedImageNames()
{
    const QFileInfo prefix(QString::fromLatin1(kLockFilePrefix));
    const QDir folder(prefix.path(), prefix.fileName() + u'*', QDir::Name, QDir::AllEntries | QDir::System);
    QStringList names;
    for (const QString &entry : folder.entryList())
        names.append(entry.mid(prefix.fileName().size()));
    return names;
}

platform::Result<SharedImageView> SharedImageView::open(const QString &name)
{
    using platform::ShmAttachment;
    const auto key = keyOfSharedImage(name);
    if (!key)
        return tl::make_unexpected(key.error());
    const auto id = ShmAttachment::segment({*key, 0444}, 0);
    if (!id)
        return tl::make_unexpected(id.error());
    const auto status = ShmAttachment::status(*id);
    if (!status)
        return tl::make_unexpected(status.error());
    auto attached = ShmAttachment::attach(*id, ShmAttachment::Access::ReadOnly);
    if (!attached)
        return tl::make_unexpected(attached.error());
    auto segment = std::make_shared<const ShmAttachment>(std::move(*attached));
    const auto header = SharedHeader::parse(segment->bytes());
    return SharedImageView{*key, *id, *status, std::move(segment), header};
}

}
