#include "formats/ExportFormat.h"

#include "compositing/CompositeInputs.h"
#include "formats/ImageExport.h"
#include "formats/pictures/JpegWriter.h"
#include "formats/pictures/PngWriter.h"
#include "formats/pictures/tiff/TiffWriter.h"
#include "formats/psd/PSDFile.h"

#include <QCoreApplication>

namespace qirn {

namespace {

std::optional<QByteArray> psd(const PaintDocument& doc, PSDFile::Layered layered) {
    try {
        return PSDFile::write(doc, layered);
    } catch (const PSDFile::TooLarge&) {
        return std::nullopt;
    }
}

} // namespace

std::optional<QByteArray> ExportEncoders::png(const PaintDocument& doc, const JpegOptions&) {
    return pngBytes(flattened(doc)->imageOverBytes(), doc.dpi);
}

std::optional<QByteArray> ExportEncoders::jpeg(const PaintDocument& doc, const JpegOptions& jpeg) {
    return jpegBytes(*ImageExport::onBackground(*flattened(doc), jpeg.background), jpeg.quality, doc.dpi);
}

std::optional<QByteArray> ExportEncoders::tiff(const PaintDocument& doc, const JpegOptions&) {
    return tiffBytes(*flattened(doc), doc.dpi);
}

std::optional<QByteArray> ExportEncoders::psdLayered(const PaintDocument& doc, const JpegOptions&) {
    return psd(doc, PSDFile::Layered::yes);
}

std::optional<QByteArray> ExportEncoders::psdFlat(const PaintDocument& doc, const JpegOptions&) {
    return psd(doc, PSDFile::Layered::no);
}

QString displayName(ExportFormat format) {
    return QCoreApplication::translate("ExportFormat", rowOf(format).displayName);
}

QString explanation(ExportFormat format) {
    return QCoreApplication::translate("ExportFormat", rowOf(format).explanation);
}

} // namespace qirn
