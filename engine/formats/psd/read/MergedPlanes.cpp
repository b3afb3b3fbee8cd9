#include "formats/psd/read/MergedPlanes.h"

#include "formats/common/ByteReader.h"
#include "formats/psd/PackBits.h"
#include "formats/psd/read/PSDSections.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <cstring>

#include <QtEndian>

namespace qirn {

namespace {

// How many bytes one byte of packed data can become at most.
constexpr int64_t kLargestRun = 64; // two bytes for 128
constexpr int64_t kLargestInflation = 1032;

constexpr int64_t kBandRows = 256;
constexpr int64_t kBandBytes = 12'000'000; // of unpacked rows; one row of every channel is kept in any case

} // namespace

MergedPlanes::MergedPlanes(const PSDSections& sections, int channels, const Progress& progress)
    : depth_(sections.header.depth),
      channels_(channels),
      height_(sections.header.height),
      rowBytes_((sections.header.width * sections.header.depth + 7) / 8) {
    BEReader in(sections.mergedPicture);
    const uint16_t code = in.u16();
    if (code > static_cast<uint16_t>(Packing::deflatedDifferences)) throw BEReader::Short();
    packing_ = static_cast<Packing>(code);
    rowsAtOnce_ = std::clamp<int64_t>(kBandBytes / (rowBytes_ * channels), 1, std::min(kBandRows, height_));

    const auto bytes = in.slice(in.remaining());
    const int64_t planeBytes = rowBytes_ * height_;
    switch (packing_) {
    case Packing::none:
        planes_ = BEReader(bytes).slice(planeBytes * channels);
        break;
    case Packing::runs:
        findRuns(sections, bytes);
        break;
    case Packing::deflated:
    case Packing::deflatedDifferences:
        if (planeBytes * channels > std::ssize(bytes) * kLargestInflation) throw BEReader::Short();
        startStreams(bytes, progress);
        break;
    }
}

/// The packed lengths of all rows of all channels stand before the first row.
void MergedPlanes::findRuns(const PSDSections& sections, std::span<const uint8_t> bytes) {
    BEReader in(bytes);
    const int64_t lengthBytes = sections.header.isLarge ? 4 : 2;
    BEReader lengths(in.slice(sections.header.channels * height_ * lengthBytes));
    planes_ = in.slice(in.remaining());
    // Checked before the table is allocated, which is several times as large as its source.
    if (rowBytes_ * height_ * channels_ > std::ssize(planes_) * kLargestRun) throw BEReader::Short();
    const auto rows = checkedSize(channels_ * height_);
    rowStarts_.reserve(rows + 1);
    rowStarts_.push_back(0);
    while (rowStarts_.size() <= rows) {
        const int64_t length = sections.header.isLarge ? lengths.u32() : lengths.u16();
        rowStarts_.push_back(rowStarts_.back() + length);
    }
    if (rowStarts_.back() > std::ssize(planes_)) throw BEReader::Short();
}

/// All channels are one stream. One pass over it leaves behind a stream at the start of each channel.
void MergedPlanes::startStreams(std::span<const uint8_t> bytes, const Progress& progress) {
    streams_.emplace_back(bytes);
    for (int channel = 1; channel < channels_; ++channel) {
        streams_.emplace_back(InflateStream(streams_.back()));
        for (int64_t y = 0; y < height_; ++y) {
            streams_.back().skip(rowBytes_);
            progress.done(0, height_); // the rows are counted when they are converted
        }
    }
    band_.resize(checkedSize(rowBytes_ * rowsAtOnce_ * channels_));
}

void MergedPlanes::loadBand(int64_t firstRow, int64_t rows) {
    bandStart_ = firstRow;
    if (!isDeflated()) return;
    concurrentPerform(channels_, [&](int64_t channel) {
        const auto bytes = checkedSize(rows * rowBytes_);
        streams_[checkedSize(channel)].read(
            std::span(band_).subspan(bandOffset(static_cast<int>(channel), 0), bytes));
    });
}

std::size_t MergedPlanes::bandOffset(int channel, int64_t rowInBand) const {
    return checkedSize((channel * rowsAtOnce_ + rowInBand) * rowBytes_);
}

void MergedPlanes::readRow(int channel, int64_t y, std::span<uint8_t> into) const {
    const int64_t row = channel * height_ + y;
    if (packing_ == Packing::runs) {
        const int64_t start = rowStarts_[checkedSize(row)];
        const int64_t end = rowStarts_[checkedSize(row) + 1];
        PSDFile::unpackBits(planes_.subspan(checkedSize(start), checkedSize(end - start)), into);
        return;
    }
    const uint8_t* source =
        isDeflated() ? band_.data() + bandOffset(channel, y - bandStart_) : planes_.data() + row * rowBytes_;
    std::memcpy(into.data(), source, into.size());
    if (packing_ == Packing::deflatedDifferences) undoDifferences(into, depth_);
}

void undoDifferences(std::span<uint8_t> row, int depth) {
    switch (depth) {
    case 16: {
        uint16_t value = 0;
        for (std::size_t at = 0; at + 2 <= row.size(); at += 2) {
            value = static_cast<uint16_t>(value + qFromBigEndian<uint16_t>(&row[at]));
            qToBigEndian(value, &row[at]);
        }
        break;
    }
    case 8:
    case 32: {
        uint8_t value = 0;
        for (uint8_t& byte : row) byte = value = static_cast<uint8_t>(value + byte);
        break;
    }
    default: // single bits are never stored as differences
        break;
    }
    if (depth == 32) {
        const std::vector<uint8_t> split(row.begin(), row.end());
        const std::size_t count = row.size() / 4;
        for (std::size_t i = 0; i < row.size(); ++i) row[i] = split[i % 4 * count + i / 4];
    }
}

} // namespace qirn
