// Writes the files that fuzzing starts from, by our own encoders: Seeds TARGET FOLDER.
#include "brush/BrushFile.h"
#include "brush/BrushLibrary.h"
#include "core/PaintDocument.h"
#include "formats/ImageExport.h"
#include "formats/native/PaintFile.h"
#include "formats/palettes/PaletteLibrary.h"
#include "formats/psd/PSDFile.h"
#include "support/NativeFiles.h"
#include "support/PictureFiles.h"
#include "support/Pictures.h"

#include <cstdio>
#include <string_view>
#include <vector>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QImage>

using namespace qirn;
using namespace qirn::test;

namespace {

using Files = std::vector<QByteArray>;

Files documents() {
    Files files{PaintFile::encode(*richDocument())};
    files.push_back(withManifest(files[0], [](OrderedJson& m) { m.erase("thumbnail"); }));
    files.push_back(withManifest(files[0], [](OrderedJson& m) {
        m["layers"][1]["tiles"] = m["layers"][0]["tiles"]; // two slots with the same bytes
        m.erase("onion");
    }));
    PaintDocument empty(30'000, 30'000, 300, std::nullopt);
    files.push_back(PaintFile::encode(empty));
    PaintDocument flat(600, 300, 72, PaintColor::white());
    files.push_back(PaintFile::encode(flat));
    PaintDocument raw(1, 1, 72, std::nullopt);
    files.push_back(withManifest(PaintFile::encode(raw) + QByteArray(kTileBytes, 'p'), [](OrderedJson& m) {
        m["layers"][0]["tiles"].push_back({{"i", 0}, {"o", 0}, {"n", kTileBytes}, {"c", 0}});
        m.erase("thumbnail");
    }));
    files.push_back(withManifest(PaintFile::encode(flat) + QByteArray(600, 'p'), [](OrderedJson& m) {
        OrderedJson& tiles = m["layers"][0]["tiles"];
        m.erase("thumbnail");
        for (int i = 0; i < 600; ++i) { // of which the slot keeps the last
            OrderedJson entry = tiles[0];
            entry["n"] = entry["n"].get<int>() + i;
            tiles.push_back(std::move(entry));
        }
    }));
    NativeFile claiming = NativeFile::takenApart(PaintFile::encode(raw));
    claiming.blob += claimingPng("tEXt");
    claiming.manifest["thumbnail"]["o"] = claiming.blob.size() - claimingPng("tEXt").size();
    claiming.manifest["thumbnail"]["n"] = claimingPng("tEXt").size();
    files.push_back(claiming.joined());
    return files;
}

Files swatches() {
    Files files;
    for (const Palette& palette : PaletteLibrary::builtIn()) files.push_back(PaletteLibrary::aco(palette));
    files.push_back(files[0].left(4 + 10 * 16)); // the first section alone
    return files;
}

Files gplFiles() {
    Files files{"GIMP Palette\r\n1 2 3 a  b\r\n# c\r\nName:d\r\n+1 -0 256 e\r\n"};
    for (const Palette& palette : PaletteLibrary::builtIn()) {
        files.push_back(PaletteLibrary::gpl(palette).toUtf8());
    }
    return files;
}

Files hexLists() {
    return {"#F80,0d0221;abc\tffffff80 \n\r#123456 +12345 +12", "GIMP Palette\n1 2 3", "#112233"};
}

Files brushes() {
    const auto& presets = BrushLibrary::builtIn();
    return {BrushFile::encode({}), BrushFile::encode(std::span(presets).first(1)), BrushFile::encode(presets),
            "[{\"name\":\"Old file brush\",\"size\":42,\"hardness\":null}]"};
}

Files handOvers() {
    return {QByteArray("\0\0\0\6"
                       "1.0\0\0\0",
                       10),
            QByteArray("\0\0\0\x14"
                       "1.0\0t\0recover\0/a\0/b\0",
                       24)};
}

Files photoshopFiles() {
    Files files;
    for (const auto& doc : {richDocument(), randomDocument(40, 30, 3, 7)}) {
        files.push_back(PSDFile::write(*doc, PSDFile::Layered::yes));
        files.push_back(PSDFile::write(*doc, PSDFile::Layered::no));
    }
    return files;
}

Files openRasterFiles() {
    Files files;
    for (const auto& doc : {richDocument(), randomDocument(40, 30, 6, 7)})
        files.push_back(ImageExport::data(*doc, ExportFormat::openRaster, 1, PaintColor::white()));
    return files;
}

Files pictures() {
    const auto doc = randomDocument(24, 17, 1, 3);
    Files files;
    for (const ExportFormat format : {ExportFormat::png, ExportFormat::jpeg, ExportFormat::tiff}) {
        files.push_back(ImageExport::data(*doc, format, 0.8, PaintColor::white()));
    }
    const QImage image = QImage::fromData(files[0]);
    for (const char* format : {"bmp", "webp"}) files.push_back(written(image, format));
    for (const QImage::Format format :
         {QImage::Format_Indexed8, QImage::Format_Grayscale16, QImage::Format_RGBA64}) {
        files.push_back(written(image.convertToFormat(format), "png"));
    }
    const QByteArray exif = exifBlock(6, 300);
    files.push_back(withPngChunk(files[0], "eXIf", exif));
    files.push_back(withJpegSegment(files[1], 0xE1, QByteArray("Exif\0\0", 6) + exif));
    files.push_back(cmykJpeg(QByteArray(64 * 4, 'k'), 8, 8, true));
    files.push_back(extendedWebP(written(image, "webp"), image.width(), image.height(), {}, exif));
    for (const char* chunk : {"tEXt", "zTXt", "iTXt", "sPLT", "pCAL", "sCAL"})
        files.push_back(claimingPng(chunk));
    files.push_back(faxPage(30'000));
    for (const char* name : {"blocks.gif", "blocks.heic", "interlaced.gif", "clipped.gif", "animated.webp"})
        files.push_back(testData(name));
    files.push_back(senselessGif());
    files.push_back(senselessWebP());
    return files;
}

struct Target {
    std::string_view name;
    Files (*files)();
};
constexpr Target kTargets[] = {
    {"brushes", brushes},
    {"document", documents},
    {"gpl", gplFiles},
    {"hexlist", hexLists},
    {"handover", handOvers},
    {"image", pictures},
    {"openraster", openRasterFiles},
    {"psd", photoshopFiles},
    {"swatches", swatches},
    {"thumbnail", documents},
};

bool write(const Target& target, const QString& folder) {
    if (!QDir().mkpath(folder)) return false;
    int number = 0;
    for (const QByteArray& bytes : target.files()) {
        QFile file(QStringLiteral("%1/seed-%2").arg(folder).arg(++number));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) return false;
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    for (const Target& target : kTargets) {
        if (argc == 3 && target.name == argv[1]) return write(target, QFile::decodeName(argv[2])) ? 0 : 1;
    }
    std::fprintf(stderr, "usage: %s TARGET FOLDER\n", argv[0]);
    return 1;
}
