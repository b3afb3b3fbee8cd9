#include "program/SelfTestEngine.h"

#include "app/canvas/CanvasPresentation.h"
#include "brush/BrushLibrary.h"
#include "brush/BrushStroke.h"
#include "compositing/CompositeInputs.h"
#include "formats/native/PaintFile.h"
#include "operations/LayerOperations.h"
#include "platform/Bytes.h"

#include <chrono>
#include <cstdio>

namespace qirn {

BrushSettings selfTestBrush(double size, double opacity) {
    BrushSettings brush(QStringLiteral("Plain"), QStringLiteral("Self-test"), BrushKind::paint);
    brush.size = size;
    brush.opacity = opacity;
    brush.hardness = 1;
    brush.spacing = 0.05;
    brush.pressureSize = false;
    return brush;
}

namespace {

std::vector<StrokePoint> line(double x1, double y1, double x2, double y2, double pressure = 1) {
    std::vector<StrokePoint> points;
    for (int i = 0; i <= 20; ++i) {
        const double t = i / 20.0;
        points.emplace_back(x1 + (x2 - x1) * t, y1 + (y2 - y1) * t, pressure, 0, 0, t);
    }
    return points;
}

uint64_t paintAndPrint(const BrushSettings& brush, uint64_t seed) {
    PaintDocument doc(600, 300, 72, std::nullopt);
    if (brush.kind != BrushKind::paint) {
        paintStroke(doc, line(60, 150, 540, 150), selfTestBrush(120), PaintColor(0.2, 0.4, 0.8), nullptr, 1);
    }
    paintStroke(doc, line(40, 120, 560, 180, 0.8), brush, PaintColor(0.7, 0.02, 0.08), nullptr, seed);
    return doc.activeLayer().fingerprint();
}

} // namespace

void SelfTestEngine::strokes(SelfTestReport& report) {
    const PaintColor red(1, 0, 0);
    PaintDocument doc(300, 120, 72, std::nullopt);
    paintStroke(doc, line(30, 60, 270, 60), selfTestBrush(10), red, nullptr, 1);
    bool solid = true, clean = true;
    for (int x = 30; x <= 270; ++x) {
        for (int y = 56; y <= 63; ++y)
            solid = solid && doc.activeLayer().pixel(x, y) == PixelBytes{255, 0, 0, 255};
        clean = clean && doc.activeLayer().pixel(x, 50)[3] == 0 && doc.activeLayer().pixel(x, 65 + 1)[3] == 0;
    }
    report.check(QStringLiteral("A hard line has no gaps, also across a tile border"), solid);
    report.check(QStringLiteral("A hard line stays within its width"), clean);

    PaintDocument half(300, 120, 72, std::nullopt);
    std::vector<StrokePoint> crossing = line(30, 60, 270, 60);
    const auto back = line(270, 60, 30, 60);
    crossing.insert(crossing.end(), back.begin(), back.end());
    paintStroke(half, crossing, selfTestBrush(16, 0.5), red, nullptr, 1);
    report.check(QStringLiteral("Opacity is a ceiling, however often a stroke crosses itself"),
                 std::abs(half.activeLayer().pixel(150, 60)[3] - 128) <= 2 &&
                     std::abs(half.activeLayer().pixel(256, 60)[3] - 128) <= 2);
    doc.activeLayer().isLocked = true;
    const uint64_t print = doc.fingerprint();
    report.check(QStringLiteral("A locked layer is not painted on"),
                 paintStroke(doc, line(0, 0, 9, 9), selfTestBrush(10), red, nullptr, 1).isEmpty() &&
                     doc.fingerprint() == print);
    for (const BrushSettings& preset : BrushLibrary::builtIn()) {
        const uint64_t first = paintAndPrint(preset, 7);
        const bool paints = preset.kind != BrushKind::paint ||
                            first != PaintDocument(600, 300, 72, std::nullopt).activeLayer().fingerprint();
        report.check(QStringLiteral("\"%1\" paints, and the same from the same seed").arg(preset.name),
                     paints && first == paintAndPrint(preset, 7));
    }
}

void SelfTestEngine::blendModes(SelfTestReport& report) {
    static constexpr PixelBytes kKnown[kBlendModeCount] = {
        {60, 150, 240, 255},  {47, 59, 47, 255},    {213, 191, 243, 255}, {171, 118, 94, 255},
        {60, 100, 50, 255},   {200, 150, 240, 255}, {255, 243, 255, 255}, {21, 0, 37, 255},
        {94, 127, 231, 255},  {177, 111, 106, 255}, {140, 50, 190, 255},  {166, 132, 196, 255},
        {255, 250, 255, 255}, {140, 0, 0, 255},     {5, 0, 35, 255},      {64, 139, 214, 255},
        {215, 95, 35, 255},   {52, 142, 232, 255},  {208, 108, 58, 255},
    };
    for (const BlendModeRow& row : kBlendModes) {
        const PixelBytes got = Compositor::blendBytes({200, 100, 50, 255}, {60, 150, 240, 255}, row.mode, 1);
        const PixelBytes& known = kKnown[static_cast<std::size_t>(row.mode)];
        bool near = true;
        for (std::size_t c = 0; c < 4; ++c) near = near && std::abs(got[c] - known[c]) <= 1;
        report.check(QStringLiteral("%1 mixes as it should").arg(QLatin1String(row.displayName)), near);
    }
    PaintDocument doc(300, 300, 72, PaintColor::fromBytes(200, 100, 50));
    doc.fillLayer(doc.layer(1), PaintColor::fromBytes(60, 150, 240));
    doc.layer(1).blendMode = BlendMode::multiply;
    const PixelBytes multiplied = compositePixel(doc, 150, 150);
    report.check(QStringLiteral("A multiplied layer shows in the finished picture"),
                 std::abs(multiplied[0] - 47) <= 1 && std::abs(multiplied[1] - 59) <= 1);
    doc.layer(1).isVisible = false;
    report.check(QStringLiteral("A hidden layer does not"),
                 compositePixel(doc, 150, 150) == PixelBytes{200, 100, 50, 255});
}

void SelfTestEngine::undoRedo(SelfTestReport& report) {
    PaintDocument doc(1200, 900, 72, PaintColor::white());
    std::vector<uint64_t> prints{doc.fingerprint()};
    for (int i = 0; i < 80; ++i) {
        paintStroke(doc, line(20 + i * 7, 30, 60 + i * 7, 200), selfTestBrush(8), PaintColor(0, 0, i / 80.0),
                    nullptr, 1);
        doc.commit(QStringLiteral("Brush Stroke"));
        prints.push_back(doc.fingerprint());
    }
    report.check(QStringLiteral("80 strokes hold only the tiles that they touched"),
                 doc.historyBytes() < 80 * 4 * int64_t{kTileBytes});
    for (int i = 0; i < 40; ++i) doc.undo();
    report.check(QStringLiteral("40 undos give the picture of stroke 40"), doc.fingerprint() == prints[40]);
    for (int i = 0; i < 40; ++i) doc.undo();
    report.check(QStringLiteral("40 more give the blank one"),
                 doc.fingerprint() == prints[0] && !doc.canUndo());
    while (doc.canRedo()) doc.redo();
    report.check(QStringLiteral("Redo brings all back"), doc.fingerprint() == prints[80]);
    doc.maxUndoSteps = 3;
    doc.commit(QStringLiteral("Trim"));
    report.check(QStringLiteral("The history keeps as many steps as it is told"), doc.history().size() == 4);
}

std::unique_ptr<PaintDocument> selfTestPicture() {
    auto doc = std::make_unique<PaintDocument>(700, 500, 300, PaintColor(0.9, 0.85, 0.8));
    paintStroke(*doc, line(50, 60, 650, 420, 0.9), *BrushLibrary::named(QStringLiteral("Charcoal")),
                PaintColor::black(), nullptr, 3);
    const LayerRef layer = addLayer(*doc, QStringLiteral("Ébauche ✏️ shading"));
    paintStroke(*doc, line(650, 60, 50, 420, 0.6), *BrushLibrary::named(QStringLiteral("Soft Round")),
                PaintColor(0.1, 0.3, 0.9), nullptr, 4);
    layer->blendMode = BlendMode::overlay;
    layer->opacity = 0.625;
    layer->isClipping = layer->alphaLocked = true;
    doc->onion.enabled = true;
    doc->onion.before = 3;
    doc->setActiveIndex(1);
    doc->resetHistory();
    return doc;
}

void SelfTestEngine::saveReopen(SelfTestReport& report) {
    const auto doc = selfTestPicture();
    const QByteArray bytes = PaintFile::encode(*doc);
    const auto again = PaintFile::decode(bytesOf(bytes));
    report.check(QStringLiteral("A saved picture opens with the same pixels and layers"),
                 again->fingerprint() == doc->fingerprint());
    report.check(QStringLiteral("Size, resolution, current layer and onion skin come back"),
                 again->grid() == doc->grid() && again->dpi == 300 && again->activeIndex() == 1 &&
                     again->onion == doc->onion);
    report.check(QStringLiteral("The file carries a preview"),
                 PaintFile::thumbnailOf(bytesOf(bytes)).has_value());
    const auto refuses = [](const QByteArray& file) {
        try {
            PaintFile::decode(bytesOf(file));
            return QString();
        } catch (const PaintFileError& error) {
            return error.description();
        }
    };
    report.check(QStringLiteral("A file cut in half is refused"),
                 refuses(bytes.first(bytes.size() / 2)).contains(QStringLiteral("damaged")));
    report.check(QStringLiteral("Another kind of file is refused"),
                 refuses("not a paint file") == QStringLiteral("This file is not an Qirn Paint document."));
}

void SelfTestEngine::quickPerformance(SelfTestReport& report) {
    constexpr double kTarget = 8.3; // milliseconds a pen point
    PaintDocument doc(3840, 2160, 72, PaintColor::white());
    doc.takeDirtyTiles();
    CanvasPresentation screen;
    screen.show(&doc);
    screen.prepare(ViewTransform(QSizeF(3840, 2160), QSizeF(3840, 2160), {1, {}, 0, false}), 1);
    BrushSettings brush = *BrushLibrary::named(QStringLiteral("Soft Round"));
    brush.size = 120;
    BrushStroke stroke(doc, doc.layers()[1], brush, PaintColor(0.7, 0.02, 0.08), 1);
    std::size_t tiles = 0;
    const auto start = std::chrono::steady_clock::now();
    constexpr int kPoints = 300;
    for (int i = 0; i < kPoints; ++i) {
        stroke.add(StrokePoint(200 + i * 11, 1000 + 500 * ((i / 30) % 2 ? 1 : -1) * (i % 30) / 30.0, 0.8, 0,
                               0, i / 120.0));
        tiles += screen.update(doc.takeDirtyParts()).size();
    }
    stroke.end();
    const double mean =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count() / kPoints;
    std::printf("      120 px on 4K: %.2f ms per point, %lld dabs, %zu tiles\n", mean,
                static_cast<long long>(stroke.dabCount()), tiles);
    report.check(QStringLiteral("Pen points on a 4K canvas keep up with a tablet"),
                 stroke.dabCount() > kPoints && tiles >= kPoints && mean < 10 * kTarget);
}

} // namespace qirn
