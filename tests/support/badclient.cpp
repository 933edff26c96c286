// A client of the screen that does what no toolkit would: badclient truncate | flood | role
//   truncate   shows a window, then cuts the memory behind its picture to nothing
//   flood      commits pictures as fast as the socket takes them
//   role       asks for two windows on one surface
// Prints "shown" when the server took its first picture, "error" when the server threw it out, and then ends.
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>
#include <wayland-zqt-shell-v1-client-protocol.h>

namespace {

constexpr int kWidth = 240;
constexpr int kHeight = 300;
constexpr int kSize = kWidth * kHeight * 4;

struct Globals {
    wl_compositor *compositor = nullptr;
    wl_shm *shm = nullptr;
    zqt_shell_v1 *shell = nullptr;
};

void onGlobal(void *data, wl_registry *registry, uint32_t name, const char *interface, uint32_t)
{
    auto &globals = *static_cast<Globals *>(data);
    const std::string_view offered(interface);
    const auto bind = [&](const wl_interface &wanted) { return wl_registry_bind(registry, name, &wanted, 1); };
    if (offered == wl_compositor_interface.name)
        globals.compositor = static_cast<wl_compositor *>(bind(wl_compositor_interface));
    else if (offered == wl_shm_interface.name)
        globals.shm = static_cast<wl_shm *>(bind(wl_shm_interface));
    else if (offered == zqt_shell_v1_interface.name)
        globals.shell = static_cast<zqt_shell_v1 *>(bind(zqt_shell_v1_interface));
}
void onGlobalRemove(void *, wl_registry *, uint32_t) { }

wl_buffer *makeBuffer(wl_shm *shm, int memory)
{
    wl_shm_pool *pool = wl_shm_create_pool(shm, memory, kSize);
    return wl_shm_pool_create_buffer(pool, 0, kWidth, kHeight, kWidth * 4, WL_SHM_FORMAT_XRGB8888);
}

void commit(wl_surface *surface, wl_buffer *buffer)
{
    wl_surface_attach(surface, buffer, 0, 0);
    wl_surface_damage(surface, 0, 0, kWidth, kHeight);
    wl_surface_commit(surface);
}

int report(const char *what)
{
    std::printf("%s\n", what);
    std::fflush(stdout);
    return 0;
}

// Sends as fast as the socket takes it, and reads what has come: who does not is disconnected, and whose own buffer is
// full is aborted by the library.
bool exchange(wl_display *display)
{
    while (wl_display_prepare_read(display) != 0)
        wl_display_dispatch_pending(display);
    const bool isFull = wl_display_flush(display) < 0 && errno == EAGAIN;
    pollfd socket{wl_display_get_fd(display), short(isFull ? POLLIN | POLLOUT : POLLIN), 0};
    if (poll(&socket, 1, isFull ? -1 : 0) > 0 && (socket.revents & POLLIN) != 0)
        wl_display_read_events(display);
    else
        wl_display_cancel_read(display);
    return wl_display_dispatch_pending(display) >= 0;
}

}

int main(int argc, char **argv)
{
    const std::string_view mode(argc > 1 ? argv[1] : "");
    wl_display *display = wl_display_connect("tyx-screen-0");
    if (!display)
        return 1;
    Globals globals;
    constexpr wl_registry_listener listener{&onGlobal, &onGlobalRemove};
    wl_registry_add_listener(wl_display_get_registry(display), &listener, &globals);
    wl_display_roundtrip(display);
    wl_surface *surface = wl_compositor_create_surface(globals.compositor);
    zqt_shell_surface_v1 *window = zqt_shell_v1_surface_create(globals.shell, surface);
    zqt_shell_surface_v1_set_size(window, kWidth, kHeight);
    if (mode == "role")
        zqt_shell_v1_surface_create(globals.shell, surface);
    const int memory = memfd_create("picture", MFD_CLOEXEC);
    if (ftruncate(memory, kSize) != 0)
        return 1;
    wl_buffer *buffer = makeBuffer(globals.shm, memory);
    commit(surface, buffer);
    if (wl_display_roundtrip(display) < 0)
        return report("error");
    report("shown");
    if (mode == "truncate" && ftruncate(memory, 0) != 0)
        return 1;
    do {
        commit(surface, buffer);
        if (mode == "flood")
            zqt_shell_surface_v1_reposition(window, rand() % 1000, rand() % 1000);
    } while (mode == "flood" ? exchange(display) : wl_display_roundtrip(display) >= 0);
    return report("error");
}
