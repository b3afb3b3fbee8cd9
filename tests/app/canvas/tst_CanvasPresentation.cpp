#include "compositing/CompositeInputs.h"
#include "core/SeededRandom.h"
#include "support/Strokes.h"
#include "support/Studio.h"

#include <array>
#include <set>

#include <QPainter>

using namespace qirn;
using namespace qirn::test;

namespace {

/// A canvas in a window of 600 x 500.
QImage shown(CanvasPresentation& presentation, const PaintDocument& doc, const ViewState& state) {
    const QSize window(600, 500);
    const ViewTransform view(window, doc.grid().bounds().rectF().size(), state);
    QImage screen(window, QImage::Format_RGB32);
    screen.fill(Qt::magenta);
    QPainter painter(&screen);
    presentation.prepare(view, state.zoom);
    presentation.draw(painter, screen.rect());
    painter.end();
    return screen;
}

QImage shownAfresh(PaintDocument& doc, const ViewState& state) {
    CanvasPresentation presentation;
    presentation.show(&doc);
    return shown(presentation, doc, state);
}

/// How many colors a row of 60 pixels in the middle of the canvas has.
std::size_t colorsOf(Studio& studio) {
    const QImage image = studio.canvas.grab().toImage();
    std::set<QRgb> found;
    for (int dx = -30; dx < 30; ++dx)
        found.insert(image.pixel(studio.widgetPoint({200, 150}).toPoint() + QPoint(dx, 0)));
    return found.size();
}

void paintSomewhere(PaintDocument& doc, SeededRandom& random) {
    const auto below = [&random](int64_t end) {
        return static_cast<int64_t>(random.next() % static_cast<uint64_t>(end));
    };
    const IRect canvas = doc.grid().bounds();
    const IRect rect{below(canvas.w), below(canvas.h), 1 + below(canvas.w / 10), 1 + below(canvas.h / 8)};
    const auto alpha = static_cast<uint8_t>(below(256));
    paintRect(doc, doc.activeLayer(), rect.intersection(canvas), {alpha, 0, 0, alpha});
}

} // namespace

class tst_CanvasPresentation : public QObject {
    Q_OBJECT
private Q_SLOTS:
    /// Inside a flat picture no pixel differs: neither a gap that would show what lies behind, nor a step at a tile.
    void noSeamInAnyView() {
        PaintDocument doc(1900, 1300, 72, PaintColor(0, 1, 0));
        double turn = 7;
        for (const double zoom : {0.07, 0.13, 0.25, 0.333, 0.5, 0.73, 0.999, 1.0, 1.37, 2.0, 2.5, 7.77}) {
            for (const double rotation : {0.0, turn += 23}) {
                const ViewState state{zoom, {13.4, -7.7}, rotation, rotation > 90};
                const QImage screen = shownAfresh(doc, state);
                const ViewTransform view(screen.size(), QSizeF(1900, 1300), state);
                const double margin = 3 / zoom;
                const QRectF inside = doc.grid().bounds().rectF().adjusted(margin, margin, -margin, -margin);
                int looked = 0;
                for (int y = 0; y < screen.height(); ++y) {
                    for (int x = 0; x < screen.width(); ++x) {
                        const QPointF place = view.flippedVertically({x + 0.5, y + 0.5});
                        if (!inside.contains(view.canvasPoint(place))) continue;
                        ++looked;
                        if (screen.pixel(x, y) == qRgb(0, 255, 0)) continue;
                        QFAIL(qPrintable(
                            QString("%1, turned %2: %3,%4").arg(zoom).arg(rotation).arg(x).arg(y)));
                    }
                }
                QVERIFY(looked > 1000);
            }
        }
    }

    /// Where no layer has a tile the board is drawn without pixels; it looks as behind transparent ones.
    void emptyTilesLookLikeTransparentOnes() {
        PaintDocument empty(1100, 700, 72, std::nullopt), transparent(1100, 700, 72, std::nullopt);
        for (int64_t tile = 0; tile < transparent.grid().count(); ++tile)
            transparent.activeLayer().writableTile(tile);
        for (const double zoom : {1.0, 0.4, 0.2, 0.09, 0.03, 0.01}) {
            QImage screens[2];
            for (const int i : {0, 1}) {
                CanvasPresentation presentation;
                presentation.setCheckerSize(zoom == 0.4 ? 7.3 : 12);
                presentation.show(i == 0 ? &empty : &transparent);
                screens[i] = shown(presentation, empty, {zoom, {3.5, -2}, 0, false});
                if (zoom < 0.5) QCOMPARE(presentation.tileImageBytes() > 0, i == 1);
            }
            QCOMPARE(screens[0], screens[1]);
            if (zoom != 1) continue;
            // Squares of 12 canvas pixels, the first of the darker gray.
            const ViewTransform view(screens[0].size(), {1100, 700}, {1, {3.5, -2}, 0, false});
            for (int y = 0; y < 500; ++y) {
                for (int x = 0; x < 600; ++x) {
                    const QPointF at = view.canvasPoint(view.flippedVertically({x + 0.5, y + 0.5}));
                    const int gray = (int(at.x() / 12) + int(at.y() / 12)) % 2 ? 219 : 179;
                    QCOMPARE(screens[0].pixel(x, y), qRgb(gray, gray, gray));
                }
            }
        }
    }

    void undoAndAnotherLayerAreShown() {
        Studio studio;
        studio.model.setTool(Tool::hand); // without a ring
        const auto shown = [&] { return studio.canvas.grab().toImage(); };
        const QImage blank = shown();
        studio.fill({50, 50, 50, 50});
        LayerEdits::addLayer(studio.model);
        studio.fill({200, 50, 50, 50});
        studio.doc().onion.enabled = true; // ghosts follow the active layer
        studio.canvas.refresh(CanvasView::AllTiles::yes);
        const QImage second = shown();
        QVERIFY(second != blank);
        LayerEdits::setActiveLayer(studio.model, 1);
        const QImage first = shown();
        QVERIFY(first != second);
        studio.canvas.refresh(CanvasView::AllTiles::yes);
        QCOMPARE(shown(), first);
        studio.doc().onion.enabled = false;
        for (int i = 0; i < 3; ++i) studio.model.undo();
        QCOMPARE(shown(), blank);
    }

    void aPartDrawnAgainIsThatOfAFreshView() {
        for (const double zoom : {0.11, 0.3, 0.5, 1.0, 1.7}) {
            PaintDocument doc(900, 700, 72, std::nullopt);
            const ViewState view{zoom, {3.5, -2}, 0, false};
            CanvasPresentation live;
            live.show(&doc);
            shown(live, doc, view);
            SeededRandom random(8);
            for (int i = 0; i < 40; ++i) {
                paintSomewhere(doc, random);
                live.update(doc.takeDirtyParts());
            }
            QVERIFY2(shown(live, doc, view) == shownAfresh(doc, view), qPrintable(QString::number(zoom)));
        }
    }

    /// What only the window's own pixels held is not lost with them, nor composited again.
    void whatWasPannedOrZoomedAwayComesBack() {
        PaintDocument doc(2100, 1700, 72, std::nullopt);
        SeededRandom random(9);
        for (int i = 0; i < 30; ++i) paintSomewhere(doc, random);
        doc.takeDirtyParts();
        CanvasPresentation live;
        live.show(&doc);
        shown(live, doc, {0.2, {}, 0, false}); // all of it
        int64_t made = live.tilesComposited();
        QVERIFY(made > 0);
        for (int step = 0; step < 60; ++step) {
            const ViewState view{std::array{1.0, 1.0, 1.0, 1.5, 0.4, 0.2}[random.next() % 6],
                                 {random.signedUnit() * 900, random.signedUnit() * 700},
                                 step % 5 == 4 ? 40.0 : 0.0,
                                 step % 5 >= 3};
            const QImage now = shown(live, doc, view);
            QCOMPARE(live.tilesComposited(), made);
            QCOMPARE(now, shownAfresh(doc, view));
            if (step % 7 != 6) continue;
            paintSomewhere(doc, random);
            live.update(doc.takeDirtyParts());
            shown(live, doc, {0.2, {}, 0, false});
            made = live.tilesComposited();
        }
    }

    /// Tiles with equal inputs are composited once, also where the canvas edge cuts them and squares lie otherwise.
    void tilesThatLookTheSameAreCompositedOnce() {
        const PaintColor glass(0, 0, 1, 0.3);
        PaintDocument shared(2900, 2300, 72, glass), own(2900, 2300, 72, glass);
        SeededRandom random(4);
        TileRef kinds[3];
        for (TileRef& kind : kinds) {
            kind = std::make_shared<Tile>();
            const auto alpha = static_cast<uint8_t>(random.next());
            fillPixels(kind->writablePixels(), {9, 9, 99, 190}, {alpha, 0, alpha, alpha});
            kind->freeze();
        }
        for (int64_t tile = 0; tile < own.grid().count(); ++tile) {
            const std::size_t kind = random.next() % 4;
            if (kind < 3) shared.layer(1).setTile(tile, kinds[kind]);
            for (const int64_t layer : {0, 1}) {
                if (const Tile* same = shared.layer(layer).tile(tile))
                    own.layer(layer).setTile(tile, std::make_shared<Tile>(*same));
            }
        }
        for (const double side : {12.0, 7.3}) {
            for (const double zoom : {1.0, 0.2, 0.07}) {
                CanvasPresentation presentations[2];
                QImage screens[2];
                for (const int i : {0, 1}) {
                    presentations[i].setCheckerSize(side);
                    presentations[i].show(i == 0 ? &shared : &own);
                    screens[i] = shown(presentations[i], shared, {zoom, {3.5, -2}, 0, false});
                }
                QCOMPARE(screens[0], screens[1]);
                const int64_t made = presentations[0].tilesComposited();
                // Of 108 tiles: four kinds, and on each axis three places in squares of 12, or cut by the edge.
                if (side == 12 && zoom < 0.2) QVERIFY2(made <= 4 * 4 * 4, qPrintable(QString::number(made)));
            }
        }
    }

    void aHugeBlankCanvasHoldsNoTileImages() {
        Studio studio;
        studio.model.pictures().newDocument(30000, 30000, 72, std::nullopt, "Huge");
        studio.canvas.fit();
        studio.canvas.grab();
        QCOMPARE(studio.canvas.presentation().tileImageBytes(), int64_t{0});
        std::vector<int64_t> all(static_cast<std::size_t>(studio.doc().grid().count()));
        std::iota(all.begin(), all.end(), 0);
        QVERIFY(displayImages(studio.doc(), all).empty());
        studio.model.brushes().setActiveBrush(plainBrush(300));
        studio.penStroke({{15000, 15000}});
        studio.canvas.grab();
        QVERIFY(studio.canvas.presentation().tileImageBytes() <= 9 * kTileBytes);
    }

    void aTurningViewIsSmoothAtRestAndPixelsHaveEdgesFromTwoHundredPercent() {
        for (const double zoom : {2.0, 1.99}) { // one step is no motion
            Studio studio;
            studio.fill({0, 0, 200, 300}, {0, 0, 0, 255});
            studio.canvas.setZoom(zoom);
            QCOMPARE(colorsOf(studio) == 2, zoom == 2);
        }
        Studio studio;
        studio.fill({0, 0, 200, 300}, {0, 0, 0, 255});
        studio.canvas.setRotation(10);
        QVERIFY(colorsOf(studio) > 2);
        studio.canvas.setRotation(11);
        QCOMPARE(colorsOf(studio), std::size_t{2});
        QTRY_VERIFY(colorsOf(studio) > 2);
        studio.canvas.setZoom(1.1);
        studio.canvas.setZoom(1.2);
        QCOMPARE(colorsOf(studio), std::size_t{2});
        QTRY_VERIFY(colorsOf(studio) > 2);
    }
};

QIRN_TEST(tst_CanvasPresentation)
#include "tst_CanvasPresentation.moc"
