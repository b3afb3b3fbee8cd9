#pragma once
#include <array>
#include <cstdint>
#include <map>
#include <optional>

#include <QPointF>
#include <QProcess>
#include <QSize>
#include <QTemporaryDir>

namespace qirn::hands {

/// An X server that shows its screen to nobody, with a pen, a touch screen, a mouse and keys that a test moves.
class XServer {
public:
    /// Nothing when it runs; otherwise why it does not.
    std::optional<QString> start(QSize screen);
    ~XServer();

    QString display() const { return display_; }      ///< As ":7".
    QString folder() const { return folder_.path(); } ///< Where `XDevice` finds the devices.

private:
    QTemporaryDir folder_;
    QProcess process_;
    QString display_;
};

/// One of its devices, by the protocol of the server's inputtest driver. Calls return when the server has done all of it.
class XDevice {
public:
    XDevice(const QString& folder, const char* name); ///< "pen", "touch", "mouse" or "keys".
    ~XDevice();
    XDevice(const XDevice&) = delete;
    XDevice& operator=(const XDevice&) = delete;

    /// By the number of an axis. Those of places go from 0 to `kMost` across the screen, that of a pen's pressure, `kPressure`,
    /// to 1000; a mouse's say how far it was moved, and `kWheel` by how much of 120 its wheel was turned.
    using Axes = std::map<int, double>;
    static constexpr int kWheel = 3, kPressure = 4;
    static constexpr double kMost = 65535;

    void move(const Axes& axes);
    void moveSoon(const Axes& axes); ///< Returns at once.
    void button(int number, bool down);
    void proximity(bool in);
    void key(int code, bool down); ///< X11's code.
    enum class Touch : uint32_t { begin = 18, update = 19, end = 20 };
    void touch(Touch what, uint32_t finger, const Axes& axes);

private:
    template <class Message> void send(uint32_t kind, Message message);
    void sync();
    void write(const void* bytes, std::size_t count);
    void read(void* bytes, std::size_t count);

    int socket_ = -1;
    bool isAbsolute_;
};

} // namespace qirn::hands
