#include "WaylandCompositor.h"

#include "Devices.h"
#include "tablet.h"
#include "xdg-shell.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <future>
#include <string>
#include <utility>

#include <QPainter>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <unistd.h>

namespace qirn::hands {

namespace {

const char kKeymap[] = R"(xkb_keymap {
    xkb_keycodes { minimum = 8; maximum = 255; <LFSH> = 50; };
    xkb_types { type "ONE_LEVEL" { modifiers = none; level_name[Level1] = "Any"; }; };
    xkb_compatibility {};
    xkb_symbols { key <LFSH> { [ Shift_L ] }; modifier_map Shift { <LFSH> }; };
};)";

} // namespace

uint32_t millisecondsNow() {
    using namespace std::chrono;
    return static_cast<uint32_t>(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

// --- The thread

template <const wl_interface& Interface, int Version> void WaylandCompositor::offer() {
    wl_global_create(display_, &Interface, Version, this,
                     [](wl_client* client, void* self, uint32_t version, uint32_t id) {
                         auto& world = *static_cast<WaylandCompositor*>(self);
                         world.client_ = client;
                         world.introduce(world.make(client, &Interface, static_cast<int>(version), id));
                     });
}

WaylandCompositor::WaylandCompositor() : display_(wl_display_create()), wake_(::eventfd(0, EFD_CLOEXEC)) {
    qputenv("XDG_RUNTIME_DIR", folder_.path().toLocal8Bit());
    qputenv("WAYLAND_DISPLAY", wl_display_add_socket_auto(display_));
    wl_display_init_shm(display_);
    offer<wl_compositor_interface, 4>();
    offer<wl_output_interface, 2>();
    offer<xdg_wm_base_interface, 1>();
    offer<wl_seat_interface, 8>();
    offer<zwp_tablet_manager_v2_interface, 1>(); // after the seats, without which Qt takes none
    const auto woken = [](int wake, uint32_t, void*) {
        eventfd_t count = 0;
        return ::eventfd_read(wake, &count);
    };
    waking_ =
        wl_event_loop_add_fd(wl_display_get_event_loop(display_), wake_, WL_EVENT_READABLE, woken, nullptr);
    thread_ = std::thread([this] { serve(); });
}

WaylandCompositor::~WaylandCompositor() {
    ends_ = true;
    ::eventfd_write(wake_, 1);
    thread_.join();
    wl_event_source_remove(waking_);
    wl_display_destroy_clients(display_);
    wl_display_destroy(display_);
    ::close(wake_);
}

void WaylandCompositor::post(std::function<void()> deed) {
    {
        const std::lock_guard lock(mutex_);
        deeds_.push_back(std::move(deed));
    }
    ::eventfd_write(wake_, 1);
}

QImage WaylandCompositor::look(QRect part) {
    std::promise<QImage> seen;
    post([&] { seen.set_value(shown_.copy(part)); });
    return seen.get_future().get();
}

/// What a client does not read is kept for it only so long: then the library ends it.
bool WaylandCompositor::clientReads() const {
    pollfd socket{client_ ? wl_client_get_fd(client_) : -1, POLLOUT, 0};
    return !client_ || ::poll(&socket, 1, 0) == 1;
}

void WaylandCompositor::serve() {
    while (!ends_) {
        std::function<void()> deed;
        int wait = -1; // milliseconds, for ever
        {
            const std::lock_guard lock(mutex_);
            if (!deeds_.empty()) wait = 1;
            if (!deeds_.empty() && clientReads()) {
                deed = std::move(deeds_.front());
                deeds_.pop_front();
                wait = 0;
            }
        }
        if (deed) deed();
        wl_display_flush_clients(display_);
        wl_event_loop_dispatch(wl_display_get_event_loop(display_), wait);
        wl_display_flush_clients(display_);
    }
}

// --- What the client asks for

wl_resource* WaylandCompositor::make(wl_client* client, const wl_interface* interface, int version,
                                     uint32_t id) {
    wl_resource* const made =
        wl_resource_create(client, interface, std::min(version, interface->version), id);
    wl_resource_set_dispatcher(made, &WaylandCompositor::take, nullptr, this, nullptr);
    return made;
}

/// Every request comes here. What it asks to be made is made; those few that need an answer get one.
int WaylandCompositor::take(const void*, void* target, uint32_t, const wl_message* request,
                            wl_argument* arguments) {
    auto* const resource = static_cast<wl_resource*>(target);
    auto& world = *static_cast<WaylandCompositor*>(wl_resource_get_user_data(resource));
    wl_resource* made = nullptr;
    int index = 0;
    for (const char* type = request->signature; *type; ++type) {
        if (std::isdigit(*type) || *type == '?') continue;
        if (*type == 'n')
            made = world.make(wl_resource_get_client(resource), request->types[index],
                              wl_resource_get_version(resource), arguments[index].n);
        ++index;
    }
    world.answer(std::string(wl_resource_get_class(resource)) + '.' + request->name, resource, arguments,
                 made);
    return 0;
}

void WaylandCompositor::introduce(wl_resource* made) {
    const std::string_view kind = wl_resource_get_class(made);
    if (kind == "wl_seat")
        wl_seat_send_capabilities(made, WL_SEAT_CAPABILITY_POINTER | WL_SEAT_CAPABILITY_KEYBOARD |
                                            WL_SEAT_CAPABILITY_TOUCH);
    if (kind != "wl_output") return;
    wl_output_send_geometry(made, 0, 0, 400, 250, WL_OUTPUT_SUBPIXEL_UNKNOWN, "none", "none",
                            WL_OUTPUT_TRANSFORM_NORMAL);
    wl_output_send_mode(made, WL_OUTPUT_MODE_CURRENT, kScreen.width(), kScreen.height(), 60000);
    wl_output_send_done(made);
}

void WaylandCompositor::answer(std::string_view request, wl_resource* resource, wl_argument* arguments,
                               wl_resource* made) {
    const auto object = [&](int i) { return reinterpret_cast<wl_resource*>(arguments[i].o); };
    if (request == "wl_surface.attach") {
        surfaces_[resource].buffer = object(0);
    } else if (request == "wl_surface.damage" || request == "wl_surface.damage_buffer") {
        surfaces_[resource].damage +=
            QRect(arguments[0].i, arguments[1].i, arguments[2].i, arguments[3].i) & QRect({}, kScreen);
    } else if (request == "wl_surface.frame") {
        surfaces_[resource].frames.push_back(made);
    } else if (request == "wl_surface.commit") {
        commit(resource);
    } else if (request == "xdg_wm_base.get_xdg_surface") {
        newestSurface_ = object(1);
    } else if (request == "xdg_surface.get_toplevel") {
        windows_.push_back({newestSurface_, resource, made});
        configureWindows();
    } else if (request == "xdg_surface.get_popup") {
        xdg_popup_send_configure(made, 0, 0, 100, 100);
        xdg_surface_send_configure(resource, serial());
    } else if (request == "wl_seat.get_pointer") {
        pointer = made;
    } else if (request == "wl_seat.get_touch") {
        touch = made;
    } else if (request == "wl_seat.get_keyboard") {
        keyboard = made;
        sendKeymap();
    } else if (request == "zwp_tablet_manager_v2.get_tablet_seat") {
        addTablet(made);
    } else if (request == "xdg_toplevel.destroy") {
        if (resource == windows_.front().toplevel) takeAway();
        std::erase_if(windows_, [&](const Window& window) { return window.toplevel == resource; });
        configureWindows();
    }
    if (request.ends_with(".destroy") || request.ends_with(".release")) {
        surfaces_.erase(resource);
        wl_resource_destroy(resource);
    }
}

void WaylandCompositor::commit(wl_resource* resource) {
    Surface& surface = surfaces_[resource];
    wl_shm_buffer* const pixels = surface.buffer ? wl_shm_buffer_get(surface.buffer) : nullptr;
    if (pixels && resource == window()) {
        wl_shm_buffer_begin_access(pixels);
        const QImage image(static_cast<const uchar*>(wl_shm_buffer_get_data(pixels)),
                           wl_shm_buffer_get_width(pixels), wl_shm_buffer_get_height(pixels),
                           wl_shm_buffer_get_stride(pixels), QImage::Format_RGB32);
        if (shown_.size() != image.size()) shown_ = QImage(image.size(), image.format());
        QPainter painter(&shown_);
        for (const QRect& rect : surface.damage) painter.drawImage(rect, image, rect);
        wl_shm_buffer_end_access(pixels);
    }
    if (surface.buffer) wl_buffer_send_release(surface.buffer);
    surface.buffer = nullptr;
    surface.damage = {};
    for (wl_resource* frame : std::exchange(surface.frames, {})) {
        wl_callback_send_done(frame, millisecondsNow());
        wl_resource_destroy(frame);
    }
}

// --- The seat

void WaylandCompositor::addTablet(wl_resource* seat) {
    wl_client* const client = wl_resource_get_client(seat);
    tablet = make(client, &zwp_tablet_v2_interface, 1, 0);
    zwp_tablet_seat_v2_send_tablet_added(seat, tablet);
    zwp_tablet_v2_send_name(tablet, "tablet");
    zwp_tablet_v2_send_done(tablet);
    for (const uint32_t end : {0u, 1u}) {
        wl_resource* const tool = tools[end] = make(client, &zwp_tablet_tool_v2_interface, 1, 0);
        zwp_tablet_seat_v2_send_tool_added(seat, tool);
        zwp_tablet_tool_v2_send_type(tool,
                                     end == 0 ? ZWP_TABLET_TOOL_V2_TYPE_PEN : ZWP_TABLET_TOOL_V2_TYPE_ERASER);
        zwp_tablet_tool_v2_send_hardware_serial(tool, 1, end + 1);
        zwp_tablet_tool_v2_send_capability(tool, ZWP_TABLET_TOOL_V2_CAPABILITY_PRESSURE);
        zwp_tablet_tool_v2_send_capability(tool, ZWP_TABLET_TOOL_V2_CAPABILITY_TILT);
        zwp_tablet_tool_v2_send_done(tool);
    }
}

void WaylandCompositor::sendKeymap() {
    const int file = ::memfd_create("keymap", MFD_CLOEXEC);
    if (::write(file, kKeymap, sizeof kKeymap) != ssize_t{sizeof kKeymap}) qFatal("No room for a keymap");
    wl_keyboard_send_keymap(keyboard, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file, sizeof kKeymap);
    ::close(file);
    wl_keyboard_send_repeat_info(keyboard, 0, 0);
}

void WaylandCompositor::configureWindows() {
    wl_array states, keys;
    wl_array_init(&states);
    wl_array_init(&keys);
    *static_cast<uint32_t*>(wl_array_add(&states, sizeof(uint32_t))) = XDG_TOPLEVEL_STATE_MAXIMIZED;
    for (const Window& window : windows_) {
        if (&window == &windows_.back())
            *static_cast<uint32_t*>(wl_array_add(&states, sizeof(uint32_t))) = XDG_TOPLEVEL_STATE_ACTIVATED;
        xdg_toplevel_send_configure(window.toplevel, kScreen.width(), kScreen.height(), &states);
        xdg_surface_send_configure(window.shell, serial());
    }
    wl_array_release(&states);
    wl_resource* const before =
        std::exchange(withKeys_, windows_.empty() ? nullptr : windows_.back().surface);
    if (before == withKeys_) return;
    if (before) wl_keyboard_send_leave(keyboard, serial(), before);
    if (withKeys_) wl_keyboard_send_enter(keyboard, serial(), withKeys_, &keys);
}

void WaylandCompositor::takeAway() {
    if (wl_resource* const tool = std::exchange(toolInReach, nullptr)) {
        zwp_tablet_tool_v2_send_proximity_out(tool);
        zwp_tablet_tool_v2_send_frame(tool, millisecondsNow());
    }
    if (!std::exchange(isPointerIn, false)) return;
    wl_pointer_send_leave(pointer, serial(), window());
    wl_pointer_send_frame(pointer);
}

} // namespace qirn::hands
