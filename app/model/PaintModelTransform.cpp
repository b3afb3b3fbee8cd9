// The pending transform: pixels lifted off the active layer until they are put down or put back.
#include "app/model/PaintModel.h"

namespace qirn {

void PaintModel::beginTransform() {
    DocSession* session = current();
    if (transform_ || !session) return;
    finishGesture();
    PaintDocument& doc = session->doc();
    Layer& layer = doc.activeLayer();
    if (layer.isLocked) return flash(tr("The layer is locked"));
    std::shared_ptr<const Floating> floating = liftFloating(doc);
    if (!floating || !floating->hasAlpha()) {
        // A selection over nothing lifts transparent pixels: put the document back as it was.
        if (floating) doc.revertToLastCommit();
        return flash(tr("Nothing to move on this layer"));
    }
    // Alpha lock would bring nothing back where the layer has become empty.
    transformLockedAlpha_ = layer.alphaLocked;
    layer.alphaLocked = false;
    transform_.emplace(std::move(floating));
    if (tool_ != Tool::move) setTool(Tool::move);
    canvas_->refresh(CanvasPort::AllTiles::no);
    announce();
}

void PaintModel::updateTransform(const std::function<void(TransformState&)>& change) {
    if (!transform_) return;
    change(*transform_);
    canvas_->refresh(CanvasPort::AllTiles::no);
    announce();
}

void PaintModel::applyTransform() {
    DocSession* session = current();
    if (!transform_ || !session) return;
    canvas_->endGesture();
    const TransformState state = *transform_;
    transform_.reset();
    PaintDocument& doc = session->doc();
    placeFloating(doc, *state.floating, state.matrix());
    if (const auto index = doc.indexOf(state.floating->layerID))
        doc.layer(*index).alphaLocked = transformLockedAlpha_;
    if (doc.selection) {
        // Moved pixels keep their selection; a mask cannot follow a scale or a turn.
        const auto [dx, dy] = state.wholeWay();
        doc.selection = state.isTranslation() ? doc.selection->offsetBy(dx, dy) : nullptr;
    }
    doc.commit(tr("Transform"));
    afterChange(*session);
}

void PaintModel::cancelTransform() {
    DocSession* session = current();
    if (!transform_ || !session) return;
    canvas_->endGesture();
    transform_.reset();
    session->doc().revertToLastCommit();
    afterChange(*session);
}

} // namespace qirn
