#include "formats/common/AreaReducer.h"

#include "platform/CheckedMath.h"
#include "platform/Require.h"

#include <algorithm>

namespace qirn {

AreaReducer::AreaReducer(int64_t sourceWidth, int64_t sourceHeight, int64_t targetWidth, int64_t targetHeight)
    : AreaReducer(sourceWidth, sourceHeight, targetWidth, targetHeight, {0, 0, targetWidth, targetHeight}) {}

AreaReducer::AreaReducer(int64_t sourceWidth, int64_t sourceHeight, int64_t targetWidth, int64_t targetHeight,
                         const IRect& window)
    : across_{sourceWidth, targetWidth},
      down_{sourceHeight, targetHeight},
      window_(window),
      sums_(checkedSize(window.w * window.h * 4)) {
    require(targetWidth >= 1 && targetWidth <= sourceWidth);
    require(targetHeight >= 1 && targetHeight <= sourceHeight);
}

int64_t AreaReducer::Axis::overlap(int64_t from, int64_t to, int64_t targetPixel) const {
    return std::min(to * target, (targetPixel + 1) * source) - std::max(from * target, targetPixel * source);
}

IRect AreaReducer::sourceOfWindow() const {
    const int64_t x = across_.firstSource(window_.x);
    const int64_t y = down_.firstSource(window_.y);
    return {x, y, across_.endSource(window_.maxX() - 1) - x, down_.endSource(window_.maxY() - 1) - y};
}

IRect AreaReducer::targetOf(const IRect& source) const {
    const int64_t x = across_.firstTarget(source.x);
    const int64_t y = down_.firstTarget(source.y);
    const IRect whole{x, y, across_.endTarget(source.maxX()) - x, down_.endTarget(source.maxY()) - y};
    return whole.intersection(window_);
}

void AreaReducer::sumRow(const IRect& source, const uint8_t* row, const IRect& place, uint32_t* sums) const {
    const int64_t sourceEnd = source.maxX();
    const auto full = static_cast<uint32_t>(across_.target);
    for (int64_t tx = place.x; tx < place.x + place.w; ++tx, sums += 4) {
        const int64_t first = std::max(source.x, across_.firstSource(tx));
        const int64_t last = std::min(sourceEnd, across_.endSource(tx)) - 1;
        const auto addPixel = [&](int64_t x, uint32_t weight) {
            const uint8_t* pixel = row + (x - source.x) * 4;
            for (int c = 0; c < 4; ++c) sums[c] += weight * pixel[c];
        };
        std::fill_n(sums, 4, 0u);
        addPixel(first, static_cast<uint32_t>(across_.overlap(first, first + 1, tx)));
        for (int64_t x = first + 1; x < last; ++x) addPixel(x, full);
        if (last > first) addPixel(last, static_cast<uint32_t>(across_.overlap(last, last + 1, tx)));
    }
}

AreaReducer::Patch AreaReducer::reduce(const IRect& source, const uint8_t* pixels, int64_t rowBytes) const {
    Patch patch{targetOf(source), {}};
    const IRect& place = patch.place;
    if (place.isEmpty()) return patch;
    const auto rowSums = checkedSize(place.w * 4);
    patch.sums.assign(rowSums * checkedSize(place.h), 0);
    std::vector<uint32_t> row(rowSums); // each at most 255 * 30,000
    for (int64_t y = source.y; y < source.maxY(); ++y) {
        const int64_t firstRow = std::max(down_.firstTarget(y), place.y);
        const int64_t endRow = std::min(down_.endTarget(y + 1), place.maxY());
        if (firstRow >= endRow) continue;
        sumRow(source, pixels + (y - source.y) * rowBytes, place, row.data());
        for (int64_t ty = firstRow; ty < endRow; ++ty) {
            const auto weight = static_cast<uint64_t>(down_.overlap(y, y + 1, ty));
            uint64_t* sums = patch.sums.data() + checkedSize(ty - place.y) * rowSums;
            for (std::size_t i = 0; i < rowSums; ++i) sums[i] += weight * row[i];
        }
    }
    return patch;
}

AreaReducer::Patch AreaReducer::reduceUniform(const IRect& source, const PixelBytes& pixel) const {
    Patch patch{targetOf(source), {}};
    const IRect& place = patch.place;
    patch.sums.reserve(checkedSize(place.w * place.h * 4));
    for (int64_t ty = place.y; ty < place.maxY(); ++ty) {
        const int64_t height = down_.overlap(source.y, source.maxY(), ty);
        for (int64_t tx = place.x; tx < place.maxX(); ++tx) {
            const auto area = static_cast<uint64_t>(height * across_.overlap(source.x, source.maxX(), tx));
            for (uint8_t byte : pixel) patch.sums.push_back(area * byte);
        }
    }
    return patch;
}

void AreaReducer::add(const Patch& patch) {
    const IRect& place = patch.place;
    for (int64_t y = 0; y < place.h; ++y) {
        const uint64_t* from = patch.sums.data() + y * place.w * 4;
        uint64_t* to = sums_.data() + ((place.y - window_.y + y) * window_.w + place.x - window_.x) * 4;
        for (int64_t i = 0; i < place.w * 4; ++i) to[i] += from[i];
    }
}

std::shared_ptr<RGBABuffer> AreaReducer::result() const {
    auto buffer = std::make_shared<RGBABuffer>(window_.w, window_.h);
    const auto area = static_cast<uint64_t>(across_.source * down_.source);
    uint8_t* out = buffer->data();
    for (std::size_t i = 0; i < sums_.size(); ++i) {
        out[i] = static_cast<uint8_t>((sums_[i] + area / 2) / area);
    }
    return buffer;
}

QSize reducedSize(int64_t width, int64_t height, int64_t maxSide) {
    const double ratio = static_cast<double>(maxSide) / static_cast<double>(std::max(width, height));
    if (ratio >= 1) return {static_cast<int>(width), static_cast<int>(height)};
    return {std::max(1, static_cast<int>(ratio * static_cast<double>(width))),
            std::max(1, static_cast<int>(ratio * static_cast<double>(height)))};
}

} // namespace qirn
