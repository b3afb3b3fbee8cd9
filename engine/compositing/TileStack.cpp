#include "compositing/TileStack.h"

namespace qirn {

struct TileStack::TileRun {
    int64_t index;
    int x, y;
    RunShape shape;

    TileBytes bytesOf(const CompositeInput& input) const {
        return input.tiles.at(index)->pixels() + placeInTile(x, y);
    }
};

namespace {

/// Whether a pixel of alpha 255 has exactly alpha 1 at this opacity, and so hides what lies below.
bool isFullStrength(float opacity) {
    return opacity / 255 * 255 == 1;
}

/// Lays one input's run on an accumulator. Over nothing any mode is a plain copy.
void blendInput(PixelRun& acc, TileBytes bytes, RunShape shape, const CompositeInput& input, float opacity,
                BlendMode mode, Compositor::Atop atop, bool accEmpty) {
    if (accEmpty && !input.tint) return loadBytes(acc, bytes, shape, opacity);
    if (!input.tint && atop == Compositor::Atop::no)
        return layBytes(acc, ByteLayer{bytes, opacity / 255}, shape, mode);
    if (accEmpty) clear(acc);
    PixelRun source;
    loadBytes(source, bytes, shape, opacity);
    if (input.tint) tint(source, shape, *input.tint);
    layOn(acc, source, shape, mode, atop);
}

} // namespace

TileStack::TileStack(int64_t index, std::span<const CompositeInput> layers)
    : index_(index),
      groups_(groupsIn(index, layers)) {}

/// A clipped layer is never seen without its base: a base that is hidden, or has no tile here, takes the layers
/// clipped to it along. The flag of the lowest input is not looked at.
std::vector<TileStack::Group> TileStack::groupsIn(int64_t index, std::span<const CompositeInput> layers) {
    const auto shows = [index](const CompositeInput& input) {
        return input.visible && input.opacity > 0 && input.tiles.at(index);
    };
    std::vector<Group> groups;
    for (std::size_t i = 0; i < layers.size();) {
        const CompositeInput& base = layers[i++];
        const bool seen = shows(base);
        Group group{&base, {}};
        for (; i < layers.size() && layers[i].clipping; ++i) {
            if (seen && shows(layers[i])) group.clipped.push_back(&layers[i]);
        }
        if (seen) groups.push_back(std::move(group));
    }
    return groups;
}

/// A single untinted input, which is blended from its bytes without an accumulator of its own.
bool TileStack::laysBytes(const Group& group) {
    return group.clipped.empty() && !group.base->tint;
}

void TileStack::blendGroup(PixelRun& acc, const TileRun& run, const Group& group, bool accEmpty) {
    const CompositeInput& base = *group.base;
    const RunShape shape = run.shape;
    if (group.clipped.empty()) {
        return blendInput(acc, run.bytesOf(base), shape, base, base.opacity, base.mode, Compositor::Atop::no,
                          accEmpty);
    }
    // The group is built alone, its base at full strength, and then laid down as one layer.
    PixelRun alone;
    blendInput(alone, run.bytesOf(base), shape, base, 1, BlendMode::normal, Compositor::Atop::no, true);
    for (const CompositeInput* clipped : group.clipped) {
        blendInput(alone, run.bytesOf(*clipped), shape, *clipped, clipped->opacity, clipped->mode,
                   Compositor::Atop::yes, false);
    }
    if (accEmpty) return scale(acc, alone, shape, base.opacity);
    PixelRun scaled;
    scale(scaled, alone, shape, base.opacity);
    layOn(acc, scaled, shape, base.mode, Compositor::Atop::no);
}

/// The groups that may show in the run, from the top down to one that hides all below it; whether there is one.
bool TileStack::findShowing(const TileRun& run) {
    showing_.clear();
    for (auto group = groups_.rbegin(); group != groups_.rend(); ++group) {
        const CompositeInput& base = *group->base;
        const TileBytes bytes = run.bytesOf(base);
        // The loops over bytes skip blank pixels themselves.
        if (!laysBytes(*group) && isBlank(bytes, run.shape)) continue;
        showing_.push_back(&*group);
        if (base.mode == BlendMode::normal && isFullStrength(base.opacity) && isOpaque(bytes, run.shape))
            return true;
    }
    return false;
}

void TileStack::blend(PixelRun& acc, int x, int y, RunShape shape) {
    const TileRun run{index_, x, y, shape};
    const bool hidesBelow = findShowing(run);
    // Only the lowest input of the tile, or one that hides all below, is copied as it is. Everywhere else color
    // without coverage, which damaged files may hold, is dropped.
    bool copies = !showing_.empty() && (showing_.back() == &groups_.front() || hidesBelow);
    if (!copies) clear(acc);
    for (auto group = showing_.rbegin(); group != showing_.rend();) {
        plain_.clear();
        for (; group != showing_.rend() && laysBytes(**group); ++group) {
            const CompositeInput& input = *(*group)->base;
            const bool isCopied = copies && plain_.empty(); // in any mode
            if (input.mode != BlendMode::normal && !isCopied) break;
            plain_.push_back({run.bytesOf(input), input.opacity / 255});
        }
        if (plain_.empty()) {
            blendGroup(acc, run, **group++, copies);
        } else {
            if (copies) acc.opaque = hidesBelow;
            layBytes(acc, plain_, shape, copies ? Over::nothing : Over::accumulator);
        }
        copies = false;
    }
}

} // namespace qirn
