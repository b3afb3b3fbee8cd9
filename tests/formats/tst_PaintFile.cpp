#include "compositing/CompositeInputs.h"
#include "core/PaintDocument.h"
#include "core/SeededRandom.h"
#include "formats/native/PaintFile.h"
#include "formats/native/TileCodec.h"
#include "formats/pictures/ImageExport.h"
#include "operations/LayerOperations.h"
#include "platform/Bytes.h"
#include "platform/Parallel.h"
#include "support/NativeFiles.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

#include <algorithm>
#include <cstring>

using namespace qirn;
using namespace qirn::test;

namespace {

const QDateTime kMoment = QDateTime::fromSecsSinceEpoch(1772368205).toUTC(); // 2026-03-01T12:30:05Z

std::unique_ptr<PaintDocument> reopened(PaintDocument& doc) {
    return PaintFile::decode(bytesOf(PaintFile::encode(doc)));
}

void fillWithNoise(Tile& tile, uint64_t seed) {
    SeededRandom random(seed);
    for (int i = 0; i < kTileBytes; i += 8) {
        const uint64_t bits = random.next();
        std::memcpy(tile.writablePixels() + i, &bits, 8);
    }
}

} // namespace

class tst_PaintFile : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { setConcurrency(0); }

    void partsLieWhereTheFormatSays() {
        const auto doc = richDocument();
        const QByteArray file = PaintFile::encode(*doc, kMoment);
        QCOMPARE(file.left(8), QByteArray("QIRNPNT\x01"));
        const NativeFile parts = NativeFile::takenApart(file);
        QCOMPARE(parts.joined(), file); // compact, keys in their order, nothing in between

        const OrderedJson& manifest = parts.manifest;
        std::string keys;
        for (const auto& [key, value] : manifest.items()) keys += key + " ";
        QCOMPARE(keys, std::string(
                           "format formatVersion app width height dpi active layers onion thumbnail saved "));
        QCOMPARE(manifest["format"], "Qirn Paint document");
        QCOMPARE(manifest["formatVersion"], 1);
        QCOMPARE(manifest["app"], "Qirn Paint by Tessaly Works (Qirn) - https://qirnpaint.example");
        QCOMPARE(manifest["saved"], "2026-03-01T12:30:05Z");
        keys.clear();
        for (const auto& [key, value] : manifest["layers"][1].items()) keys += key + " ";
        QCOMPARE(keys, std::string("id name opacity blend visible locked alphaLocked clipping tiles "));
        QCOMPARE(manifest["layers"][1]["id"].get<std::string>(),
                 doc->layer(1).id.toString(QUuid::WithoutBraces).toUpper().toStdString());
        QCOMPARE(manifest["layers"][1]["blend"], "luminosity");

        // Background tiles 0 and 1, the painted layer's two, then the preview, without a gap.
        int64_t offset = 0;
        const auto follows = [&](const OrderedJson& entry, int64_t slot, int64_t coding) {
            const bool right = entry["i"] == slot && entry["o"] == offset && entry["c"] == coding;
            offset += entry["n"].get<int64_t>();
            return right;
        };
        QVERIFY(follows(manifest["layers"][0]["tiles"][0], 0, 1));
        QVERIFY(follows(manifest["layers"][0]["tiles"][1], 1, 1));
        QVERIFY(follows(manifest["layers"][1]["tiles"][0], 0, 1));
        QVERIFY(follows(manifest["layers"][1]["tiles"][1], 1, 1));
        QVERIFY(manifest["layers"][2]["tiles"].empty());
        QVERIFY(follows(manifest["thumbnail"], -1, 2));
        QCOMPARE(offset, static_cast<int64_t>(parts.blob.size()));
        QVERIFY(parts.blob.startsWith("bvx"));
    }

    void aReopenedPictureIsTheSame() {
        const auto doc = richDocument();
        const auto again = reopened(*doc);
        QCOMPARE(again->fingerprint(), doc->fingerprint());
        QCOMPARE(again->dpi, 299.5);
        QCOMPARE(again->activeIndex(), 1);
        QVERIFY(again->onion == doc->onion);
        QCOMPARE(again->layerCount(), 3);
        for (int64_t i = 0; i < 3; ++i) {
            const Layer& was = doc->layer(i);
            const Layer& is = again->layer(i);
            QCOMPARE(is.id, was.id);
            QCOMPARE(is.name, was.name);
            QCOMPARE(is.opacity, was.opacity);
            QCOMPARE(is.blendMode, was.blendMode);
            QCOMPARE(is.isVisible, was.isVisible);
            QCOMPARE(is.isLocked, was.isLocked);
            QCOMPARE(is.alphaLocked, was.alphaLocked);
            QCOMPARE(is.isClipping, was.isClipping);
        }
        QCOMPARE(firstDifference(*flattened(*again), *flattened(*doc)), QString());
        QCOMPARE(again->history().size(), std::size_t{1});
        QCOMPARE(again->history()[0].name, QStringLiteral("Open"));
        QVERIFY(!again->canUndo());
        QVERIFY(!again->selection);
    }

    void randomPicturesSurviveASecondSaving() {
        for (uint64_t seed = 1; seed <= 4; ++seed) {
            const auto doc = randomDocument(511 + static_cast<int64_t>(seed), 257, 4, seed);
            const QByteArray file = PaintFile::encode(*doc, kMoment);
            const auto again = PaintFile::decode(bytesOf(file));
            QCOMPARE(again->fingerprint(), doc->fingerprint());
            QCOMPARE(PaintFile::encode(*again, kMoment), file);
        }
    }

    void savingAgainGivesTheBytesOfAFirstSave() {
        const int64_t heldBefore = StoredForm::heldBytes();
        auto doc = richDocument();
        const QByteArray first = PaintFile::encode(*doc, kMoment);
        QVERIFY(StoredForm::heldBytes() > heldBefore); // remembered with the tiles
        QCOMPARE(PaintFile::encode(*doc, kMoment), first);
        paintRect(*doc, doc->activeLayer(), {3, 3, 40, 40}, {9, 8, 7, 200});
        const QByteArray second = PaintFile::encode(*doc, kMoment);
        // A reopened picture remembers nothing yet.
        QCOMPARE(PaintFile::encode(*PaintFile::decode(bytesOf(second)), kMoment), second);
        QVERIFY(second != first);
        doc.reset();
        QCOMPARE(StoredForm::heldBytes(), heldBefore);
    }

    void asMuchIsRememberedAsTheLimitAllows() {
        const int64_t heldBefore = StoredForm::heldBytes();
        const auto form = [](int64_t bytes) {
            return std::make_shared<const StoredForm>(StoredForm::Coding::lzfse,
                                                      std::vector<uint8_t>(static_cast<std::size_t>(bytes)));
        };
        // All are there at once, as in a save of a large picture, before the first is remembered.
        const int64_t large = StoredForm::mostBytes - heldBefore - 1000;
        std::vector<std::shared_ptr<const StoredForm>> forms{form(large), form(1001), form(1000)};
        Tile tiles[3];
        for (Tile& tile : tiles) tile.freeze();
        for (std::size_t i = 0; i < 3; ++i) tiles[i].remember(forms[i]);
        tiles[1].remember(forms[2]); // shared, counted once
        QVERIFY(tiles[0].storedForm() && tiles[1].storedForm() == forms[2] &&
                tiles[2].storedForm() == forms[2]);
        QCOMPARE(StoredForm::heldBytes(), StoredForm::mostBytes);
    }

    void aSnapshotKeepsThePictureOfItsMoment() {
        const auto doc = richDocument();
        const uint64_t before = doc->fingerprint();
        const DocumentSnapshot kept = snapshot(*doc);
        paintRect(*doc, doc->layer(0), {0, 0, 300, 200}, {1, 2, 3, 255});
        doc->layer(1).name = QStringLiteral("Later");
        deleteLayer(*doc, 2);
        const QByteArray file = PaintFile::encode(kept, PaintFile::kPreviewSide);
        QCOMPARE(PaintFile::decode(bytesOf(file))->fingerprint(), before);
    }

    void thePreviewIsTheReducedPicture_data() {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::newRow("smaller than a preview") << 319 << 200;
        QTest::newRow("as large") << 320 << 320;
        QTest::newRow("a little larger") << 333 << 222;
        QTest::newRow("several tiles") << 1111 << 777;
        QTest::newRow("a long strip") << 3 << 5000;
    }
    void thePreviewIsTheReducedPicture() {
        QFETCH(int, width);
        QFETCH(int, height);
        const auto doc = randomDocument(width, height, 3, 11);
        const auto preview = PaintFile::thumbnailOf(bytesOf(PaintFile::encode(*doc)));
        QVERIFY(preview);
        QCOMPARE(preview->dotsPerMeterX(), 2835); // 72 dpi
        const QImage expected = ImageExport::scaled(flattenedImage(*doc), PaintFile::kPreviewSide);
        QCOMPARE(firstDifference(*RGBABuffer::fromImage(*preview), *RGBABuffer::fromImage(expected)),
                 QString());
    }

    void factsAreReadWithoutTiles() {
        const auto doc = richDocument();
        QByteArray file = PaintFile::encode(*doc);
        const NativeFile parts = NativeFile::takenApart(file);
        const auto preview = parts.manifest["thumbnail"]["o"].get<int64_t>();
        const qsizetype blobOffset = file.size() - parts.blob.size();
        for (int64_t i = 0; i < preview; ++i) file[blobOffset + i] = 'x';
        const auto info = PaintFile::infoOf(bytesOf(file));
        QVERIFY(info);
        QCOMPARE(info->width, 300);
        QCOMPARE(info->height, 200);
        QCOMPARE(info->layers, 3);
        QVERIFY(PaintFile::thumbnailOf(bytesOf(file)));

        const QByteArray without = withManifest(file, [](OrderedJson& m) { m.erase("thumbnail"); });
        QVERIFY(!PaintFile::thumbnailOf(bytesOf(without)));
        QVERIFY(PaintFile::infoOf(bytesOf(withManifest(file, [](OrderedJson& m) { m["width"] = -5; }))));
        QVERIFY(!PaintFile::infoOf(bytesOf(file.left(20))));
    }

    void equalTilesAreOneObject() {
        PaintDocument doc(1024, 512, 72, PaintColor(0.2, 0.4, 0.6));
        Tile& noisy = doc.activeLayer().writableTile(3);
        fillWithNoise(noisy, 5);
        doc.commit(QStringLiteral("Paint"));
        QByteArray file = PaintFile::encode(doc);
        file = withManifest(file, [](OrderedJson& m) {
            OrderedJson& tiles = m["layers"][1]["tiles"];
            tiles.push_back(tiles[0]);
            tiles[1]["i"] = 6; // the same bytes in another slot
        });
        const auto again = PaintFile::decode(bytesOf(file));
        const Layer& background = again->layer(0);
        for (int64_t i = 1; i < 8; ++i) QCOMPARE(background.tile(i), background.tile(0));
        QVERIFY(again->layer(1).tile(3));
        QCOMPARE(again->layer(1).tile(6), again->layer(1).tile(3));
        // Painting one of them leaves the others alone.
        paintRect(*again, again->layer(0), {0, 0, 10, 10}, {9, 9, 9, 255});
        QVERIFY(background.pixel(256, 0) != background.pixel(0, 0));
    }

    void flatTilesAreEncodedOnceForEachPixel() {
        PaintDocument doc(1024, 512, 72, std::nullopt);
        Layer& layer = doc.activeLayer();
        const PixelBytes red{200, 10, 0, 255}, green{0, 90, 0, 90};
        const PixelBytes pixels[] = {red, green, red, red, green, red, red};
        for (int64_t i = 0; i < 7; ++i) paintRect(doc, layer, doc.grid().rectOf(i), pixels[i]);
        layer.writableTile(5).writablePixels()[kTileBytes - 1] = 254; // flat but for its last byte
        layer.writableTile(6).writablePixels()[0] = 199;
        doc.commit(QStringLiteral("Fill"));
        const NativeFile file = NativeFile::takenApart(PaintFile::encode(doc));
        const auto form = [&](int64_t i) { return layer.tile(i)->storedForm(); };
        QVERIFY(form(0) && form(2) == form(0) && form(3) == form(0));
        QVERIFY(form(1) && form(4) == form(1) && form(1) != form(0));
        QVERIFY(form(5) && form(6) && form(5) != form(0) && form(6) != form(0));
        // In the file every tile has bytes of its own, those that it would have alone.
        for (const OrderedJson& entry : file.manifest["layers"][0]["tiles"]) {
            const auto alone = TileEncoder().encode(*layer.tile(entry["i"].get<int64_t>()));
            const auto stored =
                bytesOf(file.blob).subspan(entry["o"].get<std::size_t>(), entry["n"].get<std::size_t>());
            QVERIFY(std::ranges::equal(stored, alone->bytes));
        }
        QCOMPARE(file.manifest["layers"][0]["tiles"].size(), std::size_t{7});
        QCOMPARE(PaintFile::decode(bytesOf(file.joined()))->fingerprint(), doc.fingerprint());
    }
};

QIRN_TEST(tst_PaintFile)
#include "tst_PaintFile.moc"
