#pragma once
#include "formats/common/DecodedPicture.h"
#include "formats/common/PictureBuilder.h"
#include "platform/Progress.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <tuple>

#include <QByteArray>

namespace qirn {

bool isPng(std::span<const uint8_t> file);
/// Every kind of PNG, with its profile or gamma, upright. A file that ends early gives the rows that it holds.
std::optional<DecodedPicture> readPng(std::span<const uint8_t> file, const Progress& progress = {});
/// The same as a layer of a canvas, neither turned nor with a resolution; null where the other gives nothing. Colors of
/// `PngProfiles` for this picture go before its own.
LayerRef readPngOnto(const OnCanvas& place, std::span<const uint8_t> file,
                     const ColorProfile* colors = nullptr, const Progress& progress = {});

/// The colors of pictures that are read together. To make a profile may take a tenth of a second, however few pixels it is
/// for: each that differs is made once, and only so many of them.
class PngProfiles {
public:
    explicit PngProfiles(std::size_t most) : most_(most) {}
    /// Null where the picture names none; where they are too many as if it did.
    std::shared_ptr<const ColorProfile> of(std::span<const uint8_t> file);

private:
    using Key =
        std::tuple<QByteArray, ColorModel, SampleType, bool>; // a hash of what is named; for which pixels
    std::map<Key, std::shared_ptr<const ColorProfile>> made_;
    std::size_t most_;
};

} // namespace qirn
