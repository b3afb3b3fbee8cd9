#pragma once
#include <atomic>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string_view>
#include <thread>
#include <vector>

#include <QImage>
#include <QRegion>
#include <QTemporaryDir>
#include <wayland-server.h>

namespace qirn::hands {

uint32_t millisecondsNow(); ///< Of events.

/// A Wayland compositor that shows its screen to nobody. It serves one client, on a thread of its own: the client's first
/// window fills the screen and has pen, fingers and mouse; its newest has the keys.
class WaylandCompositor {
public:
    WaylandCompositor(); ///< Sets the environment for a client in this process.
    ~WaylandCompositor();

    /// To be done on that thread, in turn, each when the client has read most of what was sent before.
    void post(std::function<void()> deed);
    QImage look(QRect part); ///< At what the first window shows, once all of that is done.

    // For deeds. What the client has not asked for is null.
    uint32_t serial() { return wl_display_next_serial(display_); }
    wl_resource* window() const { return windows_.empty() ? nullptr : windows_.front().surface; }
    void takeAway(); ///< Pen and mouse from the window.

    wl_resource *pointer = nullptr, *keyboard = nullptr, *touch = nullptr, *tablet = nullptr;
    wl_resource* tools[2] = {};         ///< The pen's tip and its eraser.
    wl_resource* toolInReach = nullptr; ///< Of the window.
    bool isPointerIn = false;

private:
    struct Surface {
        wl_resource* buffer = nullptr;
        QRegion damage;
        std::vector<wl_resource*> frames; // callbacks that wait for a commit
    };
    struct Window {
        wl_resource *surface, *shell, *toplevel;
    };

    template <const wl_interface& Interface, int Version> void offer();
    void serve();
    bool clientReads() const;
    static int take(const void*, void* target, uint32_t, const wl_message* request, wl_argument* arguments);
    wl_resource* make(wl_client* client, const wl_interface* interface, int version, uint32_t id);
    void answer(std::string_view request, wl_resource* resource, wl_argument* arguments, wl_resource* made);
    void introduce(wl_resource* made);
    void commit(wl_resource* surface);
    void addTablet(wl_resource* seat);
    void sendKeymap();
    void configureWindows();

    QTemporaryDir folder_;
    wl_display* display_ = nullptr;
    wl_client* client_ = nullptr;
    wl_event_source* waking_ = nullptr;
    int wake_ = -1;
    std::thread thread_;
    std::atomic<bool> ends_ = false;
    std::mutex mutex_; // of the deeds
    std::deque<std::function<void()>> deeds_;

    std::map<wl_resource*, Surface> surfaces_;
    std::vector<Window> windows_;
    wl_resource *newestSurface_ = nullptr, *withKeys_ = nullptr; // surfaces
    QImage shown_;
};

} // namespace qirn::hands
