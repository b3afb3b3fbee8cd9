#include "app/edits/LayerEdits.h"
#include "app/model/Colors.h"
#include "kit/controls/ChromeSlider.h"
#include "shell/ColorWells.h"
#include "shell/panels/ColorPlane.h"
#include "shell/panels/LayerRowDelegate.h"
#include "support/Window.h"

#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>

using namespace qirn;
using namespace qirn::test;

class tst_Panels : public QObject {
    Q_OBJECT

    static void clickRow(Window& w, int row, int x) {
        auto& list = w.find<QListWidget>("layers");
        const QRect rect = list.visualItemRect(list.item(row));
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, {rect.left() + x, rect.center().y()});
    }

private Q_SLOTS:
    void initTestCase() { QirnKit::install("Qirn Paint"); }

    void rowsShowTheStackFromTheTopAndChooseAndHide() {
        Window w;
        auto& list = w.find<QListWidget>("layers");
        w.click("newLayer");
        QCOMPARE(list.count(), 3);
        QCOMPARE(list.item(0)->text(), w.doc().layer(2).name);
        QCOMPARE(list.item(2)->text(), "Background");
        QCOMPARE(list.currentRow(), 0);
        w.model.undo();
        QCOMPARE(list.count(), 2);
        QCOMPARE(list.currentRow(), 0);
        clickRow(w, 1, 100);
        QCOMPARE(w.doc().activeIndex(), 0);
        clickRow(w, 0, 100);
        QCOMPARE(w.doc().activeIndex(), 1);
        QCOMPARE(w.doc().undoDepth(), 0); // choosing is no step
        clickRow(w, 1, 12);
        QVERIFY(!w.doc().layer(0).isVisible && w.doc().layer(1).isVisible);
        QCOMPARE(w.doc().activeIndex(), 1); // the eye chooses nothing
        QCOMPARE(w.lastStep(), "1 Visibility");
        w.model.undo();
        QVERIFY(w.doc().layer(0).isVisible);
        QCOMPARE(list.item(1)->checkState(), Qt::Checked);
        list.setFocus();
        QTest::keyClick(&list, Qt::Key_Down);
        QCOMPARE(w.doc().activeIndex(), 0);
        QTest::keyClick(&list, Qt::Key_Space);
        QVERIFY(!w.doc().layer(0).isVisible);
        QTest::keyClick(&list, Qt::Key_Up);
        w.click("deleteLayer");
        QCOMPARE(w.doc().layerCount(), 1);
        QCOMPARE(w.doc().layer(0).name, "Background");
    }

    void opacityIsLiveAndOneStep() {
        Window w;
        auto& slider = w.find<ChromeSlider>("layerOpacity");
        QTest::mousePress(&slider, Qt::LeftButton, {}, {slider.width() / 2, 10});
        QVERIFY(qAbs(w.doc().activeLayer().opacity - 0.5) < 0.02);
        QCOMPARE(w.doc().undoDepth(), 0);
        QTest::mouseRelease(&slider, Qt::LeftButton, {}, {slider.width() / 4, 10});
        QCOMPARE(w.lastStep(), "1 Layer Opacity");
        const double set = w.doc().activeLayer().opacity;
        QVERIFY(qAbs(set - 0.25) < 0.02);
        QTest::mouseClick(&slider, Qt::LeftButton, {}, {slider.width() / 4, 10}); // to where it is
        QCOMPARE(w.doc().undoDepth(), 1);
        // Undo before the wheel has come to rest takes back the opacity, and nothing comes after it.
        w.paint();
        sendWheel(slider, {5, 5}, {0, 120});
        w.click("headerUndo");
        QFocusEvent rest(QEvent::FocusOut);
        QApplication::sendEvent(&slider, &rest);
        QCOMPARE(w.doc().undoName(), "Brush Stroke");
        QCOMPARE(w.doc().redoName(), "Layer Opacity");
        w.model.undo();
        w.model.undo();
        QCOMPARE(slider.value(), 1.0);
    }

    void theBlendModeIsTheActiveLayersAndARowTellsWhatItsLayerIs() {
        Window w;
        auto& menu = w.find<QComboBox>("blendMode");
        QCOMPARE(menu.count(), kBlendModeCount);
        menu.setFocus();
        QTest::keyClick(&menu, Qt::Key_Down);
        QCOMPARE(w.doc().activeLayer().blendMode, BlendMode::multiply);
        QCOMPARE(w.lastStep(), "1 Blend Mode");
        clickRow(w, 1, 100);
        QCOMPARE(menu.currentIndex(), 0);
        QCOMPARE(w.doc().undoDepth(), 1);
        const auto marks = [&] {
            return w.find<QListWidget>("layers").item(1)->data(LayerRowDelegate::kMarksRole).toString();
        };
        QCOMPARE(marks(), QString());
        LayerEdits::setLayer(w.model, 0, "Change", [](Layer& layer) {
            layer.opacity = 0.5;
            layer.isClipping = layer.isLocked = layer.alphaLocked = true;
        });
        QCOMPARE(marks(), "Clip · Lock · α · 50%");
    }

    void wellsShowSwapAndResetTheColours() {
        Window w;
        w.model.colors().pick(PaintColor::fromBytes(10, 20, 30), Colors::AddRecent::no);
        auto& primary = w.find<ColorSquare>("primaryColor");
        QCOMPARE(primary.color(), QColor(10, 20, 30));
        // The part of the second colour that stands out behind the first.
        auto& second = w.find<ColorSquare>("secondaryColor");
        QTest::mouseClick(&second, Qt::LeftButton, {}, {second.width() - 3, second.height() - 3});
        QCOMPARE(primary.color(), QColor(Qt::white));
        w.click("swapColors");
        QCOMPARE(primary.color(), QColor(10, 20, 30));
        w.click("defaultColors");
        QCOMPARE(primary.color(), QColor(Qt::black));
        QCOMPARE(second.color(), QColor(Qt::white));
    }

    void aDragInThePlaneStaysWithItsPartAndGreyKeepsTheHue() {
        Window w;
        auto& plane = w.find<ColorPlane>();
        dragOver(plane, {0.5, 0.98}, {0.0, 0.0}); // from the strip of hues up across the square
        QCOMPARE(plane.color().h, 0.0);
        const HueColor before = plane.color();
        dragOver(plane, {0.9, 0.1}, {1.0, 1.5}); // from the square down past the strip
        QCOMPARE(plane.color().h, before.h);
        QCOMPARE(plane.color().v, 0.0);
        QCOMPARE(w.model.colors().primary().hex(), "#000000");
        QVERIFY(w.model.colors().recent().empty());
        w.model.colors().pick(PaintColor::fromHSV(0.6, 0.8, 0.9), Colors::AddRecent::no);
        const HueColor blue = plane.color();
        QVERIFY(qAbs(blue.h - 0.6) < 0.01);
        w.model.colors().pick(PaintColor::black(), Colors::AddRecent::no);
        QCOMPARE(plane.color(), (HueColor{blue.h, blue.s, 0}));
        w.model.colors().pick(PaintColor::white(), Colors::AddRecent::no);
        QCOMPARE(plane.color(), (HueColor{blue.h, 0, 1}));
        // A hex number is taken on Return, and a bad one changes nothing.
        auto& hex = w.find<QLineEdit>("hex");
        for (const char* typed : {"b3001b", "#12"}) {
            hex.setFocus();
            hex.setText(typed);
            QTest::keyClick(&hex, Qt::Key_Return);
            QCOMPARE(w.model.colors().primary().hex(), "#B3001B");
            QCOMPARE(w.model.colors().recent().size(), std::size_t(1));
            QCOMPARE(hex.text(), "#B3001B");
            QCOMPARE(QApplication::focusWidget(), &w.canvas()); // letters mean tools again
        }
    }
};

QIRN_TEST(tst_Panels)
#include "tst_Panels.moc"
