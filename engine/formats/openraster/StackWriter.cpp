#include "core/PaintDocument.h"
#include "formats/openraster/LayerStack.h"
#include "formats/openraster/StackNames.h"

#include <algorithm>
#include <cmath>

#include <QLocale>
#include <QXmlStreamWriter>

namespace qirn::OpenRaster {

namespace {

constexpr qsizetype kLongestName = 4000; // so that a tag stays within what is read

/// Without what XML cannot hold.
QString nameInXml(const QString& name) {
    QString plain;
    for (const uint32_t scalar : name.left(kLongestName).toUcs4()) {
        const bool isControl = scalar < 0x20 && scalar != '\t' && scalar != '\n' && scalar != '\r';
        const bool isNone = (scalar & 0xFFFE) == 0xFFFE || (scalar >= 0xD800 && scalar < 0xE000);
        const char32_t kept = isControl || isNone ? 0xFFFD : scalar;
        plain += QString::fromUcs4(&kept, 1);
    }
    return plain;
}

QString textOf(double number) {
    return QString::number(number, 'g', QLocale::FloatingPointShortest);
}

class StackWriter {
public:
    StackWriter(const PaintDocument& doc, std::span<const IRect> places)
        : doc_(doc),
          places_(places),
          out_(&xml_) {}

    QByteArray written() {
        out_.setAutoFormatting(true);
        out_.setAutoFormattingIndent(1);
        out_.writeStartDocument();
        out_.writeNamespace(kOurNames, kOurPrefix);
        out_.writeStartElement("image");
        out_.writeAttribute("version", "0.0.5");
        out_.writeAttribute("w", QString::number(doc_.grid().width));
        out_.writeAttribute("h", QString::number(doc_.grid().height));
        const double whole = std::max(1.0, std::round(doc_.dpi)); // others fail at a fraction
        out_.writeAttribute("xres", textOf(whole));
        out_.writeAttribute("yres", textOf(whole));
        if (doc_.dpi != whole) out_.writeAttribute(kOurDpi, textOf(doc_.dpi));
        out_.writeStartElement("stack");
        for (int64_t top = doc_.layerCount() - 1; top >= 0;) {
            int64_t base = top;
            while (base > 0 && doc_.layer(base).isClipping) --base;
            writeUnit(base, top);
            top = base - 1;
        }
        out_.writeEndDocument();
        return xml_;
    }

private:
    /// A layer with those that are clipped to it. Clipping works on all that lies below within a group, so that they
    /// are a group, which has the base's opacity, mode and visibility as our clipping has it.
    void writeUnit(int64_t base, int64_t top) {
        const Layer& layer = doc_.layer(base);
        if (base == top) return writeLayer(base, layer.settings());
        LayerSettings plain = layer.settings();
        plain.opacity = 1;
        plain.blendMode = BlendMode::normal;
        plain.isVisible = true;
        out_.writeStartElement("stack");
        writeCommon(layer.settings(), nameOf(layer.blendMode));
        out_.writeAttribute("isolation", "isolate");
        for (int64_t i = top; i > base; --i) writeLayer(i, doc_.layer(i).settings());
        writeLayer(base, plain);
        out_.writeEndElement();
    }

    void writeLayer(int64_t index, const LayerSettings& settings) {
        const bool isClipped = index > 0 && settings.isClipping;
        out_.writeEmptyElement("layer");
        writeCommon(settings, isClipped ? kClipped : nameOf(settings.blendMode));
        const IRect& place = places_[checkedSize(index)];
        out_.writeAttribute("x", QString::number(place.x));
        out_.writeAttribute("y", QString::number(place.y));
        out_.writeAttribute("src", QString::fromLatin1(sourceOf(index)));
        if (settings.isLocked) out_.writeAttribute("edit-locked", "true");
        if (index == doc_.activeIndex()) out_.writeAttribute("selected", "true");
        if (settings.alphaLocked) out_.writeAttribute(kOurAlphaLock, "true");
        if (isClipped && settings.blendMode != BlendMode::normal)
            out_.writeAttribute(kOurMode, nameOf(settings.blendMode));
        if (index == 0 && settings.isClipping) out_.writeAttribute(kOurClipping, "true");
    }

    void writeCommon(const LayerSettings& settings, QLatin1String operation) {
        out_.writeAttribute("name", nameInXml(settings.name));
        out_.writeAttribute("opacity", textOf(std::clamp(settings.opacity, 0.0, 1.0)));
        out_.writeAttribute("visibility", settings.isVisible ? "visible" : "hidden");
        out_.writeAttribute("composite-op", operation);
    }

    const PaintDocument& doc_;
    std::span<const IRect> places_;
    QByteArray xml_;
    QXmlStreamWriter out_;
};

} // namespace

QByteArray sourceOf(int64_t layer) {
    return "data/layer" + QByteArray::number(layer).rightJustified(3, '0') + ".png";
}

QByteArray writeStack(const PaintDocument& doc, std::span<const IRect> places) {
    return StackWriter(doc, places).written();
}

} // namespace qirn::OpenRaster
