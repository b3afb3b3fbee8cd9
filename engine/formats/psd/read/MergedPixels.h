#pragma once
#include "formats/common/ColorProfile.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>

namespace qirn {

struct PSDSections;

/// Turns rows of the channels of a Photoshop file's merged picture into pixels, whatever its color mode and depth.
class MergedPixels {
public:
    /// How the colors of half-transparent pixels stand in the file.
    enum class Backdrop {
        none,  ///< Straight.
        white, ///< As they look on white: stored = color * alpha + white * (1 - alpha).
    };

    /// Throws BEReader::Short where channels or palette are missing. A profile that does not fit the picture is passed over.
    MergedPixels(const PSDSections& sections, Backdrop backdrop);

    /// How many channels a row needs: the colors, then alpha if there is one.
    int channels() const { return colors_ + (hasAlpha_ ? 1 : 0); }
    /// One row. `samples` holds a row of each channel, one behind the other, as stored; `pixels` gets premultiplied
    /// sRGB. False if a color is darker than white paper allows at its alpha: then the colors were not stored on
    /// white. May be called from several threads at once.
    bool convert(std::span<const uint8_t> samples, std::span<uint8_t> pixels) const;

private:
    template <class Sample>
    bool convertColors(std::span<const uint8_t> samples, std::span<uint8_t> pixels) const;
    template <class Sample>
    void placeSideBySide(std::span<const uint8_t> samples, std::span<Sample> colors) const;
    template <class Sample> bool takeOffWhite(std::span<Sample> colors) const;
    void convertIndices(std::span<const uint8_t> samples, std::span<uint8_t> pixels) const;

    int depth_;
    int colors_; ///< Channels that hold color.
    bool hasAlpha_;
    Backdrop backdrop_;
    std::optional<ColorProfile> profile_;               ///< Not for pictures with a palette.
    std::array<std::array<uint8_t, 4>, 256> palette_{}; ///< Indexed and bitmap: straight.
};

} // namespace qirn
