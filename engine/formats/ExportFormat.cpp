#include "formats/ExportFormat.h"

#include "compositing/CompositeInputs.h"
#include "formats/ImageExport.h"
#include "formats/pictures/JpegWriter.h"
#include "formats/pictures/PngWriter.h"
#include "formats/pictures/WebPWriter.h"
#include "formats/pictures/tiff/TiffWriter.h"
#include "formats/psd/PSDFile.h"

#include <QCoreApplication>

namespace qirn {

namespace {

constexpr double kFlattened = 0.2; // of the work, about

std::optional<QByteArray> psd(const PaintDocument& doc, PSDFile::Layered layered, const Progress& progress) {
    try {
        return PSDFile::write(doc, layered, progress);
    } catch (const PSDFile::TooLarge&) {
        return std::nullopt;
    }
}

} // namespace

std::optional<QByteArray> ExportEncoders::png(const PaintDocument& doc, const LossyOptions&,
                                              const Progress& progress) {
    return pngBytes(flattened(doc, progress.part(0, kFlattened))->imageOverBytes(), doc.dpi,
                    progress.part(kFlattened, 1));
}

std::optional<QByteArray> ExportEncoders::jpeg(const PaintDocument& doc, const LossyOptions& lossy,
                                               const Progress& progress) {
    const auto picture = flattened(doc, progress.part(0, kFlattened));
    return jpegBytes(*ImageExport::onBackground(*picture, lossy.background), lossy.quality, doc.dpi,
                     progress.part(kFlattened, 1));
}

std::optional<QByteArray> ExportEncoders::tiff(const PaintDocument& doc, const LossyOptions&,
                                               const Progress& progress) {
    return tiffBytes(*flattened(doc, progress.part(0, kFlattened)), doc.dpi, progress.part(kFlattened, 1));
}

std::optional<QByteArray> ExportEncoders::webp(const PaintDocument& doc, const LossyOptions&,
                                               const Progress& progress) {
    return webpBytes(flattened(doc, progress.part(0, kFlattened)), std::nullopt, doc.dpi,
                     progress.part(kFlattened, 1));
}

std::optional<QByteArray> ExportEncoders::webpLossy(const PaintDocument& doc, const LossyOptions& lossy,
                                                    const Progress& progress) {
    return webpBytes(flattened(doc, progress.part(0, kFlattened)), lossy.quality, doc.dpi,
                     progress.part(kFlattened, 1));
}

std::optional<QByteArray> ExportEncoders::openRaster(const PaintDocument& doc, const LossyOptions&,
                                                     const Progress& progress) {
    constexpr double kPreviewsMade = 0.2;
    OpenRaster::Previews previews;
    {
        const auto picture = flattened(doc, progress.part(0, kPreviewsMade / 2));
        const QImage image = picture->imageOverBytes();
        previews.finished = pngBytes(rowsOf(image), PngAlpha::always, doc.dpi,
                                     progress.part(kPreviewsMade / 2, kPreviewsMade));
        const QImage thumbnail = ImageExport::scaled(image, OpenRaster::kThumbnailSide);
        previews.thumbnail = pngBytes(rowsOf(thumbnail), PngAlpha::always, doc.dpi);
    }
    return OpenRaster::write(doc, previews, progress.part(kPreviewsMade, 1));
}

std::optional<QByteArray> ExportEncoders::psdLayered(const PaintDocument& doc, const LossyOptions&,
                                                     const Progress& progress) {
    return psd(doc, PSDFile::Layered::yes, progress);
}

std::optional<QByteArray> ExportEncoders::psdFlat(const PaintDocument& doc, const LossyOptions&,
                                                  const Progress& progress) {
    return psd(doc, PSDFile::Layered::no, progress);
}

QString displayName(ExportFormat format) {
    return QCoreApplication::translate("ExportFormat", rowOf(format).displayName);
}

QString explanation(ExportFormat format) {
    return QCoreApplication::translate("ExportFormat", rowOf(format).explanation);
}

} // namespace qirn
