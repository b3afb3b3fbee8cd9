#include "app/model/OpacityPreview.h"

#include "app/files/DocSession.h"
#include "app/model/PaintModel.h"

#include <utility>

namespace qirn {

void OpacityPreview::show(int64_t layerIndex, double opacity) {
    DocSession* session = model_.current();
    if (!session || layerIndex < 0 || layerIndex >= session->doc().layerCount()) return;
    PaintDocument& doc = session->doc();
    if (!pending_ || pending_->layer != doc.layer(layerIndex).id) {
        model_.finishGesture();
        pending_ = {doc.layer(layerIndex).id, doc.layer(layerIndex).opacity};
    }
    doc.layer(layerIndex).opacity = opacity;
    doc.markAllDirty();
    model_.afterChange(*session);
}

void OpacityPreview::commit() {
    DocSession* session = model_.current();
    if (!pending_ || !session) return;
    const Pending preview = *std::exchange(pending_, std::nullopt);
    PaintDocument& doc = session->doc();
    const auto index = doc.indexOf(preview.layer);
    if (!index || doc.layer(*index).opacity == preview.before) return model_.announce();
    doc.commit(tr("Layer Opacity"));
    model_.afterChange(*session);
}

} // namespace qirn
