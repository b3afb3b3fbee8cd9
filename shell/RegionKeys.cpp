#include "shell/RegionKeys.h"

#include "platform/CheckedMath.h"

#include <utility>

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

namespace qirn {

namespace {

bool takesTab(const QWidget& widget) {
    return widget.isVisible() && widget.isEnabled() && (widget.focusPolicy() & Qt::TabFocus);
}

/// The region itself or the first control in it, in the order of the Tab key; null where nothing takes the keyboard.
QWidget* firstControl(QWidget* region) {
    if (takesTab(*region)) return region;
    for (QWidget* next = region->nextInFocusChain(); next != region; next = next->nextInFocusChain())
        if (region->isAncestorOf(next) && takesTab(*next)) return next;
    return nullptr;
}

} // namespace

RegionKeys::RegionKeys(QWidget& window, std::vector<QWidget*> regions)
    : QObject(&window),
      regions_(std::move(regions)) {
    window.installEventFilter(this);
}

bool RegionKeys::eventFilter(QObject*, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return false;
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() != Qt::Key_F6) return false;
    if (key->modifiers() == Qt::NoModifier) return focusNeighbor(1);
    return key->modifiers() == Qt::ShiftModifier && focusNeighbor(-1);
}

bool RegionKeys::focusNeighbor(int step) {
    const QWidget* focus = QApplication::focusWidget();
    const auto count = std::ssize(regions_);
    std::ptrdiff_t from = step > 0 ? -1 : count;
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        const QWidget* region = regions_[checkedSize(i)];
        if (focus && (region == focus || region->isAncestorOf(focus))) from = i;
    }
    for (std::ptrdiff_t steps = 1; steps <= count; ++steps) {
        QWidget* region = regions_[checkedSize((from + step * steps + 2 * count) % count)];
        QWidget* control = region->isVisible() ? firstControl(region) : nullptr;
        if (!control) continue;
        control->setFocus(step > 0 ? Qt::TabFocusReason : Qt::BacktabFocusReason);
        return true;
    }
    return false;
}

} // namespace qirn
