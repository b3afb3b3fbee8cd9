#include "formats/ImageImport.h"

#include "formats/common/FormatErrors.h"
#include "formats/native/PaintFile.h"
#include "formats/openraster/OpenRaster.h"
#include "formats/pictures/BmpReader.h"
#include "formats/pictures/GifReader.h"
#include "formats/pictures/HeifReader.h"
#include "formats/pictures/JpegReader.h"
#include "formats/pictures/PngReader.h"
#include "formats/pictures/WebPReader.h"
#include "formats/pictures/tiff/TiffReader.h"
#include "formats/psd/PSDFile.h"
#include "formats/psd/PSDHeader.h"
#include "formats/psd/read/MergedReader.h"

#include <new>
#include <utility>
#include <vector>

#include <QCoreApplication>

namespace qirn {

namespace {

using Bytes = std::span<const uint8_t>;

/// The formats, told apart by their first bytes.
struct Reader {
    bool (*isOne)(Bytes);
    std::optional<DecodedPicture> (*read)(Bytes, const Progress&);
};
constexpr Reader kReaders[] = {
    {isPng, readPng},
    {isJpeg, readJpeg},
    {isTiff, readTiff},
    {isWebP, readWebP},
    {isPhotoshopFile, MergedReader::decode},
    {OpenRaster::isArchive, OpenRaster::finishedPicture},
    {isHeif, readHeif},
    {isGif, readGif},
    {isBmp, readBmp},
};

} // namespace

ImageImport::Imported ImageImport::imported(Bytes file, const Progress& progress) {
    if (PaintFile::infoOf(file)) return {PaintFile::decode(file, progress), {}};
    Imported result;
    if (isPhotoshopFile(file)) {
        // If the layers cannot be read, the merged picture beside them may still open as a single layer.
        try {
            result.document = PSDFile::read(file, &result.remarks, progress);
            return result;
        } catch (const PSDFile::PSDError& error) {
            result.remarks = MergedReader::remarks(file, error.feature());
        } catch (const std::bad_alloc&) {
            throw; // otherwise the merged picture would open in place of the layers
        } catch (const std::exception&) {
            result.remarks = MergedReader::remarks(file, {});
        }
    }
    if (OpenRaster::isArchive(file)) {
        result.document = OpenRaster::read(file, &result.remarks, progress);
        if (result.document) return result;
        result.remarks = {{ImportRemark::Kind::asOneLayer,
                           QCoreApplication::translate("ImportRemark", "damaged list of layers")}};
    }
    auto picture = decode(file, progress);
    if (!picture) throw ExportError::cannotRead();
    const TileGrid grid = picture->layer->grid();
    result.document = std::make_unique<PaintDocument>(grid.width, grid.height, picture->dpi,
                                                      std::vector<LayerRef>{std::move(picture->layer)}, 0);
    return result;
}

std::unique_ptr<PaintDocument> ImageImport::document(Bytes file, const QString&) {
    return imported(file).document;
}

std::optional<DecodedPicture> ImageImport::decode(Bytes file, const Progress& progress) {
    for (const Reader& reader : kReaders) {
        if (reader.isOne(file)) return reader.read(file, progress);
    }
    return std::nullopt;
}

} // namespace qirn
