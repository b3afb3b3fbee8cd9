#pragma once
#include "core/RGBABuffer.h"
#include "formats/ExportFormat.h"
#include "formats/common/FormatErrors.h"
#include "formats/common/ScaledImage.h"

#include <memory>

#include <QByteArray>

namespace qirn {

class PaintDocument;

/// Finished pictures as bytes of files.
namespace ImageExport {

/// The finished picture, without hidden layers, as the bytes of a file that notes the document's resolution and nothing
/// else. JPEG alone asks for a quality, brought into 0.05 to 1, and for the color under what is transparent. Runs where
/// the document is owned; throws ExportError.
QByteArray data(const PaintDocument& doc, ExportFormat format, double jpegQuality,
                const PaintColor& jpegBackground);

/// The picture laid over an opaque color, whose own alpha is not looked at.
std::shared_ptr<RGBABuffer> onBackground(const RGBABuffer& picture, const PaintColor& background);

} // namespace ImageExport

} // namespace qirn
