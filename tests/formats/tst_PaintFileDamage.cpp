#include "core/PaintDocument.h"
#include "core/SeededRandom.h"
#include "core/Tile.h"
#include "formats/ImageImport.h"
#include "formats/native/PaintFile.h"
#include "platform/Bytes.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"
#include "support/NativeFiles.h"
#include "support/TestMain.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <numeric>

#include <lzfse.h>

using namespace qirn;
using namespace qirn::test;

namespace {

constexpr int64_t kLargest = std::numeric_limits<int64_t>::max();
const QString kNotPaintFile = QStringLiteral("This file is not an Qirn Paint document.");
const QString kTooLarge =
    QString::fromUtf8("The canvas in this file is larger than Qirn Paint can open (30,000 × 30,000 pixels).");

QByteArray richFile() {
    static const QByteArray file = PaintFile::encode(*richDocument());
    return file;
}

/// One layer and one tile, whose entry and bytes are the caller's.
QByteArray fileWithTile(const QByteArray& bytes, int64_t coding,
                        const std::function<void(OrderedJson&)>& change = {}) {
    PaintDocument doc(256, 256, 72, std::nullopt);
    NativeFile parts = NativeFile::takenApart(PaintFile::encode(doc));
    parts.manifest.erase("thumbnail");
    OrderedJson entry{{"i", 0}, {"o", 0}, {"n", bytes.size()}, {"c", coding}};
    if (change) change(entry);
    parts.manifest["layers"][0]["tiles"].push_back(entry);
    parts.blob = bytes;
    return parts.joined();
}

QByteArray compressed(const QByteArray& raw) {
    QByteArray stream(raw.size() + 4096, '\0');
    const std::size_t length = lzfse_encode_buffer(
        reinterpret_cast<uint8_t*>(stream.data()), static_cast<std::size_t>(stream.size()),
        reinterpret_cast<const uint8_t*>(raw.constData()), static_cast<std::size_t>(raw.size()), nullptr);
    return stream.left(static_cast<qsizetype>(length));
}

/// Visits every value of a manifest by its path; `visit` is given the root as well, to make variants of it.
void forEachValue(OrderedJson& value, const QString& path,
                  const std::function<void(OrderedJson&, const QString&)>& visit) {
    if (!path.isEmpty()) visit(value, path);
    if (value.is_object()) {
        for (auto& [key, member] : value.items())
            forEachValue(member, path + '/' + QString::fromStdString(key), visit);
    } else if (value.is_array() && !value.empty()) {
        forEachValue(value[0], path + "/0", visit);
    }
}

} // namespace

class tst_PaintFileDamage : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { setConcurrency(0); }

    void refusalsAreInTheseWords() {
        const QByteArray good = richFile();
        const auto row = [](const QString& name, const QByteArray& file, const QString& words) {
            QCOMPARE(name + ": " + refusalOf(file), name + ": " + words);
        };
        const auto changed = [&](const char* name, const QString& words,
                                 const std::function<void(OrderedJson&)>& change) {
            row(name, withManifest(good, change), words);
        };
        QByteArray otherGeneration = good;
        otherGeneration[7] = 2;
        QByteArray noLength = good;
        noLength.replace(8, 4, QByteArray(4, '\0'));
        QByteArray endlessLength = good;
        endlessLength.replace(8, 4, QByteArray(4, '\xFF'));
        const NativeFile parts = NativeFile::takenApart(good);
        const QByteArray text = QByteArray::fromStdString(jsonBytes(parts.manifest));

        row("empty", {}, kNotPaintFile);
        row("eighth byte", otherGeneration, kNotPaintFile);
        row("only a header", good.left(12), damaged("manifest size"));
        row("no manifest", noLength, damaged("manifest size"));
        row("a length beyond the file", endlessLength, damaged("manifest size"));
        row("one byte short", good.left(12 + text.size() - 1), damaged("manifest size"));
        row("not JSON", parts.joinedWith("{\"format\":"), damaged("manifest"));
        row("bytes behind the object", parts.joinedWith(text + "x"), damaged("manifest"));
        row("broken UTF-8", parts.joinedWith(QByteArray(text).replace("Background", "Back\xC3(und")),
            damaged("manifest"));
        row("nesting", parts.joinedWith(QByteArray(1'000'000, '[')), damaged("manifest"));
        changed("no width", damaged("canvas size"), [](OrderedJson& m) { m["width"] = 0; });
        changed("30,001", kTooLarge, [](OrderedJson& m) { m["width"] = 30001; });
        for (const char* id :
             {"{238A507A-F3BA-443A-B3D1-B0FA438BBE7}", "G38A507A-F3BA-443A-B3D1-B0FA438BBE72"})
            changed(id, damaged("manifest"), [id](OrderedJson& m) { m["layers"][0]["id"] = id; });
        for (const char* moment :
             {"2026-03-01", "2026-03-01 12:30:05Z", "2026-02-30T12:30:05Z", "2026-03-01T12:30:05Zx"})
            changed(moment, damaged("manifest"), [moment](OrderedJson& m) { m["saved"] = moment; });
    }

    void tilesAreRefusedInTheseWords() {
        const QByteArray raw(kTileBytes, '\x7F');
        const QByteArray stream = compressed(raw);
        const auto row = [](const QString& name, const QByteArray& bytes, int64_t coding,
                            const QString& words, const std::function<void(OrderedJson&)>& change = {}) {
            QCOMPARE(name + ": " + refusalOf(fileWithTile(bytes, coding, change)), name + ": " + words);
        };
        row("as it should be", stream, 1, {});
        row("slot below", stream, 1, damaged("tile -1"), [](OrderedJson& e) { e["i"] = -1; });
        row("slot above", stream, 1, damaged("tile 1"), [](OrderedJson& e) { e["i"] = 1; });
        row("offset below", stream, 1, damaged("tile 0"), [](OrderedJson& e) { e["o"] = -1; });
        row("offset far above", stream, 1, damaged("tile 0"), [](OrderedJson& e) { e["o"] = kLargest; });
        row("no bytes", stream, 1, damaged("tile 0"), [](OrderedJson& e) { e["n"] = 0; });
        row("bytes above", stream, 1, damaged("tile 0"),
            [](OrderedJson& e) { e["n"] = e["n"].get<int64_t>() + 1; });
        row("offset and bytes that wrap", stream, 1, damaged("tile 0"), [](OrderedJson& e) {
            e["o"] = kLargest;
            e["n"] = kLargest;
        });
        row("no end mark", stream.left(stream.size() - 4), 1, damaged("tile 0 data"));
        row("raw called a stream", raw, 1, damaged("tile 0 data"));
        row("four bytes too few", compressed(raw.left(kTileBytes - 4)), 1, damaged("tile 0 data"));
        row("raw", raw, 0, {});
        row("raw in a coding that is not known", raw, 5, {});
        row("raw and short", raw.left(kTileBytes - 1), 0, damaged("tile 0 length"));
    }

    void theFirstBadTileIsReported() {
        PaintDocument doc(256 * 40, 256, 72, PaintColor(0, 0, 0));
        const QByteArray good = PaintFile::encode(doc);
        const auto withBad = [&](const std::vector<std::pair<int, const char*>>& faults) {
            return withManifest(good, [&](OrderedJson& m) {
                for (const auto& [slot, field] : faults) {
                    OrderedJson& entry = m["layers"][0]["tiles"][static_cast<std::size_t>(slot)];
                    entry[field] = std::string(field) == "o" ? kLargest : std::string(field) == "c" ? 0 : 40;
                }
            });
        };
        for (int threads : {1, 8}) {
            setConcurrency(threads);
            QCOMPARE(refusalOf(withBad({{30, "o"}, {20, "c"}, {10, "n"}})), damaged("tile 10 data"));
            QCOMPARE(refusalOf(withBad({{30, "n"}, {20, "o"}, {10, "c"}})), damaged("tile 10 length"));
            QCOMPARE(refusalOf(withBad({{30, "c"}, {20, "n"}, {10, "o"}})), damaged("tile 10"));
            QCOMPARE(refusalOf(withBad({{35, "n"}, {22, "n"}, {21, "n"}})), damaged("tile 21 data"));
        }
    }

    void oddButSoundFilesOpen() {
        const NativeFile parts = NativeFile::takenApart(richFile());
        const QByteArray text = QByteArray::fromStdString(jsonBytes(parts.manifest)), width = "\"width\":300";
        QVERIFY(text.contains(width));
        for (const QByteArray& file :
             {withManifest(richFile(),
                           [](OrderedJson& m) {
                               m["formatVersion"] = 2;
                               m["format"] = "";
                               m["extra"] = {{"deep", {1, 2, 3}}};
                               m["layers"][0]["extra"] = nullptr;
                               m["layers"][0]["tiles"][0]["extra"] = "x";
                           }),
              withManifest(richFile(), [](OrderedJson& m) { m["thumbnail"] = m["saved"] = nullptr; }),
              parts.joinedWith(QByteArray(text).replace(width, "\"width\":3e2")),
              parts.joinedWith(QByteArray(text).replace(width, "\"width\":\"none\",\"width\":300"))}) {
            QCOMPARE(refusalOf(file), QString());
            QCOMPARE(PaintFile::decode(bytesOf(file))->fingerprint(), richDocument()->fingerprint());
        }
    }

    void odditiesAreMended() {
        const auto opened = [](const std::function<void(OrderedJson&)>& change) {
            return PaintFile::decode(bytesOf(withManifest(richFile(), change)));
        };
        QCOMPARE(opened([](OrderedJson& m) { m["layers"][1]["blend"] = "sparkle"; })->layer(1).blendMode,
                 BlendMode::normal);
        QCOMPARE(opened([](OrderedJson& m) { m["layers"][1]["opacity"] = 1.7; })->layer(1).opacity, 1.0);
        QCOMPARE(opened([](OrderedJson& m) { m["active"] = 99; })->activeIndex(), 2);
        QCOMPARE(opened([](OrderedJson& m) { m["active"] = -1; })->activeIndex(), 0);
        QCOMPARE(opened([](OrderedJson& m) { m["dpi"] = 0; })->dpi, 72.0);
        QVERIFY(opened([](OrderedJson& m) { m.erase("onion"); })->onion == OnionSkin());

        const auto bare = opened([](OrderedJson& m) { m["layers"] = OrderedJson::array(); });
        QCOMPARE(bare->layerCount(), 1);
        QCOMPARE(bare->activeLayer().name, QStringLiteral("Layer 1"));
        QVERIFY(bare->activeLayer().isEmpty());
        const auto largest = opened([](OrderedJson& m) {
            m["width"] = m["height"] = 30000;
            for (OrderedJson& layer : m["layers"]) layer["tiles"] = OrderedJson::array();
        });
        QCOMPARE(largest->grid().width, 30000);

        // The second tile of one slot wins.
        const auto twice = opened([](OrderedJson& m) {
            OrderedJson& tiles = m["layers"][1]["tiles"];
            tiles.push_back(m["layers"][0]["tiles"][0]);
            tiles.back()["i"] = tiles[0]["i"];
        });
        QVERIFY(twice->layer(1).pixel(0, 0) == twice->layer(0).pixel(0, 0));
    }

    void aFlippedBitNeverOpensAsAnotherPicture() {
        const NativeFile good = NativeFile::takenApart(richFile());
        const int64_t preview = good.manifest["thumbnail"]["o"];
        SeededRandom random(7);
        for (int i = 0; i < 400; ++i) {
            NativeFile bad = good;
            const bool inTiles = i % 8 != 0;
            const auto at = static_cast<qsizetype>(
                inTiles ? random.next() % static_cast<uint64_t>(preview)
                        : static_cast<uint64_t>(preview) +
                              random.next() % static_cast<uint64_t>(good.blob.size() - preview));
            bad.blob[at] = static_cast<char>(bad.blob[at] ^ (1 << i % 7));
            const QByteArray file = bad.joined();
            QVERIFY2(refusalOf(file).endsWith(" data). Try File → Recover Autosaved Work.") == inTiles,
                     qPrintable(QString::number(at)));
            if (!inTiles) QVERIFY(!PaintFile::thumbnailOf(bytesOf(file)));
        }
    }

    void whatCanBeReadOfADamagedFileIsThePictureWithoutItsLostTiles() {
        const auto whole = richDocument();
        const QByteArray good = richFile();
        const auto blob = good.size() - NativeFile::takenApart(good).blob.size();
        for (const qsizetype kept : {good.size(), good.size() * 2 / 3, blob + 1, blob}) {
            const QByteArray file = good.first(kept);
            const PaintFile::Salvaged found = PaintFile::salvage(bytesOf(file));
            QCOMPARE(found.document->layerCount(), whole->layerCount());
            for (int64_t l = 0; l < whole->layerCount(); ++l) {
                int64_t lost = 0;
                for (int64_t slot = 0; slot < whole->grid().count(); ++slot) {
                    const Tile *was = whole->layer(l).tile(slot), *is = found.document->layer(l).tile(slot);
                    if (is) QVERIFY(std::ranges::equal(is->bytes(), was->bytes()));
                    lost += was && !was->isEmpty() && !is;
                }
                QCOMPARE(found.lostTiles[checkedSize(l)], lost);
            }
            const int64_t all = std::accumulate(found.lostTiles.begin(), found.lostTiles.end(), int64_t{0});
            QCOMPARE(all > 0, kept < good.size());
            if (kept == blob) QVERIFY(all > 1);
        }
        QVERIFY_THROWS_EXCEPTION(PaintFileError, PaintFile::salvage(bytesOf(good.first(blob - 1))));
    }

    void everyFieldOfAWrongTypeIsDamage() {
        const NativeFile good = NativeFile::takenApart(richFile());
        const std::vector<OrderedJson> others{nullptr,
                                              true,
                                              7,
                                              7.5,
                                              "text",
                                              OrderedJson::array(),
                                              OrderedJson::array({1}),
                                              OrderedJson::object()};
        const auto accepts = [](const OrderedJson& was, const QString& path, const OrderedJson& other) {
            const bool optional = path == "/onion" || path == "/thumbnail" || path == "/saved";
            if (path.endsWith("/k")) return true; // counts as none
            if (other.is_null()) return optional;
            if (was.is_number_float()) return other.is_number();
            if (was.is_number()) return path == "/dpi" ? other.is_number() : other.is_number_integer();
            if (path.endsWith("/id") || path == "/saved") return false; // no text will do
            if (was.is_array()) return other.is_array() && other.empty();
            if (was.is_object()) return false; // an empty one lacks its keys
            return was.type() == other.type();
        };
        int seen = 0;
        NativeFile variant = good;
        forEachValue(variant.manifest, {}, [&](OrderedJson& value, const QString& path) {
            const OrderedJson was = value;
            for (const OrderedJson& other : others) {
                value = other;
                // The number that replaces one may be out of range: that is another refusal.
                const QString words = refusalOf(variant.joined());
                const QByteArray what =
                    (path + " = " + QString::fromStdString(other.dump()) + ": " + words).toUtf8();
                QVERIFY2(accepts(was, path, other) == (words != damaged("manifest")), what.constData());
                PaintFile::thumbnailOf(bytesOf(variant.joined()));
                ++seen;
            }
            value = was;
        });
        QVERIFY(seen > 300);
    }

    void previewsThatAreNoneAreIgnored() {
        const QByteArray good = richFile();
        const auto check = [](const QByteArray& file, const char* what) {
            QVERIFY2(!PaintFile::thumbnailOf(bytesOf(file)), what);
            QCOMPARE(refusalOf(file), QString()); // the picture is whole
        };
        // Out of the file, of few bytes, and at a tile's place.
        for (const auto& [field, value] : {std::pair<const char*, int64_t>{"o", -1},
                                           {"o", kLargest},
                                           {"n", 0},
                                           {"n", kLargest},
                                           {"n", 20},
                                           {"o", 0}})
            check(withManifest(good, [&, f = field, v = value](OrderedJson& m) { m["thumbnail"][f] = v; }),
                  field);
        // A header alone that claims the largest picture, or a size beyond all.
        for (uint32_t side : {30000u, 0xFFFFFFFFu}) {
            NativeFile parts = NativeFile::takenApart(good);
            const auto at = static_cast<qsizetype>(parts.manifest["thumbnail"]["o"].get<int64_t>());
            for (int i = 0; i < 8; ++i)
                parts.blob[at + 16 + i] = static_cast<char>(side >> (24 - 8 * (i % 4)));
            check(parts.joined(), "side");
        }
    }

    void importTellsFilesByContent() {
        const auto refusal = [&](const QByteArray& file) {
            try {
                ImageImport::document(bytesOf(file), QStringLiteral("png"));
            } catch (const DescribedError& error) {
                return error.description();
            }
            return QString();
        };
        const QString cannotRead = QStringLiteral(
            "This picture could not be opened. It may be damaged or in a format macOS cannot read.");
        QCOMPARE(refusal(richFile()), QString());
        QCOMPARE(refusal({}), cannotRead);
        QCOMPARE(refusal(richFile().left(200)), cannotRead); // without a manifest it is not known to be ours
        QCOMPARE(refusal(withManifest(richFile(), [](OrderedJson& m) { m["width"] = 30001; })), kTooLarge);
    }
};

QIRN_TEST(tst_PaintFileDamage)
#include "tst_PaintFileDamage.moc"
