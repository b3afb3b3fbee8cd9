#include "PeerTable.h"

#include "../PaintedPicture.h"
#include "brush/BrushLibrary.h"
#include "brush/BrushStroke.h"
#include "formats/native/PaintFile.h"
#include "formats/psd/PSDFile.h"
#include "platform/Bytes.h"

#include <cstdlib>
#include <cstring>
#include <vector>

#include <QImage>
#include <QTemporaryDir>
#include <lzfse.h>

namespace qirn::bench {

namespace {

/// The reference library over every tile, one after the other.
class Reference {
public:
    explicit Reference(const PaintDocument& doc) {
        for (const LayerRef& layer : doc.layers())
            layer->tiles().forEachTile([&](int64_t, const Tile& tile) { tiles_.push_back(&tile); });
        streams_.resize(tiles_.size());
    }
    void encode() {
        std::vector<uint8_t> stream(kTileBytes + 4096), workspace(lzfse_encode_scratch_size());
        for (std::size_t i = 0; i < tiles_.size(); ++i) {
            const std::size_t length = lzfse_encode_buffer(stream.data(), stream.size(), tiles_[i]->pixels(),
                                                           kTileBytes, workspace.data());
            streams_[i].assign(stream.begin(), stream.begin() + static_cast<std::ptrdiff_t>(length));
        }
    }
    void decode() {
        std::vector<uint8_t> pixels(kTileBytes), workspace(lzfse_decode_scratch_size());
        for (const auto& stream : streams_)
            lzfse_decode_buffer(pixels.data(), pixels.size(), stream.data(), stream.size(), workspace.data());
    }

private:
    std::vector<const Tile*> tiles_;
    std::vector<std::vector<uint8_t>> streams_;
};

void dabSomewhere(PaintDocument& doc, int i) {
    const StrokePoint points[] = {{300.0 + i * 40, 300, 1}, {700.0 + i * 40, 500, 1}};
    paintStroke(doc, points, *BrushLibrary::named(QStringLiteral("Hard Round")), PaintColor(0, 0.3, 0.9),
                nullptr, 1);
    doc.commit(QStringLiteral("Brush Stroke"));
}

void compareSaving() {
    std::unique_ptr<PaintDocument> doc = paintedPicture(4);
    Reference reference(*doc);
    reference.encode();
    QByteArray file = PaintFile::encode(*doc);
    // Opened anew each time, so that nothing is remembered of an earlier save.
    compare({.work = "save a painted 4K picture, 5 layers",
             .peer = "LZFSE, one thread",
             .reach = 0.6,
             .ours = [&] { PaintFile::encode(*doc); },
             .theirs = [&] { reference.encode(); },
             .reset =
                 [&] {
                     doc = PaintFile::decode(bytesOf(file));
                     reference = Reference(*doc);
                     reference.encode();
                 },
             .runs = 5});
    compare({.work = "open it",
             .peer = "LZFSE, one thread",
             .reach = 0.6,
             .ours = [&] { PaintFile::decode(bytesOf(file)); },
             .theirs = [&] { reference.decode(); }});
    PaintFile::encode(*doc);
    int strokes = 0;
    dabSomewhere(*doc, strokes);
    compare({.work = "save again after one stroke",
             .peer = "LZFSE, one thread",
             .reach = 0.05,
             .ours = [&] { PaintFile::encode(*doc); },
             .theirs = [&] { reference.encode(); },
             .reset = [&] { dabSomewhere(*doc, ++strokes); },
             .runs = 5});
}

void comparePSD() {
    const auto doc = paintedPicture(4);
    QTemporaryDir folder;
    QString command = QStringLiteral("convert -size %1x%2 xc:white ").arg(kWidth).arg(kHeight);
    for (int64_t i = 0; i < doc->layerCount(); ++i) {
        const QString path = folder.filePath(QStringLiteral("%1.mpc").arg(i));
        const QString png = folder.filePath(QStringLiteral("%1.png").arg(i));
        doc->layer(i).toBuffer()->makeImage().save(png, nullptr, 100);
        if (std::system(qPrintable(QStringLiteral("convert %1 %2").arg(png, path))) != 0) return;
        command += path + u' ';
    }
    // Its pixels are mapped from disk as they lie in its memory; reading them is no part of the writing.
    command += QStringLiteral("-compress RLE ") + folder.filePath(QStringLiteral("out.psd"));
    compare({.work = "layered PSD of it",
             .peer = "ImageMagick",
             .reach = 0.2,
             .ours = [&] { PSDFile::write(*doc, PSDFile::Layered::yes); },
             .theirs =
                 [&] {
                     if (std::system(qPrintable(command)) != 0) std::abort();
                 },
             .runs = 3});
}

void compareHistory() {
    const auto doc = paintedPicture(4);
    std::vector<uint8_t> copies(static_cast<std::size_t>(doc->grid().count()) * 4 * kTileBytes);
    const auto copyFourLayers = [&] {
        uint8_t* out = copies.data();
        for (int64_t i = 1; i < doc->layerCount(); ++i)
            doc->layer(i).tiles().forEachTile([&](int64_t, const Tile& tile) {
                std::memcpy(out, tile.pixels(), kTileBytes);
                out += kTileBytes;
            });
    };
    const auto change = [&] {
        for (int64_t i = 1; i < doc->layerCount(); ++i)
            for (int64_t t = 0; t < doc->grid().count(); ++t)
                doc->layer(i).writableTile(t).writablePixels()[0] ^= 1;
    };
    change();
    compare({.work = "commit of a 4-layer change",
             .peer = "copying those pixels",
             .reach = 0.01,
             .ours = [&] { doc->commit(QStringLiteral("Change")); },
             .theirs = copyFourLayers,
             .reset = change});
    doc->commit(QStringLiteral("Change"));
    compare({.work = "undo of a 4-layer change",
             .peer = "copying those pixels",
             .reach = 0.01,
             .ours = [&] { doc->undo(); },
             .theirs = copyFourLayers,
             .reset =
                 [&] {
                     doc->redo();
                     doc->takeDirtyParts();
                 }});
}

} // namespace

void compareFiles() {
    compareSaving();
    comparePSD();
    compareHistory();
}

} // namespace qirn::bench
