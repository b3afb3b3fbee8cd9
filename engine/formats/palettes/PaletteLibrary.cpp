#include "formats/palettes/PaletteLibrary.h"

#include "brush/BrushSettings.h"
#include "formats/common/ByteReader.h"
#include "formats/palettes/BuiltInPalettes.h"

#include <algorithm>

#include <QCoreApplication>

namespace qirn {

namespace {

const QString kGplHead = QStringLiteral("GIMP Palette");
constexpr std::size_t kMostSwatches = 65'535;
constexpr uint16_t kSpaceRGB = 0;

PaletteError unreadable(const char* detail) {
    return PaletteError::unreadable(QCoreApplication::translate("PaletteError", detail));
}

/// The result of every reader; a palette without colors is refused.
Palette userPalette(QString name, std::vector<PaletteColor> colors, const char* ifNone) {
    if (colors.empty()) throw unreadable(ifNone);
    return {QUuid::createUuid(), std::move(name), std::move(colors), false};
}

QString nameOrCode(const PaletteColor& color) {
    return color.name.isEmpty() ? color.color.hex() : color.name;
}

/// Takes the text up to the first separator off the front; both are gone from `rest` afterwards.
template <class IsSeparator> QStringView takePiece(QStringView& rest, IsSeparator isSeparator) {
    const auto end = std::find_if(rest.begin(), rest.end(), isSeparator);
    const QStringView piece = rest.first(end - rest.begin());
    rest = rest.sliced(std::min(piece.size() + 1, rest.size()));
    return piece;
}

bool endsLine(QChar c) {
    return c == u'\n' || c == u'\r';
}
bool isBlank(QChar c) {
    return c == u' ' || c == u'\t';
}

/// The next piece of a line that is not empty; empty when there is none.
QStringView takeWord(QStringView& line) {
    QStringView word;
    while (word.isEmpty() && !line.isEmpty()) word = takePiece(line, isBlank);
    return word;
}

/// A whole number of ASCII digits from 0 to 255, with or without a sign.
std::optional<uint8_t> byteIn(QStringView word) {
    const bool isNegative = word.startsWith(u'-');
    if (isNegative || word.startsWith(u'+')) word = word.sliced(1);
    if (word.isEmpty()) return std::nullopt;
    int value = 0;
    for (const QChar c : word) {
        if (c < u'0' || c > u'9') return std::nullopt;
        value = value * 10 + (c.unicode() - u'0');
        if (value > 255) return std::nullopt;
    }
    if (isNegative && value != 0) return std::nullopt;
    return static_cast<uint8_t>(value);
}

/// "R G B name", the name with one blank between its words; nothing for any other line: a comment behind "#", the
/// number of columns, an empty one, what we do not know.
std::optional<PaletteColor> gplColor(QStringView line) {
    uint8_t channels[3];
    for (uint8_t& channel : channels) {
        const auto byte = byteIn(takeWord(line));
        if (!byte) return std::nullopt;
        channel = *byte;
    }
    QString name;
    for (QStringView word = takeWord(line); !word.isEmpty(); word = takeWord(line)) {
        if (!name.isEmpty()) name += u' ';
        name += word;
    }
    return PaletteColor{PaintColor::fromBytes(channels[0], channels[1], channels[2]), name};
}

/// The name on one line, so that it cannot be read as another line of the file.
QString onOneLine(QString name) {
    std::replace_if(name.begin(), name.end(), endsLine, QChar(u' '));
    return name;
}

struct Swatch {
    uint16_t space;
    uint16_t w, x, y, z;

    explicit Swatch(BEReader& in) : space(in.u16()), w(in.u16()), x(in.u16()), y(in.u16()), z(in.u16()) {}

    /// Nothing for a space that we do not know.
    std::optional<PaintColor> color() const {
        const double a = w / 65535.0, b = x / 65535.0, c = y / 65535.0, d = z / 65535.0;
        switch (space) {
        case kSpaceRGB:
            return PaintColor(a, b, c);
        case 1: // hue, saturation, brightness
            return PaintColor::fromHSV(a, b, c);
        case 2: // cyan, magenta, yellow, black: 65535 is no ink
            return PaintColor(a * d, b * d, c * d);
        case 8: // gray
            return PaintColor(w / 10000.0, w / 10000.0, w / 10000.0);
        default:
            return std::nullopt;
        }
    }
};

/// A name of UTF-16 units, freed of zeros; half of a pair becomes the replacement character.
QString takeName(BEReader& in) {
    BEReader units(in.slice(int64_t{in.u32()} * 2));
    QString name;
    while (units.remaining() > 0) {
        if (const uint16_t unit = units.u16()) name += QChar(unit);
    }
    for (qsizetype i = 0; i < name.size(); ++i) {
        if (name[i].isHighSurrogate() && i + 1 < name.size() && name[i + 1].isLowSurrogate()) {
            ++i;
        } else if (name[i].isSurrogate()) {
            name[i] = QChar::ReplacementCharacter;
        }
    }
    return name;
}

void putSwatch(BEWriter& out, const PaintColor& color) {
    const auto wide = [](uint8_t byte) { return static_cast<uint16_t>(byte * 257); };
    out.u16(kSpaceRGB);
    for (const uint8_t byte : {color.r8(), color.g8(), color.b8()}) out.u16(wide(byte));
    out.u16(0);
}

std::vector<PaletteColor> swatches(std::span<const uint8_t> data) {
    BEReader in(data);
    if (in.u16() != 1) throw unreadable(QT_TRANSLATE_NOOP("PaletteError", "not a Photoshop swatch file"));
    std::vector<PaletteColor> plain;
    for (int count = in.u16(); count > 0; --count) {
        if (const auto color = Swatch(in).color()) plain.push_back({*color, {}});
    }
    if (in.remaining() < 4 || in.u16() != 2) return plain;
    std::vector<PaletteColor> named;
    for (int count = in.u16(); count > 0; --count) {
        const auto color = Swatch(in).color();
        QString name = takeName(in);
        if (color) named.push_back({*color, std::move(name)});
    }
    return named.empty() ? plain : named;
}

/// 16 grays from black to white, named by the whole percent below.
std::vector<PaletteColor> grays() {
    std::vector<PaletteColor> colors;
    for (int i = 0; i <= 15; ++i) {
        const auto byte = static_cast<uint8_t>(17 * i);
        const int percent = static_cast<int>(i / 15.0 * 100);
        colors.push_back({PaintColor::fromBytes(byte, byte, byte), QStringLiteral("Gray %1%").arg(percent)});
    }
    return colors;
}

} // namespace

Palette PaletteLibrary::pal(const QString& name, std::span<const Entry> entries) {
    Palette palette{BrushSettings::stableID(QStringLiteral("palette/") + name), name, {}, true};
    for (const Entry& entry : entries) {
        const auto color = PaintColor::fromHex(QString::fromUtf8(entry.hex));
        if (color) palette.colors.push_back({*color, QString::fromUtf8(entry.name)});
    }
    return palette;
}

const std::vector<Palette>& PaletteLibrary::builtIn() {
    static const std::vector<Palette> list = [] {
        std::vector<Palette> palettes;
        for (const BuiltInPalettes::Row& row : BuiltInPalettes::kRows) {
            palettes.push_back(pal(QString::fromUtf8(row.name), row.entries));
            if (row.entries.empty()) palettes.back().colors = grays();
        }
        return palettes;
    }();
    return list;
}

QString PaletteLibrary::gpl(const Palette& palette) {
    QString text = kGplHead + QStringLiteral("\nName: ") + onOneLine(palette.name);
    text += u"\nColumns: 8\n# Made with Qirn Paint by Tessaly Works (Qirn) - https://qirnpaint.example\n";
    for (const PaletteColor& entry : palette.colors) {
        const PaintColor& c = entry.color;
        text +=
            QString::asprintf("%3d %3d %3d\t", c.r8(), c.g8(), c.b8()) + onOneLine(nameOrCode(entry)) + u'\n';
    }
    return text;
}

QByteArray PaletteLibrary::aco(const Palette& palette) {
    const std::span<const PaletteColor> colors =
        std::span(palette.colors).first(std::min(palette.colors.size(), kMostSwatches));
    BEWriter out;
    for (const uint16_t section : {uint16_t{1}, uint16_t{2}}) {
        out.u16(section);
        out.u16(static_cast<uint16_t>(colors.size()));
        for (const PaletteColor& entry : colors) {
            putSwatch(out, entry.color);
            if (section == 1) continue;
            const QString name = nameOrCode(entry);
            out.u32(static_cast<uint32_t>(name.size() + 1));
            for (const QChar unit : name) out.u16(unit.unicode());
            out.u16(0);
        }
    }
    return out.take();
}

Palette PaletteLibrary::readGPL(const QString& text, const QString& fallbackName) {
    QStringView rest = text;
    if (!takePiece(rest, endsLine).trimmed().startsWith(kGplHead)) {
        throw unreadable(QT_TRANSLATE_NOOP("PaletteError", "not a GIMP palette"));
    }
    QString name = fallbackName;
    std::vector<PaletteColor> colors;
    const QStringView nameKey = u"Name:";
    while (!rest.isEmpty()) {
        const QStringView line = takePiece(rest, endsLine).trimmed();
        if (line.startsWith(nameKey)) {
            name = line.sliced(nameKey.size()).trimmed().toString();
        } else if (auto color = gplColor(line)) {
            colors.push_back(std::move(*color));
        }
    }
    return userPalette(name, std::move(colors), QT_TRANSLATE_NOOP("PaletteError", "no colors found"));
}

Palette PaletteLibrary::readACO(std::span<const uint8_t> data, const QString& fallbackName) {
    try {
        return userPalette(fallbackName, swatches(data),
                           QT_TRANSLATE_NOOP("PaletteError", "no colors found"));
    } catch (const BEReader::Short&) {
        throw unreadable(QT_TRANSLATE_NOOP("PaletteError", "the file is cut short"));
    }
}

Palette PaletteLibrary::readHexList(const QString& text, const QString& fallbackName) {
    const auto separates = [](QChar c) { return endsLine(c) || isBlank(c) || c == u',' || c == u';'; };
    std::vector<PaletteColor> colors;
    for (QStringView rest = text; !rest.isEmpty();) {
        const auto color = PaintColor::fromHex(takePiece(rest, separates).toString());
        if (color) colors.push_back({*color, {}});
    }
    return userPalette(fallbackName, std::move(colors),
                       QT_TRANSLATE_NOOP("PaletteError", "no #RRGGBB colors found"));
}

Palette PaletteLibrary::read(std::span<const uint8_t> data, const QString& fileName) {
    const qsizetype dot = fileName.lastIndexOf(u'.');
    const bool hasExtension = dot > 0; // a leading dot begins a name
    const QString name = hasExtension ? fileName.first(dot) : fileName;
    const QString extension = hasExtension ? fileName.sliced(dot + 1).toLower() : QString();
    if (extension == u"aco") return readACO(data, name);
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char*>(data.data()), static_cast<qsizetype>(data.size()));
    if (extension == u"gpl" || text.startsWith(kGplHead)) return readGPL(text, name);
    return readHexList(text, name);
}

} // namespace qirn
