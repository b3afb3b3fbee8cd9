#include "compositing/CompositeInputs.h"
#include "formats/ImageExport.h"
#include "formats/native/PaintFile.h"
#include "formats/native/TileCodec.h"
#include "operations/LayerOperations.h"
#include "platform/Bytes.h"
#include "platform/Parallel.h"
#include "support/NativeFiles.h"
#include "support/PictureFiles.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

#include <algorithm>
#include <cstring>

using namespace qirn;
using namespace qirn::test;

namespace {

const QDateTime kMoment = QDateTime::fromSecsSinceEpoch(1772368205).toUTC(); // 2026-03-01T12:30:05Z

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
        const auto keysOf = [](const OrderedJson& json) {
            std::string keys;
            for (const auto& [key, value] : json.items()) keys += key + " ";
            return keys;
        };
        QCOMPARE(
            keysOf(manifest),
            std::string("format formatVersion app width height dpi active layers onion thumbnail saved "));
        QCOMPARE(keysOf(manifest["layers"][1]),
                 std::string("id name opacity blend visible locked alphaLocked clipping tiles "));
        for (const auto& [key, value] :
             {std::pair<const char*, OrderedJson>{"format", "Qirn Paint document"},
              {"formatVersion", 1},
              {"app", "Qirn Paint by Tessaly Works (Qirn) - https://qirnpaint.example"},
              {"saved", "2026-03-01T12:30:05Z"}})
            QVERIFY2(manifest[key] == value, key);
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
        for (const int layer : {0, 1}) {
            for (const int slot : {0, 1}) QVERIFY(follows(manifest["layers"][layer]["tiles"][slot], slot, 1));
        }
        QVERIFY(manifest["layers"][2]["tiles"].empty());
        QVERIFY(follows(manifest["thumbnail"], -1, 2));
        QCOMPARE(offset, static_cast<int64_t>(parts.blob.size()));
        QVERIFY(parts.blob.startsWith("bvx"));
    }

    void aReopenedPictureIsTheSameAndSoIsItsFile() {
        for (uint64_t seed = 0; seed <= 4; ++seed) {
            const auto doc =
                seed == 0 ? richDocument() : randomDocument(511 + static_cast<int64_t>(seed), 257, 4, seed);
            const QByteArray file = PaintFile::encode(*doc, kMoment);
            const auto again = PaintFile::decode(bytesOf(file));
            QCOMPARE(again->fingerprint(), doc->fingerprint());
            QVERIFY(again->dpi == doc->dpi && again->activeIndex() == doc->activeIndex() &&
                    again->onion == doc->onion);
            for (int64_t i = 0; i < doc->layerCount(); ++i) { // what a fingerprint does not tell
                QCOMPARE(again->layer(i).id, doc->layer(i).id);
                QCOMPARE(again->layer(i).opacity, doc->layer(i).opacity);
            }
            QVERIFY(again->history().size() == 1 && again->history()[0].name == QStringLiteral("Open"));
            QVERIFY(!again->canUndo() && !again->selection);
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
            return std::make_shared<const StoredForm>(
                StoredForm::Coding::lzfse, std::vector<uint8_t>(static_cast<std::size_t>(bytes)), 0);
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

    void thePreviewIsTheReducedPicture() {
        for (const auto& [width, height] :
             {std::pair{319, 200}, {320, 320}, {333, 222}, {1111, 777}, {3, 5000}}) {
            const auto doc = randomDocument(width, height, 3, 11);
            const QByteArray file = PaintFile::encode(*doc);
            const auto preview = PaintFile::thumbnailOf(bytesOf(file));
            QVERIFY(preview);
            QVERIFY(file.contains("pHYs" + bigEndianWords({2835, 2835}) + '\1')); // 72 dots an inch
            const QImage expected = ImageExport::scaled(flattenedImage(*doc), PaintFile::kPreviewSide);
            QCOMPARE(firstDifference(*RGBABuffer::fromImage(*preview), *RGBABuffer::fromImage(expected)),
                     QString());
        }
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
        QVERIFY(info->width == 300 && info->height == 200 && info->layers == 3);
        QVERIFY(PaintFile::thumbnailOf(bytesOf(file)));

        const QByteArray without = withManifest(file, [](OrderedJson& m) { m.erase("thumbnail"); });
        QVERIFY(!PaintFile::thumbnailOf(bytesOf(without)));
        QVERIFY(PaintFile::infoOf(bytesOf(withManifest(file, [](OrderedJson& m) { m["width"] = -5; }))));
        QVERIFY(!PaintFile::infoOf(bytesOf(file.left(20))));
    }

    void equalTilesAreOneObject() {
        PaintDocument doc(1024, 512, 72, PaintColor(0.2, 0.4, 0.6));
        std::memcpy(doc.activeLayer().writableTile(3).writablePixels(), noise(256, 256, 5)->data(),
                    kTileBytes);
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
