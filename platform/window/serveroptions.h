// The options of a GUI server's command line.
#pragma once

#include <QByteArray>
#include <QList>
#include <QSize>
#include <QString>
#include <tl/expected.hpp>

struct ServerOptions {
    QByteArray platform; // one of "offscreen", "xcb", "vnc", "linuxfb", with the plug-in's own options after a colon
    QSize size{240, 320};
    QByteArray group; // whose members may use the bus too; empty: nobody else

    [[nodiscard]] QByteArray plugin() const { return platform.split(':').first(); }

    // What the toolkit is to be told; `screenDescription` is the file that describes an offscreen screen.
    [[nodiscard]] QByteArray forToolkit(const QString &screenDescription) const;
    [[nodiscard]] QByteArray screenDescription() const;
};

// Takes "--platform NAME", "--size WIDTHxHEIGHT" and "--group NAME" (also with "=") out of the arguments, because the
// toolkit has a --platform of its own, and fills in the defaults. The error is one sentence for the user.
tl::expected<ServerOptions, QString> takeServerOptions(int &argc, char **argv);
