#include "app/sizes/CanvasPresets.h"

#include <QCoreApplication>

namespace qirn {

namespace {

#define QIRN_PRESET(text) QT_TRANSLATE_NOOP("qirn::CanvasPresets", text)

constexpr const char* kScreen = QIRN_PRESET("Screen");
constexpr const char* kSocial = QIRN_PRESET("Social & Music");
constexpr const char* kPrint = QIRN_PRESET("Print (300 DPI)");
constexpr bool print = true;

constexpr DocPreset kPresets[] = {
    {kScreen, QIRN_PRESET("HD 1080p"), 1920, 1080, 72},
    {kScreen, QIRN_PRESET("QHD 1440p"), 2560, 1440, 72},
    {kScreen, QIRN_PRESET("4K UHD"), 3840, 2160, 72},
    {kScreen, QIRN_PRESET("5K desktop"), 5120, 2880, 72},
    {kScreen, QIRN_PRESET("iPad Pro 12.9\""), 2732, 2048, 264},
    {kScreen, QIRN_PRESET("Phone wallpaper"), 1170, 2532, 460},
    {kSocial, QIRN_PRESET("Square post"), 1080, 1080, 72},
    {kSocial, QIRN_PRESET("Portrait post 4:5"), 1080, 1350, 72},
    {kSocial, QIRN_PRESET("Story / Reel 9:16"), 1080, 1920, 72},
    {kSocial, QIRN_PRESET("Video thumbnail"), 1280, 720, 72},
    {kSocial, QIRN_PRESET("Banner header 3:1"), 1500, 500, 72},
    {kSocial, QIRN_PRESET("Album cover"), 3000, 3000, 300},
    {kPrint, QIRN_PRESET("Letter 8.5 × 11 in"), 2550, 3300, 300, print},
    {kPrint, QIRN_PRESET("Legal 8.5 × 14 in"), 2550, 4200, 300, print},
    {kPrint, QIRN_PRESET("Tabloid 11 × 17 in"), 3300, 5100, 300, print},
    {kPrint, QIRN_PRESET("A5"), 1748, 2480, 300, print},
    {kPrint, QIRN_PRESET("A4"), 2480, 3508, 300, print},
    {kPrint, QIRN_PRESET("A3"), 3508, 4961, 300, print},
    {kPrint, QIRN_PRESET("Photo 4 × 6 in"), 1200, 1800, 300, print},
    {kPrint, QIRN_PRESET("Photo 5 × 7 in"), 1500, 2100, 300, print},
    {kPrint, QIRN_PRESET("Photo 8 × 10 in"), 2400, 3000, 300, print},
    {kPrint, QIRN_PRESET("Print 11 × 14 in"), 3300, 4200, 300, print},
    {kPrint, QIRN_PRESET("Poster 12 × 18 in"), 3600, 5400, 300, print},
    {kPrint, QIRN_PRESET("Poster 18 × 24 in"), 5400, 7200, 300, print},
    {kPrint, QIRN_PRESET("Business card 3.5 × 2 in"), 1050, 600, 300, print},
};

#undef QIRN_PRESET

} // namespace

std::span<const DocPreset> DocPreset::all() {
    return kPresets;
}

} // namespace qirn
