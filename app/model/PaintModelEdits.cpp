// The commands that change a picture: each is one undo step with a fixed name, each refusal one short message.
#include "app/model/PaintModel.h"

#include "app/desktop/Desktop.h"
#include "app/text/TextRenderer.h"
#include "operations/Fill.h"
#include "operations/LayerOperations.h"
#include "operations/Reshape.h"
#include "operations/Stamp.h"

#include <algorithm>

namespace qirn {

void PaintModel::finishGesture() {
    canvas_->endGesture();
    commitOpacity();
    applyTransform();
}

void PaintModel::edit(const QString& name, const std::function<void(PaintDocument&)>& body,
                      NeedsUnlockedLayer needs) {
    DocSession* session = current();
    if (!session) return;
    PaintDocument& doc = session->doc();
    if (needs == NeedsUnlockedLayer::yes && doc.activeLayer().isLocked) {
        return flash(tr("The layer \"%1\" is locked").arg(doc.activeLayer().name));
    }
    finishGesture();
    body(doc);
    doc.commit(name);
    afterChange(*session);
}

void PaintModel::afterChange(DocSession& session) {
    canvas_->refresh(CanvasPort::AllTiles::no);
    session.announceChange();
    announce();
}

void PaintModel::undo() {
    DocSession* session = current();
    if (!session) return;
    if (transform_) return cancelTransform();
    finishGesture();
    const std::optional<QString> name = session->doc().undoName();
    if (!name) return desktop_.beep();
    session->doc().undo();
    afterChange(*session);
    flash(tr("Undo %1").arg(*name));
}

void PaintModel::redo() {
    DocSession* session = current();
    canvas_->endGesture();
    commitOpacity();
    const std::optional<QString> name = session ? session->doc().redoName() : std::nullopt;
    if (!name) return desktop_.beep();
    // A step put back under floating pixels would have them on the picture twice.
    if (transform_) return cancelTransform();
    session->doc().redo();
    afterChange(*session);
    flash(tr("Redo %1").arg(*name));
}

bool PaintModel::canUndo() const {
    const DocSession* session = current();
    return session && (transform_ || opacityPreview_ || session->doc().canUndo());
}

bool PaintModel::canRedo() const {
    const DocSession* session = current();
    return session && !opacityPreview_ && session->doc().canRedo();
}

// --- Layers

void PaintModel::addLayer() {
    edit(tr("New Layer"), [](PaintDocument& doc) { qirn::addLayer(doc); });
}

void PaintModel::duplicateLayer() {
    edit(tr("Duplicate Layer"), [](PaintDocument& doc) { qirn::duplicateLayer(doc, doc.activeIndex()); });
}

void PaintModel::deleteLayer() {
    const DocSession* session = current();
    if (!session) return;
    finishGesture();
    const Layer& layer = session->doc().activeLayer();
    const bool sure = layer.isEmpty() || confirm(tr("Delete the layer \"%1\"?").arg(layer.name),
                                                 tr("You can bring it back with Edit → Undo."));
    if (sure) edit(tr("Delete Layer"), [](PaintDocument& doc) { qirn::deleteLayer(doc, doc.activeIndex()); });
}

void PaintModel::moveLayerUp() {
    const DocSession* session = current();
    // At the top there is nothing to move past, and so no step to undo.
    if (!session || session->doc().activeIndex() + 1 >= session->doc().layerCount()) return;
    edit(tr("Move Layer Up"),
         [](PaintDocument& doc) { qirn::moveLayer(doc, doc.activeIndex(), doc.activeIndex() + 1); });
}

void PaintModel::moveLayerDown() {
    const DocSession* session = current();
    if (!session || session->doc().activeIndex() == 0) return;
    edit(tr("Move Layer Down"),
         [](PaintDocument& doc) { qirn::moveLayer(doc, doc.activeIndex(), doc.activeIndex() - 1); });
}

void PaintModel::moveLayer(int64_t from, int64_t to) {
    if (from == to) return;
    edit(tr("Reorder Layers"), [=](PaintDocument& doc) { qirn::moveLayer(doc, from, to); });
}

void PaintModel::mergeDown() {
    const DocSession* session = current();
    if (!session) return;
    if (session->doc().activeIndex() == 0) return flash(tr("There is no layer below to merge into"));
    edit(tr("Merge Down"), [](PaintDocument& doc) { qirn::mergeDown(doc, doc.activeIndex()); });
}

void PaintModel::mergeVisible() {
    const DocSession* session = current();
    if (!session) return;
    const auto& layers = session->doc().layers();
    const auto visible = [](const LayerRef& layer) { return layer->isVisible; };
    if (std::count_if(layers.begin(), layers.end(), visible) < 2) return;
    edit(tr("Merge Visible"), [](PaintDocument& doc) { qirn::mergeVisible(doc); });
}

void PaintModel::flatten() {
    edit(tr("Flatten Image"), [](PaintDocument& doc) { flattenImage(doc); });
}

void PaintModel::clearLayer() {
    edit(
        tr("Clear"), [](PaintDocument& doc) { qirn::clearLayer(doc, doc.activeLayer()); },
        NeedsUnlockedLayer::yes);
}

void PaintModel::setLayer(int64_t index, const QString& name, const std::function<void(Layer&)>& change) {
    const DocSession* session = current();
    if (!session || index < 0 || index >= session->doc().layerCount()) return;
    edit(name, [&](PaintDocument& doc) {
        change(doc.layer(index));
        doc.markAllDirty();
    });
}

void PaintModel::toggleActive(const QString& name, bool Layer::*flag) {
    if (const DocSession* session = current()) {
        setLayer(session->doc().activeIndex(), name, [flag](Layer& layer) { layer.*flag = !(layer.*flag); });
    }
}

void PaintModel::toggleClipping() {
    toggleActive(tr("Clipping"), &Layer::isClipping);
}
void PaintModel::toggleLock() {
    toggleActive(tr("Lock"), &Layer::isLocked);
}
void PaintModel::toggleAlphaLock() {
    toggleActive(tr("Alpha Lock"), &Layer::alphaLocked);
}
void PaintModel::toggleVisibility() {
    toggleActive(tr("Visibility"), &Layer::isVisible);
}

void PaintModel::setActiveLayer(int64_t index) {
    DocSession* session = current();
    if (!session || index == session->doc().activeIndex()) return;
    finishGesture();
    session->doc().setActiveIndex(index);
    session->announceChange();
    announce();
    // Ghosts depend on the active layer.
    const bool all = session->doc().onion.enabled;
    canvas_->refresh(all ? CanvasPort::AllTiles::yes : CanvasPort::AllTiles::no);
}

void PaintModel::previewOpacity(int64_t index, double opacity) {
    const DocSession* session = current();
    if (!session || index < 0 || index >= session->doc().layerCount()) return;
    PaintDocument& doc = session->doc();
    if (!opacityPreview_ || opacityPreview_->layer != doc.layer(index).id) {
        finishGesture();
        opacityPreview_ = {doc.layer(index).id, doc.layer(index).opacity};
    }
    doc.layer(index).opacity = opacity;
    doc.markAllDirty();
    canvas_->refresh(CanvasPort::AllTiles::no);
    announce();
}

void PaintModel::commitOpacity() {
    DocSession* session = current();
    if (!opacityPreview_ || !session) return;
    const OpacityPreview preview = *std::exchange(opacityPreview_, std::nullopt);
    PaintDocument& doc = session->doc();
    const auto index = doc.indexOf(preview.layer);
    if (!index || doc.layer(*index).opacity == preview.before) return announce();
    doc.commit(tr("Layer Opacity"));
    afterChange(*session);
}

void PaintModel::setOnion(const std::function<void(OnionSkin&)>& change) {
    DocSession* session = current();
    if (!session) return;
    change(session->doc().onion);
    session->doc().markAllDirty();
    canvas_->refresh(CanvasPort::AllTiles::no);
    session->announceChange();
    announce();
}

void PaintModel::toggleOnion() {
    setOnion([](OnionSkin& onion) { onion.enabled = !onion.enabled; });
}

// --- Selection

void PaintModel::selectAll() {
    edit(tr("Select All"), [](PaintDocument& doc) { qirn::selectAll(doc); });
}

void PaintModel::deselect() {
    const DocSession* session = current();
    if (!session || !session->doc().selection) return;
    edit(tr("Deselect"), [](PaintDocument& doc) { qirn::deselect(doc); });
}

void PaintModel::invertSelection() {
    const DocSession* session = current();
    if (!session || !session->doc().selection) return;
    edit(tr("Invert Selection"), [](PaintDocument& doc) { qirn::invertSelection(doc); });
}

// --- The canvas

void PaintModel::fillSelection(const PaintColor& color) {
    edit(
        tr("Fill"), [&](PaintDocument& doc) { qirn::fillSelection(doc, color, 1); }, NeedsUnlockedLayer::yes);
}

void PaintModel::cropToSelection() {
    const DocSession* session = current();
    if (!session) return;
    finishGesture();
    if (!session->doc().selection) return flash(tr("Make a selection first"));
    edit(tr("Crop"), [](PaintDocument& doc) { cropTo(doc, doc.selection->bounds()); });
}

void PaintModel::rotateCanvas(int quarterTurns) {
    const QString name = quarterTurns == 1   ? tr("Rotate 90° Clockwise")
                         : quarterTurns == 2 ? tr("Rotate 180°")
                                             : tr("Rotate 90° Counter-clockwise");
    edit(name, [=](PaintDocument& doc) { rotate(doc, quarterTurns); });
}

void PaintModel::flipCanvasHorizontal() {
    edit(tr("Flip Canvas Horizontal"), [](PaintDocument& doc) { flipCanvas(doc, FlipAxis::horizontal); });
}

void PaintModel::flipCanvasVertical() {
    edit(tr("Flip Canvas Vertical"), [](PaintDocument& doc) { flipCanvas(doc, FlipAxis::vertical); });
}

void PaintModel::placeText(const TextSpec& spec, QPointF at) {
    const auto rendered = TextRenderer::render(spec);
    if (!rendered) return flash(tr("Type some text first"));
    edit(tr("Text"), [&](PaintDocument& doc) {
        QString words = spec.text.left(24);
        words.replace(u'\n', u' ');
        qirn::addLayer(doc, tr("Text: %1").arg(words));
        stamp(doc, *rendered->buffer, static_cast<int64_t>(at.x() + rendered->x),
              static_cast<int64_t>(at.y() + rendered->y), doc.activeLayer(), 1, UseSelection::no);
    });
}

} // namespace qirn
