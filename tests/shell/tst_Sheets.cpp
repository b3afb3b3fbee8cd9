#include "app/commands/CommandRows.h"
#include "app/text/TextRenderer.h"
#include "compositing/CompositeInputs.h"
#include "formats/ImageExport.h"
#include "kit/controls/ChromeSegments.h"
#include "kit/controls/ChromeSlider.h"
#include "kit/controls/NumberField.h"
#include "shell/sheets/FontMenu.h"
#include "shell/sheets/RecoveryRow.h"
#include "shell/sheets/SheetHost.h"
#include "shell/sheets/TextPreview.h"
#include "support/FileFaults.h"
#include "support/Window.h"

#include <thread>

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTreeWidget>

using namespace qirn;
using namespace qirn::test;

namespace {

struct SheetWindow : Window {
    Sheet& sheet() { return *find<SheetHost>().sheet(); }
    template <class Control> Control& control(const char* name) {
        for (Control* control : sheet().findChildren<Control*>())
            if (control->accessibleName() == name || control->property("text") == name) return *control;
        qFatal("The sheet has no %s.", name);
    }
    void type(const char* field, const QString& text) {
        auto& line = control<QLineEdit>(field);
        line.setFocus();
        line.selectAll();
        QTest::keyClicks(&line, text);
    }
    void press(const char* button) { QTest::mouseClick(&control<QPushButton>(button), Qt::LeftButton); }
    bool says(const QString& text) {
        const auto labels = sheet().findChildren<QLabel*>();
        return std::any_of(labels.begin(), labels.end(),
                           [&](const QLabel* label) { return label->text() == text; });
    }
    void answer(Qt::Key key) { // the work follows on the next turn
        QTest::keyClick(QApplication::focusWidget(), key);
        QCoreApplication::processEvents();
    }
};

/// Other calls under a window, whose previews are read in the background: they end before the calls do.
struct CallsUnderWindow {
    explicit CallsUnderWindow(FileCalls changed) : calls(std::move(changed)) {}
    CallsUnderWindow(const CallsUnderWindow&) = delete;
    CallsUnderWindow& operator=(const CallsUnderWindow&) = delete;
    ~CallsUnderWindow() {
        for (BackgroundQueue* queue :
             {&BackgroundQueue::files(), &BackgroundQueue::ownFiles(), &BackgroundQueue::previews()})
            queue->finish();
    }
    FileCallsInstead calls;
};

} // namespace

class tst_Sheets : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void underASheetNothingElseIsInReach() {
        for (const PaintSheet& which :
             {PaintSheet{PaintSheet::Kind::text, {10, 20}}, PaintSheet{PaintSheet::Kind::newDocument},
              PaintSheet{PaintSheet::Kind::exportPicture}, PaintSheet{PaintSheet::Kind::imageSize},
              PaintSheet{PaintSheet::Kind::canvasSize}, PaintSheet{PaintSheet::Kind::recovery}}) {
            SheetWindow w;
            w.paint();
            const QString step = w.lastStep();
            const Tool tool = w.model.tool();
            w.canvas().setFocus();
            w.model.showSheet(which);
            QTRY_VERIFY(w.sheet().isAncestorOf(QApplication::focusWidget()));
            // The sheet lies whole on the window, and Tab stays on it, both ways.
            QVERIFY(w.view.rect().contains({w.sheet().mapTo(&w.view, QPoint()), w.sheet().size()}));
            QSet<QWidget*> reached;
            for (int i = 0; i < 60; ++i) {
                QTest::keyClick(QApplication::focusWidget(), i < 30 ? Qt::Key_Tab : Qt::Key_Backtab);
                QVERIFY(w.sheet().isAncestorOf(QApplication::focusWidget()));
                reached << QApplication::focusWidget();
            }
            QVERIFY2(reached.size() >= (which.kind == PaintSheet::Kind::recovery ? 1 : 2),
                     qPrintable(QString::number(reached.size())));
            // Neither keys nor commands nor the pointer reach the picture.
            w.sheet().setFocus();
            for (const auto key : {Qt::Key_E, Qt::Key_Delete, Qt::Key_X, Qt::Key_BracketLeft, Qt::Key_Up})
                QTest::keyClick(w.view.focusWidget(), key);
            for (const CommandRow& row : commandRows()) {
                if (!row.name || row.inText || row.overSheets) continue;
                QVERIFY2(!w.find<QAction>(row.name).isEnabled(), row.name);
                runCommand(row, w.model, w.canvas());
            }
            for (auto* button : w.view.centralWidget()->findChildren<QAbstractButton*>()) button->click();
            QTest::keyClick(&w.view, Qt::Key_Z, Qt::ControlModifier);
            QTest::mouseClick(w.view.childAt(w.canvas().mapTo(&w.view, w.canvas().rect().center() / 3)),
                              Qt::LeftButton);
            QVERIFY(w.lastStep() == step && w.model.tool() == tool && w.model.sheet() == which &&
                    w.model.pictures().sessions().size() == 1);
            QTest::keyClick(w.view.focusWidget(), Qt::Key_Escape);
            QVERIFY(!w.model.sheet() && w.canvas().hasFocus() && w.canvas().isEnabled());
            QVERIFY(w.find<QAction>("duplicateLayer").isEnabled());
            w.paint();
            QVERIFY(w.lastStep() != step);
        }
    }

    void commandsOfTextGoToTheFieldOfTheSheet() {
        SheetWindow w;
        w.paint();
        w.model.showSheet({PaintSheet::Kind::text, {10, 20}});
        auto& words = *w.sheet().findChild<QPlainTextEdit*>();
        QTRY_VERIFY(words.hasFocus());
        QTest::keyClicks(&words, "ab");
        const struct {
            const char* command;
            const char* text;
        } cases[] = {{"undo", ""}, {"redo", "ab"}, {"selectAll", "ab"}, {"cut", ""}, {"paste", "ab"}};
        for (const auto& [command, text] : cases) {
            w.find<QAction>(command).trigger();
            QVERIFY2(words.toPlainText() == text, command);
        }
        QCOMPARE(w.lastStep(), "1 Brush Stroke");
    }

    void aSheetThatIsLargerThanTheWindowScrolls() {
        SheetWindow w;
        auto& host = w.find<SheetHost>();
        host.setMaximumHeight(200);
        w.model.showSheet({PaintSheet::Kind::exportPicture});
        for (const auto key : {Qt::Key_Backtab, Qt::Key_Tab}) { // to the foot, and up again
            QTest::keyClick(w.view.focusWidget(), key);
            const QWidget& focus = *QApplication::focusWidget();
            const QRect seen(focus.mapTo(host.viewport(), QPoint()), focus.size());
            QVERIFY(host.viewport()->rect().intersects(seen.adjusted(0, 0, 0, 8 - seen.height())));
        }
    }

    void aNewCanvasIsWhatTheSheetSays() {
        SheetWindow w;
        w.set(&PaintPrefs::newDocTransparent, true);
        w.click("headerNew");
        QVERIFY(w.control<QLineEdit>("Name").hasFocus());
        auto& presets = *w.sheet().findChild<QTreeWidget*>();
        presets.setCurrentItem(presets.topLevelItem(2)->child(4)); // A4
        auto& width = w.control<NumberField>("Width");
        QVERIFY(w.control<QLineEdit>("Name").text() == "A4" && width.text() == "8.267 in");
        w.type("Name", "Cat");
        auto& units = w.control<QComboBox>("Units");
        units.setFocus();
        QTest::keyClick(&units, Qt::Key_Home);
        QVERIFY(width.text() == "2480 px" && w.control<NumberField>("Height").text() == "3508 px");
        w.press("Swap width ↔ height");
        QVERIFY(w.says("3508 × 2480 pixels · 8.7 megapixels") && presets.selectedItems().isEmpty());
        w.type("Width", "30,001");
        QVERIFY(w.says("Width and height must be 1 to 30,000 pixels."));
        QVERIFY(!w.control<QPushButton>("Create").isEnabled());
        QTest::keyClick(&width, Qt::Key_Return); // presses nothing
        QVERIFY(w.model.sheet());
        w.type("Width", "30.000");
        QVERIFY(w.says("This is a very large canvas. Each layer uses about 297 MB of memory."));
        w.type("Width", "1 200");
        w.type("DPI", "0");
        QVERIFY(!w.control<QPushButton>("Create").isEnabled());
        w.type("DPI", "150,5");
        w.answer(Qt::Key_Return);
        QVERIFY(!w.model.sheet() && w.session().name == "Cat" && !w.session().isDirty());
        QVERIFY(w.doc().grid() == TileGrid(1200, 2480) && w.doc().dpi == 150.5);
        QVERIFY(w.layer().isEmpty()); // as the preferences have it
        QCOMPARE(w.model.pictures().sessions().size(), std::size_t{2});
    }

    void imageSizeIsOneStepAndNoneWhereNothingChanges() {
        SheetWindow w;
        const uint64_t before = w.doc().fingerprint();
        const auto resize = [&w](const char* field, const QString& text) {
            w.find<QAction>("imageSize").trigger();
            if (*field) w.type(field, text);
            w.answer(Qt::Key_Return);
        };
        resize("", {});
        resize("Width", "400,0");
        QCOMPARE(w.doc().undoDepth(), int64_t{0});
        resize("DPI", "300"); // the pixels stay, their tiles too
        QVERIFY(w.lastStep() == "1 Image Size" && w.doc().dpi == 300 && w.session().isDirty());
        QCOMPARE(w.doc().fingerprint(), before);
        resize("Width", "800");
        QVERIFY(w.lastStep() == "2 Image Size" && w.doc().grid() == TileGrid(800, 600));
        w.model.undo();
        QVERIFY(w.doc().grid() == TileGrid(400, 300) && w.doc().dpi == 300);
        w.model.undo();
        QVERIFY(w.doc().fingerprint() == before && w.doc().dpi == 72);
        w.find<QAction>("imageSize").trigger();
        w.press("25%");
        w.type("Height", "60");
        QCOMPARE(w.control<NumberField>("Width").text(), "80 px");
        QTest::mouseClick(&w.control<QCheckBox>("Keep proportions"), Qt::LeftButton);
        w.type("Height", "1");
        QCOMPARE(w.control<NumberField>("Width").text(), "80 px");
        w.type("Height", "0.9");
        w.answer(Qt::Key_Return);
        QVERIFY(w.model.messages().hud() == "Size must be 1 to 30,000 pixels" && w.doc().undoDepth() == 0);
        w.find<QAction>("imageSize").trigger();
        QTest::mouseClick(&w.control<QCheckBox>("Keep proportions"), Qt::LeftButton);
        w.type("Width", "30000");
        w.type("Height", "20000");
        QVERIFY(w.says("This is a very large canvas. Each layer uses about 2400 MB of memory. "
                       "All 2 layers: up to 4800 MB."));
    }

    void theCanvasGrowsRoundItsAnchor() {
        SheetWindow w;
        w.fill({0, 0, 200, 10});
        const struct {
            const char *anchor, *side, *typed;
            IRect content;
        } cases[] = {{"Center", "Width", "403", {2, 0, 200, 10}},
                     {"Right", "Width", "500", {100, 0, 200, 10}},
                     {"Bottom left", "Width", "100", {0, 0, 100, 10}},
                     {"Bottom", "Height", "400", {0, 100, 200, 10}},
                     {"Right", "Width", "30001", {}}};
        for (const auto& [anchor, side, typed, content] : cases) {
            w.find<QAction>("canvasSize").trigger();
            w.press(anchor);
            w.type(side, typed);
            w.answer(Qt::Key_Return);
            if (content.isEmpty()) break;
            QVERIFY2(w.lastStep() == "2 Canvas Size" && w.layer().contentBounds() == content, anchor);
            w.model.undo();
        }
        QCOMPARE(w.model.messages().hud(), "Size must be 1 to 30,000 pixels");
        QCOMPARE(w.lastStep(), "1 Dot");
    }

    void theTextSheetPlacesWhatItsControlsSay() {
        SheetWindow w;
        w.canvas().setFocus();
        w.model.colors().swapColors();
        CanvasEdits::selectAll(w.model);
        const auto selection = w.doc().selection;
        TextSpec spec;
        spec.text = "Ab\nAbc";
        spec.fontFamily = "Inter";
        spec.size = 44;
        spec.bold = false;
        spec.italic = true;
        spec.alignment = 2;
        spec.color = w.model.colors().primary();
        spec.outline = true;
        spec.outlineColor = w.model.colors().secondary();
        spec.outlineWidth = 3;
        w.model.showSheet({PaintSheet::Kind::text, {50.9, 40.9}});
        w.control<FontMenu>("Font").setCurrentText(spec.fontFamily);
        Q_EMIT w.control<FontMenu>("Font").activated(0);
        QTest::mouseClick(&w.control<QCheckBox>("Bold"), Qt::LeftButton);
        QTest::mouseClick(&w.control<QCheckBox>("Italic"), Qt::LeftButton);
        QTest::mouseClick(w.control<ChromeSegments>("Alignment").findChildren<QAbstractButton*>()[2],
                          Qt::LeftButton);
        QVERIFY(!w.control<ChromeSlider>("Width").isVisible());
        QTest::mouseClick(&w.control<QCheckBox>("Outline (second color)"), Qt::LeftButton);
        w.control<ChromeSlider>("Width").enter(spec.outlineWidth);
        w.control<ChromeSlider>("Size").enter(spec.size);
        QTest::keyClicks(w.sheet().findChild<QPlainTextEdit*>(), "words");
        w.sheet().findChild<QPlainTextEdit*>()->setFocus();
        w.answer(Qt::Key_Escape); // out of what was typed
        QVERIFY(w.model.sheet());
        w.answer(Qt::Key_Escape);
        QVERIFY(!w.model.sheet() && w.lastStep() == "1 Select All");
        w.model.showSheet({PaintSheet::Kind::newDocument});
        w.answer(Qt::Key_Escape); // nothing was typed
        QVERIFY(!w.model.sheet());

        w.model.showSheet({PaintSheet::Kind::text, {50.9, 40.9}}); // what was chosen is kept
        auto* words = w.sheet().findChild<QPlainTextEdit*>();
        QTest::keyClicks(words, "Ab");
        QTest::keyClick(words, Qt::Key_Return); // breaks the line
        QTest::keyClicks(words, "Abc");
        QCoreApplication::processEvents();
        auto& preview = *w.sheet().findChild<TextPreview*>();
        const QImage shown = preview.grab().toImage().convertToFormat(QImage::Format_RGBA8888_Premultiplied);
        QTest::keyClick(words, Qt::Key_Return, Qt::ControlModifier);
        QVERIFY(!w.model.sheet() && w.lastStep() == "1 Select All"); // the sheet goes first
        QTRY_COMPARE(w.layer().name, "Text: Ab Abc");
        QCOMPARE(w.lastStep(), "2 Text");
        QCOMPARE(w.doc().selection, selection);
        const auto placed = w.layer().toBuffer();
        // The preview shows the picture as it is afterwards, with the words in the middle.
        const IRect words44 = *TextRenderer::bounds(spec);
        const QPointF corner(50 + words44.x - (shown.width() - words44.w) / 2.0,
                             40 + words44.y - (shown.height() - words44.h) / 2.0);
        const QImage picture = flattenedImage(w.doc());
        for (int y = 2; y < shown.height() - 2; ++y) {
            for (int x = 2; x < shown.width() - 2; ++x) {
                const QPoint on(x + static_cast<int>(std::lround(corner.x())),
                                y + static_cast<int>(std::lround(corner.y())));
                if (!picture.valid(on)) continue;
                const QRgb is = picture.pixel(on), seen = shown.pixel(x, y);
                QVERIFY2(std::abs(qRed(seen) - qRed(is)) <= 2 && std::abs(qBlue(seen) - qBlue(is)) <= 2,
                         qPrintable(QStringLiteral("%1 %2").arg(x).arg(y)));
            }
        }
        w.model.undo();
        CanvasEdits::placeText(w.model, spec, {50.9, 40.9});
        const IRect bounds = *w.layer().contentBounds();
        QVERIFY2(bounds.x >= 46 && bounds.x <= 56 && bounds.y >= 40 && bounds.h > 20,
                 qPrintable(bounds.description()));
        QCOMPARE(firstDifference(*placed, *w.layer().toBuffer()), QString());
        w.model.undo();
        for (const double at : {2.0, 2.9}) { // the corner is truncated, and not where the pixels begin
            CanvasEdits::placeText(w.model, spec, {at, at});
            const auto cut = w.layer().toBuffer();
            w.model.undo();
            CanvasEdits::placeText(w.model, spec, {2, 2});
            QCOMPARE(firstDifference(*cut, *w.layer().toBuffer()), QString());
            w.model.undo();
        }
        CanvasEdits::placeText(w.model, spec, {50, 40});
        spec.text = " \n\t ";
        CanvasEdits::placeText(w.model, spec, {50, 40});
        QCOMPARE(w.model.messages().hud(), "Type some text first");
        spec.text = QString::fromUtf8("More than twenty👩‍🎨four létters in words");
        CanvasEdits::placeText(w.model, spec, {50, 40});
        QCOMPARE(w.layer().name, QString::fromUtf8("Text: More than twenty👩‍🎨four lé"));
        QCOMPARE(w.doc().layerCount(), int64_t{4});
    }

    void theRecoverySheetBringsPicturesBackOneByOne() {
        SheetWindow w;
        w.model.showSheet({PaintSheet::Kind::recovery});
        QVERIFY(w.says("Nothing to recover.") && !w.control<QPushButton>("Recover All").isEnabled());
        w.model.closeSheet();
        QString copyOfFour;
        for (const char* name : {"One", "Two", "Three", "Four"}) {
            DocSession lost(std::make_unique<PaintDocument>(300, 200, 72, PaintColor(0, 0, 1)), name, {},
                            QUuid::createUuid(), DocSession::Dirty::yes);
            const bool isSaved = name == QLatin1String("Four");
            if (isSaved) lost.fileURL = QUrl::fromLocalFile(w.path(name));
            Recovery::write(lost, Recovery::Synchronously::yes);
            if (isSaved) writeFile(w.path(name), "by another program, perhaps");
            lost.copy.files.reset();
            copyOfFour = Recovery::fileURL(lost.id);
        }
        const auto names = [&w] {
            QStringList open;
            for (const SessionRef& session : w.model.pictures().sessions()) open << session->name;
            return open.join(u' ');
        };
        const auto main = std::this_thread::get_id();
        std::optional<CallsUnderWindow> calls(
            std::in_place, withEachCall(FileCalls::ofSystem(), [&](const char* call) {
                // A folder that may not answer.
                return qstrcmp(call, "stat") == 0 && std::this_thread::get_id() == main ? EIO : 0;
            }));
        w.model.showSheet({PaintSheet::Kind::recovery});
        QTRY_VERIFY(std::ranges::any_of(w.sheet().findChildren<QLabel*>(), [](const QLabel* label) {
            return label->text().endsWith(" · saved since");
        }));
        calls.reset();
        QVERIFY(w.says("Two") && w.says("300 × 200 px · 2 layer(s)"));
        QVERIFY(w.control<QPushButton>("Recover All").hasFocus());
        auto& row = *w.sheet().findChild<RecoveryRow*>();
        QTRY_COMPARE(row.grab().toImage().pixelColor(68, 48), QColor(Qt::blue)); // its preview
        const auto choose = [&w](const char* button) {
            w.press(button);
            QCoreApplication::processEvents();
        };
        w.press("Recover Two");
        w.press("Move Two to Trash"); // of a row that is gone by then
        QCoreApplication::processEvents();
        QVERIFY(w.says("One") && w.says("Three") && w.says("Four"));
        QVERIFY(!w.says("Two") && names() == "Two (recovered)" &&
                w.session().isDirty()); // in place of the starter
        const auto reopen = [&w] {
            w.model.closeSheet();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // and its locks
            w.model.showSheet({PaintSheet::Kind::recovery});
        };
        {
            const CallsUnderWindow noLocks(withEachCall(FileCalls::ofSystem(), [](const char* name) {
                return qstrcmp(name, "flock") == 0 ? ENOLCK : 0;
            }));
            reopen();
            for (const char* button : {"Recover Three", "Move Three to Trash", "Recover All"}) {
                w.desktop.asked.clear();
                choose(button); // and cancels
                QVERIFY(w.desktop.asked.size() == 1 && w.says("Three") && names() == "Two (recovered)");
            }
            w.desktop.asked.clear();
        }
        reopen();
        choose("Move Three to Trash");
        QVERIFY(!w.says("Three") && w.says("One") && w.says("Four"));
        const qint64 whole = QFileInfo(copyOfFour).size();
        QFile::resize(copyOfFour, whole - 700); // its preview and more
        choose("Recover Four");
        QCOMPARE(w.desktop.asked[0].title, "Couldn't recover Four");
        QCOMPARE(w.desktop.asked[0].buttons, QStringList({"OK", "Open What Can Be Read"}));
        QVERIFY(w.says("Four") && QFile::exists(copyOfFour));
        w.desktop.answers = {1};
        choose("Recover All");
        QVERIFY(!w.model.sheet() && w.desktop.asked.size() == 2);
        QVERIFY(names().contains("One (recovered)") && names().contains("Four (recovered)")); // of one second
    }

    void theExportSheetAsksAndRemembers() {
        SheetWindow w;
        LayerEdits::setActiveLayer(w.model, 0);
        LayerEdits::clearLayer(w.model);
        w.model.colors().setPrimary(PaintColor(0, 1, 0));
        w.model.colors().swapColors();
        w.store.setText("qirn.pt.exportFormat", "no such format");
        {
            w.model.showSheet({PaintSheet::Kind::exportPicture});
            QWidget& sheet = w.sheet();
            auto& formats = *sheet.findChild<QListWidget*>();
            auto& quality = *sheet.findChild<ChromeSlider*>();
            auto& background = *sheet.findChild<ChromeSegments*>();
            QCOMPARE(formats.count(), static_cast<int>(kExportFormats.size()));
            QCOMPARE(formats.currentRow(), 0); // a stored format that is none counts as PNG
            QVERIFY(!quality.isVisible());
            QCOMPARE(sheet.findChild<QLabel*>("facts")->text(), "400 × 300 px · 72 DPI · 2 layer(s)");
            QTest::keyClick(&formats, Qt::Key_Down);
            QVERIFY(quality.isVisible());
            QCOMPARE(quality.value(), 0.9);
            QTest::keyClick(&quality, Qt::Key_Home);
            QTest::mouseClick(background.findChildren<QAbstractButton*>()[2], Qt::LeftButton);
            w.desktop.savePaths = {w.path("out.jpg")};
            QTest::keyClick(&sheet, Qt::Key_Return);
            QVERIFY(!w.model.sheet());
            QVERIFY(w.desktop.proposedNames.isEmpty()); // the sheet goes first
        }
        QTRY_VERIFY(QFile::exists(w.path("out.jpg")));
        QCOMPARE(w.store.text("qirn.pt.exportFormat"), "jpeg");
        QCOMPARE(w.store.number("qirn.pt.jpegQuality"), std::optional(0.3));
        // The second color shows where the picture is transparent.
        QCOMPARE(bytesAt(w.path("out.jpg")),
                 ImageExport::data(w.doc(), ExportFormat::jpeg, 0.3, PaintColor(0, 1, 0)));
        w.model.showSheet({PaintSheet::Kind::exportPicture});
        QCOMPARE(w.sheet().findChild<ChromeSlider*>()->value(), 0.3);
    }
};

QIRN_TEST(tst_Sheets)
#include "tst_Sheets.moc"
