#include "app/files/PictureOnDisk.h"

#include "formats/ImageExport.h"
#include "formats/native/PaintFile.h"
#include "platform/Bytes.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/ReadFile.h"

#include <algorithm>

namespace qirn {

namespace {

constexpr double kFileRead = 0.1, kEncoded = 0.8; // of the work of reading and of writing, about

} // namespace

ReadPicture readPicture(const QString& path, const Progress& progress) {
    FileStamp stamp;
    const QByteArray bytes = readFile(path, kAnyLength, progress.part(0, kFileRead), &stamp);
    const auto& magic = PaintFile::magic;
    const bool isDocument = bytesOf(bytes).size() >= magic.size() &&
                            std::equal(magic.begin(), magic.end(), bytesOf(bytes).begin());
    return {ImageImport::imported(bytesOf(bytes), progress.part(kFileRead, 1)), isDocument, stamp};
}

void writeExported(const PaintDocument& picture, const QString& path, ExportFormat format, double quality,
                   const PaintColor& background, const Progress& progress) {
    const QByteArray bytes =
        ImageExport::data(picture, format, quality, background, progress.part(0, kEncoded));
    writeAtomically(path, bytesOf(bytes), progress.part(kEncoded, 1));
}

} // namespace qirn
