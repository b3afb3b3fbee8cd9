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
    {"Studio Pen", 0x5899024214BC297Bu, 1374},
    {"Fine Liner", 0x10FF9E782F5A8555u, 1380},
    {"Ballpoint", 0x088BCAA8F3CAAC8Au, 1406},
    {"Pencil HB", 0x0858DDF5C088174Bu, 1406},
    {"Pencil 6B", 0x5F92803F8361908Au, 1277},
    {"Sketch Pencil", 0x799CE6E7550B7C2Eu, 1320},
    {"Ink Brush", 0x0F4D1C42E61DA6A1u, 1189},
    {"Calligraphy Ink", 0xBF3FD36A0F13EAF0u, 1219},
    {"Dry Ink", 0x74D0731CD779E4DFu, 971},
    {"Marker", 0x408AEE49D927138Bu, 586},
    {"Chisel Marker", 0x951770BA202987EEu, 628},
    {"Highlighter", 0x5210F670647FE10Fu, 517},
    {"Hard Round", 0xCFBD141FDFC7804Eu, 473},
    {"Soft Round", 0x69B01841D267F136u, 118},
    {"Wet Wash", 0x5E38625CD8A4AA3Bu, 110},
    {"Airbrush Soft", 0xCD3DF059CF795CDAu, 79},
    {"Airbrush Fine", 0x4DF7580B3470DA81u, 367},
    {"Spray Can", 0x8D10C3143EBFAE60u, 43},
    {"Fine Mist", 0x5C51785F7B9388EEu, 51},
    {"Splatter", 0x0548E3E4AB344FBDu, 9},
    {"Charcoal", 0x0758D9FEAE8C99D6u, 532},
    {"Chalk", 0xEBB480BF29B8DDF3u, 296},
    {"Dry Brush", 0xC9DDFE836F334D8Du, 439},
    {"Pastel Grain", 0x238FD8B0598676C6u, 293},
    {"Smudge", 0x741FB7D281C60E07u, 220},
    {"Finger Blend", 0xFC7865272A1F66F5u, 168},
    {"Blur", 0x667511B6EF49AFF9u, 94},
    {"Strong Blur", 0x7CED84AB98517AE8u, 66},
    {"Hard Eraser", 0xFE6B35E0E4ED0A40u, 391},
    {"Soft Eraser", 0xCC9BA725CB2B5680u, 101},
    {"Airbrush Eraser", 0xE360C28AE83AABA9u, 79},
    {"Pencil Eraser", 0xF44BA47282D62DF3u, 1353},
    {"Pixel Eraser", 0x6062166FDB7FD059u, 1406},
};

} // namespace qirn::test
