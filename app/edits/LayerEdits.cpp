#include "app/edits/LayerEdits.h"

#include "app/files/DocSession.h"
#include "app/model/CanvasPort.h"
#include "app/model/Messages.h"
#include "app/model/PaintModel.h"
#include "operations/LayerOperations.h"
#include "platform/Require.h"

#include <algorithm>
#include <iterator>

#include <QCoreApplication>

namespace qirn::LayerEdits {

namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("qirn::LayerEdits", text);
}

} // namespace

void addLayer(PaintModel& model) {
    model.edit(tr("New Layer"), [](PaintDocument& doc) { qirn::addLayer(doc); });
}

void duplicateLayer(PaintModel& model) {
    model.edit(tr("Duplicate Layer"),
               [](PaintDocument& doc) { qirn::duplicateLayer(doc, doc.activeIndex()); });
}

void deleteLayer(PaintModel& model) {
    const DocSession* session = model.current();
    if (!session) return;
    model.finishGesture();
    const Layer& layer = session->doc().activeLayer();
    const bool sure =
        layer.isEmpty() || model.messages().confirm(tr("Delete the layer \"%1\"?").arg(layer.name),
                                                    tr("You can bring it back with Edit → Undo."));
    if (sure)
        model.edit(tr("Delete Layer"), [](PaintDocument& doc) { qirn::deleteLayer(doc, doc.activeIndex()); });
}

void moveLayerUp(PaintModel& model) {
    const DocSession* session = model.current();
    // At the top there is nothing to move past, and so no step to undo.
    if (!session || session->doc().activeIndex() + 1 >= session->doc().layerCount()) return;
    model.edit(tr("Move Layer Up"),
               [](PaintDocument& doc) { qirn::moveLayer(doc, doc.activeIndex(), doc.activeIndex() + 1); });
}

void moveLayerDown(PaintModel& model) {
    const DocSession* session = model.current();
    if (!session || session->doc().activeIndex() == 0) return;
    model.edit(tr("Move Layer Down"),
               [](PaintDocument& doc) { qirn::moveLayer(doc, doc.activeIndex(), doc.activeIndex() - 1); });
}

void moveLayer(PaintModel& model, int64_t from, int64_t to) {
    if (from == to) return;
    model.edit(tr("Reorder Layers"), [=](PaintDocument& doc) { qirn::moveLayer(doc, from, to); });
}

void mergeDown(PaintModel& model) {
    const DocSession* session = model.current();
    if (!session) return;
    if (session->doc().activeIndex() == 0)
        return model.messages().flash(tr("There is no layer below to merge into"));
    model.editLong(tr("Merge Down"), [](PaintDocument& doc, const Progress& progress) {
        qirn::mergeDown(doc, doc.activeIndex(), progress);
    });
}

void mergeVisible(PaintModel& model) {
    const DocSession* session = model.current();
    if (!session) return;
    const auto& layers = session->doc().layers();
    const auto visible = [](const LayerRef& layer) { return layer->isVisible; };
    if (std::count_if(layers.begin(), layers.end(), visible) < 2) return;
    model.editLong(tr("Merge Visible"),
                   [](PaintDocument& doc, const Progress& progress) { qirn::mergeVisible(doc, progress); });
}

void flatten(PaintModel& model) {
    model.editLong(tr("Flatten Image"),
                   [](PaintDocument& doc, const Progress& progress) { flattenImage(doc, progress); });
}

void clearLayer(PaintModel& model) {
    model.edit(
        tr("Clear"), [](PaintDocument& doc) { qirn::clearLayer(doc, doc.activeLayer()); },
        PaintModel::NeedsUnlockedLayer::yes);
}

void setLayer(PaintModel& model, int64_t index, const QString& name,
              const std::function<void(Layer&)>& change) {
    const DocSession* session = model.current();
    if (!session || index < 0 || index >= session->doc().layerCount()) return;
    model.edit(name, [&](PaintDocument& doc) {
        change(doc.layer(index));
        doc.markAllDirty();
    });
}

namespace {

struct Mark {
    bool LayerSettings::*flag;
    const char* step;
};
constexpr Mark kMarks[] = {
    {&LayerSettings::isVisible, QT_TRANSLATE_NOOP("qirn::LayerEdits", "Visibility")},
    {&LayerSettings::isLocked, QT_TRANSLATE_NOOP("qirn::LayerEdits", "Lock")},
    {&LayerSettings::alphaLocked, QT_TRANSLATE_NOOP("qirn::LayerEdits", "Alpha Lock")},
    {&LayerSettings::isClipping, QT_TRANSLATE_NOOP("qirn::LayerEdits", "Clipping")},
};

void toggleActive(PaintModel& model, bool LayerSettings::*mark) {
    const DocSession* session = model.current();
    if (!session) return;
    const PaintDocument& doc = session->doc();
    setMark(model, doc.activeIndex(), mark, !(doc.activeLayer().*mark));
}

} // namespace

void setMark(PaintModel& model, int64_t index, bool LayerSettings::*mark, bool on) {
    const auto* row = std::find_if(std::begin(kMarks), std::end(kMarks),
                                   [mark](const Mark& known) { return known.flag == mark; });
    require(row != std::end(kMarks));
    setLayer(model, index, tr(row->step), [mark, on](Layer& layer) { layer.*mark = on; });
}

void renameLayer(PaintModel& model, const QUuid& layer, const QString& name) {
    const DocSession* session = model.current();
    const auto index = session ? session->doc().indexOf(layer) : std::nullopt;
    const QString wanted = name.trimmed();
    if (index && !wanted.isEmpty())
        setLayer(model, *index, tr("Rename Layer"), [&](Layer& renamed) { renamed.name = wanted; });
}

void toggleClipping(PaintModel& model) {
    toggleActive(model, &LayerSettings::isClipping);
}
void toggleLock(PaintModel& model) {
    toggleActive(model, &LayerSettings::isLocked);
}
void toggleAlphaLock(PaintModel& model) {
    toggleActive(model, &LayerSettings::alphaLocked);
}
void toggleVisibility(PaintModel& model) {
    toggleActive(model, &LayerSettings::isVisible);
}

void setActiveLayer(PaintModel& model, int64_t index) {
    DocSession* session = model.current();
    if (!session || index == session->doc().activeIndex()) return;
    model.finishGesture();
    session->doc().setActiveIndex(index);
    session->announceChange();
    model.announce();
    // Ghosts depend on the active layer.
    const bool all = session->doc().onion.enabled;
    model.canvas().refresh(all ? CanvasPort::AllTiles::yes : CanvasPort::AllTiles::no);
}

void setOnion(PaintModel& model, const std::function<void(OnionSkin&)>& change) {
    DocSession* session = model.current();
    if (!session) return;
    change(session->doc().onion);
    session->doc().markAllDirty();
    model.canvas().refresh(CanvasPort::AllTiles::no);
    session->announceChange();
    model.announce();
}

void toggleOnion(PaintModel& model) {
    setOnion(model, [](OnionSkin& onion) { onion.enabled = !onion.enabled; });
}

} // namespace qirn::LayerEdits
