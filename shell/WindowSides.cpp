#include "shell/WindowSides.h"

#include "app/canvas/CanvasView.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "kit/QirnKit.h"
#include "kit/QrZoomHost.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <QApplication>
#include <QMainWindow>
#include <QMouseEvent>
#include <QTabletEvent>

namespace qirn {

namespace {

constexpr std::chrono::milliseconds kRest(150); // a pointer that only passes an edge brings nothing

/// The edge of the canvas that a point of it is at, if any.
std::optional<Qt::Edge> edgeAt(QPointF point, QSize canvas) {
    const double reach = QirnKitHost::metrics().tightGap;
    if (point.y() < reach) return Qt::TopEdge;
    if (point.y() >= canvas.height() - reach) return Qt::BottomEdge;
    if (point.x() < reach) return Qt::LeftEdge;
    if (point.x() >= canvas.width() - reach) return Qt::RightEdge;
    return std::nullopt;
}

} // namespace

WindowSides::WindowSides(PaintModel& model, QMainWindow& window, QrZoomHost& content, CanvasView& canvas,
                         std::vector<Side> sides)
    : QObject(&window),
      model_(model),
      window_(window),
      content_(content),
      canvas_(canvas),
      sides_(std::move(sides)) {
    rest_.setSingleShot(true);
    rest_.setInterval(kRest);
    connect(&rest_, &QTimer::timeout, this, guarding(model, [this] {
        const bool isDown = QGuiApplication::mouseButtons() != Qt::NoButton || model_.canvas().isBusy();
        if (!isDown) bringBack(edge_);
    }));
    connect(&model, &PaintModel::changed, this, guarding(model, [this] { show(); }));
    window.installEventFilter(this);
    canvas.installEventFilter(this);
}

bool WindowSides::eventFilter(QObject* watched, QEvent* event) {
    guarded(model_, [&] {
        switch (event->type()) {
        case QEvent::WindowStateChange:
            if (watched == &window_) followWindow();
            break;
        case QEvent::MouseMove:
        case QEvent::TabletMove: {
            if (watched != &canvas_) break;
            const auto& pointer = static_cast<const QSinglePointEvent&>(*event);
            if (pointer.buttons() == Qt::NoButton)
                pointerMoved(pointer.position());
            else
                rest_.stop();
            break;
        }
        case QEvent::MouseButtonPress: // of the canvas, or one that nothing on a side has taken
        case QEvent::TabletPress:
            rest_.stop();
            break;
        case QEvent::Leave:
            rest_.stop();
            if (watched == &window_ && !QApplication::activePopupWidget()) bringBack(std::nullopt);
            break;
        default:
            break;
        }
    });
    return false;
}

void WindowSides::followWindow() {
    if (window_.isFullScreen() == std::exchange(wasFullScreen_, window_.isFullScreen())) return;
    if (wasFullScreen_) hadPanels_ = !model_.panelsAreHidden();
    if (hadPanels_ && model_.panelsAreHidden() != wasFullScreen_) model_.togglePanels();
    bringBack(std::nullopt);
}

void WindowSides::pointerMoved(QPointF canvas) {
    if (broughtBack_) { // it has left the side, which gives the canvas its room back
        const QPointF global = canvas_.mapToGlobal(canvas);
        bringBack(std::nullopt);
        canvas = canvas_.mapFromGlobal(global);
    }
    const auto before = std::exchange(edge_, edgeAt(canvas, canvas_.size()));
    const bool isHidden = std::ranges::any_of(
        sides_, [this](const Side& side) { return edge_ == side.edge && side.widget->isHidden(); });
    if (!isHidden)
        rest_.stop();
    else if (edge_ != before || !rest_.isActive())
        rest_.start();
}

void WindowSides::bringBack(std::optional<Qt::Edge> edge) {
    broughtBack_ = edge;
    show();
}

bool WindowSides::isTaken(const Side& side) const {
    const bool hides =
        side.hiddenWith == HiddenWith::panels ? model_.panelsAreHidden() : window_.isFullScreen();
    return hides && broughtBack_ != side.edge;
}

void WindowSides::show() {
    if (std::ranges::all_of(sides_,
                            [this](const Side& side) { return side.widget->isHidden() == isTaken(side); }))
        return;
    canvas_.holdingThePicture([this] {
        const bool isAlone = window_.isFullScreen() && model_.panelsAreHidden();
        content_.setMinSize(isAlone ? QSize(0, 0) : QrZoomHost::kMinSize);
        for (const Side& side : sides_) {
            const bool taken = isTaken(side);
            if (taken && side.widget->isAncestorOf(window_.focusWidget())) canvas_.setFocus();
            side.widget->setHidden(taken);
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest); // lays the window out now
    });
}

} // namespace qirn
