#include "formats/common/StraightPixels.h"
#include "formats/psd/PSDFile.h"
#include "platform/Bytes.h"
#include "platform/lanes/InstructionSets.h"
#include "support/PSDFiles.h"
#include "support/Pictures.h"
#include "support/Rows.h"
#include "support/TestMain.h"

using namespace qirn;
using namespace qirn::test;
using PSDFile::Layered;

namespace {

/// Every color with every alpha to straight color and back.
void checkStraightRows() {
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
        // Every color times every alpha.
        std::array<uint8_t, 256> alphas;
        alphas.fill(static_cast<uint8_t>(a));
        for (std::size_t c = 0; c < 256; ++c) planes[0][c] = static_cast<uint8_t>(c);
        premultiplyRow({planes[0].data(), planes[0].data(), planes[0].data(), alphas.data()}, 256,
                       back.data());
        for (int c = 0; c < 256; ++c) QCOMPARE(back[static_cast<std::size_t>(4 * c)], (a * c + 127) / 255);
    }
}

} // namespace

class tst_PSDWriter : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { useInstructionSet({}); }

    void straightColorComesBack() {
        for (const std::string& name : instructionSets()) {
            useInstructionSet(name);
            checkStraightRows();
        }
    }

    void partsLieWhereTheFormatSays() {
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
        // Hidden: seven rows of nothing, four times; with layers the colors are white, and others lie on it.
        const QByteArray counts = hex("0001") + big16(6).repeated(28), zeros = hex("8100 8100 D500");
        QCOMPARE(file.mid(194), counts + hex("81FF 81FF D5FF").repeated(21) + zeros.repeated(7));
        PaintDocument dot(1, 1, 72, std::nullopt);
        paintRect(dot, dot.activeLayer(), {0, 0, 1, 1}, {10, 20, 30, 100});
        QCOMPARE(PSDFile::write(dot, Layered::yes).right(18),
                 hex("0001 0002 0002 0002 0002 00A5 00AF 00B9 0064"));

        const QByteArray flat = PSDFile::write(doc, Layered::no);
        QCOMPARE(flat, file.left(62) + hex("00000000") + counts + zeros.repeated(28));
    }

    void namesAreWrittenTwice() {
        forRows<QString, QByteArray>(
            {{"none", "", QByteArray(4, '\0')},
             {"padding of three", "abcd", QByteArray("\4abcd\0\0\0", 8)},
             {"a letter for each scalar", QString::fromUtf8("aéЖ🦊"), QByteArray("\4a???\0\0\0", 8)},
             {"cut at 255", QString(300, 'x'), '\xFF' + QByteArray(255, 'x')}},
            [](const QString& name, const QByteArray& pascal) {
                PaintDocument doc(1, 1, 72, std::nullopt);
                doc.activeLayer().name = name;
                const QByteArray file = PSDFile::write(doc, Layered::yes);
                QCOMPARE(file.mid(138, pascal.size()), pascal); // behind a record of 66 bytes
                std::vector<uint16_t> codes;
                for (const QChar unit : name) codes.push_back(unit.unicode());
                QByteArray unicode = psdUnicode(codes);
                unicode.append((4 - unicode.size() % 4) % 4, '\0');
                QCOMPARE(file.mid(138 + pascal.size(), 12 + unicode.size()), psdBlock("luni", unicode));
                QCOMPARE(PSDFile::read(bytesOf(file))->layer(0).name,
                         name.isEmpty() ? QStringLiteral("Layer 1") : name);
            });
    }
};

QIRN_TEST(tst_PSDWriter)
#include "tst_PSDWriter.moc"
