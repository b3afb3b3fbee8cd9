#include "XDevices.h"

#include <cstring>

#include <QFile>
#include <QFileInfo>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace qirn::hands {

namespace {

const char kServer[] = "/usr/lib/xorg/Xorg"; // not the wrapper, which asks who sits at the console
constexpr int kSecondsToStart = 20;

const struct {
    const char *name, *options;
} kDevices[] = {{"pen stylus", R"(Option "DeviceType" "PointerAbsoluteProximity"
    Option "PointerHasPressure" "true")"},
                {"touch", R"(Option "DeviceType" "Touch"
    Option "TouchCount" "5")"},
                {"mouse", R"(Option "DeviceType" "Pointer"
    Option "AccelerationProfile" "-1")"},
                {"keys", R"(Option "DeviceType" "Keyboard")"}};

QString socketOf(const QString& folder, const char* device) {
    return folder + QLatin1Char('/') + QString::fromLatin1(device).section(' ', 0, 0);
}

QString configuration(const QString& folder, QSize screen) {
    QString text = QStringLiteral(R"(
Section "ServerFlags"
    Option "AutoAddDevices" "false"
EndSection
Section "Device"
    Identifier "memory"
    Driver "dummy"
    VideoRam 65536
EndSection
Section "Monitor"
    Identifier "monitor"
    HorizSync 1-1000
    VertRefresh 1-1000
    ModeLine "mode" 100 %1 %3 %4 %5 %2 %6 %7 %8
EndSection
Section "Screen"
    Identifier "screen"
    Device "memory"
    Monitor "monitor"
    DefaultDepth 24
    SubSection "Display"
        Depth 24
        Modes "mode"
        Virtual %1 %2
    EndSubSection
EndSection
)")
                       .arg(screen.width())
                       .arg(screen.height())
                       .arg(screen.width() + 50)
                       .arg(screen.width() + 100)
                       .arg(screen.width() + 150)
                       .arg(screen.height() + 5)
                       .arg(screen.height() + 10)
                       .arg(screen.height() + 15);
    QString layout;
    for (const auto& [name, options] : kDevices) {
        text += QStringLiteral("Section \"InputDevice\"\n    Identifier \"%1\"\n    Driver \"inputtest\"\n"
                               "    Option \"SocketPath\" \"%2\"\n    %3\nEndSection\n")
                    .arg(QLatin1String(name), socketOf(folder, name), QLatin1String(options));
        layout += QStringLiteral("    InputDevice \"%1\" \"SendCoreEvents\"\n").arg(QLatin1String(name));
    }
    return text +
           QStringLiteral(
               "Section \"ServerLayout\"\n    Identifier \"all\"\n    Screen \"screen\"\n%1EndSection\n")
               .arg(layout);
}

// The driver's messages, which have the layout of a 64-bit machine's C.

struct Head {
    uint32_t length = 0, kind = 0;
};
struct Values {
    uint32_t hasUnaccelerated = 0;
    uint8_t given[8] = {};
    double values[64] = {}, unaccelerated[64] = {};

    explicit Values(const XDevice::Axes& axes) {
        for (const auto& [axis, value] : axes) {
            given[axis / 8] |= static_cast<uint8_t>(1 << axis % 8);
            values[axis] = value;
        }
    }
};
struct Version {
    Head head;
    uint16_t major = 1, minor = 1;
};
struct Motion {
    Head head;
    uint32_t isAbsolute;
    Values values;
};
struct Button {
    Head head;
    int32_t isAbsolute, number;
    uint32_t isDown;
    Values values;
};
struct TouchPoint {
    Head head;
    uint32_t finger, what;
    Values values;
};
enum Kind : uint32_t { version, motion = 2, buttonChange = 4, touchChange = 6 };

} // namespace

std::optional<QString> XServer::start(QSize screen) {
    for (const char* file : {kServer, "/usr/lib/xorg/modules/drivers/dummy_drv.so",
                             "/usr/lib/xorg/modules/input/inputtest_drv.so"}) {
        if (!QFileInfo::exists(QString::fromLatin1(file)))
            return QStringLiteral("%1 is missing").arg(QLatin1String(file));
    }
    const QString config = folder_.filePath(QStringLiteral("xorg.conf")),
                  log = folder_.filePath(QStringLiteral("log"));
    QFile file(config);
    if (!file.open(QIODevice::WriteOnly)) return file.errorString();
    file.write(configuration(folder_.path(), screen).toUtf8());
    file.close();
    // A seat of its own has no console, which only one server can have.
    process_.start(QString::fromLatin1(kServer),
                   {QStringLiteral("-config"), config, QStringLiteral("-logfile"), log,
                    QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-seat"),
                    QStringLiteral("qirn-test"), QStringLiteral("-noreset"), QStringLiteral("-nolisten"),
                    QStringLiteral("tcp")});
    QByteArray number;
    while (!number.endsWith('\n') && process_.waitForReadyRead(kSecondsToStart * 1000))
        number += process_.readAllStandardOutput();
    if (!number.endsWith('\n')) {
        process_.kill();
        process_.waitForFinished();
        return QStringLiteral("it did not start: ") +
               QString::fromUtf8(process_.readAllStandardError().right(600));
    }
    display_ = QLatin1Char(':') + QString::fromLatin1(number.trimmed());
    return {};
}

XServer::~XServer() {
    process_.terminate();
    process_.waitForFinished();
}

XDevice::XDevice(const QString& folder, const char* name) : isAbsolute_(qstrcmp(name, "mouse") != 0) {
    socket_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, QFile::encodeName(socketOf(folder, name)).constData(),
             sizeof address.sun_path);
    if (::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        qFatal("No device of the X server at %s", address.sun_path);
    Version ours;
    send(version, ours);
    if (::recv(socket_, &ours, sizeof ours, MSG_WAITALL) != ssize_t{sizeof ours})
        qFatal("The X server gave no answer");
}

XDevice::~XDevice() {
    ::close(socket_);
}

template <class Message> void XDevice::send(uint32_t kind, Message message) {
    message.head = {sizeof message, kind};
    if (::write(socket_, &message, sizeof message) != ssize_t{sizeof message})
        qFatal("The X server took no event");
}

void XDevice::move(const Axes& axes) {
    send(motion, Motion{{}, isAbsolute_, Values(axes)});
}

void XDevice::button(int number, bool down) {
    send(buttonChange, Button{{}, 0, number, down, Values({})});
}

void XDevice::touch(Devices::Touch what, int finger, const Axes& axes) {
    send(touchChange,
         TouchPoint{{}, static_cast<uint32_t>(finger), 18 + static_cast<uint32_t>(what), Values(axes)});
}

} // namespace qirn::hands
