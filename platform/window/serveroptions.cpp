#include "platform/window/serveroptions.h"

#include <QRegularExpression>
#include <QStringList>
#include <cstring>

namespace {

constexpr int kLargestSide = 4096; // pixels; beyond any handset, and far from what overflows in an image

QString sizeError(const char *given)
{
    return QStringLiteral("--size %1: wanted is WIDTHxHEIGHT in pixels, 16 to %2 each, for example 240x320")
        .arg(QString::fromLocal8Bit(given))
        .arg(kLargestSide);
}

tl::expected<QSize, QString> parseSize(const char *text)
{
    static const QRegularExpression form(QStringLiteral("^(\\d{2,4})x(\\d{2,4})$"));
    const QRegularExpressionMatch match = form.match(QString::fromLocal8Bit(text));
    const QSize size(match.captured(1).toInt(), match.captured(2).toInt());
    if (!match.hasMatch() || size.width() < 16 || size.height() < 16 || size.width() > kLargestSide
        || size.height() > kLargestSide)
        return tl::make_unexpected(sizeError(text));
    return size;
}

tl::expected<QByteArray, QString> parsePlatform(const char *text)
{
    const QByteArray platform(text);
    const QList<QByteArray> known{"offscreen", "xcb", "vnc", "linuxfb"};
    if (!known.contains(platform.split(':').first()))
        return tl::make_unexpected(QStringLiteral("--platform %1: wanted is offscreen, xcb, vnc or linuxfb")
                                       .arg(QString::fromLocal8Bit(text)));
    return platform;
}

tl::expected<void, QString> apply(const QByteArray &option, const char *value, ServerOptions &options)
{
    if (!value)
        return tl::make_unexpected(QString::fromLatin1(option + " wants a value"));
    if (option == "--group") {
        options.group = value;
        return {};
    }
    if (option == "--size")
        return parseSize(value).map([&](QSize size) { options.size = size; });
    return parsePlatform(value).map([&](const QByteArray &platform) { options.platform = platform; });
}

QByteArray defaultPlatform() { return qEnvironmentVariableIsEmpty("DISPLAY") ? "offscreen" : "xcb"; }

// The options stand in argv[from] and maybe the next one; closes the gap.
void remove(int from, int count, int &argc, char **argv)
{
    for (int i = from; i + count <= argc; ++i) // argv[argc] is the null at the end
        argv[i] = argv[i + count];
    argc -= count;
}

}

tl::expected<ServerOptions, QString> takeServerOptions(int &argc, char **argv)
{
    ServerOptions options;
    for (int i = 1; i < argc;) {
        const char *equals = std::strchr(argv[i], '=');
        const QByteArray name = equals ? QByteArray(argv[i], equals - argv[i]) : QByteArray(argv[i]);
        if (name != "--platform" && name != "--size" && name != "--group") {
            ++i;
            continue;
        }
        if (const auto done = apply(name, equals ? equals + 1 : argv[i + 1], options); !done)
            return tl::make_unexpected(done.error());
        remove(i, equals ? 1 : 2, argc, argv);
    }
    if (options.platform.isEmpty())
        options.platform = defaultPlatform();
    return options;
}

QByteArray ServerOptions::forToolkit(const QString &screenDescription) const
{
    if (plugin() == "offscreen")
        return "offscreen:configfile=" + screenDescription.toLocal8Bit();
    if (plugin() == "vnc")
        return platform + ":size=" + QByteArray::number(size.width()) + 'x' + QByteArray::number(size.height());
    return platform;
}

QByteArray ServerOptions::screenDescription() const
{
    return QStringLiteral(R"({"synchronousWindowSystemEvents":false,"windowFrameMargins":false,"screens":[)"
                          R"({"name":"phone","x":0,"y":0,"width":%1,"height":%2,)"
                          R"("logicalDpi":96,"logicalBaseDpi":96,"dpr":1}]})")
        .arg(size.width())
        .arg(size.height())
        .toLatin1();
}
