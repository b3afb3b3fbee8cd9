#include "kit/QirnKit.h"
#include "kit/rows/ControlRows.h"
#include "support/Studio.h"

#include <QLabel>
#include <QPushButton>

using namespace qirn;
using namespace qirn::test;

namespace {

/// What the rows below set, and how often.
struct Sheet {
    double size = 1.0 / 3, width = 1.0 / 3;
    int below = 2, mode = 1, unit = 1;
    bool on = true;
    bool hasUnits = true;
    int changes = 0;
};

template <auto kField> auto get(const Sheet& sheet) {
    return sheet.*kField;
}
template <auto kField, class Value> void set(Sheet& sheet, Value value) {
    sheet.*kField = value;
    ++sheet.changes;
}

using Row = ControlRow<Sheet>;
const Row kRows[] = {
    {nullptr, Row::Section{"Shape"}},
    {nullptr,
     Row::Slider{"Size", {0, 1, 0.01}, NumberFormat::percent(), "Tip", get<&Sheet::size>, set<&Sheet::size>}},
    {nullptr,
     Row::Number{
         "Width", {-1e9, 1e9, 10}, NumberFormat::pixels(), nullptr, get<&Sheet::width>, set<&Sheet::width>}},
    {nullptr,
     Row::Stepper{"Below", "Layers below: %1", 0, 4, 2, nullptr, get<&Sheet::below>, set<&Sheet::below>}},
    {nullptr, Row::Toggle{"On", nullptr, get<&Sheet::on>, set<&Sheet::on>}},
    {nullptr,
     Row::Segments{"Mode", {"New", "Add", nullptr, nullptr}, nullptr, get<&Sheet::mode>, set<&Sheet::mode>}},
    {get<&Sheet::hasUnits>, Row::Picker{"Unit",
                                        [](const Sheet&) {
                                            return QStringList{"px", "in", "mm"};
                                        },
                                        nullptr, get<&Sheet::unit>, set<&Sheet::unit>}},
    {nullptr, Row::Button{"Reset", [](Sheet& sheet) { sheet = {.changes = sheet.changes + 1}; }}},
    {nullptr, Row::Note{"All of it can be undone."}},
    {nullptr, Row::Custom{[](Sheet&, QWidget* parent) -> QWidget* { return new QLabel("custom", parent); }}},
};

} // namespace

class tst_KitRows : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QirnKit::install("Qirn Paint"); }

    void rowsShowTheirTargetAndSetItOnlyWhereTheUserDoes() {
        for (const RowBox::Form form : {RowBox::Form::bar, RowBox::Form::column}) {
            Sheet sheet;
            int guarded = 0;
            const RowBox::Dress dress{[](const char* source) { return QString(source); },
                                      [&guarded](const std::function<void()>& body) { ++guarded, body(); }};
            QWidget window;
            ControlRows<Sheet> rows(sheet, kRows, form, dress, &window);
            rows.resize(form == RowBox::Form::bar ? QSize(1600, 40) : QSize(240, 600));
            showActive(window);
            auto& slider = *rows.findChild<ChromeSlider*>("Size");
            auto& field = *rows.findChild<NumberField*>("Width");
            auto& stepper = *rows.findChild<ChromeStepper*>("Below");
            auto& unit = *rows.findChild<QComboBox*>("Unit");

            const auto parts = rows.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
            for (qsizetype i = 1; i < parts.size(); ++i) { // in the order of the table
                const QPoint step = parts[i]->pos() - parts[i - 1]->pos();
                QVERIFY(form == RowBox::Form::bar ? step.x() > 0 : step.y() > 0);
            }
            QCOMPARE(parts.size(), qsizetype(std::size(kRows)));
            QCOMPARE(field.value(), 1.0 / 3);
            QCOMPARE(field.text(), "0 px");
            QCOMPARE(stepper.text(), "Layers below: 2");
            QCOMPARE(unit.currentText(), "in");
            QVERIFY(rows.findChild<ChromeToggle*>("On")->isChecked() && slider.toolTip() == "Tip");
            sheet.size = 0.5;
            sheet.hasUnits = false;
            field.setFocus();
            window.setFocus(); // looked at and left
            rows.refresh();
            QCOMPARE(slider.value(), 0.5);
            QVERIFY(!unit.isVisible() && sheet.changes == 0 && sheet.width == 1.0 / 3);

            sheet.hasUnits = true;
            rows.refresh();
            slider.enter(0.25);
            stepper.stepUp();
            QTest::mouseClick(rows.findChild<ChromeToggle*>("On"), Qt::LeftButton);
            QTest::mouseClick(rows.findChild<QAbstractButton*>("Mode New"), Qt::LeftButton);
            Q_EMIT unit.activated(2);
            QVERIFY(sheet.size == 0.25 && sheet.below == 4 && !sheet.on && sheet.mode == 0 &&
                    sheet.unit == 2);
            QVERIFY(sheet.changes == 5 && guarded == 5);
            QTest::mouseClick(rows.findChild<QPushButton*>("Reset"), Qt::LeftButton);
            rows.refresh();
            QVERIFY(sheet.changes == 6 && stepper.value() == 2);
        }
    }

    void aNumberFieldHoldsWhatItWasGivenUntilAnotherNumberIsTyped() {
        NumberField field("Width", {1, 30'000}, NumberFormat::plain(2), nullptr);
        QSignalSpy changed(&field, &NumberField::valueChanged);
        showActive(field);
        for (const auto& [typed, value] : {std::pair{"12.5", 12.5},
                                           {"12,25", 12.25},
                                           {"wide", 12.25},
                                           {"4\b", 12.25},
                                           {"7\x1b", 12.25}, // Escape
                                           {"0", 1.0},
                                           {"1e9", 30'000.0}}) {
            field.selectAll();
            for (const char key : std::string_view(typed))
                QTest::keyClick(&field, key == '\b'     ? Qt::Key_Backspace
                                        : key == '\x1b' ? Qt::Key_Escape
                                                        : QTest::asciiToKey(key));
            QTest::keyClick(&field, Qt::Key_Return);
            QCOMPARE(field.value(), value);
            QCOMPARE(field.text(), NumberFormat::plain(2).text(value));
        }
        for (const auto& [typed, value] : {std::pair{"1,920", 1920.0},
                                           {"30 000 px", 30'000.0},
                                           {"1.000.000", 1e6},
                                           {"1,5", 1.5},
                                           {"1,50", 1.5},
                                           {"0.500", 0.5},
                                           {"12,3456", 12.3456}})
            QCOMPARE(NumberFormat::pixels().value(typed), std::optional(value));
        QVERIFY(!NumberFormat::pixels().value("1,92,0") && NumberFormat::plain().value("1,920") == 1.92);
        QVERIFY(NumberFormat::upTo(2).text(10.5) == "10.5" && NumberFormat::upTo(2).text(100) == "100");
        const QLocale before;
        QLocale::setDefault(QLocale(QLocale::German)); // its point groups
        QCOMPARE(NumberFormat::upTo(2).text(-10'000.5), "-10000,5");
        for (const auto& [typed, value] : {std::pair{"1.920", 1920.0},
                                           {"1.920,5", 1920.5},
                                           {"1.5", 1.5},
                                           {"1,5", 1.5},
                                           {"0.125", 0.125},
                                           {"٣,٥", 3.5}})
            QCOMPARE(NumberFormat::plain(2).value(typed), std::optional(value));
        QLocale::setDefault(before);
        field.setValue(4.0 / 3);
        changed.clear();
        QTest::keyClick(&field, Qt::Key_Return);
        QVERIFY(field.text() == "1.33" && field.value() == 4.0 / 3 && changed.isEmpty());
        QTest::keyClick(&field, Qt::Key_Up);
        QCOMPARE(field.value(), 4.0 / 3 + 1);
        // A target that takes no less than 20 does not rewrite the 2 of a 25.
        connect(&field, &NumberField::valueChanged, &field,
                [&field](double typed) { field.setValue(std::max(typed, 20.0)); });
        field.selectAll();
        QTest::keyClicks(&field, "25");
        QCOMPARE(field.value(), 25.0);
        field.selectAll();
        QTest::keyClicks(&field, "7");
        QTest::keyClick(&field, Qt::Key_Return);
        QCOMPARE(field.text(), "20.00");
    }
};

QIRN_TEST(tst_KitRows)
#include "tst_KitRows.moc"
