#include "kit/QirnKit.h"
#include "kit/controls/ChromeSlider.h"
#include "kit/controls/ChromeStepper.h"
#include "kit/controls/ChromeToggle.h"
#include "support/Studio.h"

#include <QAccessible>
#include <QComboBox>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTabBar>
#include <QVBoxLayout>

using namespace qirn;
using namespace qirn::test;

namespace {

/// A window of one slider 200 wide, between two fields that can take the focus.
struct Bench {
    QWidget window;
    QLineEdit before{&window};
    ChromeSlider slider;
    QLineEdit after{&window};
    QSignalSpy changed{&slider, &ChromeSlider::valueChanged};
    QSignalSpy finished{&slider, &ChromeSlider::editingFinished};

    Bench(const SliderScale& scale, const NumberFormat& format) : slider("Size", scale, format, &window) {
        window.resize(240, 200);
        slider.setGeometry(10, 50, 200, 28);
        before.setGeometry(10, 10, 200, 28);
        after.setGeometry(10, 90, 200, 28);
        QWidget::setTabOrder(&before, &slider);
        QWidget::setTabOrder(&slider, &after);
        showActive(window);
        before.setFocus();
    }
    QLineEdit& field() { return *slider.findChild<QLineEdit*>(); }
    void mouse(QEvent::Type type, double x, Qt::KeyboardModifiers modifiers = {}) {
        sendMouse(slider, type, {x, 14}, modifiers);
    }
    void wheel(int angle) { sendWheel(slider, {100, 14}, {0, angle}); }
};

const SliderScale kPercent{0, 1, 0.01};
const SliderScale kSizes{1, 400, 1, true};

} // namespace

class tst_KitSlider : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QirnKit::install("Qirn Paint"); }

    void aDragAnnouncesEachValueAndItsEndOnce() {
        Bench b(kPercent, NumberFormat::percent());
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
        b.slider.setValue(0.5); // with Shift a tenth as fast, from where the value is
        b.mouse(QEvent::MouseButtonPress, 20, Qt::ShiftModifier);
        QCOMPARE(b.slider.value(), 0.5);
        b.mouse(QEvent::MouseMove, 120, Qt::ShiftModifier);
        QCOMPARE(b.slider.value(), 0.55);
    }

    void aScaleHasEndsAndItsTextNoNegativeZero() {
        Bench b(kSizes, NumberFormat::pixels());
        b.slider.setValue(400);
        const QImage full = b.slider.grab({0, 0, 100, 28}).toImage();
        b.slider.setValue(1000); // a brush can be larger than its slider
        QCOMPARE(b.slider.valueText(), "1000 px");
        QCOMPARE(b.slider.grab({0, 0, 100, 28}).toImage(), full);
        b.slider.setFocus();
        QTest::keyClick(&b.slider, Qt::Key_Right);                 // no step beyond makes it smaller
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Return}) // the number as it is, and taken
            QTest::keyClick(QApplication::focusWidget(), key);
        b.mouse(QEvent::MouseButtonPress, 190, Qt::ShiftModifier);
        b.mouse(QEvent::MouseButtonRelease, 190, Qt::ShiftModifier);
        QCOMPARE(b.slider.value(), 1000.0);
        QCOMPARE(b.changed.count() + b.finished.count(), 0); // of what is only shown
        b.slider.setValue(1);
        QAccessibleInterface* access = QAccessible::queryAccessibleInterface(&b.slider);
        QVERIFY(access && access->role() == QAccessible::Slider && access->valueInterface());
        QCOMPARE(access->text(QAccessible::Name), "Size");
        QCOMPARE(access->text(QAccessible::Value), "1 px");
        QCOMPARE(access->valueInterface()->maximumValue().toDouble(), 400.0);
        access->valueInterface()->setCurrentValue(50);
        QVERIFY(b.slider.value() == 50 && b.changed.count() == 1);
        QCOMPARE(kSizes.valueAt(0.5), 101.0); // small sizes take more of the length
        for (const double size : {1.0, 2.0, 24.0, 399.0, 400.0})
            QCOMPARE(kSizes.valueAt(kSizes.placeOf(size)), size);
        // A notch is felt at large sizes and is one pixel at small ones.
        QCOMPARE(kSizes.stepped(3, 1), 4.0);
        QVERIFY(kSizes.stepped(200, 1) >= 204);
        QCOMPARE(kSizes.stepped(400, 1), 400.0);
        QCOMPARE(kSizes.stepped(1, -1), 1.0);
        QCOMPARE(NumberFormat::degrees().text(-0.2), "0°");
        QCOMPARE(NumberFormat::plain(1).text(-0.04), "0.0");
        QCOMPARE(NumberFormat::percent().text(0.335), "34%");
    }

    void theWheelStepsAWholeNotchAndFinishesAtRest() {
        Bench b(kPercent, NumberFormat::percent());
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

    void theWheelScrollsPastWhatHasNotTheFocus() {
        QWidget window;
        QScrollArea area(&window);
        auto* column = new QWidget;
        QVBoxLayout rows(column);
        auto* combo = new QComboBox;
        combo->addItems({"a", "b", "c"});
        auto* stepper = new ChromeStepper("Grow", "Grow %1 px", column);
        auto* slider = new ChromeSlider("Size", kPercent, NumberFormat::percent(), column);
        auto* tabs = new QTabBar;
        tabs->addTab("a");
        tabs->addTab("b");
        for (QWidget* widget : std::initializer_list<QWidget*>{combo, stepper, slider, tabs})
            rows.addWidget(widget);
        column->setMinimumHeight(900);
        area.setWidget(column);
        area.resize(200, 200);
        showActive(window);
        const auto sum = [&] {
            return combo->currentIndex() + stepper->value() + 100 * slider->value() + tabs->currentIndex();
        };
        const std::tuple<QWidget*, int> turned[] = {
            {combo, -120}, {stepper, 120}, {slider, 120}, {tabs, -120}};
        for (const auto& [widget, angle] : turned) {
            if (QWidget* focused = QApplication::focusWidget()) focused->clearFocus();
            const double before = sum();
            area.verticalScrollBar()->setValue(100);
            const auto turn = [widget = widget, angle = angle] { // goes on to the parent, as a hand's does
                QWheelEvent event({5, 5}, widget->mapToGlobal(QPointF(5, 5)), {}, {0, angle}, Qt::NoButton,
                                  {}, Qt::NoScrollPhase, false);
                QSpontaneKeyEvent::setSpontaneous(&event);
                qApp->notify(widget, &event);
            };
            turn();
            QVERIFY(sum() == before && area.verticalScrollBar()->value() != 100);
            widget->setFocus();
            turn();
            QCOMPARE(sum(), before + 1);
        }
    }

    void theKeyboardReachesItAndSetsIt() {
        Bench b(kPercent, NumberFormat::percent());
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
        Bench b(kPercent, NumberFormat::percent());
        b.after.setFocus();
        b.mouse(QEvent::MouseButtonDblClick, 100);
        QVERIFY(b.field().isVisible());
        QTest::keyClicks(&b.field(), "35 %");
        QTest::keyClick(&b.field(), Qt::Key_Return);
        QCOMPARE(b.slider.value(), 0.35);
        QVERIFY(b.changed.count() == 1 && b.finished.count() == 1 && !b.field().isVisible());
        QCOMPARE(QApplication::focusWidget(), &b.after); // the keys go back to where they were
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease,
                                QEvent::MouseButtonDblClick, QEvent::MouseButtonRelease})
            b.mouse(type, 150);
        QCOMPARE(b.changed.takeLast().front().toDouble(), 0.35); // what the first press set is taken back
        QCOMPARE(b.field().text(), "35");
        b.field().setText("33");
        b.before.setFocus(); // leaving the field takes the number
        QCOMPARE(b.slider.value(), 0.33);
        QCOMPARE(b.finished.count(), 3);
        QCOMPARE(QApplication::focusWidget(), &b.before);
    }

    void typingADigitOpensTheFieldAndEscapeLeavesTheValue() {
        Bench b({-180, 180, 1}, NumberFormat::degrees());
        b.slider.setFocus();
        QTest::keyClicks(&b.slider, "-");
        QVERIFY(b.field().isVisible());
        QTest::keyClicks(&b.field(), "45");
        QCOMPARE(b.field().text(), "-45");
        QTest::keyClick(&b.field(), Qt::Key_Return);
        QCOMPARE(b.slider.value(), -45.0);
        QTest::keyClicks(&b.slider, "9");
        QTest::keyClick(&b.field(), Qt::Key_Escape);
        QCOMPARE(b.slider.value(), -45.0);
        QCOMPARE(b.changed.count(), 1);
    }

    void whatIsTypedIsReadWithUnitsAndRefusedWhenItIsNoNumber() {
        Bench b(kSizes, NumberFormat::pixels());
        for (const auto& [text, expected] : {std::pair{"24", 24.0},
                                             {"24 px", 24.0},
                                             {"24PX", 24.0},
                                             {"12,5", 12.5},
                                             {"9000", 400.0},
                                             {"-4", 1.0},
                                             {"", 77.0},
                                             {"big", 77.0},
                                             {"nan", 77.0},
                                             {"inf", 77.0}}) {
            b.slider.setValue(77);
            b.mouse(QEvent::MouseButtonDblClick, 100);
            b.field().setText(text);
            QTest::keyClick(&b.field(), Qt::Key_Return);
            QVERIFY2(b.slider.value() == expected, text);
        }
    }

    void aSwitchIsPressedByItsLabelAndByTheKeyboard() {
        const Metrics& m = QirnKitHost::metrics();
        QWidget window;
        ChromeToggle toggle("Smooth edges", &window);
        toggle.resize(toggle.sizeHint());
        window.show();
        const auto knobAt = [&](int x) { return toggle.grab().toImage().pixelColor(x, toggle.height() / 2); };
        const int half = m.switchHeight / 2;
        QCOMPARE(knobAt(half), QirnKitHost::colors().dim);
        QTest::mouseClick(&toggle, Qt::LeftButton, {}, {toggle.width() - 4, 4});
        QVERIFY(toggle.isChecked());
        QTRY_COMPARE(knobAt(m.switchWidth - half), QirnKitHost::colors().onAccent);
        QVERIFY(toggle.style()->styleHint(QStyle::SH_Widget_Animation_Duration) <= 120);
        toggle.setFocus();
        QTest::keyClick(&toggle, Qt::Key_Space);
        QVERIFY(!toggle.isChecked());
        QCOMPARE(QAccessible::queryAccessibleInterface(&toggle)->text(QAccessible::Name), "Smooth edges");
    }
};

QIRN_TEST(tst_KitSlider)
#include "tst_KitSlider.moc"
