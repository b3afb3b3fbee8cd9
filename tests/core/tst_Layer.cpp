#include "core/Layer.h"
#include "support/Pictures.h"
#include "support/Stops.h"
#include "support/TestMain.h"

#include <functional>

using namespace qirn;
using namespace qirn::test;

namespace {

const TileGrid kGrid(600, 300); // 3 x 2 tiles, cut at the right and at the bottom

void put(Layer& layer, int64_t x, int64_t y, const PixelBytes& bytes) {
    uint8_t* pixels =
        layer.writableTile((y / kTileSize) * layer.grid().cols + x / kTileSize).writablePixels();
    std::copy(bytes.begin(), bytes.end(), pixels + (y % kTileSize) * kTileRowBytes + (x % kTileSize) * 4);
}

uint8_t red(const Layer& layer) {
    return layer.pixel(300, 10)[0];
}

} // namespace

class tst_Layer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aStateKeepsItsPixelsWhateverTheLayerDoes() {
        Layer layer("a", kGrid);
        put(layer, 300, 10, {50, 0, 0, 255});
        put(layer, 0, 0, {5, 5, 5, 5});
        const LayerState state = layer.captureState();
        const Tile* untouched = layer.tile(0);
        put(layer, 300, 10, {60, 0, 0, 255});
        QCOMPARE(layer.tile(0), untouched); // only what is written is copied
        const Tile* written = layer.tile(1);
        put(layer, 301, 10, {60, 0, 0, 255});
        QCOMPARE(layer.tile(1), written); // and copied once
        put(layer, 0, 299, {9, 9, 9, 9}); // a tile that was absent when the state was taken
        QCOMPARE(int(red(Layer(state, kGrid))), 50);
        QVERIFY(!Layer(state, kGrid).tile(3));

        // The tile made after the first state is frozen by the second one.
        const LayerState second = layer.captureState();
        put(layer, 0, 299, {1, 1, 1, 1});
        layer.removeAllTiles();
        QCOMPARE(int(Layer(second, kGrid).pixel(0, 299)[0]), 9);
        QCOMPARE(int(red(Layer(second, kGrid))), 60);
    }

    void aFrozenTileCannotBeWritten() {
        Tile tile;
        tile.writablePixels()[3] = 1;
        tile.freeze();
        QVERIFY(stopsTheProcess([&] { tile.writablePixels()[3] = 2; }));
        Tile copy(tile);
        copy.writablePixels()[3] = 2;
        QCOMPARE(int(tile.pixels()[3]), 1);
        QCOMPARE(reinterpret_cast<uintptr_t>(tile.pixels()) % 64, uintptr_t{0});
    }

    void anIndexOutsideStopsTheProcess() {
        Layer layer("a", kGrid);
        QVERIFY(stopsTheProcess([&] { layer.writableTile(6); }));
        QVERIFY(stopsTheProcess([&] { layer.setTile(-1, nullptr); }));
        QVERIFY(stopsTheProcess([&] { layer.load(RGBABuffer(599, 300)); }));
    }

    void loadingAndReadingBackGivesTheSamePicture() {
        const auto picture = noise(600, 300, 3);
        for (int64_t y = 0; y < 256; ++y) std::fill_n(picture->row(y) + 256 * 4, 256 * 4, uint8_t{0});
        picture->row(3)[300 * 4] = 200; // color without alpha does not make a tile
        Layer layer("a", kGrid);
        put(layer, 300, 10, {50, 0, 0, 255});
        const LayerState before = layer.captureState();
        layer.load(*picture);
        QVERIFY(!layer.tile(1));
        picture->row(3)[300 * 4] = 0;
        QCOMPARE(firstDifference(*layer.toBuffer(), *picture), QString());
        QCOMPARE(text(layer.pixel(599, 299)), text(picture->pixel(599, 299)));
        QCOMPARE(text(layer.pixel(600, 0)), QStringLiteral("0,0,0,0"));
        QCOMPARE(text(layer.pixel(0, -1)), QStringLiteral("0,0,0,0"));
        for (int i = 44 * kTileRowBytes; i < kTileBytes; ++i) QCOMPARE(int(layer.tile(5)->pixels()[i]), 0);
        QCOMPARE(int(red(Layer(before, kGrid))), 50);

        RGBABuffer corner(600, 300);
        corner.row(299)[599 * 4 + 3] = 9;
        layer.load(corner);
        QCOMPARE(text(layer.pixel(599, 299)), QStringLiteral("0,0,0,9"));
        layer.load(RGBABuffer(600, 300));
        for (int64_t i = 0; i < kGrid.count(); ++i) QVERIFY(!layer.tile(i));
        QVERIFY(layer.isEmpty());
    }

    void contentBoundsAreTight() {
        Layer layer("a", kGrid);
        QVERIFY(!layer.contentBounds());
        put(layer, 300, 10, {0, 0, 0, 1});
        QCOMPARE(*layer.contentBounds(), (IRect{300, 10, 1, 1}));
        put(layer, 7, 280, {0, 0, 0, 1});
        put(layer, 310, 10, {0, 0, 0, 1});
        put(layer, 8, 299, {0, 0, 0, 1});
        QCOMPARE(*layer.contentBounds(), (IRect{7, 10, 304, 290}));

        Layer beyond("b", kGrid); // alpha only behind the right and the lower edge of the canvas
        beyond.writableTile(2).writablePixels()[200 * 4 + 3] = 255;
        beyond.writableTile(3).writablePixels()[100 * kTileRowBytes + 3] = 255;
        QVERIFY(!beyond.contentBounds());
        QVERIFY(!beyond.isEmpty());
    }

    void theFingerprintSeesEverySetting() {
        const auto changed = [](const std::function<void(Layer&)>& change) {
            Layer layer("a", kGrid), other("a", kGrid);
            for (Layer* l : {&layer, &other}) put(*l, 0, 0, {1, 1, 1, 1});
            change(other);
            // A state brings all of it back.
            const Layer restored(other.captureState(), kGrid);
            return other.fingerprint() != layer.fingerprint() &&
                   restored.fingerprint() == other.fingerprint();
        };
        QVERIFY(!changed([](Layer&) {}));
        QVERIFY(!changed([](Layer& l) { l.opacity = 0.9996; }));
        QVERIFY(changed([](Layer& l) { l.opacity = 0.999; }));
        QVERIFY(changed([](Layer& l) { l.blendMode = BlendMode::multiply; }));
        for (bool Layer::*flag :
             {&Layer::isVisible, &Layer::isLocked, &Layer::alphaLocked, &Layer::isClipping})
            QVERIFY(changed([flag](Layer& l) { l.*flag = !(l.*flag); }));
        QVERIFY(changed([](Layer& l) { l.name = QStringLiteral("\U0001F58C"); }));
        QVERIFY(changed([](Layer& l) { put(l, 599, 299, {0, 0, 0, 1}); }));
        QVERIFY(changed([](Layer& l) {
            l.removeAllTiles();
            put(l, 256, 0, {1, 1, 1, 1}); // in another tile
        }));
    }

    void thumbnailsReduceAndEnlarge() {
        Layer wide("a", kGrid);
        wide.load(*noise(600, 300, 11));
        const auto small =
            pictureOf(60, 30, [&](int64_t x, int64_t y) { return wide.pixel(x * 10 + 5, y * 10 + 5); });
        QCOMPARE(firstDifference(*wide.thumbnail(60), *small), QString());
        Layer line("b", TileGrid(1, 3));
        line.load(*noise(1, 3, 2));
        const auto large = pictureOf(3, 9, [&](int64_t, int64_t y) { return line.pixel(0, y / 3); });
        QCOMPARE(firstDifference(*line.thumbnail(9), *large), QString());
        QCOMPARE(Layer("c", TileGrid(1, 9000)).thumbnail(40)->width(), int64_t{1});
    }
};

QIRN_TEST(tst_Layer)
#include "tst_Layer.moc"
