#pragma once
#include "formats/common/InflateStream.h"
#include "platform/Progress.h"

#include <cstdint>
#include <span>
#include <vector>

namespace qirn {

struct PSDSections;

/// The first channels of a Photoshop file's merged picture, row by row. A file holds them one whole channel behind the other
/// and packed in one of four ways; here the rows of all of them come side by side, as samples high byte
/// first, without ever holding a whole channel.
class MergedPlanes {
public:
    /// Borrows the file's bytes. Throws BEReader::Short where they cannot hold that many channels of that size. May take
    /// long, and asks the progress whether to go on.
    MergedPlanes(const PSDSections& sections, int channels, const Progress& progress);

    int64_t rowBytes() const { return rowBytes_; }
    int64_t rowsAtOnce() const { return rowsAtOnce_; }
    /// Makes up to `rowsAtOnce` rows ready. Bands are asked for from top to bottom without a gap. Throws
    /// BEReader::Short for damage, as `readRow` does.
    void loadBand(int64_t firstRow, int64_t rows);
    /// Any row of the band, `rowBytes` long. May be called from several threads at once.
    void readRow(int channel, int64_t y, std::span<uint8_t> into) const;

private:
    enum class Packing : uint16_t { none = 0, runs = 1, deflated = 2, deflatedDifferences = 3 };

    void findRuns(const PSDSections& sections, std::span<const uint8_t> bytes);
    void startStreams(std::span<const uint8_t> bytes, const Progress& progress);
    bool isDeflated() const { return packing_ >= Packing::deflated; }
    std::size_t bandOffset(int channel, int64_t rowInBand) const;

    Packing packing_;
    int depth_;
    int channels_;
    int64_t height_;
    int64_t rowBytes_;
    int64_t rowsAtOnce_;

    std::span<const uint8_t> planes_;    // not packed or in runs
    std::vector<int64_t> rowStarts_;     // in runs: offsets in `planes_`, channel by channel, with the end
    std::vector<InflateStream> streams_; // deflated: one a channel, each at the next band's first row
    std::vector<uint8_t> band_;          // deflated: unpacked rows, channel by channel
    int64_t bandStart_ = 0;
};

/// Undoes in place what storing a row as differences did to it: each whole sample of 8 or 16 bits is its difference
/// from the one on its left. Rows of 32-bit floats were first split into all first bytes, all second bytes and so
/// on, and then taken as 8-bit samples.
void undoDifferences(std::span<uint8_t> row, int depth);

} // namespace qirn
