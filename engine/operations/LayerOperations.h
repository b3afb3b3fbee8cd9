#pragma once
#include "core/PaintDocument.h"
#include "platform/Progress.h"

#include <cstdint>
#include <optional>

#include <QString>

namespace qirn {

// Changes of the stack of layers; index 0 is the bottom. Each marks what is dirty and none commits, so that one
// user action can be made of several and still be one undo step. One that is cancelled has changed nothing.

/// Without a name "Layer " and the first free number from the stack's height on; without a place just above the
/// active layer. The new layer is active.
LayerRef addLayer(PaintDocument& doc, std::optional<QString> name = {}, std::optional<int64_t> at = {});
/// Inserts a layer of the document's grid, at an index that is clamped, and makes it active.
void insertLayer(PaintDocument& doc, LayerRef layer, int64_t at);
/// A copy just above that shares all tiles; never locked. The index must be valid.
LayerRef duplicateLayer(PaintDocument& doc, int64_t index);
/// Ignores a bad index; the only layer is emptied instead.
void deleteLayer(PaintDocument& doc, int64_t index);
/// Ignores a bad `from`, clamps `to`; the same layer stays active wherever it ends up.
void moveLayer(PaintDocument& doc, int64_t from, int64_t to);
/// Bakes a layer's opacity, mode and clipping into the pixels of the layer below; ignores a bad index.
void mergeDown(PaintDocument& doc, int64_t index, const Progress& progress = {});
/// One layer "Merged" in place of all visible ones, at the topmost one's height; needs two.
void mergeVisible(PaintDocument& doc, const Progress& progress = {});
/// One layer "Background" of the finished picture; hidden layers are thrown away.
void flattenImage(PaintDocument& doc, const Progress& progress = {});
/// Removes the layer's pixels, inside the selection where there is one.
void clearLayer(PaintDocument& doc, Layer& layer);

} // namespace qirn
