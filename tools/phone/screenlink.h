// The viewer's connection to the screen of the phone: attaches to whatever GUI server runs here, keeps its picture, and
// tells when it has ended.
#pragma once

#include "platform/bus/qcopchannel.h"
#include "platform/system/fd.h"
#include "platform/system/sysv.h"

#include <QImage>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <memory>
#include <optional>
#include <tl/expected.hpp>

// Asks the server for each next picture ("frame" of "TYX/Screen", docs/messages.md). While it is attached a
// descriptor of the server's process tells when that ends, and a screen that stays as it is costs next to nothing: it
// asks again every five seconds, which takes the place of what it asked before, in case a question or an answer was
// lost. While there is no server, or no picture of it, it asks four times in a second.
class ScreenLink : public QObject {
    Q_OBJECT

public:
    explicit ScreenLink(QObject *parent = nullptr);

    [[nodiscard]] bool isAttached() const { return m_isAttached; }
    [[nodiscard]] bool wasAttached() const { return m_wasAttached; } // ever
    [[nodiscard]] const QImage &picture() const { return m_picture; } // the last one, also after the server's end
    [[nodiscard]] QString trouble() const { return m_trouble; } // why there is no new picture though a server runs

Q_SIGNALS:
    void attachedChanged(); // or the trouble did
    void pictureChanged();

private:
    void ask();
    void receive(const QCString &message, const QByteArray &arguments);
    // Without a text the error is no trouble: the answer came from a server that has ended since.
    using Done = tl::expected<void, QString>;
    [[nodiscard]] Done attach(int process);
    [[nodiscard]] Done copy(int segment, QSize size);
    void detach();
    void fail(const QString &why);
    void releaseMemory();

    const QCString m_name;
    QCopChannel m_channel;
    QTimer m_search;
    platform::Fd m_process; // of the server
    std::unique_ptr<QSocketNotifier> m_end;
    std::optional<platform::ShmAttachment> m_memory;
    int m_segment = -1;
    int m_seen = 0;
    QImage m_picture;
    QString m_trouble;
    bool m_isAttached = false;
    bool m_wasAttached = false;
};
