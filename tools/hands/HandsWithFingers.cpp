#include "Hands.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <tuple>

#include <QTransform>

namespace qirn::hands {

void Hands::twoFingersHoldThePicture() {
    double worst = 0;
    for (const auto& [start, zoom, rotation] :
         {std::tuple{ViewState{1, {30, -20}, 0, false}, 2.0, 40.0}, {{3, {}, 350, true}, 0.5, -25.0}}) {
        Studio studio(devices_);
        studio.canvas().setZoom(start.zoom);
        studio.canvas().setRotation(start.rotation);
        studio.canvas().setPan(start.pan);
        if (start.flipView) studio.canvas().toggleFlipView();
        const QPointF held[] = {{150, 120}, {230, 190}};
        const QPointF first = studio.onScreen(held[0]), second = studio.onScreen(held[1]);
        QTransform moves;
        moves.translate(690, 400);
        moves.rotate(rotation);
        moves.scale(zoom, zoom);
        moves.translate(-(first + second).x() / 2, -(first + second).y() / 2);
        studio.touch({{1, first}, {2, second}});
        for (int step = 1; step <= 20; ++step) {
            const QPointF away((20 - step) * 5, 0); // another way to the same place
            const QPointF now[] = {moves.map(first) + away, moves.map(second) - away / 2};
            studio.touch({{1, now[0]}, {2, now[1]}});
            for (const int i : {0, 1}) {
                const QPointF off = studio.onScreen(held[i]) - now[i];
                worst = std::max(worst, std::hypot(off.x(), off.y()));
            }
        }
        QVERIFY2(worst <= 0.8, qPrintable(QString::number(worst))); // the view starts on a whole pixel
        QVERIFY(std::abs(studio.shown().zoom / (start.zoom * zoom) - 1) < 1e-3);
        keepPicture(studio, start.flipView ? "fingers-flipped" : "fingers");
        const ViewState view = studio.shown();
        const QPointF last = moves.map(second);
        studio.touch({{2, last}});
        studio.touch({{2, last}, {3, {800, 300}}}); // one comes down elsewhere, and a third
        studio.touch({{2, last}, {3, {800, 300}}, {4, {600, 500}}});
        studio.touch({{2, first}, {3, {820, 300}}, {4, {600, 400}}});
        QCOMPARE(studio.shown(), view);
        studio.touch({});
        studio.touch({{5, first}}); // one alone
        studio.touch({{5, second}});
        QCOMPARE(studio.shown(), view);
        QVERIFY(studio.doc().undoDepth() == 0 && studio.layer().isEmpty());
    }
    std::printf("Fingers: at most %.2f pixels from what they hold\n", worst);
}

void Hands::fingersRestForAHandAtWork() {
    enum Then { stays, comesBack, goesOn };
    const struct {
        const char* what; // comes into a gesture of two fingers
        void (*comes)(Studio&);
        Then then;
    } cases[] = {
        {"nothing", [](Studio&) {}, goesOn},
        {"a pen at once",
         [](Studio& s) {
             s.movePen({9, 9, 0});
         },
         comesBack},
        {"a pen over a panel",
         [](Studio& s) {
             const QPointF panel = s.find<QWidget>("eraser").mapToGlobal(QPointF(9, 9));
             s.hear(QEvent::TabletMove, [&] { s.devices.movePen({panel}); });
         },
         comesBack},
        {"a pen, later",
         [](Studio& s) {
             s.waitForHands();
             s.movePen({9, 9, 0});
         },
         stays},
        {"another picture",
         [](Studio& s) { s.model.pictures().newDocument(400, 300, 72, std::nullopt, "Other"); }, stays},
    };
    for (const auto& [what, comes, then] : cases) {
        Studio studio(devices_);
        DocSession& session = studio.session();
        const ViewState before = session.view;
        studio.touch({{1, {600, 350}}, {2, {720, 430}}});
        studio.touch({{1, {610, 390}}, {2, {700, 430}}});
        const ViewState held = session.view;
        QVERIFY(held != before);
        comes(studio);
        QVERIFY2(session.view == (then == comesBack ? before : held), what);
        const ViewState now = studio.shown();
        studio.touch({{1, {610, 300}}, {2, {500, 430}}});
        QVERIFY2((studio.shown() != now) == (then == goesOn), what);
    }
    Studio studio(devices_);
    const ViewState before = studio.shown();
    for (const bool penWasHere : {true, false}) {
        penWasHere ? studio.movePen({50, 50, 0}) : studio.waitForHands();
        studio.touch({{1, {600, 350}}, {2, {720, 430}}});
        studio.touch({{1, {610, 390}}, {2, {700, 430}}});
        QCOMPARE(studio.shown() == before, penWasHere);
        studio.touch({});
    }
}

void Hands::aLiftedGripIsStraightened() {
    for (const auto& [turned, straight] : {std::pair(1.5, 0.0), {-91.5, -90.0}, {2.6, 2.6}}) {
        Studio studio(devices_);
        QTransform moves;
        moves.translate(700, 400);
        moves.rotate(turned);
        studio.touch({{1, {500, 400}}, {2, {900, 400}}});
        studio.touch({{1, moves.map(QPointF(-200, 0))}, {2, moves.map(QPointF(200, 0))}});
        QVERIFY(std::abs(studio.shown().rotation - turned) < 0.01);
        studio.touch({});
        QVERIFY(std::abs(studio.shown().rotation - straight) < 0.01);
    }
}

void Hands::aTapPressesButtonsAndPaintsNothing() {
    Studio studio(devices_);
    const auto tap = [&](QWidget& widget) {
        studio.touch({{1, widget.mapToGlobal(QPointF(widget.rect().center()))}});
        studio.touch({});
    };
    tap(studio.canvas());
    QVERIFY(studio.layer().isEmpty());
    tap(studio.find<QWidget>("eraser"));
    QCOMPARE(studio.model.tool(), Tool::eraser);
}

} // namespace qirn::hands
