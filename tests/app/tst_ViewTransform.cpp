#include "HostWords.h"
#include "PenInput.h"
#include "ViewTransform.h"
#include "support/TestMain.h"

#include <cmath>

using namespace qirn;

class tst_ViewTransform : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aPointGoesThereAndBackInAnyView_data();
    void aPointGoesThereAndBackInAnyView();
    void theViewLooksAsTheWordsSay();
    void atOneHundredPercentPixelsMeetDevicePixels_data();
    void atOneHundredPercentPixelsMeetDevicePixels();
    void zoomingKeepsThePointUnderThePointer();
    void manySmallZoomsDoNotWander();
    void fitLeavesTheMargin();
    void zoomStopsSkipTheOneThatIsNear();
    void speedMakesAMouseThinner();
    void pressureCurves();
    void keysReadAsTheHostNamesThem();
};

void tst_ViewTransform::aPointGoesThereAndBackInAnyView_data() {
    QTest::addColumn<double>("zoom");
    QTest::addColumn<double>("rotation");
    QTest::addColumn<bool>("flip");
    for (const double zoom : {0.01, 0.37, 1.0, 7.3, 64.0}) {
        for (const double rotation : {0.0, 37.0, 90.0, -213.5}) {
            for (const bool flip : {false, true}) {
                QTest::addRow("%g%% %g %d", zoom * 100, rotation, flip) << zoom << rotation << flip;
            }
        }
    }
}

void tst_ViewTransform::aPointGoesThereAndBackInAnyView() {
    QFETCH(double, zoom);
    QFETCH(double, rotation);
    QFETCH(bool, flip);
    const ViewTransform view({1001, 700}, {333, 222}, {zoom, {12.3, -45.6}, rotation, flip});
    for (const QPointF p : {QPointF(0, 0), QPointF(332.5, 221.5), QPointF(100.25, 7.75)}) {
        const QPointF back = view.canvasPoint(view.viewPoint(p));
        QVERIFY2(std::hypot(back.x() - p.x(), back.y() - p.y()) < 1e-6,
                 qPrintable(QString::number(back.x())));
        const QPointF drawn = view.canvasToWidget().map(p);
        QCOMPARE(view.flippedVertically(drawn), view.viewPoint(p));
    }
    // Apart from the step to a whole device pixel the picture's middle stands at the view's middle plus the pan.
    const QPointF middle = view.viewPoint({166.5, 111});
    QVERIFY(std::abs(middle.x() - (500.5 + 12.3)) <= 0.5 + 1e-9 &&
            std::abs(middle.y() - (350 - 45.6)) <= 0.5 + 1e-9);
}

void tst_ViewTransform::theViewLooksAsTheWordsSay() {
    const QSizeF size(600, 600), canvas(100, 100);
    const auto seen = [&](const ViewState& state, QPointF p) {
        return ViewTransform(size, canvas, state).canvasToWidget().map(p);
    };
    // A quarter turn clockwise brings the top left corner to the top right.
    const QPointF turned = seen({1, {}, 90, false}, {0, 0});
    QVERIFY(turned.x() > 300 && turned.y() < 300);
    QVERIFY(seen({1, {}, 0, true}, {0, 0}).x() > 300);
    // The pan's y grows upward.
    QCOMPARE(seen({1, {10, 20}, 0, false}, {0, 0}), QPointF(260, 230));
}

void tst_ViewTransform::atOneHundredPercentPixelsMeetDevicePixels_data() {
    QTest::addColumn<QSizeF>("view");
    QTest::addColumn<QSizeF>("canvas");
    QTest::newRow("odd in even") << QSizeF(800, 600) << QSizeF(333, 221);
    QTest::newRow("even in odd") << QSizeF(801, 601) << QSizeF(400, 300);
}

void tst_ViewTransform::atOneHundredPercentPixelsMeetDevicePixels() {
    QFETCH(QSizeF, view);
    QFETCH(QSizeF, canvas);
    for (const QPointF pan : {QPointF(0, 0), QPointF(0.3, -17.8)}) {
        const QPointF corner =
            ViewTransform(view, canvas, {1, pan, 0, false}).canvasToWidget().map(QPointF(0, 0));
        QCOMPARE(corner.x(), std::round(corner.x()));
        QCOMPARE(corner.y(), std::round(corner.y()));
    }
}

void tst_ViewTransform::zoomingKeepsThePointUnderThePointer() {
    const ViewState state{0.8, {30, 10}, 37, true};
    const ViewTransform before({900, 700}, {500, 400}, state);
    const QPointF pointer(123, 456), under = before.canvasPoint(pointer);
    const ViewState zoomed = before.zoomedTo(5, pointer);
    QCOMPARE(zoomed.zoom, 5.0);
    const QPointF now = ViewTransform({900, 700}, {500, 400}, zoomed).viewPoint(under);
    // Both views are moved to a whole device pixel: half a pixel each, magnified for the first.
    QVERIFY(std::hypot(now.x() - pointer.x(), now.y() - pointer.y()) < 6);
    QCOMPARE(before.zoomedTo(1000, pointer).zoom, kMaxZoom);
    QCOMPARE(before.zoomedTo(0, pointer).zoom, kMinZoom);
}

void tst_ViewTransform::manySmallZoomsDoNotWander() {
    ViewState state{1, {0, 0}, 0, false};
    const QSizeF view(901, 701), canvas(500, 400);
    const QPointF pointer(100, 90), under = ViewTransform(view, canvas, state).canvasPoint(pointer);
    for (int i = 0; i < 400; ++i) {
        state =
            ViewTransform(view, canvas, state).zoomedTo(state.zoom * (i % 2 ? 1 / 1.013 : 1.013), pointer);
    }
    const QPointF now = ViewTransform(view, canvas, state).viewPoint(under);
    QVERIFY(std::hypot(now.x() - pointer.x(), now.y() - pointer.y()) < 1.5);
}

void tst_ViewTransform::fitLeavesTheMargin() {
    const ViewTransform view({860, 660}, {1600, 600}, {3, {50, 50}, 20, true});
    const ViewState fitted = view.fitted(60);
    QCOMPARE(fitted, (ViewState{0.5, {0, 0}, 0, true}));
}

void tst_ViewTransform::zoomStopsSkipTheOneThatIsNear() {
    QCOMPARE(nextZoomStop(1, true), 1.5);
    QCOMPARE(nextZoomStop(0.995, true), 1.5); // 1 is within a hundredth
    QCOMPARE(nextZoomStop(0.9, true), 1.0);
    QCOMPARE(nextZoomStop(64, true), 64.0);
    QCOMPARE(nextZoomStop(1, false), 0.667);
    QCOMPARE(nextZoomStop(1.005, false), 0.667);
    QCOMPARE(nextZoomStop(0.02, false), 0.05);
}

void tst_ViewTransform::speedMakesAMouseThinner() {
    SpeedPressure speed;
    speed.follow(1.0, {0, 0});
    QCOMPARE(speed.next(1.1, {100, 0}), 1.2 - 1000 / 2500.0);
    QCOMPARE(speed.next(1.2, {101, 0}), 1.0);  // slow
    QCOMPARE(speed.next(1.2, {400, 0}), 0.15); // no time passed: a thousandth of a second counts
}

void tst_ViewTransform::pressureCurves() {
    QCOMPARE(shapedPressure(0.25, 0.5), 0.5);
    QCOMPARE(shapedPressure(0.5, 2), 0.25);
    QCOMPARE(shapedPressure(1.7, 1), 1.0);
    QCOMPARE(shapedPressure(-1, 2), 0.0);
}

void tst_ViewTransform::keysReadAsTheHostNamesThem() {
#ifndef Q_OS_MACOS
    QCOMPARE(hostWords(QStringLiteral("New canvas (⌘N)")), QStringLiteral("New canvas (Ctrl+N)"));
    QCOMPARE(hostWords(QStringLiteral("Redo (⇧⌘Z)")), QStringLiteral("Redo (Ctrl+Shift+Z)"));
    QCOMPARE(hostWords(QStringLiteral("Or hold ⌘ to add, ⌥ to subtract, ⌘⌥ to intersect")),
             QStringLiteral("Or hold Ctrl to add, Alt to subtract, Ctrl+Alt to intersect"));
    QCOMPARE(hostWords(QStringLiteral("a format macOS cannot read.")),
             QStringLiteral("a format this system cannot read."));
    QCOMPARE(hostWords(QStringLiteral("Tip: hold ⌥ Option with the brush to pick a color")),
             QStringLiteral("Tip: hold Ctrl with the brush to pick a color"));
#endif
}

QIRN_TEST(tst_ViewTransform)
#include "tst_ViewTransform.moc"
