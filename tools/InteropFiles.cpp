#include "compositing/CompositeInputs.h"
#include "formats/psd/PSDFile.h"
#include "operations/LayerOperations.h"
#include "support/Pictures.h"

#include <cstdio>

#include <QDir>
#include <QFile>
#include <QTextStream>

using namespace qirn;

namespace {

void save(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) std::exit(1);
}

/// Colour as Photoshop files have it, so that no other rounding gets between.
QImage straightImage(const RGBABuffer& buffer, const IRect& rect) {
    QImage image(static_cast<int>(rect.w), static_cast<int>(rect.h), QImage::Format_RGBA8888);
    const auto planes = PSDFile::planes(buffer, rect);
    for (int64_t i = 0; i < rect.w * rect.h; ++i) {
        uint8_t* pixel = image.scanLine(static_cast<int>(i / rect.w)) + 4 * (i % rect.w);
        for (std::size_t c = 0; c < 4; ++c) pixel[c] = planes[c][static_cast<std::size_t>(i)];
    }
    return image;
}

/// Premultiplied, four bytes a pixel.
QByteArray rawPixels(const RGBABuffer& buffer, const IRect& rect) {
    QByteArray bytes;
    for (int64_t y = rect.y; y < rect.maxY(); ++y)
        bytes.append(reinterpret_cast<const char*>(buffer.row(y) + 4 * rect.x), 4 * rect.w);
    return bytes;
}

/// A layer of each blend mode with noise in a rectangle of its own, one hidden, one clipped, one empty; nothing below
/// them.
std::unique_ptr<PaintDocument> document() {
    auto doc = std::make_unique<PaintDocument>(400, 300, 150, std::nullopt);
    for (const BlendModeRow& row : kBlendModes) {
        const auto i = static_cast<int64_t>(row.mode);
        addLayer(*doc, QString::fromUtf8(row.id) + QStringLiteral(" é"));
        Layer& layer = doc->activeLayer();
        layer.blendMode = row.mode;
        layer.opacity = static_cast<double>(255 - 9 * i) / 255;
        layer.isVisible = row.mode != BlendMode::screen;
        layer.isClipping = row.mode == BlendMode::overlay;
        const auto part = test::noise(150, 90, static_cast<uint64_t>(i + 1));
        layer.load(*test::pictureOf(
            400, 300, [&](int64_t x, int64_t y) { return part->pixel(x - 12 * i, y - 10 * i); }));
    }
    addLayer(*doc, QStringLiteral("empty"));
    return doc;
}

} // namespace

/// Writes what tools/check-interop shows to other programs: the files, and what they are to be read as.
int main(int argc, char** argv) {
    if (argc != 2) return 2;
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    const auto doc = document();
    save(folder.filePath("layered.psd"), PSDFile::write(*doc, PSDFile::Layered::yes));
    save(folder.filePath("flat.psd"), PSDFile::write(*doc, PSDFile::Layered::no));
    const auto finished = flattened(*doc);
    straightImage(*finished, doc->grid().bounds()).save(folder.filePath("finished.png"));
    save(folder.filePath("finished.rgba"), rawPixels(*finished, doc->grid().bounds()));
    QString list;
    QTextStream lines(&list);
    for (int64_t i = 0; i < doc->layerCount(); ++i) {
        const Layer& layer = doc->layer(i);
        const IRect rect = layer.contentBounds().value_or(IRect{0, 0, 1, 1});
        straightImage(*layer.toBuffer(), rect).save(folder.filePath(QStringLiteral("layer-%1.png").arg(i)));
        save(folder.filePath(QStringLiteral("layer-%1.rgba").arg(i)), rawPixels(*layer.toBuffer(), rect));
        lines << layer.name << '\t' << rowOf(layer.blendMode).id << '\t' << std::lround(layer.opacity * 255)
              << '\t' << layer.isVisible << '\t' << layer.isClipping << '\t' << rect.x << '\t' << rect.y
              << '\n';
    }
    save(folder.filePath("layers.tsv"), list.toUtf8());
    return 0;
}
