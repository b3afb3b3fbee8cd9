#pragma once
#include "Devices.h"

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

/// One of its devices, by the protocol of the server's inputtest driver, which takes one connection in its life.
class XDevice {
public:
    XDevice(const QString& folder, const char* name); ///< "pen", "touch" or "mouse".
    ~XDevice();
    XDevice(const XDevice&) = delete;
    XDevice& operator=(const XDevice&) = delete;

    /// By the number of an axis. Those of places go from 0 to `kMost` across the screen, that of a pen's pressure, `kPressure`,
    /// to 1000; a mouse's say how far it was moved, and `kWheel` by how much of 120 its wheel was turned.
    using Axes = std::map<int, double>;
    static constexpr int kWheel = 3, kPressure = 4;
    static constexpr double kMost = 65535;

    void move(const Axes& axes);
    void button(int number, bool down);
    void touch(Devices::Touch what, int finger, const Axes& axes);

private:
    template <class Message> void send(uint32_t kind, Message message);

    int socket_ = -1;
    bool isAbsolute_;
};

} // namespace qirn::hands
