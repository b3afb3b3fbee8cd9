#include "shell/panels/color/SwatchGrid.h"

#include "app/desktop/HostWords.h"
#include "kit/QirnKit.h"
#include "kit/style/ChromePaint.h"
#include "shell/ShownColor.h"
#include "shell/panels/color/SwatchAccess.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QAccessible>
#include <QApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollArea>
#include <QToolTip>

namespace qirn {

namespace {

constexpr double kSide = 22; // of a cell at zoom 1, at least: a row is filled
constexpr int kPageRows = 5;

bool looksAs(const PaintColor& a, const PaintColor& b) {
    return a.r8() == b.r8() && a.g8() == b.g8() && a.b8() == b.b8();
}

} // namespace

SwatchGrid::SwatchGrid(const QString& objectName, const QString& accessibleName, Editing editing,
                       QWidget* parent)
    : QWidget(parent),
      editing_(editing) {
    installSwatchAccess();
    setObjectName(objectName);
    setAccessibleName(accessibleName);
    setFocusPolicy(Qt::TabFocus);
    setMouseTracking(true);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void SwatchGrid::setColors(const std::vector<PaletteColor>& colors) {
    if (colors == colors_) return;
    const bool isOtherSize = colors.size() != colors_.size();
    colors_ = colors;
    pressed_ = hovered_ = gap_ = chosen_ = -1;
    dragging_ = false;
    current_ = std::clamp(current_, colors_.empty() ? -1 : 0, count() - 1);
    if (const auto chosen = std::exchange(chosenColor_, std::nullopt)) setChosen(*chosen);
    if (isOtherSize) updateGeometry();
    update();
}

void SwatchGrid::setChosen(const PaintColor& color) {
    if (chosenColor_ == color) return;
    chosenColor_ = color;
    const auto found = std::find_if(colors_.begin(), colors_.end(),
                                    [&](const PaletteColor& each) { return looksAs(each.color, color); });
    const int chosen = found == colors_.end() ? -1 : static_cast<int>(found - colors_.begin());
    if (chosen == chosen_) return;
    updateCell(std::exchange(chosen_, chosen));
    updateCell(chosen_);
}

QString SwatchGrid::nameOf(int index) const {
    const PaletteColor& color = colors_[static_cast<std::size_t>(index)];
    return (color.name + u' ' + color.color.hex()).trimmed();
}

// --- Where the colors stand

int SwatchGrid::columns(int width) const {
    // A pixel more: the width is rounded to whole pixels at each zoom, and no zoom shall have a column less.
    return std::max(1, static_cast<int>((width + 1) / (kSide * QirnKitHost::metrics().zoom)));
}

QRectF SwatchGrid::cell(int index) const {
    const int across = columns(width());
    const double side = static_cast<double>(width()) / across;
    return {index % across * side, index / across * side, side, side};
}

int SwatchGrid::heightForWidth(int width) const {
    const int across = columns(width);
    const int rows = (count() + across - 1) / across;
    return static_cast<int>(std::ceil(rows * (static_cast<double>(width) / across)));
}

QSize SwatchGrid::sizeHint() const {
    const int wide = QirnKitHost::metrics().px(10 * kSide);
    return {wide, heightForWidth(wide)};
}

QSize SwatchGrid::minimumSizeHint() const {
    return {QirnKitHost::metrics().px(4 * kSide), 0};
}

int SwatchGrid::indexAt(QPointF position) const {
    if (!QRectF(rect()).contains(position) || width() == 0) return -1;
    const int across = columns(width());
    const double side = static_cast<double>(width()) / across;
    const int column = std::min(across - 1, static_cast<int>(position.x() / side));
    const int index = static_cast<int>(position.y() / side) * across + column;
    return index < count() ? index : -1;
}

int SwatchGrid::gapAt(QPointF position) const {
    const double side = cell(0).width();
    if (!QRectF(rect()).adjusted(-side, -side, side, side).contains(position)) return -1;
    const int across = columns(width());
    const int column = std::clamp(static_cast<int>(std::lround(position.x() / side)), 0, across);
    const int row = std::max(0, static_cast<int>(position.y() / side));
    return std::min(row * across + column, count());
}

void SwatchGrid::updateCell(int index) {
    if (index >= 0) update(cell(index).toAlignedRect());
}

void SwatchGrid::setHovered(int index) {
    if (index == hovered_) return;
    updateCell(std::exchange(hovered_, index));
    updateCell(hovered_);
}

void SwatchGrid::setCurrent(int index) {
    if (colors_.empty()) return;
    updateCell(current_);
    current_ = std::clamp(index, 0, count() - 1);
    updateCell(current_);
    const QRect place = cell(current_).toAlignedRect();
    for (QWidget* above = parentWidget(); above; above = above->parentWidget()) {
        auto* area = qobject_cast<QScrollArea*>(above);
        if (!area) continue;
        const QPoint middle = mapTo(area->widget(), place.center());
        area->ensureVisible(middle.x(), middle.y(), place.width(), place.height());
    }
    if (!QAccessible::isActive()) return;
    QAccessibleEvent focus(this, QAccessible::Focus);
    focus.setChild(current_);
    QAccessible::updateAccessibility(&focus);
}

// --- Mouse and pen

void SwatchGrid::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return event->ignore();
    pressed_ = indexAt(event->position());
    pressedAt_ = event->position();
}

void SwatchGrid::mouseMoveEvent(QMouseEvent* event) {
    setHovered(pressed_ < 0 ? indexAt(event->position()) : pressed_);
    if (pressed_ < 0 || !canReorder_) return;
    const QPointF way = event->position() - pressedAt_;
    dragging_ = dragging_ || way.manhattanLength() >= QApplication::startDragDistance();
    if (!dragging_ || gap_ == gapAt(event->position())) return;
    gap_ = gapAt(event->position());
    update();
}

void SwatchGrid::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || pressed_ < 0) return;
    const int pressed = std::exchange(pressed_, -1), gap = std::exchange(gap_, -1);
    update();
    if (std::exchange(dragging_, false)) {
        const int to = gap > pressed ? gap - 1 : gap; // the place among the others
        if (gap >= 0 && to != pressed) Q_EMIT moved(pressed, to);
    } else if (indexAt(event->position()) == pressed) {
        setCurrent(pressed);
        Q_EMIT picked(pressed);
    }
}

void SwatchGrid::leaveEvent(QEvent*) {
    setHovered(-1);
}

void SwatchGrid::contextMenuEvent(QContextMenuEvent* event) {
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    const int index = byKey ? current_ : indexAt(event->pos());
    if (editing_ == Editing::no || index < 0) return event->ignore();
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setObjectName(QStringLiteral("swatchMenu"));
    connect(menu->addAction(tr("Remove from palette")), &QAction::triggered, this,
            [this, index] { Q_EMIT removed(index); });
    menu->popup(byKey ? mapToGlobal(cell(index).center().toPoint()) : event->globalPos());
}

bool SwatchGrid::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        const int index = indexAt(help->pos());
        if (index < 0)
            QToolTip::hideText();
        else
            QToolTip::showText(help->globalPos(), plainTip(nameOf(index)), this, cell(index).toAlignedRect());
        return true;
    }
    return QWidget::event(event);
}

// --- Keyboard

void SwatchGrid::keyPressEvent(QKeyEvent* event) {
    const int across = columns(width());
    const bool moves = editing_ == Editing::yes && canReorder_ && event->modifiers() == Qt::AltModifier;
    const auto step = [&](int by) {
        const int to = current_ + by;
        if (to < 0 || to >= count()) return;
        if (moves) Q_EMIT moved(current_, to); // the mark stays with the color
        setCurrent(to);
    };
    switch (event->key()) {
    case Qt::Key_Left:
        return step(-1);
    case Qt::Key_Right:
        return step(1);
    case Qt::Key_Up:
        return step(-across);
    case Qt::Key_Down:
        return step(across);
    case Qt::Key_PageUp:
        return setCurrent(current_ - kPageRows * across);
    case Qt::Key_PageDown:
        return setCurrent(current_ + kPageRows * across);
    case Qt::Key_Home:
        return setCurrent(0);
    case Qt::Key_End:
        return setCurrent(count() - 1);
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (current_ >= 0) Q_EMIT picked(current_);
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

void SwatchGrid::focusInEvent(QFocusEvent* event) {
    if (current_ < 0) current_ = std::max(0, chosen_);
    setCurrent(current_);
    QWidget::focusInEvent(event);
}

// --- Drawing

void SwatchGrid::paintEvent(QPaintEvent* event) {
    if (colors_.empty()) return;
    QPainter painter(this);
    const int across = columns(width());
    const double side = cell(0).width();
    const int top = static_cast<int>(event->rect().top() / side);
    const int bottom = static_cast<int>(event->rect().bottom() / side);
    const int end = std::min(count(), (bottom + 1) * across);
    for (int i = top * across; i < end; ++i) drawSwatch(painter, i);
    if (gap_ >= 0) drawGap(painter);
}

void SwatchGrid::drawSwatch(QPainter& painter, int index) const {
    const Metrics& m = QirnKitHost::metrics();
    const ChromeColors& c = QirnKitHost::colors();
    const QRectF whole = cell(index);
    const QRectF swatch = whole.adjusted(m.px(1), m.px(1), -m.px(1), -m.px(1));
    if (index == chosen_) { // a ring with a gap of the panel's color keeps off any color
        ChromePaint::box(painter, swatch, m.smallRadius, c.text);
        ChromePaint::box(painter, swatch.adjusted(m.inset, m.inset, -m.inset, -m.inset), m.inset, c.panel);
    }
    const double gap = index == chosen_ ? m.px(3) : m.px(1);
    ChromePaint::box(painter, swatch.adjusted(gap, gap, -gap, -gap), m.inset,
                     shownColor(colors_[static_cast<std::size_t>(index)].color),
                     index == hovered_ ? c.text : c.edge);
    if (index == current_ && hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange))
        ChromePaint::focusRing(painter, whole, m.smallRadius);
}

/// The line between two colors where a drag ends.
void SwatchGrid::drawGap(QPainter& painter) const {
    const Metrics& m = QirnKitHost::metrics();
    const bool atEnd = gap_ == count();
    const QRectF beside = cell(atEnd ? gap_ - 1 : gap_);
    const double x =
        std::clamp(atEnd ? beside.right() : beside.left(), m.focusWidth / 2.0, width() - m.focusWidth / 2.0);
    const QRectF line(x - m.focusWidth / 2.0, beside.top(), m.focusWidth, beside.height());
    painter.fillRect(ChromePaint::snapped(painter, line), QirnKitHost::colors().focus);
}

} // namespace qirn
