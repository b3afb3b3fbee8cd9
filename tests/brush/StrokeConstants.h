#pragma once
#include <cstdint>

namespace qirn::test {

struct StrokeConstant {
    const char* name;     // of the preset
    uint64_t fingerprint; // of the layer after its zigzag (support/Strokes.h)
    int64_t dabCount;
};

/// A row changes only when a preset, the grain or the rules of a dab are meant to change.
inline constexpr StrokeConstant kStrokeConstants[] = {
    {"Studio Pen", 0, 0},      {"Fine Liner", 0, 0},      {"Ballpoint", 0, 0},
    {"Pencil HB", 0, 0},       {"Pencil 6B", 0, 0},       {"Sketch Pencil", 0, 0},
    {"Ink Brush", 0, 0},       {"Calligraphy Ink", 0, 0}, {"Dry Ink", 0, 0},
    {"Marker", 0, 0},          {"Chisel Marker", 0, 0},   {"Highlighter", 0, 0},
    {"Hard Round", 0, 0},      {"Soft Round", 0, 0},      {"Wet Wash", 0, 0},
    {"Airbrush Soft", 0, 0},   {"Airbrush Fine", 0, 0},   {"Spray Can", 0, 0},
    {"Fine Mist", 0, 0},       {"Splatter", 0, 0},        {"Charcoal", 0, 0},
    {"Chalk", 0, 0},           {"Dry Brush", 0, 0},       {"Pastel Grain", 0, 0},
    {"Smudge", 0, 0},          {"Finger Blend", 0, 0},    {"Blur", 0, 0},
    {"Strong Blur", 0, 0},     {"Hard Eraser", 0, 0},     {"Soft Eraser", 0, 0},
    {"Airbrush Eraser", 0, 0}, {"Pencil Eraser", 0, 0},   {"Pixel Eraser", 0, 0},
};

} // namespace qirn::test
