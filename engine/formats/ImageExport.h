#pragma once
#include "core/RGBABuffer.h"
#include "formats/ExportFormat.h"
#include "formats/common/FormatErrors.h"

#include <cstdint>
#include <memory>
#include <optional>

#include <QByteArray>
#include <QImage>

namespace qirn {

class PaintDocument;

/// Finished pictures as bytes of files.
namespace ImageExport {

/// The finished picture, without hidden layers, as the bytes of a file that notes the document's resolution and color
/// space and nothing else. Formats that lose something ask for a quality, brought into 0.05 to 1, those without
/// transparency for the color under it. On any thread where nobody writes to the document, as to a draft; throws
/// ExportError.
QByteArray data(const PaintDocument& doc, ExportFormat format, double quality, const PaintColor& background,
                const Progress& progress = {});

/// The picture laid over an opaque color, whose own alpha is not looked at.
std::shared_ptr<RGBABuffer> onBackground(const RGBABuffer& picture, const PaintColor& background);

/// A PNG with its resolution noted; nothing for a null image.
std::optional<QByteArray> pngData(const QImage& image, double dpi);

/// The picture reduced so that its larger side is at most `maxSide`, each pixel the exact average of the area that it
/// stands for; the image itself where it is not larger.
QImage scaled(const QImage& image, int64_t maxSide);

} // namespace ImageExport

} // namespace qirn
