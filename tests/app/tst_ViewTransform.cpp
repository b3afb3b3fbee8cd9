#include "app/desktop/HostWords.h"
#include "app/files/ViewTransform.h"
#include "support/TestMain.h"

#include <array>
#include <cmath>

using namespace qirn;

class tst_ViewTransform : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aPointGoesThereAndBackInAnyView() {
        for (int i = 0; i < 40; ++i) {
            const double zoom = std::array{0.01, 0.37, 1.0, 7.3, 64.0}[i % 5];
            const ViewState state{
                zoom, {12.3, -45.6}, std::array{0.0, 37.0, 90.0, -213.5}[i / 5 % 4], i < 20};
            const ViewTransform view({1001, 700}, {333, 222}, state);
            for (const QPointF p : {QPointF(0, 0), QPointF(332.5, 221.5), QPointF(100.25, 7.75)}) {
                const QPointF back = view.canvasPoint(view.viewPoint(p)) - p;
                QVERIFY2(std::hypot(back.x(), back.y()) < 1e-6, qPrintable(QString::number(i)));
                QCOMPARE(view.flippedVertically(view.canvasToWidget().map(p)), view.viewPoint(p));
            }
            // But for the step to a whole device pixel the picture's middle stands at the view's plus the pan.
            const QPointF off = view.viewPoint({166.5, 111}) - QPointF(500.5 + 12.3, 350 - 45.6);
            QVERIFY(std::abs(off.x()) <= 0.5 + 1e-9 && std::abs(off.y()) <= 0.5 + 1e-9);
        }
    }

    void theViewLooksAsTheWordsSay() {
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

    void atOneHundredPercentPixelsMeetDevicePixels() {
        for (const auto& [view, canvas] :
             {std::pair{QSizeF(800, 600), QSizeF(333, 221)}, {QSizeF(801, 601), QSizeF(400, 300)}}) {
            for (const QPointF pan : {QPointF(0, 0), QPointF(0.3, -17.8)}) {
                const ViewTransform shown(view, canvas, {1, pan, 0, false});
                const QPointF corner = shown.canvasToWidget().map(QPointF(0, 0));
                QCOMPARE(corner, QPointF(corner.toPoint()));
            }
        }
    }

    void zoomsKeepThePointUnderThePointerAndFitLeavesTheMargin() {
        ViewState state{1, {30, 10}, 37, true};
        const auto shown = [&] { return ViewTransform({901, 701}, {500, 400}, state); };
        const QPointF pointer(100, 90), under = shown().canvasPoint(pointer);
        for (int i = 0; i < 400; ++i)
            state = shown().zoomedTo(state.zoom * (i % 2 ? 1 / 1.013 : 1.013), pointer);
        const QPointF off = shown().viewPoint(under) - pointer;
        QVERIFY(std::hypot(off.x(), off.y()) < 1.5);
        QCOMPARE(shown().zoomedTo(1000, pointer).zoom, kMaxZoom);
        // A turn or a mirror keeps what lies under the middle.
        const QPointF middle = shown().canvasPoint({450.5, 350.5});
        for (int i = 0; i < 400; ++i) state = shown().turnedTo(state.rotation + 1.7, i % 3 == 0);
        const QPointF wandered = shown().viewPoint(middle) - QPointF(450.5, 350.5);
        QVERIFY(std::hypot(wandered.x(), wandered.y()) < 1.5 && state.rotation > 600);
        QCOMPARE(ViewTransform({901, 701}, {500, 400}, {2, {}, 37, false}).turnedTo(90, true),
                 (ViewState{2, {}, 90, true}));
        QCOMPARE(shown().zoomedTo(0, pointer).zoom, kMinZoom);
        const ViewTransform view({860, 660}, {1600, 600}, {3, {50, 50}, 20, true});
        QCOMPARE(view.fitted(60), (ViewState{0.5, {0, 0}, 0, true}));
    }

    void zoomStopsSkipTheOneThatIsNear() {
        for (const auto& [zoom, in, next] : {std::tuple{1.0, true, 1.5},
                                             {0.995, true, 1.5},
                                             {0.9, true, 1.0},
                                             {64.0, true, 64.0},
                                             {1.0, false, 0.667},
                                             {1.005, false, 0.667},
                                             {0.02, false, 0.05}}) // one within a hundredth is skipped
            QCOMPARE(nextZoomStop(zoom, in), next);
    }

    void keysReadAsTheHostNamesThem() {
#ifndef Q_OS_MACOS
        QCOMPARE(hostWords("New canvas (⌘N)"), "New canvas (Ctrl+N)");
        QCOMPARE(hostWords("Redo (⇧⌘Z)"), "Redo (Ctrl+Shift+Z)");
        QCOMPARE(hostWords("Or hold ⌘ to add, ⌥ to subtract, ⌘⌥ to intersect"),
                 "Or hold Ctrl to add, Alt to subtract, Ctrl+Alt to intersect");
        QCOMPARE(hostWords("a format macOS cannot read."), "a format this system cannot read.");
        QCOMPARE(hostWords("Tip: hold ⌥ Option with the brush to pick a color"),
                 "Tip: hold Ctrl with the brush to pick a color");
#endif
        QLocale::setDefault(QLocale::C);
        QCOMPARE(shortTime({9, 5, 7}), "09:05");
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        QVERIFY(QRegularExpression("^9:05\\s[AP]M$").match(shortTime({9, 5, 7})).hasMatch());
        QLocale::setDefault(QLocale::C);
    }
};

QIRN_TEST(tst_ViewTransform)
#include "tst_ViewTransform.moc"
