// The sections of the self-test on the files of other programs.
#include "compositing/CompositeInputs.h"
#include "formats/ImageExport.h"
#include "formats/ImageImport.h"
#include "formats/palettes/PaletteLibrary.h"
#include "operations/LayerOperations.h"
#include "platform/Bytes.h"
#include "program/SelfTestEngine.h"

#include <set>

namespace qirn {

namespace {

constexpr double kQuality = 0.9;

QByteArray exported(const PaintDocument& doc, ExportFormat format, const PaintColor& background) {
    return ImageExport::data(doc, format, kQuality, background);
}

/// How far a channel may come back from what it was, of 255: JPEG loses detail, and Photoshop's layers keep their
/// opacity in 8 bits.
int tolerance(ExportFormat format) {
    return rowOf(format).asksQuality ? 24 : format == ExportFormat::psdLayered ? 2 : 0;
}

/// Each channel within so many steps; where any are allowed, a few may be further off.
bool near(const RGBABuffer& a, const RGBABuffer& b, int steps) {
    if (a.width() != b.width() || a.height() != b.height()) return false;
    int64_t off = 0;
    for (int64_t i = 0; i < a.byteCount(); ++i) off += std::abs(a.data()[i] - b.data()[i]) > steps;
    return off <= (steps == 0 ? 0 : a.byteCount() / 100);
}

QString refusalOf(const QByteArray& file, const QString& name) {
    try {
        PaletteLibrary::read(bytesOf(file), name);
        return {};
    } catch (const PaletteError& error) {
        return error.description();
    }
}

} // namespace

void SelfTestEngine::exports(SelfTestReport& report) {
    const auto doc = selfTestPicture();
    doc->layer(0).opacity = 0.5; // what is under it shows
    addLayer(*doc, QStringLiteral("Hidden"));
    doc->fillLayer(doc->activeLayer(), PaintColor(0, 1, 0));
    doc->activeLayer().isVisible = false;
    const auto picture = flattened(*doc);
    const PaintColor black = PaintColor::black();
    for (const ExportFormatRow& row : kExportFormats) {
        const QByteArray file = exported(*doc, row.format, black);
        std::unique_ptr<PaintDocument> read;
        try {
            read = ImageImport::document(bytesOf(file), QLatin1String(row.fileExtension));
        } catch (const DescribedError&) {
            // Counted as failed below.
        }
        const auto expected = row.asksBackground ? ImageExport::onBackground(*picture, black) : picture;
        report.check(QStringLiteral("%1: opens with the same colors").arg(displayName(row.format)),
                     read && near(*flattened(*read), *expected, tolerance(row.format)));
        report.check(QStringLiteral("%1: keeps size and resolution").arg(displayName(row.format)),
                     read && read->grid() == doc->grid() && read->dpi == doc->dpi);
    }
    report.check(QStringLiteral("JPEG shows the chosen background"),
                 exported(*doc, ExportFormat::jpeg, black) !=
                     exported(*doc, ExportFormat::jpeg, PaintColor::white()));
    const QByteArray png = exported(*doc, ExportFormat::png, black);
    const auto opened = ImageImport::document(bytesOf(png), QStringLiteral("jpg"));
    report.check(QStringLiteral("A file whose extension lies opens by its content"),
                 opened->layerCount() == 1 && opened->layer(0).name == QStringLiteral("Background"));
    report.check(QStringLiteral("Another kind of file is no picture"),
                 !ImageImport::decode(bytesOf(QByteArray("not a picture"))));
}

void SelfTestEngine::palettes(SelfTestReport& report) {
    const auto& builtIn = PaletteLibrary::builtIn();
    std::set<QUuid> ids;
    for (const Palette& palette : builtIn) ids.insert(palette.id);
    report.check(QStringLiteral("9 palettes with identities of their own"), ids.size() == 9);
    bool gpl = true, aco = true;
    for (const Palette& palette : builtIn) {
        const Palette text =
            PaletteLibrary::read(bytesOf(PaletteLibrary::gpl(palette).toUtf8()), QStringLiteral("a.gpl"));
        gpl = gpl && text.name == palette.name && text.colors == palette.colors;
        aco = aco &&
              PaletteLibrary::read(bytesOf(PaletteLibrary::aco(palette)), QStringLiteral("a.aco")).colors ==
                  palette.colors;
    }
    report.check(QStringLiteral("GIMP palettes come back with names and colors"), gpl);
    report.check(QStringLiteral("Photoshop swatches come back with names and colors"), aco);
    const Palette hex = PaletteLibrary::read(bytesOf(QByteArray("#B3001B, nothing\n#F80;00B140")),
                                             QStringLiteral("colors.txt"));
    report.check(QStringLiteral("A list of hexadecimal codes is a palette"),
                 hex.name == QStringLiteral("colors") && hex.colors.size() == 3 &&
                     hex.colors[1].color == PaintColor::fromBytes(255, 136, 0));
    const QByteArray whole = PaletteLibrary::aco(builtIn.front());
    report.check(QStringLiteral("A damaged swatch file is refused"),
                 refusalOf(whole.first(whole.size() / 3), QStringLiteral("bad.aco")) ==
                     QStringLiteral("This palette file can't be read: the file is cut short."));
    const auto stored = PaletteStore::decode(bytesOf(PaletteStore::encode(builtIn)));
    report.check(QStringLiteral("Stored palettes come back as they were"), stored && *stored == builtIn);
}

} // namespace qirn
