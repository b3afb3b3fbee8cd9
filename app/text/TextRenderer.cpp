#include "app/text/TextRenderer.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <QFontDatabase>
#include <QGlyphRun>
#include <QPainter>
#include <QPainterPath>
#include <QRawFont>
#include <QTextLayout>
#include <QTextOption>

namespace qirn {

namespace {

constexpr double kSmallest = 4, kLargest = 2000; // sizes of a font, pixels
constexpr int kMargin = 4;                       // round the text, for what antialiasing adds
constexpr int64_t kLongestSide = 29'999;
constexpr double kWidestLine = 20'000; // where a paragraph breaks by itself

QColor colorOf(const PaintColor& c) {
    return QColor::fromRgbF(static_cast<float>(c.r), static_cast<float>(c.g), static_cast<float>(c.b),
                            static_cast<float>(c.a));
}

/// The paragraphs, one under the other, each line aligned within the widest.
class LaidOutText {
public:
    explicit LaidOutText(const TextSpec& spec) : spec_(spec) {
        const QFont font = TextRenderer::font(spec);
        QTextOption option;
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        double y = 0;
        for (const QString& paragraph : spec.text.split(u'\n')) {
            auto layout = std::make_unique<QTextLayout>(paragraph, font);
            layout->setTextOption(option);
            layout->beginLayout();
            for (QTextLine line = layout->createLine(); line.isValid(); line = layout->createLine()) {
                line.setLeadingIncluded(true);
                line.setLineWidth(kWidestLine);
                line.setPosition(QPointF(0, y));
                y += line.height();
                width_ = std::max(width_, line.naturalTextWidth());
            }
            layout->endLayout();
            layouts_.push_back(std::move(layout));
        }
        height_ = y;
        for (const auto& layout : layouts_) {
            for (int i = 0; i < layout->lineCount(); ++i) {
                QTextLine line = layout->lineAt(i);
                const double rest = width_ - line.naturalTextWidth();
                const double x = spec.alignment == 1 ? rest / 2 : spec.alignment == 2 ? rest : 0;
                // A line of a right-to-left paragraph hangs at the far end of its room.
                line.setPosition(QPointF(x - line.naturalTextRect().x() + line.x(), line.y()));
            }
        }
    }

    std::optional<IRect> bounds() const {
        const auto pad = static_cast<int64_t>(spec_.outline ? std::ceil(spec_.outlineWidth) : 0) + kMargin;
        const IRect bounds{-pad, -pad, static_cast<int64_t>(std::ceil(width_)) + 2 * pad,
                           static_cast<int64_t>(std::ceil(height_)) + 2 * pad};
        if (bounds.w > kLongestSide || bounds.h > kLongestSide) return std::nullopt;
        return bounds;
    }

    void draw(QPainter& painter) const {
        painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
        fill(painter, colorOf(spec_.color));
        if (!spec_.outline) return;
        stroke(painter, QPen(colorOf(spec_.outlineColor), 2 * spec_.outlineWidth, Qt::SolidLine, Qt::RoundCap,
                             Qt::RoundJoin));
    }

private:
    void fill(QPainter& painter, const QColor& color) const {
        painter.setPen(color);
        for (const auto& layout : layouts_) layout->draw(&painter, {});
    }

    /// Strokes the letters' edges; glyphs without edges, as emoji, stay as they are.
    void stroke(QPainter& painter, const QPen& pen) const {
        for (const auto& layout : layouts_) {
            for (const QGlyphRun& run : layout->glyphRuns()) {
                const QList<quint32> glyphs = run.glyphIndexes();
                const QList<QPointF> positions = run.positions();
                for (qsizetype i = 0; i < glyphs.size(); ++i) {
                    painter.strokePath(run.rawFont().pathForGlyph(glyphs[i]).translated(positions[i]), pen);
                }
            }
        }
    }

    const TextSpec& spec_;
    std::vector<std::unique_ptr<QTextLayout>> layouts_;
    double width_ = 0;
    double height_ = 0;
};

} // namespace

const QStringList& TextRenderer::families() {
    static const QStringList families = QFontDatabase::families();
    return families;
}

QFont TextRenderer::font(const TextSpec& spec) {
    QFont font;
    if (families().contains(spec.fontFamily, Qt::CaseInsensitive))
        font.setFamily(spec.fontFamily);
    else if (families().contains(QStringLiteral("Inter")))
        font.setFamily(QStringLiteral("Inter"));
    else
        font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPixelSize(static_cast<int>(std::lround(std::clamp(spec.size, kSmallest, kLargest))));
    font.setBold(spec.bold);
    font.setItalic(spec.italic);
    // The same shapes at every size, and no color fringes on transparency.
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setStyleStrategy(QFont::StyleStrategy(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
    return font;
}

std::optional<IRect> TextRenderer::bounds(const TextSpec& spec) {
    if (spec.text.trimmed().isEmpty()) return std::nullopt;
    return LaidOutText(spec).bounds();
}

void TextRenderer::draw(QPainter& painter, const TextSpec& spec) {
    LaidOutText(spec).draw(painter);
}

std::optional<TextRenderer::Rendered> TextRenderer::render(const TextSpec& spec) {
    if (spec.text.trimmed().isEmpty()) return std::nullopt;
    const LaidOutText text(spec);
    const auto bounds = text.bounds();
    if (!bounds) return std::nullopt;
    auto buffer = std::make_shared<RGBABuffer>(bounds->w, bounds->h);
    QImage image = buffer->imageOverBytes();
    QPainter painter(&image);
    painter.translate(static_cast<double>(-bounds->x), static_cast<double>(-bounds->y));
    text.draw(painter);
    painter.end();
    return Rendered{std::move(buffer), bounds->x, bounds->y};
}

} // namespace qirn
