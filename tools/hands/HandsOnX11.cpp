// The hands on an X server that is started for them. HandsOnX11 [FOLDER]: with a folder, pictures of the screen are left in it.
// Ends with 77 where there is no such server.
#include "Hands.h"
#include "XDesktop.h"
#include "XDevices.h"

#include <cstdio>

#include <QCursor>
#include <QScreen>

namespace qirn::hands {

namespace {

class XHands : public Devices {
public:
    explicit XHands(const QString& folder)
        : pen_(folder, "pen"),
          touchScreen_(folder, "touch"),
          mouse_(folder, "mouse") {}

    int mostTilt() const override { return 0; }
    void movePen(const Pen& pen) override {
        XDevice::Axes axes = axesAt(pen.place);
        axes[XDevice::kPressure] = pen.pressure * 1000;
        pen_.move(axes);
    }
    void pressPen(bool down, Qt::MouseButton button) override {
        pen_.button(button == Qt::LeftButton ? 1 : 3, down);
    }
    void touch(Touch what, int finger, QPointF place) override {
        touchScreen_.touch(what, finger, axesAt(place));
    }
    void moveMouse(QPointF place) override {
        const QPointF by = place - QCursor::pos();
        mouse_.move({{0, by.x()}, {1, by.y()}});
    }
    void pressMouse(bool down) override { mouse_.button(1, down); }
    void turnWheel(int notches) override { mouse_.move({{XDevice::kWheel, -120.0 * notches}}); }
    QImage screen() override { return shown({{}, kScreen}); }
    QRgb pixel(QPoint place) override { return shown({place, QSize(1, 1)}).pixel(0, 0); }

private:
    static XDevice::Axes axesAt(QPointF place) {
        return {{0, place.x() * XDevice::kMost / kScreen.width()},
                {1, place.y() * XDevice::kMost / kScreen.height()}};
    }
    static QImage shown(QRect part) {
        return QGuiApplication::primaryScreen()
            ->grabWindow(0, part.x(), part.y(), part.width(), part.height())
            .toImage();
    }

    XDevice pen_, touchScreen_, mouse_;
};

} // namespace

} // namespace qirn::hands

int main(int argc, char** argv) {
    using namespace qirn::hands;
    XServer server;
    if (const auto why = server.start(kScreen)) {
        std::printf("No X server with devices of its own: %s\n", qPrintable(*why));
        return 77;
    }
    qputenv("DISPLAY", server.display().toLatin1());
    const auto app = applicationOn("xcb", argv);
    XHands devices(server.folder());
    Hands hands(devices, QString::fromLocal8Bit(argc > 1 ? argv[1] : ""));
    const QStringList program(app->arguments().first());
    XDesktop desktop;
    return QTest::qExec(&hands, program) + QTest::qExec(&desktop, program);
}
