#pragma once
#include <cstdint>
#include <functional>

#include <QString>

class QUuid;

namespace qirn {

class Layer;
class PaintModel;
struct LayerSettings;
struct OnionSkin;

/// The commands on the layers of the current picture. Each is one undo step with a fixed name, each refusal one short
/// message; without a picture they do nothing.
namespace LayerEdits {

void addLayer(PaintModel& model);
void duplicateLayer(PaintModel& model);
void deleteLayer(PaintModel& model); ///< Asks first where the layer is not empty.
void moveLayerUp(PaintModel& model);
void moveLayerDown(PaintModel& model);
void moveLayer(PaintModel& model, int64_t from, int64_t to);
void mergeDown(PaintModel& model);
void mergeVisible(PaintModel& model);
void flatten(PaintModel& model);
void clearLayer(PaintModel& model); ///< The selected pixels of the active layer, or all of them.

void setLayer(PaintModel& model, int64_t index, const QString& name,
              const std::function<void(Layer&)>& change);
/// Visibility, lock, alpha lock or clipping.
void setMark(PaintModel& model, int64_t index, bool LayerSettings::*mark, bool on);
void renameLayer(PaintModel& model, const QUuid& layer,
                 const QString& name); ///< A blank name keeps the old one.
// The same of the active layer.
void toggleClipping(PaintModel& model);
void toggleLock(PaintModel& model);
void toggleAlphaLock(PaintModel& model);
void toggleVisibility(PaintModel& model);

// What follows is part of no undo step.
void setActiveLayer(PaintModel& model, int64_t index);
void setOnion(PaintModel& model, const std::function<void(OnionSkin&)>& change);
void toggleOnion(PaintModel& model);

} // namespace LayerEdits

} // namespace qirn
