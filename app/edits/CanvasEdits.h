#pragma once
#include "core/PaintColor.h"

#include <cstdint>

#include <QPointF>

namespace qirn {

class PaintModel;
struct TextSpec;

/// The commands on the selection and on the whole of the current picture. Each is one undo step with a fixed name, each
/// refusal one short message; without a picture they do nothing.
namespace CanvasEdits {

void selectAll(PaintModel& model);
void deselect(PaintModel& model);
void invertSelection(PaintModel& model);
void fillSelection(PaintModel& model, const PaintColor& color);
void cropToSelection(PaintModel& model);

/// Scales the picture with all its layers and sets its resolution, at least 1; nothing where both stay.
void resizeImage(PaintModel& model, int64_t width, int64_t height, double dpi);
/// Adds space or trims, without scaling; the anchors say where the picture stays: 0 left or top, 1 right or bottom.
void resizeCanvas(PaintModel& model, int64_t width, int64_t height, double anchorX, double anchorY);
void rotateCanvas(PaintModel& model, int quarterTurns); ///< 1, 2 or 3, clockwise.
void flipCanvasHorizontal(PaintModel& model);
void flipCanvasVertical(PaintModel& model);

void placeText(PaintModel& model, const TextSpec& spec,
               QPointF topLeft); ///< Canvas point of the text's corner.

} // namespace CanvasEdits

} // namespace qirn
