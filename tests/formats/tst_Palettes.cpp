#include "core/SeededRandom.h"
#include "formats/common/ByteReader.h"
#include "formats/palettes/PaletteLibrary.h"
#include "platform/Bytes.h"
#include "support/TestMain.h"

using namespace qirn;

namespace {

PaletteColor named(const char* hex, const char* name = "") {
    return {*PaintColor::fromHex(QString::fromUtf8(hex)), QString::fromUtf8(name)};
}

/// The colors in short form, to compare and to print: "#RRGGBB name, #RRGGBB".
QString written(const std::vector<PaletteColor>& colors) {
    QStringList list;
    for (const PaletteColor& entry : colors) list += (entry.color.hex() + u' ' + entry.name).trimmed();
    return list.join(QStringLiteral(", "));
}

/// The same for a file, its palette's name in front; for one that is refused, the words of the error.
QString reading(const QByteArray& file, const char* fileName) {
    try {
        const Palette palette = PaletteLibrary::read(bytesOf(file), QString::fromUtf8(fileName));
        if (palette.isBuiltIn || palette.id.isNull()) return QStringLiteral("not the user's");
        return palette.name + QStringLiteral(": ") + written(palette.colors);
    } catch (const PaletteError& error) {
        return error.description();
    }
}

QString refusal(const char* detail) {
    return QStringLiteral("This palette file can't be read: %1.").arg(QString::fromUtf8(detail));
}

const Palette& builtIn(const char* name) {
    for (const Palette& palette : PaletteLibrary::builtIn()) {
        if (palette.name == QString::fromUtf8(name)) return palette;
    }
    qFatal("no palette %s", name);
}

/// Swatches written by hand: words of 16 bits, high byte first.
QByteArray words(std::initializer_list<int> values) {
    BEWriter out;
    for (const int value : values) out.u16(static_cast<uint16_t>(value));
    return out.take();
}

/// Random colors of whole bytes; every third without a name.
Palette randomPalette(uint64_t seed) {
    SeededRandom random(seed);
    Palette palette{QUuid::createUuid(), QString::fromUtf8("Ébauche 🎨 %1").arg(seed), {}, false};
    for (int i = 0; i < 300; ++i) {
        const auto rgb = static_cast<uint32_t>(random.next() >> 32);
        palette.colors.push_back({PaintColor::fromBytes(rgb & 255, (rgb >> 8) & 255, (rgb >> 16) & 255),
                                  i % 3 == 0 ? QString() : QString::fromUtf8("Été 🌄 %1").arg(i)});
    }
    return palette;
}

} // namespace

class tst_Palettes : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theBuiltInPalettesAreTheSameEverywhere() {
        QStringList summary;
        for (const Palette& palette : PaletteLibrary::builtIn()) {
            QVERIFY(palette.isBuiltIn);
            summary += QStringLiteral("%1 %2").arg(palette.name).arg(palette.colors.size());
            for (const PaletteColor& entry : palette.colors)
                QVERIFY(entry.color.a == 1 && !entry.name.isEmpty());
        }
        QCOMPARE(
            summary.join(u'|'),
            QStringLiteral("Qirn Chrome & Candy 16|Basic 12|Grayscale 16|Skin Tones 12|Desert & Canyon 12|"
                           "Ocean & Sky 12|Pastels 10|Neon Night 9|Autumn Forest 10"));
        QCOMPARE(builtIn("Basic").id, QUuid(QStringLiteral("9507aa45-5c1d-46ee-9f84-33a37b05ca7f")));
        const auto& grays = builtIn("Grayscale").colors;
        QCOMPARE(written({grays[0], grays[4], grays[15]}),
                 QStringLiteral("#000000 Gray 0%, #444444 Gray 26%, #FFFFFF Gray 100%"));
    }

    void gplIsWrittenInThisForm() {
        const Palette palette{
            {}, QString::fromUtf8("Ébauche"), {named("#0B0C10", "Gloss Black"), named("#F80")}, false};
        QCOMPARE(
            PaletteLibrary::gpl(palette),
            QString::fromUtf8("GIMP Palette\nName: Ébauche\nColumns: 8\n"
                              "# Made with Qirn Paint by Tessaly Works (Qirn) - https://qirnpaint.example\n"
                              " 11  12  16\tGloss Black\n255 136   0\t#FF8800\n"));
    }

    void acoIsWrittenInTheseBytes() {
        const Palette palette{{}, {}, {named("#0B80FF", "Aé"), {PaintColor(0.5, 0, 1, 0.25), {}}}, false};
        QCOMPARE(
            PaletteLibrary::aco(palette).toHex(),
            words({1, 2,      0, 0x0B0B, 0x8080, 0xFFFF, 0, 0,   0x8080, 0,   0xFFFF, 0,                 //
                   2, 2,      0, 0x0B0B, 0x8080, 0xFFFF, 0, 0,   3,      'A', 0xE9,   0,                 //
                   0, 0x8080, 0, 0xFFFF, 0,      0,      8, '#', '8',    '0', '0',    '0', 'F', 'F', 0}) //
                .toHex());
    }

    void palettesComeBackFromBothForms() {
        std::vector<Palette> palettes = PaletteLibrary::builtIn();
        for (uint64_t seed = 1; seed <= 5; ++seed) palettes.push_back(randomPalette(seed));
        for (const Palette& palette : palettes) {
            std::vector<PaletteColor> expected = palette.colors;
            for (PaletteColor& entry : expected) {
                if (entry.name.isEmpty()) entry.name = entry.color.hex();
            }
            const Palette fromText =
                PaletteLibrary::readGPL(PaletteLibrary::gpl(palette), QStringLiteral("file"));
            QCOMPARE(fromText.name, palette.name);
            QVERIFY2(fromText.colors == expected, qPrintable(written(fromText.colors)));
            QVERIFY(fromText.id != palette.id && !fromText.isBuiltIn);
            const Palette fromSwatches =
                PaletteLibrary::readACO(bytesOf(PaletteLibrary::aco(palette)), QStringLiteral("file"));
            QCOMPARE(fromSwatches.name, QStringLiteral("file"));
            QVERIFY2(fromSwatches.colors == expected, qPrintable(written(fromSwatches.colors)));
            QVERIFY(fromSwatches.id != fromText.id && !fromSwatches.isBuiltIn);
        }
    }

    void filesAreReadAs() {
        const auto row = [](const QString& title, const QByteArray& file, const char* name,
                            const QString& expected) {
            QCOMPARE(title + ": " + reading(file, name), title + ": " + expected);
        };
        const QByteArray head("GIMP Palette\n");
        const QString f = QStringLiteral("f: ");
        row("text of other systems",
            "\xEF\xBB\xBFGIMP Palette\r\nName:\tMine \r\nColumns: 4\r\n#\r\n\r\n1 2 3\ta  b\r\n", "f.gpl",
            QStringLiteral("Mine: #010203 a b"));
        row("old line ends", "GIMP Palette\r255 254 253\r0 0 0", "f.gpl", f + "#FFFEFD, #000000");
        row("blanks before the head of text", " GIMP Palette\n1 2 3 abc", "f.txt", f + "#AABBCC");
        row("last name wins", head + "Name: A\n1 2 3\n Name: B", "f.gpl", QStringLiteral("B: #010203"));
        row("key for key", head + "name: A\nChannels: RGBA\n1 2 3 4", "f.gpl", f + "#010203 4");
        row("signs", head + "+1 -0 +255\n-1 0 0\n+ 0 0", "f.gpl", f + "#0100FF");
        row("out of range",
            head + "256 0 0\n0 0 99999999999999999999\n1 2\n1 2 x\n1.0 2 3\n0x1 2 3\n0255 0 0", "f.gpl",
            f + "#FF0000");
        row("bytes that are no UTF-8", head + "1 2 3 caf\xE9", "f.gpl",
            QString::fromUtf8("f: #010203 caf\uFFFD"));
        row("upper case extension", head + "1 2 3", "a.b.GPL", QStringLiteral("a.b: #010203"));
        row("not a palette", "#FF0000", "f.gpl", refusal("not a GIMP palette"));
        row("no colours", head + "Name: A\n#1 2 3\nColumns: 1 2 3\n", "f.gpl", refusal("no colors found"));

        row("every separator", "#F80,0d0221;abc\tffffff80 \n\r#123456", "f.hex",
            f + "#FF8800, #0D0221, #AABBCC, #FFFFFF, #123456");
        row("other words", "; paint.net\nFFGG00 red 12345 #AA1122", "f.txt", f + "#AA1122");
        row("plus for a digit", "+12345 +12", "f.txt", f + "#012345");
    }

    void swatchesAreReadAs() {
        const auto row = [](const QString& title, const QByteArray& file, const QString& expected) {
            QCOMPARE(title + ": " + reading(file, "a.b.Aco"), title + ": " + expected);
        };
        const QByteArray first = words({1, 1, 0, 0xFFFF, 0, 0, 0});
        const QString f = QStringLiteral("a.b: ");
        row("first section alone", first, f + "#FF0000");
        row("every space",
            words({1,    8,     1,     21845, 65535, 65535, 0, 1, 65535, 65535, 32768, 7, 2, 65535,
                   0,    32768, 32768, 2,     0,     0,     0, 0, 7,     9000,  1,     2, 3, 8,
                   5000, 0,     0,     0,     8,     10001, 9, 9, 9,     3,     1,     1, 1, 1}),
            f + "#00FF00, #800000, #800040, #000000, #808080, #FFFFFF");
        row("second section has the names",
            first + words({2, 3, 0, 0, 0xFFFF, 0,   0, 0, 3, 'A', 'b',    0, 7, 1,
                           2, 3, 4, 0, 2,      'L', 0, 0, 0, 0,   0xFFFF, 0, 0, 0}),
            f + "#00FF00 Ab, #0000FF");
        row("zeros and broken pairs in names",
            first + words({2, 1, 0, 0, 0, 0, 0, 0, 9, 0, 'a', 0, 0xD83D, 0xDE00, 0xDC00, 'b', 0xD800, 0}),
            QString::fromUtf8("a.b: #000000 a😀\uFFFDb\uFFFD"));
        row("three bytes behind", first + words({2}) + "x", f + "#FF0000");
        row("no colours", words({1, 1, 7, 0, 0, 0, 0, 2, 0}), refusal("no colors found"));
        row("another version", words({2, 1, 0, 0, 0, 0, 0, 0, 0}), refusal("not a Photoshop swatch file"));
        row("nothing", {}, refusal("the file is cut short"));
        row("a name longer than any file", first + words({2, 1, 0, 0, 0, 0, 0, 0xFFFF, 0xFFFF, 'a'}),
            refusal("the file is cut short"));
    }

    void theStoreKeepsEveryField() {
        std::vector<Palette> palettes = PaletteLibrary::builtIn();
        palettes.push_back(randomPalette(9));
        palettes.back().colors[1].color = {1.0 / 3, 0.1 + 0.2, 1e-9, 0.7};
        palettes.push_back({QUuid::createUuid(), QStringLiteral("\"\\\n"), {}, false});
        const QByteArray text = PaletteStore::encode(palettes);
        QVERIFY(PaletteStore::decode(bytesOf(text)) == palettes);
        QVERIFY(PaletteStore::decode(bytesOf(PaletteStore::encode({})))->empty());

        const Palette one{QUuid(QStringLiteral("0a1b2c3d-0000-4000-8000-00000000000f")),
                          QStringLiteral("N"),
                          {named("#F00", "Red")},
                          true};
        QCOMPARE(PaletteStore::encode({&one, 1}).simplified(),
                 QByteArray(R"([ { "id": "0A1B2C3D-0000-4000-8000-00000000000F", "name": "N", "colors": [ )"
                            R"({ "color": { "r": 1.0, "g": 0.0, "b": 0.0, "a": 1.0 }, "name": "Red" } ], )"
                            R"("isBuiltIn": true } ])"));
    }

    void aStoreThatIsDamagedIsRefusedWhole() {
        const QByteArray good(R"({"id":"0a1b2c3d-0000-4000-8000-00000000000f","name":"N","colors":[{"color":)"
                              R"({"r":1,"g":2,"b":0,"a":1},"name":""}],"isBuiltIn":true,"more":[]})");
        QVERIFY(PaletteStore::decode(bytesOf('[' + good + ',' + good + ']')));
        QVERIFY(!PaletteStore::decode(bytesOf(good))); // no list
        for (const auto& [from, to] : {std::pair{"\"id\":", "\"x\":"},
                                       {"\"isBuiltIn\":", "\"x\":"},
                                       {"\"color\":", "\"x\":"},
                                       {"\"a\":", "\"x\":"},
                                       {"true", "1"},
                                       {"\"colors\":[", "\"colors\":0,\"y\":["},
                                       {"0000-4000", "000004000"}}) {
            const QByteArray bad = QByteArray(good).replace(from, to);
            QVERIFY2(bad != good && !PaletteStore::decode(bytesOf('[' + good + ',' + bad + ']')), from);
        }
    }
};

QIRN_TEST(tst_Palettes)
#include "tst_Palettes.moc"
