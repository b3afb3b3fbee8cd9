#pragma once
#include "app/sizes/CanvasPresets.h"
#include "app/sizes/LengthUnit.h"

#include <array>
#include <cstdint>

#include <QCoreApplication>
#include <QString>

namespace qirn {

/// What the first layer of a new canvas is filled with.
enum class NewBackground { white, clear, secondary, black };

/// The new canvas that somebody is about to make: a name, a size in some unit, and what lies on it.
class NewCanvas {
    Q_DECLARE_TR_FUNCTIONS(qirn::NewCanvas)
public:
    NewCanvas() : name(tr("Untitled")) {}

    QString name;
    NewBackground background = NewBackground::white;

    double width() const { return shown(width_); } ///< In the current unit.
    double height() const { return shown(height_); }
    double dpi() const { return dpi_; }
    LengthUnit unit() const { return unit_; }
    const DocPreset* chosen() const { return chosen_; } ///< The preset taken last; null for none.
    int64_t pixelsW() const { return pixels(width_); }
    int64_t pixelsH() const { return pixels(height_); }
    bool valid() const;

    void setWidth(double width) { width_ = {width, unit_}; }
    void setHeight(double height) { height_ = {height, unit_}; }
    void setUnit(LengthUnit unit) { unit_ = unit; } ///< The size in pixels stays.
    void setDpi(double dpi);                        ///< The sides stay what they are in the current unit.
    void swapSides() { std::swap(width_, height_); }
    /// Takes its size, and its name unless the user has typed one.
    void apply(const DocPreset& preset);

private:
    /// As it was entered: another unit is only another view of it, so that changing there and back changes nothing.
    struct Length {
        double value;
        LengthUnit unit;
    };
    int64_t pixels(const Length& length) const { return toPixels(length.value, length.unit, dpi_); }
    double shown(const Length& length) const;

    Length width_{1920, LengthUnit::pixels};
    Length height_{1080, LengthUnit::pixels};
    double dpi_ = 72;
    LengthUnit unit_ = LengthUnit::pixels;
    const DocPreset* chosen_ = nullptr;
};

} // namespace qirn
