#include "brush/DabRows.h"

// This file once more for each instruction set; the best that the machine has is chosen at run time.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "brush/DabRows.cpp"
#include <hwy/foreach_target.h>

#include "brush/TipCoverage.h"

HWY_BEFORE_NAMESPACE();
namespace qirn::HWY_NAMESPACE {

template <bool kHard, bool kRound>
HWY_ATTR void coverBlocks(const TipShape& tip, int64_t tileX, double dy, Columns blocks, double* coverage) {
    const TipEdge edge = tip.edge;
    const Doubles s(tip.sine), c(tip.cosine), inverse(tip.inverse);
    const Doubles us(tip.sine * dy), vc(tip.cosine * dy), dy2(dy * dy);
    for (int i = blocks.first; i < blocks.last; i += kDoubleLanes) {
        const Doubles dx =
            Doubles(static_cast<double>(tileX + i)) + laneNumbers() + Doubles(0.5) - Doubles(tip.cx);
        const Doubles u = c * dx + us;
        const Doubles v = inverse * (vc - s * dx);
        const Doubles dist = squareRoot(kRound ? dx * dx + dy2 : u * u + v * v);
        storeDoubles(kHard ? hardCoverage(edge, dist) : softCoverage(edge, dist), coverage + i);
    }
}

HWY_ATTR void CoverTip(const TipShape& tip, int64_t tileX, double dy, Columns blocks,
                       RowOf<double>& coverage) {
    if (tip.edge.isHard)
        tip.isRound ? coverBlocks<true, true>(tip, tileX, dy, blocks, coverage.at)
                    : coverBlocks<true, false>(tip, tileX, dy, blocks, coverage.at);
    else
        tip.isRound ? coverBlocks<false, true>(tip, tileX, dy, blocks, coverage.at)
                    : coverBlocks<false, false>(tip, tileX, dy, blocks, coverage.at);
}

HWY_ATTR void ApplyGrain(const RowOf<float>& grain, float texture, Columns blocks, RowOf<double>& coverage) {
    RowOf<float> share;
    for (int i = blocks.first; i < blocks.last; i += kLanes)
        storeFloats(Floats(1) - (Floats(1) - loadFloats(grain.at + i)) * Floats(texture), share.at + i);
    for (int i = blocks.first; i < blocks.last; i += kDoubleLanes)
        storeDoubles(loadDoubles(coverage.at + i) * widened(share.at + i), coverage.at + i);
}

HWY_ATTR void ApplySelection(const RowOf<uint8_t>& selected, Columns blocks, RowOf<double>& coverage) {
    for (int i = blocks.first; i < blocks.last; i += kDoubleLanes) {
        const Doubles share = widened(selected.at + i) / Doubles(255);
        storeDoubles(loadDoubles(coverage.at + i) * share, coverage.at + i);
    }
}

HWY_ATTR void MakeTargets(const RowOf<double>& coverage, double ceiling, Columns blocks,
                          RowOf<float>& targets) {
    for (int i = blocks.first; i < blocks.last; i += kDoubleLanes)
        storeNarrowed(loadDoubles(coverage.at + i) * Doubles(ceiling), targets.at + i);
}

/// Half a step up and cut off; for values below 255.5.
HWY_INLINE Words roundedByte(Floats v) {
    return truncated(larger(v + Floats(0.5f), Floats(0)));
}

HWY_INLINE Words wordOf(Floats r, Floats g, Floats b, Floats a) {
    return roundedByte(r) | shiftedUp<8>(roundedByte(g)) | shiftedUp<16>(roundedByte(b)) |
           shiftedUp<24>(roundedByte(a));
}

// What pixels become at a coverage from 0 to 1, from their bytes before the stroke. Alpha lock has no say over an
// eraser.

struct Erase {
    HWY_INLINE explicit Erase(const DabInk&) {}
    HWY_INLINE Words operator()(Words before, Floats coverage, Words) const {
        const Floats rest = Floats(1) - coverage;
        return wordOf(rest * byteOf<0>(before), rest * byteOf<8>(before), rest * byteOf<16>(before),
                      rest * byteOf<24>(before));
    }
};

struct PaintUnderAlphaLock {
    Floats r, g, b;

    HWY_INLINE explicit PaintUnderAlphaLock(const DabInk& ink) : r(ink.r), g(ink.g), b(ink.b) {}
    HWY_INLINE Words operator()(Words before, Floats coverage, Words now) const {
        const Floats wasR = byteOf<0>(before), wasG = byteOf<8>(before), wasB = byteOf<16>(before);
        const Floats alpha = byteOf<24>(before);
        const Words painted = wordOf(smaller(wasR + coverage * (r * alpha - wasR), alpha),
                                     smaller(wasG + coverage * (g * alpha - wasG), alpha),
                                     smaller(wasB + coverage * (b * alpha - wasB), alpha), alpha);
        return select(alpha == Floats(0), now, painted);
    }
};

struct Paint {
    Floats r, g, b, full{255};

    HWY_INLINE explicit Paint(const DabInk& ink) : r(ink.r * 255), g(ink.g * 255), b(ink.b * 255) {}
    HWY_INLINE Words operator()(Words before, Floats coverage, Words) const {
        const Floats rest = Floats(1) - coverage;
        const Floats alpha = rest * byteOf<24>(before) + coverage * full;
        return wordOf(smaller(rest * byteOf<0>(before) + coverage * r, alpha),
                      smaller(rest * byteOf<8>(before) + coverage * g, alpha),
                      smaller(rest * byteOf<16>(before) + coverage * b, alpha), alpha);
    }
};

template <class Ink>
HWY_ATTR void paintBlocks(const DabRow& row, const DabInk& ink, Columns blocks, const float* targets) {
    const Ink blend(ink);
    const Floats flow(ink.flow);
    for (int i = blocks.first; i < blocks.last; i += kLanes) {
        const Floats target = loadFloats(targets + i);
        const Floats old = loadFloats(row.mask + i);
        const auto rises = old < target;
        if (!anyOf(rises)) continue;
        const Floats raised = old + (target - old) * flow;
        storeFloats(select(rises, raised, old), row.mask + i);
        const Words now = loadWords(row.pixels + i * 4);
        const Words painted = blend(loadWords(row.before + i * 4), raised, now);
        storeWords(select(rises, painted, now), row.pixels + i * 4);
    }
}

HWY_ATTR void PaintRow(const DabRow& row, const DabInk& ink, Columns blocks, const RowOf<float>& targets) {
    switch (ink.kind) {
    case DabKind::paint:
        return paintBlocks<Paint>(row, ink, blocks, targets.at);
    case DabKind::paintUnderAlphaLock:
        return paintBlocks<PaintUnderAlphaLock>(row, ink, blocks, targets.at);
    case DabKind::erase:
        return paintBlocks<Erase>(row, ink, blocks, targets.at);
    }
}

} // namespace qirn::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace qirn {

HWY_EXPORT(CoverTip);
HWY_EXPORT(ApplyGrain);
HWY_EXPORT(ApplySelection);
HWY_EXPORT(MakeTargets);
HWY_EXPORT(PaintRow);

double TipEdge::coverage(double dist) const {
    return isHard ? HWY_NAMESPACE::hardCoverage(*this, dist) : HWY_NAMESPACE::softCoverage(*this, dist);
}

void coverTip(const TipShape& tip, int64_t tileX, double dy, Columns blocks, RowOf<double>& coverage) {
    HWY_DYNAMIC_DISPATCH(CoverTip)(tip, tileX, dy, blocks, coverage);
}

void applyGrain(const RowOf<float>& grain, float texture, Columns blocks, RowOf<double>& coverage) {
    HWY_DYNAMIC_DISPATCH(ApplyGrain)(grain, texture, blocks, coverage);
}

void applySelection(const RowOf<uint8_t>& selected, Columns blocks, RowOf<double>& coverage) {
    HWY_DYNAMIC_DISPATCH(ApplySelection)(selected, blocks, coverage);
}

void makeTargets(const RowOf<double>& coverage, double ceiling, Columns blocks, RowOf<float>& targets) {
    HWY_DYNAMIC_DISPATCH(MakeTargets)(coverage, ceiling, blocks, targets);
}

void paintRow(const DabRow& row, const DabInk& ink, Columns blocks, const RowOf<float>& targets) {
    HWY_DYNAMIC_DISPATCH(PaintRow)(row, ink, blocks, targets);
}

} // namespace qirn
#endif
