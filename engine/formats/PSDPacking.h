#pragma once
#include "core/IRect.h"
#include "core/PaintDocument.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace qirn::PSDFile {

inline constexpr int kPlanes = 4;        // red, green, blue, alpha
inline constexpr int64_t kBandRows = 32; // divides the height of a tile

/// Packed rows of a part of the picture that lies within one row of tiles.
struct PackedBand {
    std::array<std::vector<uint8_t>, kPlanes> bytes;
};

/// A rectangle of the canvas as four planes of straight colour, each row packed for itself. It is cut into bands, which
/// are packed side by side and stay where they are until the file is put together.
class PackedPlanes {
public:
    explicit PackedPlanes(const IRect& rect); ///< Nothing packed yet; `rect` lies in the canvas.

    const IRect& rect() const { return rect_; }
    const std::vector<uint16_t>& counts(int plane) const { return counts_[static_cast<std::size_t>(plane)]; }
    const std::vector<PackedBand>& bands() const { return bands_; }
    int64_t bandCount() const { return static_cast<int64_t>(bands_.size()); }
    IRect bandRect(int64_t band) const;
    int64_t planeBytes(int plane) const; ///< Of all rows.

    /// Packs one band; returns its bytes. `tiles` are the pixels of the canvas's row of tiles in which the band lies,
    /// null for a transparent tile.
    int64_t packBand(int64_t band, std::span<const uint8_t* const> tiles);

private:
    int64_t packTransparent(int64_t band);

    IRect rect_;
    std::array<std::vector<uint16_t>, kPlanes> counts_;
    std::vector<PackedBand> bands_;
};

/// Every layer's content in stack order, an empty rectangle for a layer without any; stops early, unfinished, once the
/// packed bytes exceed `most`. In parallel.
std::vector<PackedPlanes> packLayers(const PaintDocument& doc, int64_t most);

/// The finished picture of the whole canvas, composited a few rows of tiles at a time. In parallel.
PackedPlanes packFinishedPicture(const PaintDocument& doc);

} // namespace qirn::PSDFile
