#include "app/files/BrushPreviewCache.h"
#include "brush/BrushLibrary.h"
#include "brush/BrushPreview.h"
#include "kit/controls/ChromeSlider.h"
#include "kit/controls/ChromeToggle.h"
#include "kit/controls/ScrollColumn.h"
#include "shell/panels/brush/BrushPanel.h"
#include "support/Window.h"

#include <future>

#include <QComboBox>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QListView>
#include <QMenu>

using namespace qirn;
using namespace qirn::test;

namespace {

BrushSettings brushOfSize(double size) {
    BrushSettings brush = *BrushLibrary::named("Studio Pen");
    brush.size = size;
    return brush;
}

/// Everything that is asked for is there afterwards.
void finishPreviews() {
    BackgroundQueue::previews().finish();
    QCoreApplication::processEvents();
}

/// The keys of the settings in which two brushes differ.
QStringList differences(const BrushSettings& a, const BrushSettings& b) {
    QStringList keys;
    for (const BrushField& field : kBrushFields)
        if (field.number ? a.*field.number != b.*field.number : a.*field.flag != b.*field.flag)
            keys << field.key;
    if (a.kind != b.kind) keys << "kind";
    return keys;
}

/// The real window with the brush panel.
struct Shown : Window {
    Shown() { model.setInspectorTab(InspectorTab::brush); }

    const BrushSettings& brush() { return model.brushes().activeBrush(); }
    BrushPanel& panel() { return find<BrushPanel>(); }
    QListView& list() { return find<QListView>("brushPresets"); }
    QStringList rows() {
        QStringList texts;
        for (int i = 0; i < list().model()->rowCount(); ++i)
            texts << list().model()->index(i, 0).data().toString();
        return texts;
    }
    QPoint placeOf(const QString& name) {
        return list().visualRect(list().model()->index(static_cast<int>(rows().indexOf(name)), 0)).center();
    }
    QString controls() {
        QStringList names;
        for (const QWidget* control : panel().findChildren<QWidget*>(QRegularExpression("^brush\\.")))
            if (control->isVisible()) names << control->objectName().mid(6);
        return names.join(", ");
    }
};

} // namespace

class tst_BrushPanel : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QirnKit::install("Qirn Paint"); }

    void aPreviewComesFromTheBackgroundOnceForEachBrushAndScale() {
        BrushPreviewCache previews;
        QSignalSpy ready(&previews, &BrushPreviewCache::ready);
        for (const double scale : {1.0, 1.5}) {
            QVERIFY(previews.image(brushOfSize(9), scale).isNull());
            QVERIFY(previews.image(brushOfSize(9), scale).isNull());
            finishPreviews();
            const QImage image = previews.image(brushOfSize(9), scale);
            QCOMPARE(image.size(), QSize(180, 40) * scale);
            QCOMPARE(image.convertToFormat(QImage::Format_RGBA8888_Premultiplied),
                     BrushPreview::render(brushOfSize(9), 180, 40, {0.95, 0.95, 0.97}, scale));
        }
        QCOMPARE(ready.count(), 2);
        for (int i = 0; i < 400; ++i) previews.image(brushOfSize(10 + i), 1);
        finishPreviews();
        QCOMPARE(previews.kept(), std::size_t(1)); // after 401
        QVERIFY(!previews.image(brushOfSize(409), 1).isNull());
    }

    void theBrushInHandGoesFirstAndOnlyAsItIsNow() {
        auto previews = std::make_unique<BrushPreviewCache>();
        std::promise<void> held;
        BackgroundQueue::previews().run([go = held.get_future().share()] { go.wait(); });
        for (int i = 1; i <= 3; ++i) previews->image(brushOfSize(i), 1);
        for (int i = 11; i <= 13; ++i) previews->image(brushOfSize(i), 1, BrushPreviewCache::Turn::next);
        bool nowWasFirst = false;
        connect(previews.get(), &BrushPreviewCache::ready, this, [&] {
            if (previews->kept() == 1) nowWasFirst = !previews->image(brushOfSize(13), 1).isNull();
        });
        held.set_value();
        finishPreviews();
        QVERIFY(nowWasFirst);
        QCOMPARE(previews->kept(), std::size_t(4));
        previews->image(brushOfSize(20), 1);
        previews.reset(); // what it waits for is dropped
        finishPreviews();
    }

    /// Each control moves one setting, and there is none without a control.
    void everySettingHasItsControl() {
        Shown w;
        QSet<QString> set;
        for (const char* name : {"Spray Can", "Blur"}) {
            w.model.brushes().choose(*BrushLibrary::named(name));
            w.set(&BrushSettings::pressureSize, true);
            for (QWidget* control : w.panel().findChildren<QWidget*>(QRegularExpression("^brush\\."))) {
                if (!control->isVisible()) continue;
                const BrushSettings before = w.brush();
                if (auto* slider = qobject_cast<ChromeSlider*>(control))
                    slider->enter(slider->scale().upper - slider->scale().step * 3);
                if (auto* toggle = qobject_cast<ChromeToggle*>(control)) toggle->click();
                if (auto* type = qobject_cast<QComboBox*>(control)) Q_EMIT type->activated(1);
                const QStringList changed = differences(before, w.brush());
                QVERIFY2(changed.size() == 1, qPrintable(control->objectName() + ": " + changed.join(' ')));
                set << changed.front();
                w.model.brushes().setActiveBrush(before);
            }
        }
        QCOMPARE(set.size(), 25);
        w.model.brushes().choose(*BrushLibrary::named("Fine Liner"));
        QCOMPARE(w.controls(),
                 "Type, Size, Opacity, Flow, Hardness, Spacing, Stabilizer, Pressure → size, "
                 "Pressure → opacity, Pressure → flow, Roundness, Angle, Texture, Grain scale, "
                 "Size jitter, Opacity jitter, Scatter, Angle jitter, Airbrush build-up, Spray droplets");
        QCOMPARE(w.find<ChromeSlider>("brush.Grain scale").valueText(), "1.00×");
        w.set(&BrushSettings::airbrush, true);
        QCOMPARE(w.find<ChromeSlider>("brush.Spray rate").valueText(), "20/s");
    }

    void presetsAreFoundAndChosenByPointerAndKeys() {
        Shown w;
        QCOMPARE(w.rows().mid(0, 5),
                 (QStringList{"Pens", "Studio Pen", "Fine Liner", "Ballpoint", "Pencils"}));
        QTest::mouseClick(w.list().viewport(), Qt::LeftButton, {}, w.placeOf("Ballpoint"));
        QCOMPARE(w.brush().name, "Ballpoint");
        w.list().setFocus();
        QTest::keyClick(&w.list(), Qt::Key_Down); // over the next category's title
        QCOMPARE(w.brush().name, "Ballpoint");
        QCOMPARE(w.list().selectionModel()->selectedRows().value(0).data().toString(), "Ballpoint");
        QTest::keyClick(&w.list(), Qt::Key_Return);
        QCOMPARE(w.brush().name, "Pencil HB");
        QTest::keyClick(&w.list(), Qt::Key_E); // is the canvas's
        QVERIFY(w.model.tool() == Tool::eraser);
        QCOMPARE(w.rows().front(), "Erasers");
        auto& search = w.find<QLineEdit>("searchBrushes");
        search.setFocus();
        QTest::keyClicks(&search, "soft air");
        QCOMPARE(w.rows(), (QStringList{"Airbrush", "Airbrush Soft"}));
        QTest::keyClick(&search, Qt::Key_Return);
        QVERIFY(w.model.tool() == Tool::brush && w.brush().name == "Airbrush Soft");
        QCOMPARE(QApplication::focusWidget(), &w.canvas());
        search.setFocus();
        QTest::keyClick(&search, Qt::Key_Escape);
        QCOMPARE(QApplication::focusWidget(), &w.canvas());
        QCOMPARE(w.rows().front(), "Pens");
        w.model.brushes().choose(*BrushLibrary::named("Pastel Grain"));
        for (const bool open : {false, true}) {
            w.click("showPresets");
            QCOMPARE(w.list().isVisible(), open);
        }
        QWidget& sight = *w.find<BrushPanel>().findChild<ScrollColumn*>()->viewport();
        QTRY_VERIFY(sight.rect().contains(w.list().mapTo(&sight, w.placeOf("Pastel Grain"))));
    }

    void aChangedBrushIsMarkedAndKept() {
        Shown w;
        QVERIFY(!w.shows<QWidget>("brushChanged") && !w.find<QWidget>("resetBrush").isEnabled());
        w.set(&BrushSettings::flow, 0.5);
        QVERIFY(w.shows<QWidget>("brushChanged"));
        w.click("resetBrush");
        QVERIFY(!w.shows<QWidget>("brushChanged") && w.brush().flow == 1);
        QVERIFY(!w.shows<QWidget>("updateBrush"));
        w.set(&BrushSettings::flow, 0.5);
        auto& name = w.find<QLineEdit>("brushName");
        name.setFocus();
        QTest::keyClicks(&name, "Rain & Fog");
        w.click("saveBrush");
        QCOMPARE(w.brush().name, "Rain & Fog");
        QCOMPARE(w.rows().mid(w.rows().size() - 2), (QStringList{"My Brushes", "Rain & Fog"}));
        w.set(&BrushSettings::flow, 0.25);
        w.click("updateBrush");
        QCOMPARE(w.model.brushes().userBrushes().front().flow, 0.25);
        for (const char* preset : {"Fine Liner", "Rain & Fog"}) {
            QContextMenuEvent event(QContextMenuEvent::Mouse, w.placeOf(preset),
                                    w.list().viewport()->mapToGlobal(w.placeOf(preset)));
            QApplication::sendEvent(w.list().viewport(), &event);
        }
        const auto menus = w.list().findChildren<QMenu*>();
        QCOMPARE(menus.size(), 1);
        QCOMPARE(menus[0]->actions()[0]->text(), "Delete \"Rain && Fog\"…");
        w.desktop.answers = {0};
        menus[0]->actions()[0]->trigger();
        QVERIFY(w.model.brushes().userBrushes().empty() && !w.rows().contains("My Brushes"));
    }
};

QIRN_TEST(tst_BrushPanel)
#include "tst_BrushPanel.moc"
