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

// Asks the server for each next picture ("frame" of "TYX/Screen", docs/messages.md). While it is attached nothing is
// asked twice and nothing polled: a descriptor of the server's process tells when it ends. While there is no server, it
// is looked for four times in a second.
class ScreenLink : public QObject {
    Q_OBJECT

public:
    explicit ScreenLink(QObject *parent = nullptr);

    [[nodiscard]] bool isAttached() const { return m_isAttached; }
    [[nodiscard]] bool wasAttached() const { return m_wasAttached; } // ever
    [[nodiscard]] const QImage &picture() const { return m_picture; } // the last one, also after the server's end
    [[nodiscard]] QString trouble() const { return m_trouble; } // why there is no picture though a server runs

Q_SIGNALS:
    void attachedChanged();
    void pictureChanged();

private:
    void ask();
    void receive(const QCString &message, const QByteArray &arguments);
    [[nodiscard]] bool attach(int process);
    void detach();
    [[nodiscard]] bool copy(int segment, QSize size);

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
