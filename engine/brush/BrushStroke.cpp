#include "brush/BrushStroke.h"

#include "brush/StrokeStabilizer.h"
#include "platform/Require.h"
#include "platform/Trigonometry.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qirn {

namespace {

BrushSettings sanitized(BrushSettings brush) {
    brush.sanitize();
    return brush;
}

constexpr double kShortestStep = 0.5;          // pixels; bounds the work of tiny brushes
constexpr std::size_t kMostDabsTogether = 256; // bounds the memory that a long jump of the pen takes

} // namespace

BrushStroke::BrushStroke(PaintDocument& document, LayerRef layer, const BrushSettings& brush,
                         const PaintColor& color, uint64_t seed)
    : layer_(std::move(layer)),
      brush_(sanitized(brush)),
      color_(color),
      random_(seed),
      stamp_(document, *layer_, brush_, color),
      smudge_(document, *layer_, brush_),
      blur_(document, *layer_, brush_) {
    require(layer_->grid() == document.grid());
    layer_->freezeTiles();
}

void BrushStroke::begin(const StrokePoint& point) {
    add(point);
}

void BrushStroke::add(const StrokePoint& point) {
    lastRaw_ = point;
    if (brush_.stabilizer > 0)
        smoothed_ = smoothed_ ? StrokeStabilizer::follow(*smoothed_, point, brush_.stabilizer) : point;
    place(smoothed_ ? *smoothed_ : point);
}

void BrushStroke::hold(double seconds) {
    if (!brush_.airbrush && !brush_.spray) return;
    if (!lastPlaced_ || !(seconds > 0)) return;
    holdCarry_ += brush_.airbrushRate * seconds;
    while (holdCarry_ >= 1) {
        holdCarry_ -= 1;
        dab(*lastPlaced_);
    }
    layDabs();
}

void BrushStroke::end() {
    if (smoothed_ && lastRaw_) {
        for (const StrokePoint& point : StrokeStabilizer::catchUp(*smoothed_, *lastRaw_)) place(point);
    }
    stamp_.releaseBuffers();
}

double BrushStroke::stepAt(const StrokePoint& point) const {
    return std::max(brush_.sizeAt(point.pressure) * brush_.spacing, kShortestStep);
}

void BrushStroke::place(const StrokePoint& point) {
    if (!lastPlaced_) {
        lastPlaced_ = point;
        dab(point);
        layDabs();
        need_ = stepAt(point);
        return;
    }
    const StrokePoint from = *lastPlaced_;
    const double dist = std::hypot(point.x - from.x, point.y - from.y);
    if (!(dist > 0)) return;
    double travelled = 0;
    double left = dist;
    while (need_ <= left) {
        travelled += need_;
        const double t = travelled / dist;
        const auto between = [t](double a, double b) { return a + (b - a) * t; };
        const StrokePoint next(between(from.x, point.x), between(from.y, point.y),
                               between(from.pressure, point.pressure), point.tiltX, point.tiltY,
                               between(from.time, point.time));
        dab(next);
        need_ = stepAt(next);
        left = dist - travelled;
    }
    // The rest of the distance counts towards the next dab.
    need_ -= left;
    lastPlaced_ = point;
    layDabs();
}

// The order of the random draws is binding: it makes a stroke repeat itself from its seed. Every kind of brush
// draws them all, whether it uses them or not.
void BrushStroke::dab(const StrokePoint& point) {
    ++dabCount_;
    double size = brush_.sizeAt(point.pressure);
    if (brush_.sizeJitter > 0) size *= std::max(1 + brush_.sizeJitter * random_.signedUnit(), 0.05);
    double x = point.x, y = point.y;
    if (brush_.scatter > 0) {
        const double spread = size * brush_.scatter;
        x += spread * random_.signedUnit();
        y += spread * random_.signedUnit();
    }
    double ceiling = brush_.opacity;
    if (brush_.pressureOpacity) ceiling *= point.pressure;
    if (brush_.opacityJitter > 0) ceiling *= 1 - brush_.opacityJitter * random_.unit();
    const double flow = brush_.flow * (brush_.pressureFlow ? std::max(point.pressure, 0.02) : 1);
    double angle = brush_.angle;
    if (brush_.angleJitter > 0) angle += brush_.angleJitter * 180 * random_.signedUnit();

    switch (brush_.kind) {
    case BrushKind::smudge:
        dirty_ = dirty_.united(smudge_.dab(x, y, size));
        break;
    case BrushKind::blur:
        dirty_ = dirty_.united(blur_.dab(x, y, size));
        break;
    case BrushKind::paint:
    case BrushKind::erase:
        if (brush_.spray)
            sprayBurst(x, y, size, point.pressure, ceiling, flow);
        else
            dabs_.push_back({x, y, size / 2, brush_.hardness, ceiling, flow, angle, brush_.roundness,
                             brush_.texture > 0});
        break;
    }
    if (dabs_.size() >= kMostDabsTogether) layDabs();
}

void BrushStroke::layDabs() {
    dirty_ = dirty_.united(stamp_.stamp(dabs_));
    dabs_.clear();
}

void BrushStroke::sprayBurst(double x, double y, double size, double pressure, double ceiling, double flow) {
    const auto count = std::max<int64_t>(
        1, static_cast<int64_t>(std::round(brush_.sprayDensity * std::max(pressure, 0.05))));
    for (int64_t i = 0; i < count; ++i) {
        const double u1 = random_.unit();
        const double u2 = random_.unit();
        const double u3 = random_.unit();
        const double rho = size / 2 * std::sqrt(u1); // the root spreads droplets evenly over the circle
        const SineCosine theta = sineCosine(2 * u2 * std::numbers::pi);
        const double diameter = brush_.particleSize * (0.6 + 0.8 * u3);
        Dab droplet;
        droplet.cx = x + rho * theta.cosine;
        droplet.cy = y + rho * theta.sine;
        droplet.radius = diameter / 2;
        droplet.hardness = 0.8;
        droplet.ceiling = ceiling;
        droplet.flow = flow;
        dabs_.push_back(droplet);
    }
}

IRect paintStroke(PaintDocument& doc, std::span<const StrokePoint> points, const BrushSettings& brush,
                  const PaintColor& color, Layer* layer, uint64_t seed) {
    Layer& target = layer ? *layer : doc.activeLayer();
    if (target.isLocked || points.empty()) return {};
    const LayerRef borrowed(LayerRef{}, &target); // the stroke ends before the call does
    BrushStroke stroke(doc, borrowed, brush, color, seed);
    stroke.begin(points.front());
    for (const StrokePoint& point : points.subspan(1)) stroke.add(point);
    stroke.end();
    return stroke.dirty();
}

} // namespace qirn
