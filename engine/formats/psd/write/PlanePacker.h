#pragma once
#include "core/IRect.h"
#include "core/PaintDocument.h"
#include "platform/Progress.h"

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace qirn::PSDFile {

inline constexpr int kPlanes = 4; // red, green, blue, alpha

/// Packed rows of a part of the picture that lies within one row of tiles.
using PackedBand = std::array<std::span<const uint8_t>, kPlanes>;

/// How the colors of half-transparent pixels stand in planes.
enum class Matte {
    none,  ///< Straight.
    white, ///< As they look on white.
};

/// A rectangle of the canvas as four planes, each row packed for itself. It is cut into bands, which
/// are packed side by side; their bytes are the packer's that made them.
struct PackedPlanes {
    IRect rect;
    std::array<std::vector<uint16_t>, kPlanes> counts; ///< Packed bytes of each row.
    std::vector<PackedBand> bands;
};

/// Packs the layers of a document and its finished picture, one after the other and each in parallel, into memory that
/// all of them use in turn: the system takes as long to hand out fresh memory as it takes to pack into it.
class PlanePacker {
public:
    explicit PlanePacker(const PaintDocument& doc); ///< Borrows the document.

    // The result of either is valid until the next call.
    PackedPlanes layer(const Layer& layer, const IRect& rect, const Progress& progress); ///< Straight.
    /// The whole canvas, composited a few rows of tiles at a time.
    PackedPlanes finishedPicture(Matte matte, const Progress& progress);

private:
    /// Memory for packed rows, one behind the other.
    class Room {
        /// Contiguous room for so many bytes, to be written before the next call.
    public:
        uint8_t* atLeast(std::size_t count);
        std::span<const uint8_t>
        keep(const uint8_t* end); ///< Keeps the bytes that were written up to there and returns them.
        void clear();

    private:
        struct Chunk {
            std::unique_ptr<uint8_t[]> bytes;
            std::size_t size;
        };
        std::vector<Chunk> chunks_;
        std::size_t open_ = 0; // the chunk that is being filled
        std::size_t used_ = 0; // bytes of it
    };
    struct Worker {
        Room room;
        std::vector<uint8_t> rows; // of a band, straight
    };

    PackedPlanes emptyPlanes(const IRect& rect);
    IRect bandRect(const PackedPlanes& planes, int64_t band) const;
    /// `tiles` are the pixels of the canvas's row of tiles in which the band lies, null for a transparent tile.
    void packBand(PackedPlanes& planes, int64_t band, std::span<const uint8_t* const> tiles, Matte matte,
                  Worker& worker);
    void packBlank(PackedPlanes& planes, int64_t band, Matte matte, Room& room);

    const PaintDocument& doc_;
    std::vector<Worker> workers_;
};

} // namespace qirn::PSDFile
