#include "formats/pictures/GifReader.h"

#include "formats/common/PictureBuilder.h"
#include "formats/common/PrintDensity.h"
#include "formats/pictures/FrameRows.h"
#include "platform/CheckedMath.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include <gif_lib.h>

namespace qirn {

namespace {

using Bytes = std::span<const uint8_t>;
using Pixel = FrameRows::Pixel;

// How many pixels a byte can stand for: at best each code of 12 bits is a run longer than the one before.
constexpr double kPixelsAByte = 2800;
constexpr double kPassesBegun = 0.6; // of the work for an interlaced picture

/// Reads a file from the start to its first picture, then that picture's rows as they are stored.
class Decoder {
public:
    explicit Decoder(Bytes file) : rest_(file), gif_(DGifOpen(this, give, nullptr)) {
        isSound_ = gif_ && findPicture() && frame().Width > 0 && frame().Height > 0;
    }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    /// No error so far: there is a picture, and all rows that were asked for could be read.
    bool isSound() const { return isSound_; }
    const GifFileType& screen() const { return *gif_; }
    const GifImageDesc& frame() const { return gif_->Image; }
    /// The color that is transparent, -1 for none.
    int transparent() const { return transparent_; }
    /// The next stored row's colors by number, as many as the frame is wide. What is written when it fails says nothing.
    bool readRow(uint8_t* numbers) {
        return isSound_ = isSound_ && DGifGetLine(gif_.get(), numbers, frame().Width) == GIF_OK;
    }

private:
    struct Closer {
        void operator()(GifFileType* gif) const { DGifCloseFile(gif, nullptr); }
    };

    /// The library's read function. Behind the end of the file it returns 0 for every single byte, which ends the
    /// data of a picture and is an error elsewhere, so that a picture that lacks only its end mark is complete.
    static int give(GifFileType* gif, GifByteType* to, int count) {
        auto& self = *static_cast<Decoder*>(gif->UserData);
        const std::size_t bytes = std::min(self.rest_.size(), checkedSize(count));
        if (bytes == 0 && count == 1) {
            *to = 0;
            return 1;
        }
        std::copy_n(self.rest_.begin(), bytes, to);
        self.rest_ = self.rest_.subspan(bytes);
        return static_cast<int>(bytes);
    }

    bool findPicture() {
        GifRecordType type = UNDEFINED_RECORD_TYPE;
        while (DGifGetRecordType(gif_.get(), &type) == GIF_OK && type != TERMINATE_RECORD_TYPE) {
            if (type == IMAGE_DESC_RECORD_TYPE) return DGifGetImageDesc(gif_.get()) == GIF_OK;
            if (type == EXTENSION_RECORD_TYPE && !readExtension()) return false;
        }
        return false;
    }

    bool readExtension() {
        int code = 0;
        GifByteType* block = nullptr; // its length, then that many bytes
        if (DGifGetExtension(gif_.get(), &code, &block) != GIF_OK) return false;
        GraphicsControlBlock control{};
        if (code == GRAPHICS_EXT_FUNC_CODE && block &&
            DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK)
            transparent_ = control.TransparentColor;
        while (block)
            if (DGifGetExtensionNext(gif_.get(), &block) != GIF_OK) return false;
        return true;
    }

    Bytes rest_;
    std::unique_ptr<GifFileType, Closer> gif_;
    int transparent_ = NO_TRANSPARENT_COLOR;
    bool isSound_ = false;
};

/// The rows of a frame in the order in which they are seen. An interlaced one is stored as every eighth row, then those
/// between; a decoder for each of the four passes stands where its pass begins, so that no picture has to be held.
class Frame {
public:
    Frame(Bytes file, const Progress& progress) {
        passes_.push_back(std::make_unique<Decoder>(file));
        const Decoder& first = *passes_[0];
        if (!first.isSound()) return;
        numbers_.resize(checkedSize(first.frame().Width));
        if (!first.frame().Interlace) return;
        for (std::size_t pass = 1, above = 0; pass < kPasses.size(); ++pass) {
            above += rowsOf(kPasses[pass - 1]);
            passes_.push_back(std::make_unique<Decoder>(file));
            for (std::size_t row = 0; row < above && passes_[pass]->readRow(numbers_.data()); ++row)
                progress.done(static_cast<int64_t>(pass), std::ssize(kPasses));
        }
    }

    /// The decoder of what stands before the rows.
    const Decoder& head() const { return *passes_[0]; }

    /// Row `y`, to be asked for from 0 on. It stays as it is where it is missing but rows of the first pass are there, and
    /// fails where those are missing as well.
    bool readRow(int64_t y, std::vector<uint8_t>& row) {
        const std::size_t pass = passOf(y);
        if (!passes_[pass]->readRow(numbers_.data())) return pass != 0;
        row = numbers_;
        return true;
    }

private:
    struct Pass {
        int start, step;
    };
    static constexpr std::array<Pass, 4> kPasses{{{0, 8}, {4, 8}, {2, 4}, {1, 2}}};

    std::size_t rowsOf(const Pass& pass) const {
        return checkedSize(std::max(0, (head().frame().Height - pass.start + pass.step - 1) / pass.step));
    }
    std::size_t passOf(int64_t y) const {
        if (passes_.size() == 1) return 0;
        std::size_t pass = 0;
        while (y % kPasses[pass].step != kPasses[pass].start) ++pass;
        return pass;
    }

    std::vector<std::unique_ptr<Decoder>> passes_;
    std::vector<uint8_t> numbers_;
};

Pixel colorOf(const ColorMapObject* map, int number) {
    if (!map || number >= map->ColorCount) return {};
    const GifColorType& color = map->Colors[number];
    return {color.Red, color.Green, color.Blue, 255};
}

/// What shows beside a frame: nothing if it has a transparent color, else the screen's own color.
Pixel colorAround(const Decoder& decoder) {
    if (decoder.transparent() != NO_TRANSPARENT_COLOR) return {};
    const Pixel color = colorOf(decoder.screen().SColorMap, decoder.screen().SBackGroundColor);
    return {color[0], color[1], color[2], 255};
}

} // namespace

bool isGif(Bytes file) {
    return file.size() >= 6 &&
           (std::memcmp(file.data(), "GIF87a", 6) == 0 || std::memcmp(file.data(), "GIF89a", 6) == 0);
}

std::optional<DecodedPicture> readGif(Bytes file, const Progress& progress) {
    Frame frame(file, progress.part(0, kPassesBegun));
    const Decoder& head = frame.head();
    if (!head.isSound()) return std::nullopt;
    const int64_t width = head.screen().SWidth, height = head.screen().SHeight;
    if (!isReadableSize(width, height) || !backs(file.size(), kPixelsAByte, width, height))
        return std::nullopt;

    const GifImageDesc& place = head.frame();
    std::array<Pixel, 256> colors;
    for (int number = 0; number < std::ssize(colors); ++number)
        colors[checkedSize(number)] =
            colorOf(place.ColorMap ? place.ColorMap : head.screen().SColorMap, number);
    if (head.transparent() != NO_TRANSPARENT_COLOR) colors[checkedSize(head.transparent())] = {};

    PictureBuilder builder(width, height, ColorProfile::standard({ColorModel::rgb, SampleType::u8, true}), {},
                           place.Interlace ? progress.part(kPassesBegun, 1) : progress);
    FrameRows rows(builder, width, height, {place.Left, place.Top, place.Width, place.Height},
                   colorAround(head));
    std::vector<uint8_t> numbers;
    std::vector<Pixel> pixels(checkedSize(place.Width));
    for (int64_t y = 0; y < place.Height && !rows.isFull(); ++y) {
        if (!frame.readRow(y, numbers)) break;
        std::transform(numbers.begin(), numbers.end(), pixels.begin(), [&](uint8_t n) { return colors[n]; });
        rows.add(pixels[0].data());
        if (y == place.Height - 1) rows.finish();
    }
    auto layer = builder.finish();
    if (!layer) return std::nullopt;
    return DecodedPicture{std::move(layer), kUnknownDpi};
}

} // namespace qirn
