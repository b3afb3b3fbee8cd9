#include "app/model/PendingTransform.h"

#include "app/files/DocSession.h"
#include "app/model/CanvasPort.h"
#include "app/model/Messages.h"
#include "app/model/PaintModel.h"

namespace qirn {

void PendingTransform::beginTransform() {
    DocSession* session = model_.current();
    if (state_ || !session) return;
    model_.finishGesture();
    PaintDocument& doc = session->doc();
    Layer& layer = doc.activeLayer();
    if (layer.isLocked) return model_.messages().flash(tr("The layer is locked"));
    std::shared_ptr<const Floating> floating = liftFloating(doc);
    if (!floating || !floating->hasAlpha()) {
        // A selection over nothing lifts transparent pixels: put the document back as it was.
        if (floating) doc.revertToLastCommit();
        return model_.messages().flash(tr("Nothing to move on this layer"));
    }
    // Under alpha lock nothing could be placed on the pixels that the lift has left empty.
    lockedAlpha_ = layer.alphaLocked;
    layer.alphaLocked = false;
    state_.emplace(std::move(floating));
    model_.setTool(Tool::move);
    model_.canvas().refresh(CanvasPort::AllTiles::no);
    model_.announce();
}

void PendingTransform::updateTransform(const std::function<void(TransformState&)>& change) {
    if (!state_) return;
    change(*state_);
    model_.canvas().refresh(CanvasPort::AllTiles::no);
    model_.announce();
}

void PendingTransform::applyTransform() {
    DocSession* session = model_.current();
    if (!state_ || !session) return;
    model_.canvas().endGesture();
    const TransformState state = *state_;
    state_.reset();
    PaintDocument& doc = session->doc();
    placeFloating(doc, *state.floating, state.matrix());
    if (const auto index = doc.indexOf(state.floating->layerID)) doc.layer(*index).alphaLocked = lockedAlpha_;
    if (doc.selection) {
        // The selection follows a translation; it cannot follow a scale or a turn.
        const auto [dx, dy] = state.wholeOffset();
        doc.selection = state.isTranslation() ? doc.selection->offsetBy(dx, dy) : nullptr;
    }
    doc.commit(tr("Transform"));
    model_.afterChange(*session);
}

void PendingTransform::cancelTransform() {
    DocSession* session = model_.current();
    if (!state_ || !session) return;
    model_.canvas().endGesture();
    state_.reset();
    session->doc().revertToLastCommit();
    model_.afterChange(*session);
}

} // namespace qirn
