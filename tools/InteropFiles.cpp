#include "compositing/CompositeInputs.h"
#include "formats/ImageExport.h"
#include "formats/ImageImport.h"
#include "formats/psd/PSDFile.h"
#include "operations/LayerOperations.h"
#include "platform/Bytes.h"
#include "platform/files/ReadFile.h"
#include "support/Pictures.h"

#include <cmath>
#include <cstdio>

#include <QDir>
#include <QFile>
#include <QGuiApplication>
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

void saveFinished(const QString& path, const PaintDocument& doc) {
    straightImage(*flattened(doc), doc.grid().bounds()).save(path);
}

constexpr int64_t kModeWidth = 160;

/// OpenRaster files, a picture of what each shows beside them: a layer of each mode, side by side on opaque noise; plain
/// layers of which one is hidden, on nothing; layers clipped to one that is half transparent at half opacity.
void saveOpenRaster(const QDir& folder) {
    const auto saveBoth = [&folder](const QString& name, const PaintDocument& doc) {
        save(folder.filePath(name + ".ora"),
             ImageExport::data(doc, ExportFormat::openRaster, 1, PaintColor::white()));
        saveFinished(folder.filePath(name + ".png"), doc);
    };
    const auto noiseAt = [](PaintDocument& doc, int64_t x, int64_t y, uint64_t seed) {
        const auto part = test::noise(150, 90, seed);
        addLayer(doc);
        doc.activeLayer().load(
            *test::pictureOf(doc.grid().width, doc.grid().height,
                             [&](int64_t px, int64_t py) { return part->pixel(px - x, py - y); }));
    };
    const auto count = static_cast<int64_t>(kBlendModes.size());
    PaintDocument modes(kModeWidth * count, 100, 72, PaintColor::white());
    const auto ground = test::noise(modes.grid().width, 100, 77);
    modes.layer(0).load(*ImageExport::onBackground(*ground, PaintColor(0.3, 0.5, 0.9)));
    for (const BlendModeRow& row : kBlendModes) {
        noiseAt(modes, kModeWidth * static_cast<int64_t>(row.mode), 5, 5);
        modes.activeLayer().blendMode = row.mode;
    }
    saveBoth("modes", modes);
    PaintDocument plain(400, 300, 150, std::nullopt);
    for (int i = 0; i < 4; ++i) noiseAt(plain, 60 * i - 40, 50 * i, static_cast<uint64_t>(i));
    plain.activeLayer().isVisible = false;
    saveBoth("plain", plain);
    PaintDocument clipped(400, 300, 300, PaintColor::white());
    for (int i = 0; i < 3; ++i) {
        noiseAt(clipped, 40 + 30 * i, 40, static_cast<uint64_t>(i));
        clipped.activeLayer().isClipping = i > 0;
        if (i == 0) clipped.activeLayer().opacity = 0.6;
    }
    saveBoth("clipped", clipped);
}

} // namespace

/// Writes what tools/check-interop shows to other programs: the files, and what they are to be read as. With a picture and
/// a PNG it writes what the one shows to the other.
int main(int argc, char** argv) {
    const QGuiApplication app(argc, argv);
    if (argc == 3) {
        const QByteArray file = readFile(QString::fromLocal8Bit(argv[1]));
        const auto [doc, remarks] = ImageImport::imported(bytesOf(file));
        saveFinished(QString::fromLocal8Bit(argv[2]), *doc);
        for (const LayerRef& layer : doc->layers())
            std::printf("%s\t%s\t%ld\t%d\t%d\n", qPrintable(layer->name), rowOf(layer->blendMode).id,
                        std::lround(layer->opacity * 255), layer->isVisible, layer->isClipping);
        std::printf("%s\n", qPrintable(wordsOf(remarks)));
        return 0;
    }
    if (argc != 2) return 2;
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    saveOpenRaster(folder);
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
