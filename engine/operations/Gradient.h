#pragma once
#include "core/IRect.h"
#include "core/PaintColor.h"
#include "core/PaintDocument.h"
#include "platform/RowOrder.h"

#include <array>
#include <cstdint>

#include <QPointF>

namespace qirn {

enum class GradientKind : uint8_t { linear, radial, reflected };

struct GradientKindRow {
    GradientKind kind;
    const char* id;          ///< As it is stored.
    const char* displayName; ///< English source text.
};
inline constexpr std::array<GradientKindRow, 3> kGradientKinds{{
    {GradientKind::linear, "linear", "Linear"},
    {GradientKind::radial, "radial", "Radial"},
    {GradientKind::reflected, "reflected", "Reflected"},
}};
static_assert(isInOrder(kGradientKinds, &GradientKindRow::kind));

/// Paints a blend of two colors over the selection, or over the whole canvas, of the active layer: `start` at
/// `from`, `end` at `to` and beyond (both in canvas pixels). Keeps the alpha lock. Returns the rectangle, marked
/// dirty; the zero rectangle when the layer is locked. Commits nothing.
IRect gradientFill(PaintDocument& doc, const QPointF& from, const QPointF& to, GradientKind kind,
                   const PaintColor& start, const PaintColor& end, double opacity);

} // namespace qirn
