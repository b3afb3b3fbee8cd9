#include "app/sizes/CanvasLimits.h"

#include "core/PaintEngine.h"

namespace qirn {

namespace {

constexpr int64_t kLargePixels = 60'000'000;
constexpr int64_t kPixelsAMegabyte = 250'000; // four bytes each, a megabyte of a million bytes

} // namespace

bool CanvasLimits::allow(int64_t width, int64_t height) {
    const int64_t most = PaintEngine::maxCanvasSide;
    return width >= 1 && height >= 1 && width <= most && height <= most;
}

QString CanvasLimits::warning(int64_t width, int64_t height) {
    if (!allow(width, height) || width * height <= kLargePixels) return {};
    return tr("This is a very large canvas. Each layer uses about %L1 MB of memory.")
        .arg(width * height / kPixelsAMegabyte);
}

QString CanvasLimits::warning(int64_t width, int64_t height, int64_t layers) {
    const QString each = warning(width, height);
    if (each.isEmpty()) return {};
    return each + u' ' +
           tr("All %Ln layers: up to %L1 MB.", nullptr, static_cast<int>(layers))
               .arg(width * height * layers / kPixelsAMegabyte);
}

} // namespace qirn
