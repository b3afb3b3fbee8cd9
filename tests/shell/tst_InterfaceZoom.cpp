#include "kit/QirnThemes.h"
#include "shell/ColorWells.h"
#include "shell/StatusItems.h"
#include "shell/panels/ColorPlane.h"
#include "support/Window.h"

#include <algorithm>
#include <map>

#include <QMenuBar>
#include <QPaintEngine>

using namespace qirn;
using namespace qirn::test;

namespace {

/// Keeps every text that is drawn on it.
struct TextRecorder : QPaintDevice {
    struct Engine : QPaintEngine {
        QStringList texts;

        Engine() : QPaintEngine(AllFeatures) {}
        bool begin(QPaintDevice*) override { return true; }
        bool end() override { return true; }
        void updateState(const QPaintEngineState&) override {}
        void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}
        void drawTiledPixmap(const QRectF&, const QPixmap&, const QPointF&) override {}
        void drawImage(const QRectF&, const QImage&, const QRectF&, Qt::ImageConversionFlags) override {}
        void drawPolygon(const QPointF*, int, PolygonDrawMode) override {}
        Type type() const override { return User; }
        void drawPath(const QPainterPath&) override {}
        void drawTextItem(const QPointF&, const QTextItem& item) override { texts << item.text(); }
    };
    mutable Engine engine;
    QSize size;

    explicit TextRecorder(QWidget& window) : size(window.size()) { window.render(this); }
    QPaintEngine* paintEngine() const override { return &engine; }
    int metric(PaintDeviceMetric metric) const override {
        switch (metric) {
        case PdmWidth:
            return size.width();
        case PdmHeight:
            return size.height();
        case PdmDevicePixelRatio:
            return 1;
        case PdmDevicePixelRatioScaled:
            return static_cast<int>(devicePixelRatioFScale());
        default:
            return 96;
        }
    }
};

/// The texts that a window shows whole, sorted.
QStringList wholeTexts(QWidget& window) {
    QStringList texts = TextRecorder(window).engine.texts;
    texts.removeIf([](const QString& text) { return text.endsWith(u'…'); });
    texts.sort();
    return texts;
}

QString nameOf(const QWidget& widget) {
    return QLatin1String(widget.metaObject()->className()) + u' ' + widget.objectName() + u' ' +
           widget.accessibleName();
}

/// What is wrong with where the parts of a window stand; empty if nothing is.
QString misplaced(const QWidget& parent) {
    const auto children = parent.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    for (const QWidget* child : children) {
        if (!child->isVisible() || child->isWindow()) continue;
        if (!parent.rect().contains(child->geometry())) return nameOf(*child) + " leaves " + nameOf(parent);
        for (const QWidget* other : children) {
            if (other == child) break;
            const bool wells = qobject_cast<const ColorSquare*>(child); // one is behind the other
            if (other->isVisible() && !other->isWindow() && !wells &&
                other->geometry().intersects(child->geometry()))
                return nameOf(*child) + " covers " + nameOf(*other);
        }
        if (const QString inside = misplaced(*child); !inside.isEmpty()) return inside;
    }
    return {};
}

/// The pixels of a theme's colours in a window but for what shows colours of the picture.
int pixelsOf(const QString& theme, Window& w) {
    QImage image = w.view.grab().toImage();
    QPainter painter(&image);
    for (const QWidget* shown :
         std::initializer_list<QWidget*>{&w.canvas(), &w.find<ColorPlane>(), &w.find<ColorWells>()})
        painter.fillRect(QRect(shown->mapTo(&w.view, QPoint()), shown->size()), Qt::magenta);
    painter.end();
    const ChromeColors c = ChromeColors::of(QirnThemes::named(theme).kitTheme());
    const QSet<QRgb> sought{c.canvas.rgb(), c.panel.rgb(), c.bar.rgb(), c.raised.rgb(),
                            c.well.rgb(),   c.text.rgb(),  c.dim.rgb(), c.accent.rgb()};
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) count += sought.contains(image.pixel(x, y));
    return count;
}

} // namespace

class tst_InterfaceZoom : public QObject {
    Q_OBJECT

    /// The living window with its content at 960 x 640 of the grid.
    static void show(Window& w, double zoom, const char* theme) {
        QirnThemes::setCurrentID(theme);
        QirnKit::applyTheme();
        QirnKit::applyZoom(zoom);
        const Metrics& m = QirnKitHost::metrics();
        w.view.setMinimumSize(1, 1);
        w.view.resize(m.px(960), m.px(640) + w.view.menuBar()->sizeHint().height());
        QCoreApplication::processEvents();
        w.canvas().actualPixels(); // whatever the room
        QTRY_COMPARE(w.find<StatusText>("zoom").text(), "Zoom 100%");
    }

private Q_SLOTS:
    void initTestCase() { QirnKit::install("Qirn Paint"); }
    void cleanup() {
        QirnKit::applyZoom(1);
        QirnThemes::setCurrentID(QirnThemes::kDefaultID);
        QirnKit::applyTheme();
    }

    void everySizeFollowsTheZoomAndEveryColourTheTheme() {
        Window w;
        const char* themes[] = {"cobalt-gunmetal", "rose-gold"};
        const auto choose = [&w](int i) { // the tools, then lifted pixels
            w.model.cancelTransform();
            i < int(kToolCount) ? w.model.setTool(kTools[i].tool) : w.model.beginTransform();
        };
        w.fill({10, 10, 300, 200});
        w.model.messageTime = 600'000;
        w.model.flash("Undo Brush Stroke");
        w.model.status().setCursor({399, 299, true, 0.5});
        std::vector<QStringList> texts;
        std::vector<std::map<const QWidget*, QSize>> sizes;
        show(w, 1, themes[0]);
        for (int i = 0; i <= int(kToolCount); ++i) {
            choose(i);
            show(w, 1, themes[0]);
            QCOMPARE(misplaced(w.view), QString());
            texts.push_back(wholeTexts(w.view));
            sizes.emplace_back();
            for (QWidget* widget : w.view.findChildren<QWidget*>())
                if (widget->isVisible()) sizes[i][widget] = widget->size();
        }
        for (const double zoom : {0.85, 1.3, 2.0}) {
            for (int i = 0; i <= int(kToolCount); ++i) {
                choose(i);
                show(w, zoom, themes[i % 2]);
                const QString place = QStringLiteral("%1, tool %2: ").arg(zoom).arg(i);
                QCOMPARE(place + misplaced(w.view), place);
                const QStringList now = wholeTexts(w.view);
                QStringList lost;
                std::set_difference(texts[i].begin(), texts[i].end(), now.begin(), now.end(),
                                    std::back_inserter(lost));
                QCOMPARE(place + lost.join(u'|'), place);
                for (const auto& [widget, size] : sizes[i]) {
                    if (!widget->isVisible()) continue;
                    const QSizeF off = QSizeF(widget->size()) - QSizeF(size) * zoom;
                    QVERIFY2(qAbs(off.width()) <= 4 + 0.04 * widget->width() && qAbs(off.height()) <= 4,
                             qPrintable(place + nameOf(*widget) +
                                        QStringLiteral(" %1 x %2 off").arg(off.width()).arg(off.height())));
                }
                QVERIFY2(pixelsOf(themes[i % 2], w) > 10'000 && pixelsOf(themes[1 - i % 2], w) < 8,
                         qPrintable(place));
            }
        }
    }
};

QIRN_TEST(tst_InterfaceZoom)
#include "tst_InterfaceZoom.moc"
