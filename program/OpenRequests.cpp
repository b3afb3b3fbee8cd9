#include "program/OpenRequests.h"

#include "app/files/LongTask.h"
#include "app/model/CanvasPort.h"
#include "app/model/Guarded.h"
#include "app/model/PaintModel.h"
#include "app/model/PictureFiles.h"
#include "program/X11Activation.h"

#include <algorithm>
#include <utility>

#include <QApplication>

namespace qirn {

namespace {

constexpr int kLookEvery = 50; // milliseconds

} // namespace

OpenRequests::OpenRequests(PaintModel& model, QWidget& window) : model_(model), window_(&window) {
    timer_.setInterval(kLookEvery);
    connect(&timer_, &QTimer::timeout, this, [this] { serve(); });
}

void OpenRequests::open(const QStringList& paths) {
    if (paths.isEmpty()) return;
    waiting_ << paths;
    timer_.start();
}

void OpenRequests::show(PaintSheet::Kind sheet) {
    const bool isUp = model_.sheet() && model_.sheet()->kind == sheet;
    if (isUp || std::ranges::find(waitingSheets_, sheet) != waitingSheets_.end()) return;
    waitingSheets_.push_back(sheet);
    timer_.start();
}

bool OpenRequests::isFree() const {
    return !isOpening_ && !model_.sheet() && !model_.longTask().isRunning() &&
           !model_.canvas().isInGesture() && !QApplication::activeModalWidget() &&
           !QApplication::activePopupWidget() && QGuiApplication::mouseButtons() == Qt::NoButton;
}

void OpenRequests::serve() {
    if (!isFree()) return;
    isOpening_ = true; // questions are asked meanwhile, in loops of their own
    guarded(model_, [this] { model_.files().open(std::exchange(waiting_, {})); });
    isOpening_ = false;
    if (waiting_.isEmpty() && !waitingSheets_.empty() && isFree()) {
        const PaintSheet sheet{waitingSheets_.front()};
        waitingSheets_.erase(waitingSheets_.begin());
        guarded(model_, [&] { model_.showSheet(sheet); });
    }
    if (waiting_.isEmpty() && waitingSheets_.empty()) timer_.stop();
}

void OpenRequests::comeForward(const QByteArray& token) {
    if (!window_) return;
    // Where Wayland's part of Qt looks for it.
    if (!token.isEmpty()) qputenv("XDG_ACTIVATION_TOKEN", token);
    QWidget* const question = QApplication::activeModalWidget();
    QWidget& front = question ? *question : *window_;
    window_->setWindowState(window_->windowState() & ~Qt::WindowMinimized);
    window_->show();
    front.raise();
    front.activateWindow();
    if (!comeForwardOnX11(front, token))
        QApplication::alert(&front); // where the desktop does not let it come
}

} // namespace qirn
