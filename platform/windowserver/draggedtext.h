// The text that a client drags, for the other clients.
#pragma once

#include "platform/system/fd.h"

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <memory>

struct wl_client;
struct wl_resource;

// Asks the client for its text as soon as it drags, because it has forgotten it when the text is wanted. Offers are
// made here and not by the toolkit's server, whose protocol is too old for what the toolkit's client answers.
class DraggedText : public QObject {
    Q_OBJECT

public:
    // A pipe takes no more at once; a longer text is offered to nobody.
    static constexpr qsizetype kMost = 1 << 20; // bytes

    // `source` is a wl_data_source; one that has no text says so by sending none.
    explicit DraggedText(wl_resource *source);

    // Whether all of it is here; empty when there is none.
    [[nodiscard]] bool isComplete() const { return !m_pipe; }
    [[nodiscard]] QByteArray text() const { return m_text; } // UTF-8

    // Tells a client's wl_data_device of a new offer of the text, which lives until the client destroys it; null when
    // there is no memory.
    static wl_resource *offer(wl_resource *device, const QByteArray &text);

Q_SIGNALS:
    void completed();

private:
    void read();

    platform::Fd m_pipe; // closed when all is read
    std::unique_ptr<QSocketNotifier> m_notifier;
    QByteArray m_text;
};
