#include "compositing/CompositeInputs.h"
#include "core/PaintDocument.h"
#include "formats/ByteReader.h"
#include "formats/pictures/StraightPixels.h"
#include "formats/psd/PSDFile.h"
#include "operations/LayerOperations.h"
#include "platform/Bytes.h"
#include "platform/InstructionSets.h"
#include "platform/Parallel.h"
#include "support/PSDFiles.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

#include <cmath>

using namespace qirn;
using namespace qirn::test;
using PSDFile::Layered;

namespace {

/// A layered file as the format's description reads, channel by channel and row by row, of planes made one pixel after
/// the other: what the writer's bands, tables of zeros and parallel copies have to come to.
QByteArray packedPlainly(const std::vector<uint8_t>& plane, int64_t w, QByteArray& counts) {
    QByteArray rows;
    std::vector<uint8_t> packed(PSDFile::packedRoom(static_cast<std::size_t>(w)));
    for (std::size_t at = 0; at < plane.size(); at += static_cast<std::size_t>(w)) {
        const std::span row(plane.data() + at, static_cast<std::size_t>(w));
        const auto size = PSDFile::packBitsPlainly(row, packed.data()) - packed.data();
        counts += big16(static_cast<uint32_t>(size));
        rows.append(reinterpret_cast<const char*>(packed.data()), size);
    }
    return rows;
}

QByteArray pictureBytes(const PaintDocument& doc) {
    const auto finished = flattened(doc);
    QByteArray counts, rows;
    for (const auto& plane : PSDFile::planes(*finished, doc.grid().bounds()))
        rows += packedPlainly(plane, doc.grid().width, counts);
    return big16(1) + counts + rows;
}

QByteArray filePlainly(const PaintDocument& doc, Layered layered) {
    const QByteArray resolution = big32(static_cast<uint32_t>(doc.dpi * 65536)) + big16(1) + big16(1);
    PSDParts parts{.width = static_cast<uint32_t>(doc.grid().width),
                   .height = static_cast<uint32_t>(doc.grid().height),
                   .channels = 4,
                   .resources = psdResource(1005, {}, resolution + resolution),
                   .picture = pictureBytes(doc)};
    if (layered == Layered::no) return parts.joined();
    qsizetype channelBytes = 0;
    for (int64_t i = 0; i < doc.layerCount(); ++i) {
        const Layer& layer = doc.layer(i);
        const IRect rect = layer.contentBounds().value_or(IRect());
        const auto planes = PSDFile::planes(*layer.toBuffer(), rect);
        PSDRecord record{.top = static_cast<int32_t>(rect.y),
                         .left = static_cast<int32_t>(rect.x),
                         .bottom = static_cast<int32_t>(rect.maxY()),
                         .right = static_cast<int32_t>(rect.maxX()),
                         .key = rowOf(layer.blendMode).psdKey,
                         .opacity = static_cast<uint8_t>(std::lround(layer.opacity * 255)),
                         .clipping = layer.isClipping,
                         .flags = static_cast<uint8_t>(layer.alphaLocked + 2 * !layer.isVisible),
                         .name = layer.name.toLatin1()};
        std::vector<uint16_t> units;
        for (const QChar unit : layer.name) units.push_back(unit.unicode());
        QByteArray unicode = psdUnicode(units);
        unicode.append((4 - unicode.size() % 4) % 4, '\0');
        record.blocks = psdBlock("luni", unicode);
        for (const int16_t identifier : {-1, 0, 1, 2}) {
            const auto& plane = planes[identifier < 0 ? 3 : static_cast<std::size_t>(identifier)];
            QByteArray counts;
            const QByteArray rows = packedPlainly(plane, rect.w, counts);
            record.channels.push_back({identifier, big16(rect.isEmpty() ? 0 : 1) + counts + rows});
            channelBytes += record.channels.back().data.size();
        }
        parts.records.push_back(std::move(record));
    }
    // The records are of even length, so that the rows alone decide about the last zero.
    if (channelBytes % 2) {
        PSDChannel& last = parts.records.back().channels.back();
        last.statedLength = static_cast<uint32_t>(last.data.size());
        last.data += '\0';
    }
    parts.behindLayers = big32(0); // no masks
    return parts.joined();
}

/// Layers that end anywhere: one over all, one in a corner, one in a stripe across the seam of tiles, and an empty one.
std::unique_ptr<PaintDocument> scatteredDocument() {
    auto doc = randomDocument(600, 300, 2, 53);
    doc->dpi = 300;
    for (const IRect& rect : {IRect{5, 3, 1, 1}, IRect{250, 254, 300, 5}, IRect{}}) {
        addLayer(*doc, QStringLiteral("At %1").arg(rect.x));
        doc->activeLayer().opacity = 0.7;
        paintRect(*doc, doc->activeLayer(), rect, {40, 60, 20, 120});
    }
    paintRect(*doc, doc->layer(2), {590, 290, 10, 10}, {9, 9, 9, 9}); // tiles are absent between the corners
    return doc;
}

} // namespace

class tst_PSDWriter : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() {
        setConcurrency(0);
        useInstructionSet({});
    }

    void straightColourComesBack_data();
    void straightColourComesBack();
    void partsLieWhereTheFormatSays();
    void theFileIsThatOfThePlainForm();
    void resolutionsAreClamped_data();
    void resolutionsAreClamped();
    void namesAreWrittenTwice_data();
    void namesAreWrittenTwice();
};

void tst_PSDWriter::straightColourComesBack_data() {
    QTest::addColumn<std::string>("instructions");
    for (const std::string& set : instructionSets()) QTest::newRow(set.c_str()) << set;
}

void tst_PSDWriter::straightColourComesBack() {
    QFETCH(std::string, instructions);
    useInstructionSet(instructions);
    for (int a = 0; a < 256; ++a) {
        std::array<std::array<uint8_t, 256>, 4> planes;
        std::array<uint8_t, 256 * 4> pixels, back;
        for (std::size_t c = 0; c < 256; ++c) {
            // Two transparent or opaque pixels at the end, so that the row is neither all the one nor all the other.
            const int alpha = c < 254 ? a : 255 - a;
            const std::array<uint8_t, 4> pixel{static_cast<uint8_t>(c), static_cast<uint8_t>(255 - c),
                                               static_cast<uint8_t>(c / 2), static_cast<uint8_t>(alpha)};
            std::copy(pixel.begin(), pixel.end(), pixels.begin() + static_cast<std::ptrdiff_t>(4 * c));
        }
        straightRow(pixels.data(), 256,
                    {planes[0].data(), planes[1].data(), planes[2].data(), planes[3].data()});
        premultiplyRow({planes[0].data(), planes[1].data(), planes[2].data(), planes[3].data()}, 256,
                       back.data());
        for (std::size_t c = 0; c < 256; ++c) {
            const int alpha = pixels[4 * c + 3];
            for (std::size_t channel = 0; channel < 3; ++channel) {
                const int value = pixels[4 * c + channel];
                const int s = alpha == 0 ? 0 : std::min((255 * value + alpha / 2) / alpha, 255);
                QCOMPARE(planes[channel][c], s);
                QCOMPARE(back[4 * c + channel], (alpha * s + 127) / 255);
                if (value <= alpha) QCOMPARE(back[4 * c + channel], value);
            }
            QCOMPARE(back[4 * c + 3], alpha);
        }
        // Every colour times every alpha.
        std::array<uint8_t, 256> alphas;
        alphas.fill(static_cast<uint8_t>(a));
        for (std::size_t c = 0; c < 256; ++c) planes[0][c] = static_cast<uint8_t>(c);
        premultiplyRow({planes[0].data(), planes[0].data(), planes[0].data(), alphas.data()}, 256,
                       back.data());
        for (int c = 0; c < 256; ++c) QCOMPARE(back[static_cast<std::size_t>(4 * c)], (a * c + 127) / 255);
    }
}

void tst_PSDWriter::partsLieWhereTheFormatSays() {
    PaintDocument doc(300, 7, 300.5, std::nullopt);
    Layer& layer = doc.activeLayer();
    layer.name = QStringLiteral("Ink");
    layer.blendMode = BlendMode::hue;
    layer.opacity = 0.5;
    layer.isClipping = layer.alphaLocked = true;
    layer.isVisible = false;
    paintRect(doc, layer, {255, 2, 3, 1}, {50, 0, 100, 100});
    const QByteArray file = PSDFile::write(doc, Layered::yes);
    const auto hex = [](const char* digits) { return QByteArray::fromHex(digits); };

    QCOMPARE(file.left(26), hex("38425053 0001 000000000000 0004 00000007 0000012C 0008 0003"));
    QCOMPARE(file.mid(26, 36), hex("00000000 0000001C 3842494D 03ED 0000 00000010 012C8000 0001 0001"
                                   "012C8000 0001 0001"));
    // The count, a record of 58 bytes and 36 of extra data, and four channels of 6.
    QCOMPARE(file.mid(62, 10), hex("00000080 00000078 FFFF"));
    QCOMPARE(file.mid(72, 18), hex("00000002 000000FF 00000003 00000102 0004"));
    QCOMPARE(file.mid(90, 24), hex("FFFF00000006 000000000006 000100000006 000200000006"));
    QCOMPARE(file.mid(114, 16), "8BIMhue " + hex("80 01 03 00 00000024"));
    QCOMPARE(file.mid(130, 36),
             hex("00000000 00000000 03") + "Ink8BIMluni" + hex("0000000C 00000003 0049 006E 006B 0000"));
    QCOMPARE(file.mid(166, 24), hex("0001 0002 FE64  0001 0002 FE80  0001 0002 FE00  0001 0002 FEFF"));
    QCOMPARE(file.mid(190, 4), hex("00000000"));
    // Hidden: seven rows of nothing, four times.
    QByteArray picture = hex("0001"), row = hex("8100 8100 D500");
    for (int i = 0; i < 28; ++i) picture += big16(6);
    for (int i = 0; i < 28; ++i) picture += row;
    QCOMPARE(file.mid(194), picture);

    const QByteArray flat = PSDFile::write(doc, Layered::no);
    QCOMPARE(flat, file.left(62) + hex("00000000") + picture);
}

void tst_PSDWriter::theFileIsThatOfThePlainForm() {
    auto odd =
        std::make_unique<PaintDocument>(2, 1, 72, std::nullopt); // three bytes of red, two of the others
    paintRect(*odd, odd->activeLayer(), {0, 0, 1, 1}, {10, 0, 0, 255});
    paintRect(*odd, odd->activeLayer(), {1, 0, 1, 1}, {20, 0, 0, 255});
    for (const auto& doc :
         {scatteredDocument(), randomDocument(257, 40, 3, 8), randomDocument(1, 1, 1, 4),
          std::make_unique<PaintDocument>(520, 513, 72, PaintColor(1, 1, 1, 0.5)), std::move(odd)}) {
        for (const Layered layered : {Layered::yes, Layered::no}) {
            const QByteArray plain = filePlainly(*doc, layered);
            for (const int threads : {1, 8}) {
                setConcurrency(threads);
                QVERIFY(PSDFile::write(*doc, layered) == plain);
            }
        }
    }
}

void tst_PSDWriter::resolutionsAreClamped_data() {
    QTest::addColumn<double>("dpi");
    QTest::addColumn<quint32>("stored");
    QTest::newRow("none") << 0.0 << 65536u;
    QTest::newRow("below 1") << 0.999 << 65536u;
    QTest::newRow("no number") << std::nan("") << 65536u;
    QTest::newRow("cut, not rounded") << 72.00002 << 72u * 65536u + 1;
    QTest::newRow("the largest") << 65535.5 << 0xFFFF8000u;
    QTest::newRow("beyond") << 65536.0 << 0xFFFFFFFFu;
    QTest::newRow("endless") << HUGE_VAL << 0xFFFFFFFFu;
}

void tst_PSDWriter::resolutionsAreClamped() {
    QFETCH(double, dpi);
    QFETCH(quint32, stored);
    const QByteArray file = PSDFile::write(PaintDocument(1, 1, dpi, std::nullopt), Layered::no);
    QCOMPARE(file.mid(46, 4), big32(stored));
}

void tst_PSDWriter::namesAreWrittenTwice_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("pascal");
    QTest::addColumn<int>("units");
    QTest::newRow("none") << QString() << QByteArray(4, '\0') << 0;
    QTest::newRow("padding of three") << "abcd" << QByteArray("\4abcd\0\0\0", 8) << 4;
    QTest::newRow("a letter for each scalar")
        << QString::fromUtf8("aéЖ🦊") << QByteArray("\4a???\0\0\0", 8) << 5;
    QTest::newRow("cut at 255") << QString(300, 'x') << '\xFF' + QByteArray(255, 'x') << 300;
}

void tst_PSDWriter::namesAreWrittenTwice() {
    QFETCH(QString, name);
    QFETCH(QByteArray, pascal);
    QFETCH(int, units);
    PaintDocument doc(1, 1, 72, std::nullopt);
    doc.activeLayer().name = name;
    const QByteArray file = PSDFile::write(doc, Layered::yes);
    QCOMPARE(file.mid(138, pascal.size()), pascal); // behind a record of 66 bytes
    std::vector<uint16_t> codes;
    for (const QChar unit : name) codes.push_back(unit.unicode());
    QByteArray unicode = psdUnicode(codes);
    QCOMPARE(unicode.size(), 4 + 2 * units);
    unicode.append((4 - unicode.size() % 4) % 4, '\0');
    QCOMPARE(file.mid(138 + pascal.size(), 12 + unicode.size()), psdBlock("luni", unicode));
    QCOMPARE(PSDFile::read(bytesOf(file))->layer(0).name, name.isEmpty() ? QStringLiteral("Layer 1") : name);
}

QIRN_TEST(tst_PSDWriter)
#include "tst_PSDWriter.moc"
