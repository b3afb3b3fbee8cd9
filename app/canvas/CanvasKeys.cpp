// The plain keys of the canvas. Keys with Command, Option or Control go on to the menus.
#include "app/canvas/CanvasView.h"

#include "app/desktop/keys/TypedKeys.h"
#include "app/edits/CanvasEdits.h"
#include "app/edits/LayerEdits.h"
#include "app/files/DocSession.h"
#include "app/model/Brushes.h"
#include "app/model/Colors.h"
#include "app/model/PaintModel.h"
#include "app/model/PendingTransform.h"

#include <algorithm>
#include <cmath>

#include <QKeyEvent>

namespace qirn {

namespace {

void scaleBrush(PaintModel& model, double size) {
    BrushSettings brush = model.brushes().activeBrush();
    brush.size = size;
    model.brushes().setActiveBrush(brush);
}

void makeBrushSmaller(PaintModel& model) {
    scaleBrush(model, std::max(std::round(model.brushes().activeBrush().size * 0.85), 1.0));
}

void makeBrushLarger(PaintModel& model) {
    const double size = model.brushes().activeBrush().size;
    scaleBrush(model, std::min(std::max(std::round(size * 1.18), size + 1), 1000.0));
}

struct CharacterKey {
    char16_t character; // lower case
    void (*action)(CanvasView&, PaintModel&, std::optional<QPointF> pointer);
};

constexpr double kTurnStep = 15; // degrees

constexpr CharacterKey kCharacterKeys[] = {
    {u'[', [](CanvasView&, PaintModel& model, std::optional<QPointF>) { makeBrushSmaller(model); }},
    {u']', [](CanvasView&, PaintModel& model, std::optional<QPointF>) { makeBrushLarger(model); }},
    {u'=',
     [](CanvasView& view, PaintModel&, std::optional<QPointF> pointer) { view.zoomStep(true, pointer); }},
    {u'+',
     [](CanvasView& view, PaintModel&, std::optional<QPointF> pointer) { view.zoomStep(true, pointer); }},
    {u'-',
     [](CanvasView& view, PaintModel&, std::optional<QPointF> pointer) { view.zoomStep(false, pointer); }},
    {u'_',
     [](CanvasView& view, PaintModel&, std::optional<QPointF> pointer) { view.zoomStep(false, pointer); }},
    {u'x', [](CanvasView&, PaintModel& model, std::optional<QPointF>) { model.colors().swapColors(); }},
    {u'f', [](CanvasView& view, PaintModel&, std::optional<QPointF>) { view.fit(); }},
    {u'1', [](CanvasView& view, PaintModel&, std::optional<QPointF>) { view.actualPixels(); }},
    {u',', [](CanvasView& view, PaintModel&, std::optional<QPointF>) { view.rotateView(-kTurnStep); }},
    {u'.', [](CanvasView& view, PaintModel&, std::optional<QPointF>) { view.rotateView(kTurnStep); }},
    {u'/', [](CanvasView& view, PaintModel&, std::optional<QPointF>) { view.setRotation(0); }},
    {u'w', [](CanvasView& view, PaintModel&, std::optional<QPointF>) { view.toggleFlipView(); }},
};

} // namespace

void CanvasView::keyPressEvent(QKeyEvent* event) {
    if (!handleKeyPress(event)) QWidget::keyPressEvent(event);
}

void CanvasView::keyReleaseEvent(QKeyEvent* event) {
    if (!handleKeyRelease(event)) QWidget::keyReleaseEvent(event);
}

bool CanvasView::handleKeyPress(QKeyEvent* event) {
    bool taken = true; // a failure is no reason to hand the key on
    guarded(model_, [&] { taken = keyPressed(event); });
    return taken;
}

bool CanvasView::handleKeyRelease(QKeyEvent* event) {
    bool taken = true;
    guarded(model_, [&] { taken = keyReleased(event); });
    return taken;
}

bool CanvasView::handleKeyOfWindow(QKeyEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        // Tab would leave the canvas, as Shift+Tab does.
        if (event->key() != Qt::Key_Tab || event->modifiers() != Qt::NoModifier) return false;
        if (!isPressed() && !event->isAutoRepeat()) model_.togglePanels();
        return true;
    }
    // A menu bar that hears of Alt opens when the key comes up.
    if (event->key() != Qt::Key_Alt || !isPressed()) return false;
    event->accept();
    return true;
}

bool CanvasView::keyPressed(QKeyEvent* event) {
    if (event->key() == Qt::Key_Space) {
        if (!event->isAutoRepeat()) setSpaceDown(true);
        return true;
    }
    if (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return false;
    return handleNamedKey(event) || handleCharacter(event);
}

bool CanvasView::keyReleased(QKeyEvent* event) {
    if (event->key() != Qt::Key_Space) return false;
    if (!event->isAutoRepeat()) setSpaceDown(false);
    return true;
}

bool CanvasView::handleNamedKey(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!model_.transform().state()) return false;
        model_.transform().applyTransform();
        return true;
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
        return nudge(event->key(), event->modifiers().testFlag(Qt::ShiftModifier) ? 10 : 1);
    case Qt::Key_Backspace:
    case Qt::Key_Delete:
        LayerEdits::clearLayer(model_);
        return true;
    case Qt::Key_Escape:
        if (model_.transform().state())
            model_.transform().cancelTransform();
        else if (phase_.isIdle())
            CanvasEdits::deselect(model_);
        else
            cancelGesture();
        return true;
    default:
        return false;
    }
}

bool CanvasView::nudge(int key, int step) {
    if (!model_.transform().state() && model_.tool() == Tool::move) model_.transform().beginTransform();
    if (!model_.transform().state()) return model_.tool() == Tool::move;
    const QPointF delta(key == Qt::Key_Left    ? -step
                        : key == Qt::Key_Right ? step
                                               : 0,
                        key == Qt::Key_Up     ? -step
                        : key == Qt::Key_Down ? step
                                              : 0);
    model_.transform().updateTransform([&](TransformState& state) { state.center += delta; });
    return true;
}

bool CanvasView::handleCharacter(QKeyEvent* event) {
    const auto typed = characterOf(*event);
    if (!typed) return false;
    const QChar character = typed->toLower();
    // D alone picks a tool; with Shift it is the default colors.
    if (character == u'd' && event->modifiers().testFlag(Qt::ShiftModifier)) {
        model_.colors().defaultColors();
        return true;
    }
    for (const CharacterKey& key : kCharacterKeys) {
        if (character.unicode() != key.character) continue;
        key.action(*this, model_, lastMouseView_);
        return true;
    }
    const std::optional<Tool> tool = toolWithKey(character, model_.keys());
    if (tool) model_.setTool(*tool);
    return tool.has_value();
}

void CanvasView::setSpaceDown(bool down) {
    if (spaceDown_ == down) return;
    spaceDown_ = down;
    updateMouseCursor();
    updateCursor(lastMouseView_);
}

} // namespace qirn
