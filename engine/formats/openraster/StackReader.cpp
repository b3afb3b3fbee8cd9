#include "formats/common/PictureBuilder.h"
#include "formats/common/PrintDensity.h"
#include "formats/openraster/LayerStack.h"
#include "formats/openraster/StackNames.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include <QCoreApplication>
#include <QStringDecoder>
#include <QXmlStreamReader>

namespace qirn::OpenRaster {

namespace {

constexpr int kDeepest = 64;
constexpr std::size_t kMostLayers = 32768;
constexpr qsizetype kLongestTag = 32 * 1024; // letters, with what stands between it and the next
constexpr int kMostAttributes = 64;          // of a tag; the parser compares each with each
constexpr double kFarthest = 1e6;            // pixels

/// In the order of `Loss`.
constexpr const char* kWords[] = {
    QT_TRANSLATE_NOOP("ImportRemark", "groups"),
    QT_TRANSLATE_NOOP("ImportRemark", "group blending"),
    QT_TRANSLATE_NOOP("ImportRemark", "unknown blend modes"),
    QT_TRANSLATE_NOOP("ImportRemark", "clipping to several layers"),
    QT_TRANSLATE_NOOP("ImportRemark", "text and filter layers"),
    QT_TRANSLATE_NOOP("ImportRemark", "missing layers"),
    QT_TRANSLATE_NOOP("ImportRemark", "damaged parts of layers"),
};

using Layers = std::vector<StackLayer>; // from the bottom

/// By the values in quotes of a tag, which begins at its '<'.
bool hasFewAttributes(QStringView tag) {
    int count = 0;
    for (qsizetype at = 0; at < tag.size() && tag[at] != u'>'; ++at) {
        if (tag[at] != u'"' && tag[at] != u'\'') continue;
        at = tag.indexOf(tag[at], at + 1);
        if (at < 0) return true; // no value, and the end of the list
        if (++count > kMostAttributes) return false;
    }
    return true;
}

/// Whether no tag takes the parser long.
bool hasSmallTags(QStringView xml) {
    qsizetype tag = 0;
    for (qsizetype next = 0; next >= 0; tag = next) {
        next = xml.indexOf(u'<', tag + 1);
        const QStringView words = xml.sliced(tag, (next < 0 ? xml.size() : next) - tag);
        if (words.size() > kLongestTag || !hasFewAttributes(words)) return false;
    }
    return true;
}

/// A number of an attribute, or what it is without one.
double number(QStringView text, double otherwise) {
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    return isNumber && std::isfinite(value) ? value : otherwise;
}

std::optional<BlendMode> modeNamed(QStringView name) {
    for (const ModeName& mode : kModeNames)
        if (name == mode.name) return mode.mode;
    for (const ModeName& mode : kOtherModeNames)
        if (name == mode.name) return mode.mode;
    return name.isEmpty() ? std::optional(BlendMode::normal) : std::nullopt;
}

/// The unclipped layers, among which the first counts whatever it says.
std::vector<StackLayer*> basesOf(Layers& layers) {
    std::vector<StackLayer*> bases;
    for (StackLayer& layer : layers)
        if (bases.empty() || !layer.settings.isClipping) bases.push_back(&layer);
    return bases;
}

class StackReader {
public:
    explicit StackReader(const QString& xml) : in_(xml) {
        in_.setNamespaceProcessing(false); // it looks for each prefix among all that are declared
    }

    std::optional<LayerStack> read() {
        while (!in_.atEnd() && in_.readNext() != QXmlStreamReader::StartElement)
            if (in_.isDTD()) return std::nullopt; // entities, which no list of layers needs
        if (in_.name() != u"image") return std::nullopt;
        const QXmlStreamAttributes image = in_.attributes();
        stack_.width = wholeNumber(image.value(QLatin1String("w")));
        stack_.height = wholeNumber(image.value(QLatin1String("h")));
        const double dots = number(image.value(QLatin1String("xres")), kUnknownDpi);
        stack_.dpi = dpiInRange(number(image.value(kOurDpi), dpiFromInches(dots)));
        if (!isReadableSize(stack_.width, stack_.height)) return std::nullopt;
        while (in_.readNextStartElement()) {
            if (in_.name() == u"stack" && stack_.layers.empty())
                stack_.layers = readItems(true, 1);
            else
                skip();
        }
        if (in_.hasError()) return std::nullopt;
        for (std::size_t i = 0; i < stack_.layers.size(); ++i)
            if (stack_.layers[i].source == selected_) stack_.active = static_cast<int64_t>(i);
        return std::move(stack_);
    }

private:
    /// A layer, or a group in its layers' place, as it stands in its stack.
    struct Item {
        Layers layers;
        bool isClipped = false;
    };
    struct Common {
        LayerSettings settings;
        bool isClipped = false;
        bool isIsolated = false; ///< As a group.
    };

    static int64_t wholeNumber(QStringView text) {
        return static_cast<int64_t>(std::clamp(std::round(number(text, 0)), -kFarthest, kFarthest));
    }

    /// The rest of an element. The parser keeps a record of each that is open.
    void skip() {
        for (int depth = 1; depth > 0 && !in_.atEnd();) {
            in_.readNext();
            depth += in_.isStartElement() ? 1 : in_.isEndElement() ? -1 : 0;
            if (depth > kDeepest) in_.raiseError();
        }
    }

    Common readCommon() {
        const QXmlStreamAttributes attributes = in_.attributes();
        Common common;
        LayerSettings& settings = common.settings;
        settings.name = attributes.value(QLatin1String("name")).toString();
        settings.opacity = std::clamp(number(attributes.value(QLatin1String("opacity")), 1), 0.0, 1.0);
        settings.isVisible = attributes.value(QLatin1String("visibility")) != u"hidden";
        settings.isLocked = attributes.value(QLatin1String("edit-locked")) == u"true";
        settings.alphaLocked = attributes.value(kOurAlphaLock) == u"true";
        settings.isClipping = attributes.value(kOurClipping) == u"true";
        const QStringView operation = attributes.value(QLatin1String("composite-op"));
        common.isClipped = operation == kClipped;
        const auto mode = modeNamed(common.isClipped ? attributes.value(kOurMode) : operation);
        if (!mode) stack_.losses.insert(Loss::blendModes);
        settings.blendMode = mode.value_or(BlendMode::normal);
        common.isIsolated = attributes.value(QLatin1String("isolation")) == u"isolate" ||
                            settings.opacity < 1 || common.isClipped ||
                            settings.blendMode != BlendMode::normal;
        return common;
    }

    Item readLayer() {
        const Common common = readCommon();
        const QXmlStreamAttributes attributes = in_.attributes();
        StackLayer layer{common.settings, attributes.value(QLatin1String("src")).toUtf8(),
                         wholeNumber(attributes.value(QLatin1String("x"))),
                         wholeNumber(attributes.value(QLatin1String("y")))};
        if (attributes.value(QLatin1String("selected")) == u"true" && selected_.isEmpty())
            selected_ = layer.source;
        if (++layerCount_ > kMostLayers) in_.raiseError();
        skip();
        Item item{{}, common.isClipped};
        item.layers.push_back(std::move(layer));
        return item;
    }

    Item readGroup(int depth) {
        const Common common = readCommon();
        if (depth > kDeepest) in_.raiseError();
        Item item{readItems(common.isIsolated, depth), common.isClipped};
        dissolve(item.layers, common);
        return item;
    }

    /// The items of the stack at which the reader is, to its end.
    Layers readItems(bool isIsolated, int depth) {
        std::vector<Item> items; // from the top
        while (!in_.hasError() && in_.readNextStartElement()) {
            if (in_.name() == u"layer") {
                items.push_back(readLayer());
            } else if (in_.name() == u"stack") {
                items.push_back(readGroup(depth + 1));
                if (items.back().layers.empty()) items.pop_back();
            } else {
                if (in_.name() == u"text" || in_.name() == u"filter") stack_.losses.insert(Loss::otherLayers);
                skip();
            }
        }
        Layers layers;
        bool hasOneBase = isIsolated; // below the item
        for (auto item = items.rbegin(); item != items.rend(); ++item) {
            const bool isFirst = layers.empty();
            if (item->isClipped) clip(*item, hasOneBase && !isFirst);
            hasOneBase = hasOneBase && (item->isClipped ? !isFirst : isFirst && isOneUnit(item->layers));
            std::move(item->layers.begin(), item->layers.end(), std::back_inserter(layers));
        }
        return layers;
    }

    static bool isOneUnit(Layers& layers) { return basesOf(layers).size() == 1; }

    /// Clips an item to the layer below it, which is all that lies below where there is one base.
    void clip(Item& item, bool isToOneBase) {
        if (!isToOneBase || item.layers.size() > 1) stack_.losses.insert(Loss::clipping);
        for (StackLayer& layer : item.layers) layer.settings.isClipping = true;
    }

    /// Hands a group's own settings down to its layers. One base, with what is clipped to it, takes all of them; several
    /// look the same only as far as nothing blends but the group as a whole.
    void dissolve(Layers& layers, const Common& group) {
        if (layers.empty()) return;
        const auto bases = basesOf(layers);
        const LayerSettings& own = group.settings;
        if (bases.size() > 1 || layers.size() == 1) stack_.losses.insert(Loss::groups);
        bool isSame = bases.size() == 1 || (own.opacity == 1 && own.blendMode == BlendMode::normal);
        for (StackLayer* base : bases) {
            LayerSettings& settings = base->settings;
            settings.isVisible = settings.isVisible && own.isVisible;
            settings.isLocked = settings.isLocked || own.isLocked;
            settings.opacity *= own.opacity;
            if (!group.isIsolated) continue;
            if (base == bases.front())
                settings.blendMode = own.blendMode; // with nothing below it in the group its own does nothing
            else if (settings.blendMode == BlendMode::normal)
                settings.blendMode = own.blendMode;
            else if (settings.isVisible)
                isSame = false;
        }
        if (!isSame) stack_.losses.insert(Loss::groupBlending);
    }

    QXmlStreamReader in_;
    LayerStack stack_;
    QByteArray selected_; // the source of the layer that is
    std::size_t layerCount_ = 0;
};

} // namespace

ImportRemarks remarksOf(const Losses& losses) {
    ImportRemarks remarks;
    for (const Loss loss : losses)
        remarks.push_back({ImportRemark::Kind::without,
                           QCoreApplication::translate("ImportRemark", kWords[static_cast<int>(loss)])});
    return remarks;
}

std::optional<LayerStack> readStack(const QByteArray& xml) {
    const auto encoding = QStringConverter::encodingForData(xml, u'<').value_or(QStringConverter::Utf8);
    const QString text = QStringDecoder(encoding)(xml);
    return hasSmallTags(text) ? StackReader(text).read() : std::nullopt;
}

} // namespace qirn::OpenRaster
