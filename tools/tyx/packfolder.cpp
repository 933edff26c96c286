#include "tools/tyx/packfolder.h"

#include "res/format/resid.h"

#include <QDir>
#include <QFile>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace tyx {

using platform::failed;
using platform::Fd;
using platform::Result;

namespace {

struct Signature {
    QByteArrayView start;
    QLatin1StringView suffix; // of the identifier
    QLatin1StringView extension;
};

constexpr Signature kSignatures[] = {
    {"\x89PNG", QLatin1StringView(".g"), QLatin1StringView(".png")},
    {"GIF8", QLatin1StringView(".g"), QLatin1StringView(".gif")},
    {"\xFF\xD8\xFF", QLatin1StringView(".g"), QLatin1StringView(".jpg")},
    {"RIFF", QLatin1StringView(".a"), QLatin1StringView(".wav")},
    {"MThd", QLatin1StringView(".a"), QLatin1StringView(".mid")},
    {"#!AMR", QLatin1StringView(".a"), QLatin1StringView(".amr")},
    {"\xFF\xF1", QLatin1StringView(".a"), QLatin1StringView(".aac")},
    {"\xFF\xF9", QLatin1StringView(".a"), QLatin1StringView(".aac")},
    {"ID3", QLatin1StringView(".a"), QLatin1StringView(".mp3")},
    {"\xFF", QLatin1StringView(".a"), QLatin1StringView(".mp3")},
};

}

QString fileNameOf(const QString &id, QByteArrayView data)
{
    if (id.isEmpty() || id.contains(u'/') || id.contains(QChar::Null) || id == u"." || id == u"..")
        return {};
    for (const Signature &signature : kSignatures) {
        if (!id.endsWith(signature.suffix) || !data.startsWith(signature.start))
            continue;
        const QString name = id.chopped(signature.suffix.size()) + signature.extension;
        return res::createID(name) == id ? name : id;
    }
    return id;
}

Result<TargetFolder> TargetFolder::open(const QString &path)
{
    QDir().mkpath(path); // when it cannot, opening tells why
    return Fd::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY).map([](Fd &&folder) {
        return TargetFolder(std::move(folder));
    });
}

Result<> TargetFolder::write(const QString &name, QByteArrayView data, bool replace) const
{
    const QByteArray path = QFile::encodeName(name);
    const int folder = m_folder.get();
    if (replace && ::unlinkat(folder, path.constData(), 0) != 0 && errno != ENOENT)
        return failed("unlink");
    constexpr int kNew = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    Fd file = Fd::own(::openat(folder, path.constData(), kNew, mode_t{0666}));
    if (!file)
        return failed("open");
    auto written = platform::writeAll(file.get(), std::as_bytes(std::span(data.data(), size_t(data.size()))));
    if (written)
        written = file.close();
    if (!written)
        ::unlinkat(folder, path.constData(), 0);
    return written;
}

QString TargetFolder::extract(const QString &id, QByteArrayView data, bool replace) const
{
    const QString name = fileNameOf(id, data);
    if (name.isNull())
        return QStringLiteral("no file can have this name");
    const auto written = write(name, data, replace);
    if (written)
        return {};
    return written.error().text() + (written.error().number == EEXIST ? QStringLiteral("; see --replace") : QString());
}

}
