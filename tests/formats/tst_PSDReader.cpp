#include "compositing/CompositeInputs.h"
#include "formats/ImageImport.h"
#include "formats/common/ByteReader.h"
#include "formats/native/PaintFile.h"
#include "formats/psd/PSDFile.h"
#include "platform/Bytes.h"
#include "platform/Parallel.h"
#include "support/PSDFiles.h"
#include "support/Pictures.h"
#include "support/Profiles.h"
#include "support/TestMain.h"

#include <cmath>
#include <limits>
#include <set>

using namespace qirn;
using namespace qirn::test;
using PSDFile::Layered;

namespace {

constexpr int32_t kLeast = std::numeric_limits<int32_t>::min(), kMost = std::numeric_limits<int32_t>::max();

std::unique_ptr<PaintDocument> opened(const QByteArray& file) {
    return PSDFile::read(bytesOf(file));
}

/// How opening ends: "short", the error's words for the user, or empty when it opens.
QString refusalOf(const QByteArray& file) {
    try {
        opened(file);
        return {};
    } catch (const DescribedError& error) {
        return error.description();
    } catch (const BEReader::Short&) {
        return QStringLiteral("short");
    }
}

QString unsupported(const char* what) {
    return QStringLiteral("This Photoshop file uses a feature Qirn Paint can't read (%1).").arg(what);
}

QString damaged(const char* what) {
    return PaintFileError::damaged(what).description();
}

/// A layer of one straight color with rows as they are.
PSDRecord flatRecord(int32_t top, int32_t left, int32_t bottom, int32_t right, const PixelBytes& straight) {
    PSDRecord record{.top = top, .left = left, .bottom = bottom, .right = right};
    const int w = right - left, h = bottom - top;
    for (const int16_t identifier : {-1, 0, 1, 2})
        record.channels.push_back(
            {identifier,
             rawChannel(w, h, straight[identifier < 0 ? 3 : static_cast<std::size_t>(identifier)])});
    return record;
}

/// The one layer of a canvas of 4 x 3 as text: the reds, "." where it is transparent.
QString reds(const QByteArray& file) {
    const auto doc = opened(file);
    QString rows;
    for (int64_t y = 0; y < doc->grid().height; ++y) {
        for (int64_t x = 0; x < doc->grid().width; ++x) {
            const PixelBytes pixel = doc->layer(0).pixel(x, y);
            rows += pixel[3] ? QString::number(pixel[0]) : QStringLiteral(".");
        }
        rows += ' ';
    }
    return rows.trimmed();
}

/// A layer over the canvas of 4 x 3 with these red rows, opaque and without other colors.
PSDParts withRedRows(const std::vector<QByteArray>& rows) {
    const std::vector<QByteArray> black(3);
    PSDRecord record{.bottom = 3, .right = 4};
    record.channels = {{0, packedChannel(rows)}, {1, packedChannel(black)}, {2, packedChannel(black)}};
    return {.records = {record}};
}

QByteArray section(const QByteArray& key) {
    return psdBlock(key, big32(0));
}

} // namespace

class tst_PSDReader : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { setConcurrency(0); }

    void ourFilesComeBackTheSame() {
        for (const int64_t width : {271, 272, 273, 2}) {
            const auto doc = randomDocument(width, 300, 6, static_cast<uint64_t>(width));
            doc->dpi = 300;
            for (const LayerRef& layer : doc->layers()) {
                layer->opacity = std::round(layer->opacity * 255) / 255;
                layer->isLocked = false; // is not kept
            }
            doc->layer(2).name = QString::fromUtf8("Ébauche ✏️ 🦊") + QString(300, 'x');
            // Layers that end anywhere: nothing, a corner, a stripe across the seam with absent tiles beside.
            for (int64_t i : {3, 4, 5}) doc->layer(i).removeAllTiles();
            paintRect(*doc, doc->layer(4), {1, 3, 1, 1}, {10, 0, 0, 255});
            paintRect(*doc, doc->layer(5), {0, 254, width - 1, 5}, {40, 60, 20, 120});
            setConcurrency(1);
            const QByteArray file = PSDFile::write(*doc, Layered::yes);
            QCOMPARE(file[69] % 4, 0); // the length of the layers
            for (const int threads : {1, 8}) {
                setConcurrency(threads);
                QVERIFY(PSDFile::write(*doc, Layered::yes) == file);
                const auto again = opened(file);
                QCOMPARE(again->fingerprint(), doc->fingerprint());
                QVERIFY(again->dpi == 300 && again->activeIndex() == 5);
                QVERIFY(again->history().size() == 1 && again->changeCount() == 0);
                for (int64_t i = 0; i < 6; ++i) QCOMPARE(again->layer(i).opacity, doc->layer(i).opacity);
            }
            const auto flat = opened(PSDFile::write(*doc, Layered::no));
            QCOMPARE(flat->layerCount(), 1);
            QCOMPARE(flat->layer(0).name, QStringLiteral("Background"));
            QCOMPARE(firstDifference(*flattened(*flat), *flattened(*doc)), QString());
        }
    }

    void refusalsAreInTheseWords() {
        const auto row = [](const QString& name, const PSDParts& parts, const QString& words) {
            QCOMPARE(name + ": " + refusalOf(parts.joined()), name + ": " + words);
        };
        const auto layered = [&](const QString& name, const PSDRecord& record, const QString& words) {
            row(name, {.records = {record}}, words);
        };
        const QString notOurs = PaintFileError::notPaintFile().description();
        const QString tooLarge = PaintFileError::tooLarge().description();
        const QByteArray flat = rawChannel(4, 9, 1);

        QCOMPARE(refusalOf({}), notOurs);
        row("large document", {.version = 2}, notOurs);
        row("16 bits", {.depth = 16, .mode = 4}, unsupported("16-bit color"));
        row("CMYK", {.mode = 4}, unsupported("color mode 4; only RGB"));
        row("no width", {.width = 0, .picture = flat}, tooLarge);
        row("30,001", {.height = 30001, .picture = flat}, tooLarge);
        row("30,000", {.height = 30000, .picture = flat}, "short");
        row("two channels", {.channels = 2, .picture = flat}, damaged("channels"));
        row("ZIP picture", {.picture = big16(2)}, unsupported("ZIP-compressed picture"));
        row("a fourth channel that is missing", {.channels = 4, .picture = flat}, "short");

        PSDRecord record = flatRecord(0, 0, 2, 2, {9, 9, 9, 255});
        layered("as it should be", record, {});
        record.signature = "8B64";
        layered("another signature", record, damaged("layer record"));
        record = flatRecord(0, 0, 2, 2, {9, 9, 9, 255});
        record.channels[2].data = big16(3) + "abcd";
        layered("ZIP layer", record, unsupported("ZIP-compressed layers"));
        record.blocks = section("lsct");
        layered("ZIP group", record, unsupported("ZIP-compressed layers"));
        record.channels[2].identifier = -2;
        record.blocks.clear();
        layered("ZIP mask", record, {});
        record.bottom = 0;
        record.channels[2].identifier = 1;
        layered("ZIP in nothing", record, {});

        for (const auto& [w, h] : {std::pair{kMost, kMost}, {1 << 30, 1}, {1, 1 << 30}}) {
            for (const int code : {0, 1}) {
                PSDRecord huge{.bottom = h, .right = w};
                for (const int16_t identifier : {0, 1, 2})
                    huge.channels.push_back(
                        {identifier, big16(static_cast<uint32_t>(code)) + QByteArray(200, '\0')});
                huge.top = -h;
                layered(QStringLiteral("%1 x %2, code %3").arg(w).arg(h).arg(code), huge,
                        h == 1 && code == 1 ? QString() : "short");
            }
        }
        record = flatRecord(0, 0, 2, 2, {9, 9, 9, 255});
        record.channels[0].statedLength = 0xFFFFFFFF;
        layered("a channel beyond the file", record, "short");
    }

    void layersLieWhereTheirRectanglesSay() {
        const auto row = [](const QString& name, PSDRecord record, const char* pixels) {
            const QByteArray file = PSDParts{.records = {std::move(record)}}.joined();
            QCOMPARE(name + ": " + reds(file), name + ": " + pixels);
            QCOMPARE(opened(file)->layerCount(), 1);
        };
        const PixelBytes seven{7, 0, 0, 255};
        row("inside", flatRecord(1, 1, 2, 3, seven), ".... .77. ....");
        row("over two edges", flatRecord(-5, -2, 2, 1, seven), "7... 7... ....");
        row("over all", flatRecord(-300, -300, 300, 300, seven), "7777 7777 7777");
        row("far away", flatRecord(kMost - 2, kLeast, kMost, kLeast + 2, seven), ".... .... ....");
        row("turned over", {.top = 2, .left = 3, .channels = {{0, big16(0)}}}, ".... .... ....");
        PSDRecord record = flatRecord(0, 0, 2, 2, {200, 0, 0, 128});
        row("premultiplied", record, "100100.. 100100.. ...."); // (128 * 200 + 127) / 255
        record.channels[0].identifier = 3;
        row("without alpha", record, "200200.. 200200.. ....");
        record.channels[0].identifier = -1;
        record.channels[3].identifier = -2;
        row("without blue", record, ".... .... ....");
        record = flatRecord(0, 0, 1, 2, seven);
        record.channels[1].statedLength = 1;
        record.channels[1].data.truncate(1);
        row("red of one byte", record, ".... .... ....");
        record = flatRecord(0, 0, 1, 2, seven);
        record.channels.push_back({0, rawChannel(2, 1, 8)});
        row("red twice", record, "88.. .... ....");
        record = flatRecord(0, 0, 1, 2, seven);
        record.channels[3].statedLength = 2; // the last one, whose rows run on
        row("a length that is too small", record, "77.. .... ....");
    }

    void rowsAreMendedOrRefused() {
        // The bytes of a row and its pixels; none: refused.
        for (const auto& [hex, pixels] : {std::pair("FD05", "5555"), // full
                                          {"FF0500 07", "5570"},     // short
                                          {"", "0000"},
                                          {"80", "0000"}, // no step
                                          {"030102030405", "1234"},
                                          {"FF05FF", ""}, // a run without its byte
                                          {"0301 02", ""}}) {
            const QByteArray row = QByteArray::fromHex(hex), full = QByteArray::fromHex("FD09");
            const QString words = *pixels ? "" : "short";
            // Rows before and behind show that each starts afresh.
            PSDParts parts = withRedRows({full, row, full});
            QCOMPARE(refusalOf(parts.joined()), words);
            if (*pixels) QCOMPARE(reds(parts.joined()), QStringLiteral("9999 %1 9999").arg(pixels));
            // The same rows where nobody sees them are walked all the same.
            for (const auto& [top, left] : {std::pair{-1, -4}, {-2, 0}, {2, 0}, {7, 7}}) {
                PSDRecord& record = parts.records[0];
                record.top = top, record.left = left, record.bottom = top + 3, record.right = left + 4;
                QCOMPARE(refusalOf(parts.joined()), words);
            }
            parts.records[0].blocks = section("lsdk");
            parts.picture = rawChannel(4, 9, 1);
            QCOMPARE(refusalOf(parts.joined()), words);
            std::vector<QByteArray> rows(9, full);
            rows.back() = row;
            QCOMPARE(refusalOf(PSDParts{.picture = packedChannel(rows)}.joined()), words);
        }
    }

    void aShortRowKeepsNothingOfTheOneAbove() {
        PSDRecord record{.bottom = 2, .right = 100};
        const std::vector<QByteArray> rows{QByteArray::fromHex("9D09"), QByteArray::fromHex("FF05")};
        for (const int16_t identifier : {0, 1, 2})
            record.channels.push_back({identifier, packedChannel(rows)});
        const auto doc = opened(PSDParts{.width = 100, .height = 2, .records = {record}}.joined());
        for (int64_t x = 0; x < 100; ++x)
            for (const int64_t y : {0, 1}) QCOMPARE(doc->layer(0).pixel(x, y)[0], y == 0 ? 9 : x < 2 ? 5 : 0);
    }

    void settingsAreTaken() {
        PSDRecord plain = flatRecord(0, 0, 1, 1, {1, 2, 3, 255});
        PSDRecord all = plain;
        all.key = "sLit";
        all.opacity = 3;
        all.clipping = 7;
        all.flags = 0xFF;
        PSDRecord odd = plain;
        odd.key = "pass";
        odd.flags = 0xFC;
        const auto doc = opened(PSDParts{.records = {plain, all, odd}, .count = 3}.joined());
        QCOMPARE(doc->layerCount(), 3);
        const Layer& layer = doc->layer(1);
        QCOMPARE(layer.blendMode, BlendMode::softLight);
        QCOMPARE(layer.opacity, 3 / 255.0);
        QVERIFY(layer.isClipping && !layer.isVisible && layer.alphaLocked && !layer.isLocked);
        for (const int64_t i : {0, 2}) {
            const Layer& other = doc->layer(i);
            QCOMPARE(other.blendMode, BlendMode::normal);
            QCOMPARE(other.opacity, 1.0);
            QVERIFY(!other.isClipping && other.isVisible && !other.alphaLocked);
        }
    }

    void namesAreMended() {
        const auto luni = [](const std::vector<uint16_t>& units) {
            return psdBlock("luni", psdUnicode(units));
        };
        const auto row = [](const QString& what, const char* pascal, const QByteArray& blocks,
                            const QString& name) {
            PSDRecord record = flatRecord(0, 0, 1, 1, {1, 2, 3, 255});
            record.name = pascal;
            record.blocks = blocks;
            record.namePadding = "8BI"; // is passed over whatever it holds
            const auto doc = opened(PSDParts{.records = {flatRecord(0, 0, 1, 1, {}), record}}.joined());
            QCOMPARE(what + ": " + doc->layer(1).name, what + ": " + name);
            QCOMPARE(doc->layer(1).pixel(0, 0), (PixelBytes{1, 2, 3, 255}));
        };
        row("only the old name", "Inks", {}, "Inks");
        row("the new one counts", "Inks", luni({'P', 'e', 'n'}), "Pen");
        row("ends are trimmed", "Inks", luni({0, 0, 'P', 0, 'n', 0}), QStringLiteral("P") + QChar() + "n");
        row("half a pair", "Inks", luni({0xD83E, 'n', 0xDD8A}),
            QString::fromUtf8("\xEF\xBF\xBDn\xEF\xBF\xBD"));
        row("a pair", "Inks", luni({0xD83E, 0xDD8A}), QString::fromUtf8("🦊"));
        row("a count beyond the block", "Inks", psdBlock("luni", big32(0xFFFFFFFF) + big16('P') + "x"), "P");
        row("behind others", "Inks", psdBlock("lyid", big32(7)) + "8B64" + luni({'P'}).mid(4), "P");
        row("behind what is no block", "Inks", psdBlock("lyid", big32(7)) + "8BXX" + luni({'P'}).mid(4),
            "Inks");
        row("none at all", "", {}, "Layer 2");
    }

    void groupsLeaveTheirLayersBehind() {
        PSDRecord divider{.blocks = section("lsct")}, group{.blocks = section("lsdk")};
        group.channels = {{0, big16(0)}};
        PSDRecord inside = flatRecord(0, 0, 1, 1, {5, 5, 5, 255}),
                  above = flatRecord(0, 0, 1, 1, {6, 6, 6, 255});
        const auto doc = opened(PSDParts{.records = {divider, inside, group, above}}.joined());
        QCOMPARE(doc->layerCount(), 2);
        QCOMPARE(doc->layer(0).pixel(0, 0)[0], 5);
        QCOMPARE(doc->layer(1).pixel(0, 0)[0], 6);
        QCOMPARE(doc->layer(1).name, QStringLiteral("Layer 2"));
        QCOMPARE(doc->activeIndex(), 1);
        // With nothing but groups it is the finished picture that opens, behind the whole section.
        const auto flat = opened(PSDParts{
            .records = {divider, group}, .behindLayers = QByteArray(7, 'x'), .picture = rawChannel(4, 9, 8)}
                                     .joined());
        QCOMPARE(flat->layerCount(), 1);
        QCOMPARE(flat->layer(0).pixel(3, 2), (PixelBytes{8, 8, 8, 255}));
    }

    void whatIsLostIsTold() {
        const auto row = [](const QString& name, PSDParts parts, const QString& words) {
            parts.picture = rawChannel(4 * parts.depth / 8, 3 * parts.channels, 8);
            const auto remarks = ImageImport::imported(bytesOf(parts.joined())).remarks;
            QCOMPARE(name + ": " + wordsOf(remarks), name + ": " + words);
        };
        const auto with = [](PSDRecord record) { return PSDParts{.records = {std::move(record)}}; };
        const auto block = [&](const char* key, const QByteArray& data) {
            return with({.blocks = psdBlock(key, data)});
        };
        const auto mask = [](int32_t side, char round, char flags) {
            return big32(0) + big32(0) + big32(static_cast<uint32_t>(side)) +
                   big32(static_cast<uint32_t>(side)) + round + flags + QByteArray(2, '\0');
        };
        const auto group = [](uint32_t kind, const QByteArray& key, uint8_t opacity, uint8_t flags) {
            return PSDRecord{
                .opacity = opacity, .flags = flags, .blocks = psdBlock("lsct", big32(kind) + "8BIM" + key)};
        };
        row("nothing", with({.blocks = psdBlock("iOpa", "\xFF\0\0\0")}), "");
        row("masks", with({.mask = mask(2, '\xFF', 0)}), "Opened without: masks.");
        row("a mask that hides all", with({.mask = mask(0, 0, 0)}), "Opened without: masks.");
        row("a mask that hides nothing", with({.mask = mask(0, '\xFF', 0)}), "");
        row("a mask that is off", with({.mask = mask(2, 0, 2)}), "");
        row("a path as mask", block("vmsk", big32(3) + big32(0)), "Opened without: masks.");
        row("ranges", with({.ranges = big32(0xFFFF) + big32(0x0A0AFFFF)}),
            "Opened without: blending ranges.");
        row("ranges of all", with({.ranges = big32(0xFFFF).repeated(10)}), "");
        row("opacity", block("iOpa", QByteArray("\x80\0\0\0", 4)), "Opened without: fill opacity.");
        row("adjustments", block("levl", "abcd"), "Opened without: adjustment layers.");
        row("fills", block("SoCo", "abcd"), "Opened without: fill layers.");
        row("modes", with({.key = "diss"}), "Opened without: unknown blend modes.");
        row("a group", {.records = {group(3, "pass", 255, 2), {}, group(1, "pass", 255, 0)}}, "");
        row("a hidden group", {.records = {group(3, "pass", 255, 0), {}, group(2, "norm", 255, 2)}},
            "Opened without: hidden groups.");
        row("a pale group", {.records = {group(3, "pass", 255, 0), {}, group(1, "pass", 99, 0)}},
            "Opened without: group blending.");
        row("a group that multiplies", {.records = {group(3, "pass", 255, 0), {}, group(1, "mul ", 255, 0)}},
            "Opened without: group blending.");
        row("several",
            {.resources = psdResource(1039, {}, displayP3Profile()),
             .records = {{.mask = mask(2, 0, 0), .blocks = psdBlock("lfx2", "abcd")},
                         {.mask = mask(2, 0, 0)}}},
            "Opened without: masks, layer effects, color profile.");
        row("sRGB", {.resources = psdResource(1039, {}, srgbProfile()), .records = {{}}}, "");
        row("deep", {.depth = 16, .records = {{}}}, "Opened as one layer: 16-bit color.");
        row("inks", {.channels = 4, .mode = 4}, "Opened as one layer: CMYK color.");
        row("flat gray", {.channels = 1, .mode = 1}, "");
        PSDRecord zipped = flatRecord(0, 0, 1, 1, {1, 1, 1, 255});
        zipped.channels[0].data = big16(2) + "x";
        row("zipped", with(zipped), "Opened as one layer: ZIP-compressed layers.");
        row("damaged", with({.signature = "8BIX"}), "Opened as one layer: damaged layers.");
    }

    void aDensityOutOfRangeIsMissing() {
        const QByteArray tiny = psdResource(1005, {}, big32(1) + QByteArray(12, '\0'));
        QCOMPARE(opened(PSDParts{.resources = tiny, .picture = rawChannel(4, 9, 8)}.joined())->dpi, 72.0);
    }

    /// With a buffer for each layer, or a tile of its own for each slot, this would take 36 GB.
    void sizesThatTheFileDoesNotBackTakeNoMemory() {
        const QByteArray noRows = big16(1) + QByteArray(2 * 30000, '\0');
        PSDRecord black{.bottom = 30000, .right = 30000};
        black.channels = {{0, noRows}, {1, noRows}, {2, noRows}};
        PSDRecord clear = black;
        clear.channels.push_back({-1, noRows});
        PSDRecord wide{.top = 255, .left = kLeast, .bottom = 257, .right = kMost};
        wide.channels.assign(3, {0, big16(1) + QByteArray(4, '\0')});
        wide.channels[1].identifier = 1, wide.channels[2].identifier = 2;
        PSDParts parts{.width = 30000, .height = 30000};
        for (int i = 0; i < 4; ++i) parts.records.insert(parts.records.end(), {black, clear, wide});
        const auto doc = opened(parts.joined());
        const TileGrid& grid = doc->grid();
        std::set<const Tile*> tiles;
        for (const LayerRef& layer : doc->layers()) tiles.merge(tilesOf(*layer));
        QCOMPARE(tiles.size(),
                 std::size_t{4 + 4}); // the inside and the three edges; two stripes, cut at the right or not
        QCOMPARE(doc->layer(0).pixel(29999, 29999), (PixelBytes{0, 0, 0, 255}));
        QVERIFY(doc->layer(1).tiles().holdsNothing());
        QCOMPARE(doc->layer(2).contentBounds(), (IRect{0, 255, 30000, 2}));
        QVERIFY(doc->layer(2).tile(grid.cols)->isFrozen());
    }
};

QIRN_TEST(tst_PSDReader)
#include "tst_PSDReader.moc"
