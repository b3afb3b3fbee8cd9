#include "core/PaintDocument.h"
#include "formats/openraster/LayerStack.h"
#include "formats/openraster/OpenRaster.h"
#include "formats/openraster/StackNames.h"
#include "formats/openraster/ZipArchive.h"
#include "formats/pictures/PngWriter.h"
#include "platform/CheckedMath.h"

#include <algorithm>
#include <cstring>

#include <QCoreApplication>
#include <QStringList>

namespace qirn {

namespace {

/// A part of a layer, gathered from its tiles row by row.
PictureRows rowsOf(const Layer& layer, const IRect& part) {
    return {part.w, part.h, [&layer, part](int64_t row, uint8_t* room) -> const uint8_t* {
                const int64_t y = part.y + row;
                for (int64_t x = part.x, end = 0; x < part.maxX(); x = end) {
                    end = std::min(part.maxX(), (x / kTileSize + 1) * kTileSize);
                    uint8_t* const to = room + (x - part.x) * 4;
                    const std::size_t bytes = checkedSize(end - x) * 4;
                    const Tile* const tile = layer.tile(layer.grid().indexAt(x, y));
                    if (tile)
                        std::memcpy(to, tile->pixels() + placeInTile(x, y), bytes);
                    else
                        std::memset(to, 0, bytes);
                }
                return room;
            }};
}

constexpr double kNoDensity = 0; // of a layer: the list has that of the picture

} // namespace

QByteArray OpenRaster::write(const PaintDocument& doc, const Previews& previews, const Progress& progress) {
    std::vector<IRect> places;
    for (const LayerRef& layer : doc.layers())
        places.push_back(layer->contentBounds().value_or(IRect{0, 0, 1, 1})); // PNG has no empty picture
    ZipWriter zip;
    zip.add("mimetype", "image/openraster");
    zip.add("stack.xml", writeStack(doc, places));
    const auto behind = [&](int64_t layers) {
        return static_cast<double>(layers) / static_cast<double>(doc.layerCount());
    };
    for (int64_t i = 0; i < doc.layerCount(); ++i) {
        const PictureRows rows = rowsOf(doc.layer(i), places[checkedSize(i)]);
        zip.add(sourceOf(i),
                pngBytes(rows, PngAlpha::always, kNoDensity, progress.part(behind(i), behind(i + 1))));
    }
    zip.add("mergedimage.png", previews.finished);
    zip.add("Thumbnails/thumbnail.png", previews.thumbnail);
    return zip.finish();
}

QString OpenRaster::shownDifferently(const PaintDocument& doc) {
    QStringList words;
    const auto say = [&words](const QString& word) {
        if (!words.contains(word)) words += word;
    };
    for (int64_t i = 0; i < doc.layerCount(); ++i) {
        const Layer& layer = doc.layer(i);
        const bool isClipped = i > 0 && layer.isClipping;
        if (isClipped) say(QCoreApplication::translate("OpenRaster", "clipping (GIMP)"));
        if (isClipped && layer.blendMode != BlendMode::normal)
            say(QCoreApplication::translate("OpenRaster", "blend modes of clipped layers"));
        else if (!nameOf(layer.blendMode).startsWith(QLatin1String("svg:")))
            say(QCoreApplication::translate("BlendMode", qirn::rowOf(layer.blendMode).displayName));
    }
    return words.join(QStringLiteral(", "));
}

} // namespace qirn
