#include "Studio.h"

#include "app/model/Brushes.h"
#include "app/model/Colors.h"
#include "brush/BrushStroke.h"

#include <utility>

#include <QTabletEvent>

namespace qirn::hands {

using namespace test;

Studio::Studio(Devices& hands) : devices(hands) {
    view.setGeometry({{}, kScreen / view.devicePixelRatioF()});
    canvas().strokeSeed = [] { return uint64_t{1}; };
    qApp->installEventFilter(this);
    QTest::qWait(50);
    canvas().actualPixels();
    waitForHands();
}

void Studio::paint(const std::vector<StrokePoint>& points) {
    movePen(points[0]);
    pressPen(true);
    for (std::size_t i = 1; i < points.size(); ++i) movePen(points[i]);
}

void Studio::touch(const std::map<int, QPointF>& fingers) {
    const auto tell = [this](Devices::Touch what, int finger, QPointF at) {
        hear(QEvent::TouchUpdate, [&] { devices.touch(what, finger, at); });
    };
    for (const auto& [finger, at] : fingers) {
        const auto known = fingers_.find(finger);
        if (known == fingers_.end())
            tell(Devices::Touch::begin, finger, at);
        else if (known->second != at)
            tell(Devices::Touch::update, finger, at);
    }
    for (const auto& [finger, at] : std::exchange(fingers_, fingers)) {
        if (!fingers.contains(finger)) tell(Devices::Touch::end, finger, at);
    }
}

QString Studio::differenceFromEngine(const std::vector<std::vector<StrokePoint>>& strokes) {
    PaintDocument direct(400, 300, 72, PaintColor::white());
    for (const auto& stroke : strokes)
        paintStroke(direct, stroke, model.brushes().activeBrush(), model.colors().primary(), nullptr, 1);
    return firstDifference(*layer().toBuffer(), *direct.activeLayer().toBuffer());
}

bool Studio::eventFilter(QObject* watched, QEvent* event) {
    if (watched->isWindowType() || watched == qApp) ++heard(event->type());
    if (watched != &canvas()) return false;
    ++received[event->type()];
    if (event->type() == QEvent::TabletMove) {
        const auto& pen = static_cast<QTabletEvent&>(*event);
        moves.push_back({pen.position(), pen.pressure(), pen.xTilt(), pen.yTilt()});
    }
    return false;
}

int& Studio::heard(QEvent::Type type) {
    const bool touch = type == QEvent::TouchBegin || type == QEvent::TouchEnd;
    return heard_[touch ? QEvent::TouchUpdate : type];
}

} // namespace qirn::hands
