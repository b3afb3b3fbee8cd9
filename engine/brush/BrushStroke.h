#pragma once
#include "brush/BrushSettings.h"
#include "brush/DabStamp.h"
#include "brush/SmudgeBlur.h"
#include "brush/StrokePoint.h"
#include "core/IRect.h"
#include "core/PaintColor.h"
#include "core/PaintDocument.h"
#include "core/SeededRandom.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace qirn {

/// Turns the samples of one pen stroke into dabs on one layer: smooths them, walks along the line at a distance
/// that follows the pressure, and goes on laying dabs while an airbrush is held.
///
/// A stroke belongs to one thread and never touches the undo history: the caller commits when it is over. It does
/// not look at the layer's lock either. The same seed, settings, samples and pixels give the same bytes. It may be
/// dropped without `end`.
class BrushStroke {
public:
    /// The settings are copied and sanitized. The layer has the document's grid; its tiles are frozen, so that
    /// whoever holds one keeps the old pixels. The document outlives the stroke.
    BrushStroke(PaintDocument& document, LayerRef layer, const BrushSettings& brush, const PaintColor& color,
                uint64_t seed);

    void begin(const StrokePoint& point); ///< The first sample.
    void add(const StrokePoint& point);   ///< One more sample.
    void hold(double seconds);            ///< The pen has stayed where it is; airbrush and spray lay dabs.
    void end();                           ///< The line catches up with the pen. No sample follows.

    const IRect& dirty() const { return dirty_; }  ///< All that dabs have touched so far.
    int64_t dabCount() const { return dabCount_; } ///< A burst of spray counts as one.
    const BrushSettings& brush() const { return brush_; }
    const PaintColor& color() const { return color_; }

private:
    void place(const StrokePoint& point);
    void dab(const StrokePoint& point);
    void sprayBurst(double x, double y, double size, double pressure, double ceiling, double flow);
    void layDabs();
    double stepAt(const StrokePoint& point) const;

    const LayerRef layer_;
    const BrushSettings brush_;
    const PaintColor color_;
    IRect dirty_;
    int64_t dabCount_ = 0;
    SeededRandom random_;
    std::optional<StrokePoint> smoothed_;   // end of the stabilized line
    std::optional<StrokePoint> lastRaw_;    // the newest sample as it came in
    std::optional<StrokePoint> lastPlaced_; // position of the spacing walk
    double need_ = 0;                       // distance to the next dab, pixels
    double holdCarry_ = 0;                  // fraction of a dab owed while the pen is held
    std::vector<Dab> dabs_;                 // of the current sample, not painted yet
    DabStamp stamp_;
    SmudgeTip smudge_;
    BlurTip blur_;
};

/// A whole stroke at once, on the active layer when `layer` is null: the same pixels as its points fed by hand.
/// Returns what it touched, or the zero rectangle when the layer is locked or there is no point. Commits nothing.
IRect paintStroke(PaintDocument& doc, std::span<const StrokePoint> points, const BrushSettings& brush,
                  const PaintColor& color, Layer* layer, uint64_t seed);

} // namespace qirn
