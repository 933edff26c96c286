#include "platform/windowserver/draggedtext.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <wayland-server-protocol.h>

namespace {

constexpr char kPlain[] = "text/plain";
constexpr char kUtf8[] = "text/plain;charset=utf-8";
// The first version that knows all requests with which clients answer a drop.
constexpr int kOfferVersion = 3;

void ignoreAccept(wl_client *, wl_resource *, uint32_t, const char *) { }
void ignoreFinish(wl_client *, wl_resource *) { }
void ignoreActions(wl_client *, wl_resource *, uint32_t, uint32_t) { }
void destroy(wl_client *, wl_resource *offer) { wl_resource_destroy(offer); }

// All at once, so that nobody has to wait here for a client that does not read.
void giveText(wl_client *, wl_resource *offer, const char * /*type*/, int32_t fd)
{
    const platform::Fd pipe = platform::Fd::own(fd);
    const auto &text = *static_cast<const QByteArray *>(wl_resource_get_user_data(offer));
    ::fcntl(fd, F_SETFL, O_NONBLOCK);
    ::fcntl(fd, F_SETPIPE_SZ, int(text.size())); // refused where it is no pipe
    if (::write(fd, text.constData(), size_t(text.size())) != text.size())
        qWarning("window server: a client did not take all of the text that was dropped on it");
}

const struct wl_data_offer_interface kRequests = {ignoreAccept, giveText, destroy, ignoreFinish, ignoreActions};

}

DraggedText::DraggedText(wl_resource *source)
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return;
    m_pipe = platform::Fd::own(ends[0]);
    const platform::Fd theirs = platform::Fd::own(ends[1]);
    ::fcntl(m_pipe.get(), F_SETFL, O_NONBLOCK); // this end only: clients write as they are used to
    wl_data_source_send_send(source, kPlain, theirs.get());
    m_notifier = std::make_unique<QSocketNotifier>(m_pipe.get(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &DraggedText::read);
}

void DraggedText::read()
{
    std::array<char, 4096> buffer;
    const ssize_t got = ::read(m_pipe.get(), buffer.data(), buffer.size());
    if (got < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (got > 0 && m_text.size() + got <= kMost) {
        m_text.append(buffer.data(), got);
        return;
    }
    if (got != 0)
        m_text.clear();
    m_notifier->setEnabled(false);
    m_notifier.release()->deleteLater(); // it is what calls
    m_pipe.reset();
    Q_EMIT completed();
}

wl_resource *DraggedText::offer(wl_resource *device, const QByteArray &text)
{
    wl_resource *offer = wl_resource_create(wl_resource_get_client(device), &wl_data_offer_interface, kOfferVersion, 0);
    if (!offer)
        return nullptr;
    wl_resource_set_implementation(offer, &kRequests, new QByteArray(text),
        [](wl_resource *gone) { delete static_cast<QByteArray *>(wl_resource_get_user_data(gone)); });
    wl_data_device_send_data_offer(device, offer);
    for (const char *type : {kUtf8, kPlain})
        wl_data_offer_send_offer(offer, type);
    return offer;
}
