#include "app/sizes/NewCanvas.h"

#include "app/sizes/CanvasLimits.h"

#include <algorithm>

namespace qirn {

double NewCanvas::shown(const Length& length) const {
    return length.unit == unit_ ? length.value : fromPixels(pixels(length), unit_, dpi_);
}

bool NewCanvas::valid() const {
    return CanvasLimits::allow(pixelsW(), pixelsH()) && dpi_ > 0;
}

void NewCanvas::setDpi(double dpi) {
    width_ = {width(), unit_};
    height_ = {height(), unit_};
    dpi_ = dpi;
}

void NewCanvas::apply(const DocPreset& preset) {
    chosen_ = &preset;
    dpi_ = preset.dpi;
    width_ = {static_cast<double>(preset.w), LengthUnit::pixels};
    height_ = {static_cast<double>(preset.h), LengthUnit::pixels};
    unit_ = preset.isPrint ? LengthUnit::inches : LengthUnit::pixels;
    const auto nameOf = [](const DocPreset& of) {
        return QCoreApplication::translate("qirn::CanvasPresets", of.name);
    };
    const auto presets = DocPreset::all();
    const bool notTyped =
        name == tr("Untitled") ||
        std::any_of(presets.begin(), presets.end(), [&](const DocPreset& of) { return name == nameOf(of); });
    if (notTyped) name = nameOf(preset);
}

} // namespace qirn
