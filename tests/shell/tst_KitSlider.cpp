#include "ChromeSlider.h"
#include "ChromeToggle.h"
#include "Metrics.h"
#include "QirnKit.h"
#include "support/TestMain.h"

#include <QAccessible>
#include <QLineEdit>
#include <QSignalSpy>
#include <QVBoxLayout>
#include <QWheelEvent>

using namespace qirn;

namespace {

/// A window of one slider 200 wide, between two fields that can take the focus.
struct Bench {
    QWidget window;
    QLineEdit before{&window};
    ChromeSlider slider;
    QLineEdit after{&window};
    QSignalSpy changed{&slider, &ChromeSlider::valueChanged};
    QSignalSpy finished{&slider, &ChromeSlider::editingFinished};

    Bench(const SliderScale& scale, const SliderFormat& format)
        : slider(QStringLiteral("Size"), scale, format, &window) {
        window.resize(240, 200);
        slider.setGeometry(10, 50, 200, 28);
        before.setGeometry(10, 10, 200, 28);
        after.setGeometry(10, 90, 200, 28);
        QWidget::setTabOrder(&before, &slider);
        QWidget::setTabOrder(&slider, &after);
        window.show();
        window.activateWindow();
        [[maybe_unused]] const bool active = QTest::qWaitForWindowActive(&window);
        before.setFocus();
    }
    QLineEdit& field() { return *slider.findChild<QLineEdit*>(); }
    void mouse(QEvent::Type type, double x, Qt::KeyboardModifiers modifiers = {}) {
        const QPointF at(x, 14);
        const auto held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, at, slider.mapToGlobal(at),
                          type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, held, modifiers);
        QApplication::sendEvent(&slider, &event);
    }
    void wheel(int angle) {
        QWheelEvent event({100, 14}, slider.mapToGlobal(QPointF(100, 14)), {}, {0, angle}, Qt::NoButton, {},
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&slider, &event);
    }
};

const SliderScale kPercent{0, 1, 0.01};
const SliderScale kSizes{1, 400, 1, true};

} // namespace

class tst_KitSlider : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QirnKit::install(QStringLiteral("Qirn Paint")); }

    void aDragAnnouncesEachValueAndItsEndOnce() {
        Bench b(kPercent, SliderFormat::percent());
        b.mouse(QEvent::MouseButtonPress, 50);
        QCOMPARE(b.slider.value(), 0.25);
        b.mouse(QEvent::MouseMove, 100);
        b.mouse(QEvent::MouseMove, 150);
        QCOMPARE(b.slider.value(), 0.75);
        QCOMPARE(b.finished.count(), 0);
        b.mouse(QEvent::MouseMove, 900); // past the end
        b.mouse(QEvent::MouseButtonRelease, 900);
        QCOMPARE(b.slider.value(), 1.0);
        QCOMPARE(b.changed.count(), 4);
        QCOMPARE(b.finished.count(), 1);
        b.mouse(QEvent::MouseMove, 20); // no button held any more
        QCOMPARE(b.slider.value(), 1.0);
        QCOMPARE(QApplication::focusWidget(), &b.before); // a drag takes no keys away
    }

    void shiftDragsATenthAsFastFromWhereTheValueIs() {
        Bench b(kPercent, SliderFormat::percent());
        b.slider.setValue(0.5);
        b.mouse(QEvent::MouseButtonPress, 20, Qt::ShiftModifier);
        QCOMPARE(b.slider.value(), 0.5);
        b.mouse(QEvent::MouseMove, 120, Qt::ShiftModifier);
        QCOMPARE(b.slider.value(), 0.55);
        b.mouse(QEvent::MouseButtonRelease, 120, Qt::ShiftModifier);
    }

    void showingAValueAnnouncesNothingAndStopsAtTheEnds() {
        Bench b(kSizes, SliderFormat::pixels());
        b.slider.setValue(1000); // a brush can be larger than its slider
        QCOMPARE(b.slider.valueText(), QStringLiteral("400 px"));
        b.slider.setValue(0.2);
        QCOMPARE(b.slider.valueText(), QStringLiteral("1 px"));
        QCOMPARE(b.changed.count() + b.finished.count(), 0);
    }

    void smallSizesTakeMoreOfTheLength() {
        QCOMPARE(kSizes.valueAt(0), 1.0);
        QCOMPARE(kSizes.valueAt(0.5), 101.0);
        QCOMPARE(kSizes.valueAt(1), 400.0);
        for (const double size : {1.0, 2.0, 24.0, 399.0})
            QCOMPARE(kSizes.valueAt(kSizes.placeOf(size)), size);
        // A notch is felt at large sizes and is one pixel at small ones.
        QCOMPARE(kSizes.stepped(3, 1), 4.0);
        QVERIFY(kSizes.stepped(200, 1) >= 204);
        QCOMPARE(kSizes.stepped(400, 1), 400.0);
        QCOMPARE(kSizes.stepped(1, -1), 1.0);
    }

    void theWheelStepsAWholeNotchAndFinishesAtRest() {
        Bench b(kPercent, SliderFormat::percent());
        b.slider.setValue(0.5);
        b.wheel(40); // a touchpad sends thirds of a notch
        b.wheel(40);
        QCOMPARE(b.slider.value(), 0.5);
        b.wheel(40);
        b.wheel(120);
        QCOMPARE(b.slider.value(), 0.52);
        QCOMPARE(b.finished.count(), 0);
        QTRY_COMPARE_WITH_TIMEOUT(b.finished.count(), 1, 2000);
    }

    void theKeyboardReachesItAndSetsIt() {
        Bench b(kPercent, SliderFormat::percent());
        QTest::keyClick(&b.before, Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), &b.slider);
        QTest::keyClick(&b.slider, Qt::Key_End);
        QCOMPARE(b.slider.value(), 1.0);
        QTest::keyClick(&b.slider, Qt::Key_Left);
        QTest::keyClick(&b.slider, Qt::Key_PageDown);
        QCOMPARE(b.slider.value(), 0.89);
        QCOMPARE(b.finished.count(), 1); // End; the steps are not at rest yet
        QTest::keyClick(&b.slider, Qt::Key_Tab);
        QCOMPARE(b.finished.count(), 2); // leaving it is rest
        QCOMPARE(QApplication::focusWidget(), &b.after);
    }

    void aNumberIsTypedAfterADoubleClick() {
        Bench b(kPercent, SliderFormat::percent());
        b.mouse(QEvent::MouseButtonDblClick, 100);
        QVERIFY(b.field().isVisible());
        QTest::keyClicks(&b.field(), QStringLiteral("35 %"));
        QTest::keyClick(&b.field(), Qt::Key_Return);
        QCOMPARE(b.slider.value(), 0.35);
        QCOMPARE(b.changed.count(), 1);
        QCOMPARE(b.finished.count(), 1);
        QVERIFY(!b.field().isVisible());
        QCOMPARE(QApplication::focusWidget(), &b.before); // the keys go back to where they were
    }

    void typingADigitOpensTheFieldAndEscapeLeavesTheValue() {
        Bench b({-180, 180, 1}, SliderFormat::degrees());
        b.slider.setFocus();
        QTest::keyClicks(&b.slider, QStringLiteral("-"));
        QVERIFY(b.field().isVisible());
        QTest::keyClicks(&b.field(), QStringLiteral("45"));
        QCOMPARE(b.field().text(), QStringLiteral("-45"));
        QTest::keyClick(&b.field(), Qt::Key_Return);
        QCOMPARE(b.slider.value(), -45.0);
        QTest::keyClicks(&b.slider, QStringLiteral("9"));
        QTest::keyClick(&b.field(), Qt::Key_Escape);
        QCOMPARE(b.slider.value(), -45.0);
        QCOMPARE(b.changed.count(), 1);
    }

    void whatIsTypedIsReadWithUnitsAndRefusedWhenItIsNoNumber_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("expected"); // below the range: nothing
        QTest::newRow("plain") << "24" << 24.0;
        QTest::newRow("unit") << "24 px" << 24.0;
        QTest::newRow("unit without a blank") << "24PX" << 24.0;
        QTest::newRow("comma") << "12,5" << 12.5;
        QTest::newRow("above the range") << "9000" << 400.0;
        QTest::newRow("negative") << "-4" << 1.0;
        QTest::newRow("empty") << "" << 77.0;
        QTest::newRow("words") << "big" << 77.0;
        QTest::newRow("nan") << "nan" << 77.0;
        QTest::newRow("inf") << "inf" << 77.0;
    }
    void whatIsTypedIsReadWithUnitsAndRefusedWhenItIsNoNumber() {
        QFETCH(QString, text);
        QFETCH(double, expected);
        Bench b(kSizes, SliderFormat::pixels());
        b.slider.setValue(77);
        b.mouse(QEvent::MouseButtonDblClick, 100);
        b.field().setText(text);
        QTest::keyClick(&b.field(), Qt::Key_Return);
        QCOMPARE(b.slider.value(), expected);
    }

    void leavingTheFieldTakesTheNumber() {
        Bench b(kSizes, SliderFormat::pixels());
        b.mouse(QEvent::MouseButtonDblClick, 100);
        b.field().setText(QStringLiteral("33"));
        b.after.setFocus();
        QCOMPARE(b.slider.value(), 33.0);
        QCOMPARE(b.finished.count(), 1);
        QCOMPARE(QApplication::focusWidget(), &b.after);
    }

    void zeroIsNeverShownAsNegative() {
        QCOMPARE(SliderFormat::degrees().text(-0.2), QStringLiteral("0°"));
        QCOMPARE(SliderFormat::plain(1).text(-0.04), QStringLiteral("0.0"));
        QCOMPARE(SliderFormat::percent().text(0.335), QStringLiteral("34%"));
    }

    void aScreenReaderFindsNameValueAndLimits() {
        Bench b(kSizes, SliderFormat::pixels());
        b.slider.setValue(24);
        QAccessibleInterface* access = QAccessible::queryAccessibleInterface(&b.slider);
        QVERIFY(access);
        QCOMPARE(access->role(), QAccessible::Slider);
        QCOMPARE(access->text(QAccessible::Name), QStringLiteral("Size"));
        QCOMPARE(access->text(QAccessible::Value), QStringLiteral("24 px"));
        QVERIFY(access->valueInterface());
        QCOMPARE(access->valueInterface()->maximumValue().toDouble(), 400.0);
        access->valueInterface()->setCurrentValue(50);
        QCOMPARE(b.slider.value(), 50.0);
        QCOMPARE(b.changed.count(), 1);
    }

    void aSwitchIsPressedByItsLabelAndByTheKeyboard() {
        QWidget window;
        ChromeToggle toggle(QStringLiteral("Smooth edges"), &window);
        toggle.resize(toggle.sizeHint());
        window.show();
        const auto knobAt = [&toggle](int x) {
            return toggle.grab().toImage().pixelColor(Metrics::kSpace4 + x, toggle.height() / 2);
        };
        const int half = Metrics::kSwitchHeight / 2;
        QCOMPARE(knobAt(half), QirnKitHost::colors().dim);
        QTest::mouseClick(&toggle, Qt::LeftButton, {}, {toggle.width() - 4, 4});
        QVERIFY(toggle.isChecked());
        QCOMPARE(knobAt(Metrics::kSwitchWidth - half), QirnKitHost::colors().onAccent);
        toggle.setFocus();
        QTest::keyClick(&toggle, Qt::Key_Space);
        QVERIFY(!toggle.isChecked());
        QCOMPARE(QAccessible::queryAccessibleInterface(&toggle)->text(QAccessible::Name),
                 QStringLiteral("Smooth edges"));
    }
};

QIRN_TEST(tst_KitSlider)
#include "tst_KitSlider.moc"
