// The options of a GUI server's command line that concern its screen.
#pragma once

#include <QByteArray>
#include <QList>
#include <QSize>
#include <QString>
#include <tl/expected.hpp>

struct ServerOptions {
    QByteArray platform; // one of "offscreen", "xcb", "vnc", "linuxfb", with the plug-in's own options after a colon
    QSize size{240, 320};

    [[nodiscard]] QByteArray plugin() const { return platform.split(':').first(); }

    // What the toolkit is to be told; `screenDescription` is the file that describes an offscreen screen.
    [[nodiscard]] QByteArray forToolkit(const QString &screenDescription) const;
    [[nodiscard]] QByteArray screenDescription() const;
};

// Takes "--platform NAME" and "--size WIDTHxHEIGHT" (also with "=") out of the arguments, because the toolkit has a
// --platform of its own, and fills in the defaults. The error is one sentence for the user.
tl::expected<ServerOptions, QString> takeServerOptions(int &argc, char **argv);
