#include "operations/Selection.h"

#include "platform/Require.h"

#include <algorithm>

namespace qirn {

namespace {

IRect tightBounds(const std::vector<uint8_t>& data, int64_t width, int64_t height) {
    const auto selected = [](uint8_t byte) { return byte != 0; };
    int64_t left = width, right = -1, top = -1, bottom = -1;
    for (int64_t y = 0; y < height; ++y) {
        const uint8_t* row = data.data() + y * width;
        const uint8_t* first = std::find_if(row, row + width, selected);
        if (first == row + width) continue;
        const uint8_t* last = row + width - 1;
        while (*last == 0) --last;
        left = std::min<int64_t>(left, first - row);
        right = std::max<int64_t>(right, last - row);
        if (top < 0) top = y;
        bottom = y;
    }
    if (bottom < 0) return {};
    return {left, top, right - left + 1, bottom - top + 1};
}

QPainterPath rectanglePath(const IRect& rect) {
    QPainterPath path;
    path.addRect(rect.rectF());
    return path;
}

} // namespace

Selection::Selection(Key, std::vector<uint8_t> data, int64_t width, int64_t height, const IRect& bounds,
                     QPainterPath outline)
    : width_(width),
      height_(height),
      data_(std::move(data)),
      bounds_(bounds),
      outline_(std::move(outline)) {}

SelectionRef Selection::fromBytes(std::vector<uint8_t> data, int64_t width, int64_t height,
                                  QPainterPath outline) {
    const IRect bounds = tightBounds(data, width, height);
    if (bounds.isEmpty()) return nullptr;
    return std::make_shared<const Selection>(Key{}, std::move(data), width, height, bounds,
                                             std::move(outline));
}

std::vector<uint8_t> Selection::rasterize(const QPainterPath& path, int64_t width, int64_t height,
                                          Antialias antialias) {
    std::vector<uint8_t> mask(static_cast<std::size_t>(width * height));
    fillPathCoverage(path, antialias, mask.data(), width, height);
    return mask;
}

SelectionRef Selection::make(const QPainterPath& path, SelectionOp op, const SelectionRef& existing,
                             int64_t width, int64_t height, Antialias antialias) {
    const bool needsExisting = op == SelectionOp::subtract || op == SelectionOp::intersect;
    if (needsExisting && !existing) return nullptr;
    std::vector<uint8_t> mask = rasterize(path, width, height, antialias);
    QPainterPath outline;
    if (existing && op != SelectionOp::replace) {
        require(existing->width_ == width && existing->height_ == height);
        outline = existing->outline_;
        const uint8_t* old = existing->data_.data();
        for (std::size_t i = 0; i < mask.size(); ++i) {
            const unsigned fresh = mask[i], kept = old[i];
            switch (op) {
            case SelectionOp::add:
                mask[i] = std::max(mask[i], old[i]);
                break;
            case SelectionOp::subtract:
                mask[i] = static_cast<uint8_t>(((255 - fresh) * kept + 127) / 255);
                break;
            default:
                mask[i] = static_cast<uint8_t>((fresh * kept + 127) / 255);
                break;
            }
        }
    }
    outline.addPath(path);
    return fromBytes(std::move(mask), width, height, std::move(outline));
}

SelectionRef Selection::fromMask(std::span<const uint8_t> mask, int64_t width, int64_t height) {
    if (width < 1 || height < 1 || static_cast<int64_t>(mask.size()) != width * height) return nullptr;
    std::vector<uint8_t> data(mask.begin(), mask.end());
    const IRect bounds = tightBounds(data, width, height);
    if (bounds.isEmpty()) return nullptr;
    return std::make_shared<const Selection>(Key{}, std::move(data), width, height, bounds,
                                             rectanglePath(bounds));
}

SelectionRef Selection::all(int64_t width, int64_t height) {
    const IRect canvas{0, 0, width, height};
    return std::make_shared<const Selection>(
        Key{}, std::vector<uint8_t>(static_cast<std::size_t>(width * height), 255), width, height, canvas,
        rectanglePath(canvas));
}

uint8_t Selection::value(int64_t x, int64_t y) const {
    if (x < 0 || y < 0 || x >= width_ || y >= height_) return 0;
    return row(y)[x];
}

SelectionRef Selection::offsetBy(int64_t dx, int64_t dy) const {
    std::vector<uint8_t> moved(data_.size());
    const IRect canvas{0, 0, width_, height_};
    const IRect target = IRect{bounds_.x + dx, bounds_.y + dy, bounds_.w, bounds_.h}.intersection(canvas);
    for (int64_t y = target.y; y < target.maxY() && !target.isEmpty(); ++y) {
        std::copy_n(row(y - dy) + (target.x - dx), target.w, moved.data() + y * width_ + target.x);
    }
    return fromBytes(std::move(moved), width_, height_,
                     outline_.translated(static_cast<double>(dx), static_cast<double>(dy)));
}

SelectionRef Selection::inverted() const {
    std::vector<uint8_t> inverse(data_.size());
    std::transform(data_.begin(), data_.end(), inverse.begin(),
                   [](uint8_t byte) { return static_cast<uint8_t>(255 - byte); });
    QPainterPath outline = outline_;
    outline.addPath(rectanglePath({0, 0, width_, height_}));
    return fromBytes(std::move(inverse), width_, height_, std::move(outline));
}

void selectAll(PaintDocument& doc) {
    doc.selection = Selection::all(doc.grid().width, doc.grid().height);
}

void deselect(PaintDocument& doc) {
    doc.selection = nullptr;
}

void invertSelection(PaintDocument& doc) {
    if (doc.selection) doc.selection = doc.selection->inverted();
}

} // namespace qirn
