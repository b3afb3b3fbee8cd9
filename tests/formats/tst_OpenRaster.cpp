#include "SmallPictures.h"
#include "compositing/CompositeInputs.h"
#include "formats/common/AreaReducer.h"
#include "formats/openraster/OpenRaster.h"
#include "formats/pictures/PngWriter.h"
#include "platform/Parallel.h"
#include "support/Files.h"
#include "support/Rows.h"
#include "support/TestMain.h"

#include <sys/resource.h>
#include <zlib.h>

using namespace qirn;
using namespace qirn::test;

namespace {

/// An archive put together by hand, so that it may lie.
struct Entry {
    QByteArray name, bytes;
    bool isPacked = false;
    uint32_t claimed = 0; ///< Its size; 0: the true one.
    uint16_t flags = 0;   ///< 1: encrypted.
    int at = -1;          ///< Whose bytes it names; -1: its own.
    uint64_t method = 0;  ///< Of packing; 0: as it is, or Deflate.
};
QByteArray number(uint64_t value, int bytes) { // low byte first
    QByteArray result;
    for (int i = 0; i < bytes; ++i) result += static_cast<char>(value >> 8 * i);
    return result;
}
QByteArray archive(const std::vector<Entry>& entries) {
    QByteArray file, directory;
    std::vector<int64_t> starts;
    for (const Entry& entry : entries) {
        // zlib's wrapping, two bytes and four, is not ZIP's.
        const QByteArray body = entry.isPacked ? qCompress(entry.bytes, 9).mid(6).chopped(4) : entry.bytes;
        const uLong sum = crc32(0, reinterpret_cast<const Bytef*>(entry.bytes.constData()),
                                static_cast<uInt>(entry.bytes.size()));
        const QByteArray facts =
            number(20, 2) + number(entry.flags, 2) + number(entry.isPacked ? 8 : entry.method, 2) +
            number(0x21 << 16, 4) + number(sum, 4) + number(static_cast<uint64_t>(body.size()), 4) +
            number(entry.claimed ? entry.claimed : static_cast<uint64_t>(entry.bytes.size()), 4) +
            number(static_cast<uint64_t>(entry.name.size()), 2) + number(0, 2);
        starts.push_back(file.size());
        const int64_t start = entry.at < 0 ? file.size() : starts[static_cast<std::size_t>(entry.at)];
        file += "PK\3\4" + facts + entry.name + body;
        directory += "PK\1\2" + number(0x314, 2) + facts + number(0, 6) + number(0120777u << 16, 4) +
                     number(static_cast<uint64_t>(start), 4) + entry.name;
    }
    return file + directory + "PK\5\6" + number(0, 4) + number(entries.size(), 2) +
           number(entries.size(), 2) + number(static_cast<uint64_t>(directory.size()), 4) +
           number(static_cast<uint64_t>(file.size()), 4) + number(0, 2);
}

const QByteArray kImage = "<image w='64' h='64'><stack>", kEnd = "</stack></image>";
QByteArray layer(const char* name, const QByteArray& more = {}) {
    return QByteArray("<layer src='data/dot.png' name='") + name + "' " + more + "/>";
}
QByteArray dot() {
    QImage image(8, 8, QImage::Format_RGBA8888);
    image.fill(QColor(200, 100, 50, 128));
    return written(image, "png");
}
QByteArray fileOf(const QByteArray& stack, std::vector<Entry> more = {}) {
    more.insert(more.begin(),
                {{"mimetype", "image/openraster"}, {"stack.xml", stack}, {"data/dot.png", dot()}});
    return archive(more);
}

/// "name mode opacity", "hidden" and "clipped", from the bottom, and what is told; "refused".
QString factsOf(const QByteArray& file) {
    try {
        const auto [doc, remarks] = ImageImport::imported(bytesOf(file));
        QStringList facts;
        for (const LayerRef& layer : doc->layers()) {
            facts += layer->name + ' ' + rowOf(layer->blendMode).id + ' ' + QString::number(layer->opacity);
            if (!layer->isVisible) facts.back() += " hidden";
            if (layer->isClipping) facts.back() += " clipped";
        }
        const QString words = wordsOf(remarks);
        return facts.join('|') + (words.isEmpty() ? words : '|' + words);
    } catch (const ExportError&) {
        return "refused";
    }
}

QByteArray exported(const PaintDocument& doc) {
    return ImageExport::data(doc, ExportFormat::openRaster, 1, PaintColor::white());
}

/// Small layers here and there, in every mode, each clipped once, one empty.
std::unique_ptr<PaintDocument> oddDocument() {
    auto doc = randomDocument(600, 300, 2 * static_cast<int>(kBlendModes.size()), 5);
    for (int64_t i = 0; i < doc->layerCount(); ++i) {
        Layer& layer = doc->layer(i);
        layer.removeAllTiles();
        layer.blendMode = static_cast<BlendMode>(i / 2);
        layer.isClipping = i % 2 == 1 || i == 0;
        if (i == 7) continue;
        for (int64_t y = 0; y < 5; ++y)
            paintRect(*doc, layer, {i * 13, i * 5 + 7 * y, 90, 5},
                      {static_cast<uint8_t>(i), 7, static_cast<uint8_t>(20 * y), 100});
    }
    doc->layer(3).name = QStringLiteral("\u00E9 <&\"'>\n\t\U0001F98A");
    doc->setActiveIndex(5);
    doc->dpi = 72.3;
    return doc;
}

} // namespace

class tst_OpenRaster : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { setConcurrency(0); }

    void aDocumentComesBack() {
        std::vector<std::unique_ptr<PaintDocument>> documents;
        documents.push_back(oddDocument());
        for (uint64_t seed = 1; seed < 7; ++seed)
            documents.push_back(randomDocument(1 + 90 * static_cast<int64_t>(seed), 270, 5, seed));
        for (const auto& doc : documents) {
            const QByteArray file = exported(*doc);
            const auto [again, remarks] = ImageImport::imported(bytesOf(file));
            QCOMPARE(wordsOf(remarks), QString());
            QCOMPARE(again->fingerprint(), doc->fingerprint());
            QCOMPARE(again->dpi, doc->dpi);
            QCOMPARE(again->activeIndex(), doc->activeIndex());
            for (int64_t i = 0; i < doc->layerCount(); ++i)
                QVERIFY(again->layer(i).settings() == doc->layer(i).settings());
            QCOMPARE(firstDifference(*decoded(file)->layer->toBuffer(), *flattened(*doc)), QString());
            QCOMPARE(decoded(file)->dpi, doc->dpi);
            setConcurrency(1);
            QCOMPARE(exported(*again), file); // the same bytes, on one thread, too
            setConcurrency(0);
            // By which others tell the format; the thumbnail is within 256 pixels.
            QCOMPARE(file.mid(4, 10), number(10, 2) + number(0, 4) + number(0x21 << 16, 4));
            QCOMPARE(file.mid(26, 28), number(8, 2) + number(0, 2) + "mimetypeimage/openraster");
            const qsizetype small = file.indexOf("Thumbnails/thumbnail.png") + 24;
            const QSize size = QImage::fromData(file.mid(small)).size();
            QCOMPARE(size, reducedSize(doc->grid().width, doc->grid().height, 256));
        }
        documents[1]->layer(0).name = QString(5000, '"') + QChar(1);
        QCOMPARE(OpenRaster::read(bytesOf(exported(*documents[1])))->layer(0).name, QString(4000, '"'));
        QCOMPARE(OpenRaster::shownDifferently(*documents[0]),
                 "clipping (GIMP), blend modes of clipped layers, Exclusion, Subtract, Linear Burn");
    }

    void whatOthersWriteBecomesOurLayers() {
        const QByteArray plain = "<stack isolation='isolate'>", clip = "composite-op='svg:src-atop'";
        forRows<QByteArray, QString>(
            {{"order", layer("b") + layer("a"), "a normal 1|b normal 1"},
             {"settings", layer("a", "opacity='0.5' visibility='hidden' composite-op='svg:color-dodge'"),
              "a colorDodge 0.5 hidden"},
             {"nonsense", layer("", "opacity='much' composite-op='krita:pin_light' x='1e99'"),
              "Layer 1 normal 1|Opened without: unknown blend modes."},
             {"clipped", layer("b", clip) + layer("a"), "a normal 1|b normal 1 clipped"},
             {"clipped to two", layer("c", clip) + layer("b") + layer("a"),
              "a normal 1|b normal 1|c normal 1 clipped|Opened without: clipping to several layers."},
             {"clipped to nothing", layer("a", clip),
              "a normal 1 clipped|Opened without: clipping to several layers."},
             {"group of a base",
              "<stack opacity='0.5' composite-op='svg:multiply'>" + layer("b", clip) +
                  layer("a", "opacity='0.5' composite-op='svg:screen'") + "</stack>" + layer("0"),
              "0 normal 1|a multiply 0.25|b normal 1 clipped"},
             {"plain group",
              plain + layer("b") + layer("a", "composite-op='svg:screen'") + "</stack>" + layer("0"),
              "0 normal 1|a normal 1|b normal 1|Opened without: groups."},
             {"group that lets through",
              "<stack>" + layer("b", "composite-op='svg:screen'") + layer("a", "composite-op='svg:screen'") +
                  "</stack>",
              "a screen 1|b screen 1|Opened without: groups."},
             {"hidden", "<stack visibility='hidden'>" + layer("b") + layer("a") + "</stack>",
              "a normal 1 hidden|b normal 1 hidden|Opened without: groups."},
             {"blending within", plain + layer("b", "composite-op='svg:screen'") + layer("a") + "</stack>",
              "a normal 1|b screen 1|Opened without: groups, group blending."},
             {"blending", "<stack opacity='0.5'>" + layer("b") + layer("a") + "</stack>",
              "a normal 0.5|b normal 0.5|Opened without: groups, group blending."},
             {"deep", QByteArray("<stack>").repeated(60) + layer("a") + QByteArray("</stack>").repeated(60),
              "a normal 1|Opened without: groups."},
             {"others", "<text/>" + QByteArray("<layer src='data/none.png' name='a'/><what><layer/></what>"),
              "a normal 1|Opened without: text and filter layers, missing layers."}},
            [](const QByteArray& stack, const QString& facts) {
                QCOMPARE(factsOf(fileOf(kImage + stack + kEnd)), facts);
            });
    }

    void pixelsLieWhereTheListSays() {
        for (const auto& [x, y] : std::initializer_list<std::pair<int, int>>{{0, 0}, {253, 255}, {-3, 511}}) {
            const QByteArray where = QString("x='%1' y='%2'").arg(x).arg(y).toLatin1();
            const auto doc = OpenRaster::read(
                bytesOf(fileOf("<image w='600' h='517'><stack>" + layer("a", where) + kEnd)));
            const IRect dotAt{x, y, 8, 8};
            QCOMPARE(doc->layer(0).contentBounds(), dotAt.intersection(doc->grid().bounds()));
            QCOMPARE(text(doc->layer(0).pixel(x + 4, y + 4)), "100,50,25,128");
        }
        // Of the profiles that differ the first four count in a small file, and each for all that have it.
        std::vector<Entry> pictures;
        QByteArray list = kEnd;
        for (const uint32_t gamma : {1, 1, 2, 3, 4, 1, 5}) {
            list.prepend("<layer src='" + QByteArray::number(pictures.size()) + "'/>");
            pictures.push_back({QByteArray::number(pictures.size()),
                                withPngChunk(dot(), "gAMA", bigEndianWords({99'999 + gamma}))});
        }
        const auto several = OpenRaster::read(bytesOf(fileOf(kImage + list, pictures)));
        for (int64_t i = 0; i < 7; ++i)
            QCOMPARE(text(several->layer(i).pixel(4, 4)), i == 6 ? "100,50,25,128" : "115,84,61,128");
        // 16 bits become 8.
        QImage deep(3, 3, QImage::Format_RGBA64);
        deep.fill(QColor::fromRgba64(65535, 32896, 0, 65535));
        const QByteArray stack = kImage + "<layer src='deep.png'/>" + kEnd;
        const auto doc = OpenRaster::read(bytesOf(fileOf(stack, {{"deep.png", written(deep, "png")}})));
        QCOMPARE(text(doc->layer(0).pixel(2, 2)), "255,128,0,255");
    }

    void aHostileFileTakesLittle() {
        const auto kilobytes = [] { // the most there was since it was forgotten
            rusage usage{};
            getrusage(RUSAGE_SELF, &usage);
            return usage.ru_maxrss;
        };
        const QByteArray one = kImage + layer("a") + kEnd, opened = "a normal 1", blank(120 << 20, ' ');
        const QByteArray blankPng =
            pngFile(30'000, 30'000, QByteArray("\1\0\0\0\0", 5), QByteArray(30'000 * 3751, '\0'));
        const QByteArray wide = "<image w='30000' h='30000'><stack>",
                         missing = "a normal 1|Opened without: missing layers.";
        const auto with = [&](const QByteArray& stack, const Entry& entry) {
            return fileOf(kImage + stack + kEnd, {entry});
        };
        const QByteArray odd = "<layer name='a' src='odd'/>";
        const auto deep = [](const QByteArray& before) {
            return archive({{"stack.xml", before + QByteArray("<a>").repeated(2'000'000), true}});
        };
        const auto attributes = [](int count) { // in UTF-16
            QString tag = QChar(QChar::ByteOrderMark) + QString::fromLatin1(kImage + "<b");
            for (int i = 0; i < count; ++i) tag += QString(" a%1=\"'>\"").arg(i);
            tag += QString::fromLatin1("/>" + layer("a") + kEnd);
            return QByteArray(reinterpret_cast<const char*>(tag.constData()), 2 * tag.size());
        };
        forRows<QByteArray, QByteArray>(
            {{"no archive", "PK\3\4 and no more", "refused"},
             {"no list", archive({{"mimetype", "image/openraster"}}), "refused"},
             {"something else", archive({{"mimetype", "application/x-krita"}, {"stack.xml", one}}),
              "refused"},
             {"no type", archive({{"stack.xml", one}, {"data/dot.png", dot()}}), opened},
             {"a type with a line end, later",
              archive(
                  {{"stack.xml", one}, {"data/dot.png", dot()}, {"mimetype", "image/openraster\n", true}}),
              opened},
             {"a finished picture alone", archive({{"stack.xml", "<image"}, {"mergedimage.png", dot()}}),
              "Background normal 1|Opened as one layer: damaged list of layers."},
             {"entities", fileOf("<!DOCTYPE image [<!ENTITY a 'aaa'>]>" + one), "refused"},
             {"too deep", fileOf(kImage + QByteArray("<stack>").repeated(100'000)), "refused"},
             {"deep in the picture", deep("<image w='64' h='64'>"), "refused"},
             {"deep in a group", deep(kImage), "refused"},
             {"deep in a layer", deep(kImage + "<layer>"), "refused"},
             {"64 attributes", fileOf(attributes(64)), opened},
             {"65 attributes", fileOf(attributes(65)), "refused"},
             {"too many layers", fileOf(kImage + QByteArray("<layer/>").repeated(40'000) + kEnd), "refused"},
             {"a long tag", fileOf(kImage + "<layer name='" + QByteArray(40'000, 'a') + "'/>" + kEnd),
              "refused"},
             {"a list that is a bomb", archive({{"stack.xml", blank, true}}), "refused"},
             {"no size", fileOf("<image w='0' h='5'><stack/></image>"), "refused"},
             {"too large", fileOf("<image w='30001' h='5'><stack/></image>"), "refused"},
             {"layers that claim the canvas 10,000 times",
              fileOf(wide + QByteArray("<layer src='odd'/>").repeated(10'000) + kEnd,
                     {{"odd", blankPng, true}}),
              "refused"},
             {"a layer that is a bomb", with(odd, {"odd", blank, true}), missing},
             {"a picture that is a bomb", with(odd, {"odd", dot() + blank, true}),
              "a normal 1|Opened without: damaged parts of layers."},
             {"layers of one picture with much behind it",
              with(odd.repeated(3), {"odd", dot() + QByteArray(12 << 20, 0), true}),
              "a normal 1|a normal 1|a normal 1|Opened without: damaged parts of layers."},
             {"far outside", with(layer("a", "x='-999999' y='123456789'"), {}), opened},
             {"a size that lies", with(odd, {"odd", dot(), true, 0xFFFFFFF0}), opened},
             {"a type that is packed by bzip2, empty",
              archive(
                  {{"mimetype", QByteArray("BZh9\x17\x72\x45\x38\x50\x90\0\0\0\0", 14), false, 0, 0, -1, 12},
                   {"stack.xml", one},
                   {"data/dot.png", dot()}}),
              opened},
             {"encrypted", with(odd, {"odd", dot(), false, 0, 1}), missing},
             {"names that lead out", with("<layer name='a' src='../../etc/passwd'/>", {"/etc/passwd", dot()}),
              missing},
             {"a name there twice", with(layer("a"), {"data/dot.png", "none"}), opened},
             {"bytes there twice", with(odd, {"odd", dot(), false, 0, 0, 2}), opened}},
            [&](const QByteArray& file, const QByteArray& facts) {
                writeFile("/proc/self/clear_refs", "5"); // forgets it
                const long before = kilobytes();
                QCOMPARE(factsOf(file), QString(facts));
                const long taken = kilobytes() - before;
                QVERIFY2(taken < 64 * 1024 + file.size() / 8, qPrintable(QString("%1 KB").arg(taken)));
            });
        const QByteArray sound = exported(*randomDocument(90, 70, 3, 4));
        for (qsizetype cut = 0; cut < sound.size(); cut += 1 + sound.size() / 100) factsOf(sound.left(cut));
    }
};

QIRN_TEST(tst_OpenRaster)
#include "tst_OpenRaster.moc"
