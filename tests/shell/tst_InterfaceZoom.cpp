#include "app/desktop/HostWords.h"
#include "app/model/CanvasStatus.h"
#include "app/model/choices/KeyChoices.h"
#include "kit/QirnThemes.h"
#include "kit/QrZoom.h"
#include "shell/ColorWells.h"
#include "shell/StatusItems.h"
#include "shell/panels/InspectorColumn.h"
#include "shell/panels/InspectorTabs.h"
#include "support/Window.h"
#include "tools/ClippedTexts.h"
#include "tools/PseudoTexts.h"

#include <map>

#include <QMenuBar>
#include <QPaintEngine>
#include <QScrollArea>

using namespace qirn;
using namespace qirn::test;

namespace {

/// Keeps every text that is drawn on it with its place, and how wide its icons are together.
struct Recorder : QPaintDevice {
    struct Engine : QPaintEngine {
        QStringList texts;
        QList<QPointF> places;
        QSet<QRgb> inks;
        double icons = 0;

        Engine() : QPaintEngine(AllFeatures) {}
        bool begin(QPaintDevice*) override { return true; }
        bool end() override { return true; }
        void updateState(const QPaintEngineState&) override {}
        void drawPixmap(const QRectF& rect, const QPixmap&, const QRectF&) override { icons += rect.width(); }
        void drawTiledPixmap(const QRectF&, const QPixmap&, const QPointF&) override {}
        void drawImage(const QRectF&, const QImage&, const QRectF&, Qt::ImageConversionFlags) override {}
        void drawPolygon(const QPointF*, int, PolygonDrawMode) override {}
        void drawPath(const QPainterPath&) override {}
        Type type() const override { return User; }
        void drawTextItem(const QPointF& point, const QTextItem& item) override {
            texts << item.text();
            places << painter()->deviceTransform().map(point);
            inks << painter()->pen().color().rgb();
        }
    };
    mutable Engine engine;
    QSize size;

    explicit Recorder(QWidget& window) : size(window.size()) { window.render(this); }
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

QString nameOf(const QWidget& widget) {
    return QLatin1String(widget.metaObject()->className()) + u' ' + widget.objectName() + u' ' +
           widget.accessibleName();
}

bool isNear(double now, double before, double zoom) {
    return qAbs(now - before * zoom) <= 5 + 0.04 * qAbs(now);
}

/// What is cut, or stands elsewhere, of what was shown whole at zoom 1.
QString changed(const Recorder::Engine& before, const Recorder::Engine& now, double zoom) {
    if (now.texts.size() != before.texts.size()) return now.texts.join(u'|');
    for (qsizetype i = 0; i < now.texts.size(); ++i) {
        if (before.texts[i].endsWith(u'…')) continue;
        const bool tellsZoom = now.texts[i] == QrZoom::levelTitle(qRound(zoom * 100)); // in the header
        if (now.texts[i] != before.texts[i] && !tellsZoom) return before.texts[i] + " is now " + now.texts[i];
        if (!isNear(now.places[i].x(), before.places[i].x(), zoom) ||
            !isNear(now.places[i].y(), before.places[i].y(), zoom))
            return before.texts[i] + " stands elsewhere";
    }
    return isNear(now.icons, before.icons, zoom) ? QString() : "icons of another size";
}

/// What is wrong with where the parts of a window stand; empty if nothing is.
QString misplaced(const QWidget& parent) {
    const auto children = parent.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    for (const QWidget* child : children) {
        if (!child->isVisible() || child->isWindow()) continue;
        const bool scrolls = parent.objectName() == "qt_scrollarea_viewport"; // up and down alone
        if (scrolls ? child->width() > parent.width() : !parent.rect().contains(child->geometry()))
            return nameOf(*child) + " leaves " + nameOf(parent);
        for (const QWidget* other : children) {
            if (other == child) break;
            const bool above = qobject_cast<const ColorSquare*>(child) || child->objectName() == "sheetHost";
            if (other->isVisible() && !other->isWindow() && !above &&
                other->geometry().intersects(child->geometry()))
                return nameOf(*child) + " covers " + nameOf(*other);
        }
        if (const QString inside = misplaced(*child); !inside.isEmpty()) return inside;
    }
    return {};
}

QSet<QRgb> colorsOf(const QString& theme) {
    const ChromeColors c = ChromeColors::fromTheme(QirnThemes::named(theme).kitTheme());
    return {c.canvas.rgb(), c.panel.rgb(), c.bar.rgb(), c.raised.rgb(),
            c.well.rgb(),   c.text.rgb(),  c.dim.rgb(), c.accent.rgb()};
}

QSet<QRgb> inksOf(const QString& theme) {
    const ChromeColors c = ChromeColors::fromTheme(QirnThemes::named(theme).kitTheme());
    return {c.text.rgb(), c.dim.rgb(), c.faint.rgb(), c.onAccent.rgb()};
}

/// The pixels of some colors in a window but for what shows colors of the picture.
int pixelsOf(const QSet<QRgb>& colors, Window& w) {
    QImage image = w.view.grab().toImage();
    QPainter painter(&image);
    for (const QWidget* shown :
         std::initializer_list<QWidget*>{&w.canvas(), &w.find<InspectorTabs>(), &w.find<ColorWells>()})
        painter.fillRect(QRect(shown->mapTo(&w.view, QPoint()), shown->size()), Qt::magenta);
    painter.end();
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) count += colors.contains(image.pixel(x, y));
    return count;
}

} // namespace

class tst_InterfaceZoom : public QObject {
    Q_OBJECT

    /// The living window with its content at 960 x 640 of the grid.
    static void show(Window& w, double zoom, const char* theme) {
        QirnThemes::setCurrentID(theme);
        QrZoom::setValue(zoom);
        const Metrics& m = QirnKitHost::metrics();
        w.view.setMinimumSize(1, 1);
        w.view.resize(m.px(960), m.px(640) + w.view.menuBar()->sizeHint().height());
        for (int i = 0; i < 5; ++i) QCoreApplication::processEvents(); // layouts in layouts ask again
        w.canvas().actualPixels();                                     // whatever the room
        QTRY_COMPARE(w.find<StatusText>("zoom").text(), "Zoom 100%");
    }

private Q_SLOTS:
    void initTestCase() { QirnKit::install("Qirn Paint"); }
    void cleanup() {
        QrZoom::setValue(1);
        QirnThemes::setCurrentID(QirnThemes::kDefaultID);
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
    }

    void everySizeFollowsTheZoomAndEveryColorTheTheme() {
        Window w;
        const char* themes[] = {"cobalt-gunmetal", "rose-gold"};
        const auto choose = [&w](int i) { // the tools, lifted pixels, the sheets
            w.model.closeSheet();
            w.model.transform().cancelTransform();
            const int more = i - static_cast<int>(kToolCount);
            if (more < 0) w.model.setTool(kTools[i].tool);
            if (more == 0) w.model.transform().beginTransform();
            if (more > 0) w.model.showSheet({static_cast<PaintSheet::Kind>(more - 1)});
        };
        w.fill({10, 10, 300, 200});
        w.model.messages().shownFor = 600'000;
        w.model.messages().flash("Undo Brush Stroke");
        w.model.status().setCursor({399, 299, true, 0.5});
        const int states = static_cast<int>(kToolCount) + 2 + static_cast<int>(PaintSheet::Kind::recovery);
        for (int i = 0; i < states; ++i) {
            choose(i);
            std::unique_ptr<Recorder> before;
            std::map<const QWidget*, QSize> sizes;
            for (const double zoom : {1.0, 0.85, 1.3, 2.0}) {
                const bool first = zoom == 1 || zoom == 1.3;
                const char* theme = themes[first ? 0 : 1];
                show(w, zoom, theme);
                const QString place = QStringLiteral("%1, state %2: ").arg(zoom).arg(i);
                QCOMPARE(place + misplaced(w.view), place);
                auto now = std::make_unique<Recorder>(w.view);
                for (const QWidget* widget : w.view.findChildren<QWidget*>()) {
                    if (!widget->isVisible()) continue;
                    if (zoom == 1) sizes[widget] = widget->size();
                    const QSize size = sizes[widget];
                    QVERIFY2(isNear(widget->width(), size.width(), zoom) &&
                                 isNear(widget->height(), size.height(), zoom),
                             qPrintable(place + nameOf(*widget)));
                }
                QVERIFY2(inksOf(theme).contains(now->engine.inks), qPrintable(place));
                if (i < 2)
                    QVERIFY2(pixelsOf(colorsOf(theme), w) > 10'000 &&
                                 pixelsOf(colorsOf(themes[first ? 1 : 0]), w) == 0,
                             qPrintable(place));
                if (zoom == 1)
                    before = std::move(now);
                else
                    QCOMPARE(place + changed(before->engine, now->engine, zoom), place);
            }
        }
        w.view.resize(1480, 920); // smaller than the content at twice its size: it scrolls
        QCoreApplication::processEvents();
        QCOMPARE(static_cast<QScrollArea&>(*w.view.centralWidget()).widget()->size(), QSize(1920, 1280));
    }

    void wordsOfOtherLanguagesHaveTheirRoomFromEitherSide() {
        PseudoTexts longer;
        QCoreApplication::installTranslator(&longer);
        for (const Qt::LayoutDirection direction : {Qt::LeftToRight, Qt::RightToLeft}) {
            QGuiApplication::setLayoutDirection(direction);
            Window w;
            const auto clipped = [&w] {
                for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
                return clippedIn(w.view);
            };
            for (const InspectorTab tab :
                 {InspectorTab::brush, InspectorTab::palettes, InspectorTab::color}) {
                w.model.setInspectorTab(tab);
                QCOMPARE(clipped(), QStringList());
            }
            w.click("showOnion");
            for (const ToolRow& row : kTools) {
                w.model.setTool(row.tool);
                QCOMPARE(clipped(), QStringList());
            }
            for (int sheet = 0; sheet <= static_cast<int>(PaintSheet::Kind::recovery); ++sheet) {
                w.model.showSheet({static_cast<PaintSheet::Kind>(sheet)});
                QCOMPARE(clipped(), QStringList());
                w.model.closeSheet();
            }
            const int plus =
                QKeyCombination(Qt::CTRL, Qt::Key_Plus).toCombined(); // "Ctrl++" and not "++Ctrl"
            for (const QString& keys : {keyText(plus), hostWords("⌘+")})
                QCOMPARE(keys.startsWith(QChar(0x2066)), direction == Qt::RightToLeft);
            // The panels' edge follows the pointer.
            auto& column = w.find<InspectorColumn>();
            auto& edge = w.find<QWidget>("inspectorWidth");
            const int wide = column.width(), outward = direction == Qt::LeftToRight ? -30 : 30;
            sendMouse(edge, QEvent::MouseButtonPress, {1, 1});
            sendMouse(edge, QEvent::MouseMove, {1.0 + outward, 1});
            sendMouse(edge, QEvent::MouseButtonRelease, {1, 1});
            QCOMPARE(column.width(), wide + 30);
        }
    }
};

QIRN_TEST(tst_InterfaceZoom)
#include "tst_InterfaceZoom.moc"
