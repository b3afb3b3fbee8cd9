#pragma once
#include "core/IRect.h"
#include "core/RGBABuffer.h"
#include "formats/common/ImportRemarks.h"
#include "formats/psd/PackBits.h"
#include "platform/DescribedError.h"
#include "platform/Progress.h"

#include <array>
#include <cstdint>
#include <exception>
#include <memory>
#include <span>
#include <vector>

#include <QByteArray>
#include <QString>

namespace qirn {

class PaintDocument;

/// Photoshop documents of version 1: RGB, 8 bits a channel. All numbers are big-endian.
///
///     26 bytes   "8BPS", version, channels, height, width, depth, color mode
///     u32 + n    color mode data
///     u32 + n    resources: the resolution
///     u32 + n    layers: a record each, then the pixels of each; nothing in a flat file
///     the rest   the finished picture, with its transparency as fourth channel
///
/// docs/formats.md says what of the format is written and read.
namespace PSDFile {

/// A sound Photoshop file that holds what this reader does not understand.
class PSDError : public DescribedError {
public:
    static PSDError unsupported(const QString& feature); ///< "16-bit color", ...
    static PSDError noMergedPicture();

    const QString& feature() const { return feature_; } ///< As given.

private:
    using DescribedError::DescribedError;

    QString feature_;
};

/// A picture that goes beyond what the lengths in a layered file can say.
struct TooLarge : std::exception {
    const char* what() const noexcept override { return "too large for a Photoshop file"; }
};

enum class Layered { no, yes };

/// The whole file; the same bytes on any number of threads. With `yes` each layer is kept, hidden ones too; the
/// finished picture is in both kinds. A layered file counts its bytes in 32 bits and its layers in 16, or
/// throws TooLarge.
QByteArray write(const PaintDocument& doc, Layered layered, const Progress& progress = {});

/// The document with its top layer active and a fresh history. A file without layers gives one, "Background".
/// Throws PSDError, PaintFileError, or BEReader::Short for a file that ends too early. `remarks`, if given, becomes what
/// does not show as it was made.
std::unique_ptr<PaintDocument> read(std::span<const uint8_t> file, ImportRemarks* remarks = nullptr,
                                    const Progress& progress = {});

/// Straight red, green, blue and alpha of a rectangle within the buffer. Multiplying by alpha again gives back every
/// pixel whose color does not exceed its alpha.
std::array<std::vector<uint8_t>, 4> planes(const RGBABuffer& buffer, const IRect& rect);

} // namespace PSDFile

} // namespace qirn
