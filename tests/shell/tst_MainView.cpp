#include "app/desktop/QtDesktop.h"
#include "app/model/CanvasStatus.h"
#include "kit/controls/ChromeSlider.h"
#include "kit/controls/MessageBox.h"
#include "shell/HudBubble.h"
#include "shell/StatusItems.h"
#include "shell/header/DocTab.h"
#include "support/PSDFiles.h"
#include "support/Window.h"

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>

using namespace qirn;
using namespace qirn::test;

class tst_MainView : public QObject {
    Q_OBJECT

    static QList<DocTab*> tabs(Window& w) {
        QList<DocTab*> shown;
        for (DocTab* tab : w.view.findChildren<DocTab*>())
            if (tab->isVisible()) shown << tab;
        std::sort(shown.begin(), shown.end(),
                  [](const DocTab* a, const DocTab* b) { return a->x() < b->x(); });
        return shown;
    }
    static QString status(Window& w, const char* item) { return w.find<StatusText>(item).text(); }

private Q_SLOTS:
    void initTestCase() { QirnKit::install("Qirn Paint"); }

    void theWindowHasItsSizeAndKeysAreThoseOfThisMachine() {
        Window w;
        QCOMPARE(w.view.menuBar()->actions().size(), 8);
        auto& scroller = static_cast<QScrollArea&>(*w.view.centralWidget());
        const QSize room =
            w.view.screen()->availableSize() - QSize(1, 25); // less a frame: smaller than the content
        QVERIFY(w.view.size().boundedTo(room) == w.view.size() && w.view.minimumWidth() <= room.width());
        w.view.setMinimumSize(1, 1); // as a desktop can make it
        w.view.resize(500, 300);
        QCOMPARE(scroller.widget()->size(), QSize(960, 640));
        for (const ToolRow& row : kTools) {
            w.model.setTool(row.tool);
            const QSize least = scroller.widget()->layout()->minimumSize();
            QVERIFY2(least.width() <= 960 && least.height() <= 640, row.id);
        }
        QTest::keyClick(&w.find<QAbstractButton>("headerSave"), Qt::Key_Down);
        QCOMPARE(scroller.verticalScrollBar()->value(), 0); // arrows move pixels
        for (QWidget* widget : w.view.findChildren<QWidget*>()) {
            for (const char16_t sign : u"⌘⌥⇧") // keys are named as this machine names them
                if (sign) QVERIFY2(!widget->toolTip().contains(QChar(sign)), qPrintable(widget->toolTip()));
        }
    }

    void theFrameNamesThePictureAndComesBack() {
        Window w;
        QVERIFY(w.view.windowTitle() == "Test[*] — Qirn Paint" && !w.view.isWindowModified());
        w.paint();
        QVERIFY(w.view.isWindowModified());
        w.model.pictures().newDocument(9, 9, 72, std::nullopt, "a[*]b");
        QVERIFY(w.view.windowTitle() == "a[*][*]b[*] — Qirn Paint" && !w.view.isWindowModified());
        w.view.setGeometry(30, 40, 1100, 760);
        w.desktop.answers = {2};
        QVERIFY(w.view.close());
        MainView again(w.model);
        QCOMPARE(again.size(), QSize(1100, 760));
        again.showMaximized();
        QVERIFY(again.close());
        QVERIFY(MainView(w.model).isMaximized());
        again.showFullScreen();
        QVERIFY(again.close() && !MainView(w.model).isFullScreen());
        w.store.setText("qirn.pt.windowPlace", "nonsense");
        QVERIFY(MainView(w.model).width() > 400);
    }

    void thePictureLivesFromNewCanvasToQuit() {
        constexpr int kSave = 0, kCancel = 1, kDont = 2;
        Window w;
        const auto command = [&w](const char* name) {
            w.find<QAction>(name).trigger();
            for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
        };
        const auto lost = [] { return QDir(AppFolders::autosave()).entryList({"*.qirnpaint"}, QDir::Files); };
        const QString path = w.path("Sea.qirnpaint");
        command("newCanvas");
        QTest::keyClicks(QApplication::focusWidget(), "Sea");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QTRY_COMPARE(w.session().name, "Sea");
        w.paint();
        command("save"); // the panel is cancelled
        QVERIFY(w.session().isDirty() && !QFile::exists(path));
        QCOMPARE(w.desktop.proposedNames, QStringList("Sea.qirnpaint"));
        w.desktop.savePaths = {path};
        command("save");
        QVERIFY(!w.session().isDirty() && QFile::exists(path));
        QCOMPARE(w.model.messages().hud(), "Saved Sea.qirnpaint");
        const QByteArray saved = bytesAt(path);
        w.paint();
        const uint64_t painted = w.doc().fingerprint();
        for (const char* leaves : {"closePicture", "quit"}) {
            w.desktop.answers = {kCancel};
            command(leaves);
            QVERIFY2(w.session().isDirty() && w.doc().fingerprint() == painted && w.view.isVisible(), leaves);
        }
        QCOMPARE(bytesAt(path), saved);
        QCOMPARE(w.desktop.asked.back().title, "Save changes to \"Sea\"?");
        QCOMPARE(w.desktop.asked.back().buttons, QStringList({"Save…", "Cancel", "Don't Save"}));
        w.desktop.answers = {kSave};
        command("closePicture");
        QVERIFY(w.session().name == "Test" && bytesAt(path) != saved && lost().isEmpty());
        w.model.files().open(path);
        QCOMPARE(w.doc().fingerprint(), painted);
        w.paint();
        w.desktop.answers = {kDont};
        command("quit");
        QVERIFY(!w.view.isVisible() && lost().isEmpty());
        QVERIFY(!QDir(w.path("data/Trash/files")).isEmpty()); // where it can be taken out again
    }

    void aTabStandsForEachPictureAndSelectsIt() {
        Window w;
        w.model.pictures().newDocument(1920, 1080, 72, PaintColor::white(), {});
        QCOMPARE(status(w, "size"), "1920 × 1080 px · 72 DPI");
        QTRY_COMPARE(tabs(w).size(), 2);
        QCOMPARE(tabs(w)[0]->text(), "Test");
        QVERIFY(tabs(w)[1]->isChecked());
        for (int i = 0; i < 2; ++i) { // the current one stays marked
            QTest::mouseClick(tabs(w)[0], Qt::LeftButton);
            QCOMPARE(w.session().name, "Test");
            QVERIFY(tabs(w)[0]->isChecked() && !tabs(w)[1]->isChecked());
        }
        QWidget* at = tabs(w)[0];
        at->setFocus(Qt::TabFocusReason);
        for (const int i : {1, 0}) {
            QTest::keyClick(at, i == 1 ? Qt::Key_Right : Qt::Key_Left);
            at = QApplication::focusWidget();
            QVERIFY(at == tabs(w)[i] && tabs(w)[i]->isChecked());
        }
        QStringList walked;
        for (int i = 0; i < 5; ++i) { // the other tab is the arrow keys'
            QTest::keyClick(at, Qt::Key_Tab);
            at = QApplication::focusWidget();
            walked << at->objectName();
        }
        QCOMPARE(walked,
                 QStringList({"headerNew", "headerOpen", "headerSave", "headerExport", "headerUndo"}));
        QTest::mouseClick(tabs(w)[1]->findChild<QAbstractButton*>(), Qt::LeftButton);
        QCOMPARE(w.model.pictures().sessions().size(), std::size_t(1));
        QTRY_COMPARE(tabs(w).size(), 1);
        w.desktop.answers.push_back(2); // Don't Save
        QTest::keyClick(tabs(w)[0], Qt::Key_Delete);
        QCOMPARE(w.session().name, "Untitled");
    }

    void theCurrentTabIsInSightAndTheOthersInAList() {
        Window w;
        auto& list = w.find<QAbstractButton>("headerPictures");
        auto& fresh = w.find<QAbstractButton>("headerNew");
        const auto inSight = [](QWidget* tab) {
            const QWidget& strip = *tab->parentWidget()->parentWidget();
            return strip.rect().contains(QRect(tab->mapTo(&strip, QPoint()), tab->size()));
        };
        QVERIFY(!list.isVisible());
        for (int i = 0; i < 30; ++i)
            w.model.pictures().newDocument(9, 9, 72, PaintColor::white(), QStringLiteral("No & %1").arg(i));
        QTRY_VERIFY(list.isVisible());
        QTest::qWait(30); // all is laid out
        QVERIFY(tabs(w).last()->isChecked() && inSight(tabs(w).last()));
        QTRY_VERIFY(fresh.x() > list.x() && fresh.x() < w.find<QWidget>("headerOpen").x());
        QTest::mouseClick(&list, Qt::LeftButton);
        const QList<QAction*> rows = list.findChild<QMenu*>()->actions();
        QVERIFY(rows.size() == 31 && rows[30]->isChecked() && rows[3]->text() == "No && 2");
        rows[3]->trigger();
        list.findChild<QMenu*>()->close();
        QTRY_VERIFY(w.session().name == "No & 2" && inSight(tabs(w)[3]));
        for (int left = 30; left >= 2; --left) {
            QTest::mouseClick(tabs(w)[0], Qt::MiddleButton);
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            QCOMPARE(tabs(w).size(), left);
        }
        QTRY_VERIFY(!list.isVisible());
    }

    void theDotStaysUntilASave() {
        Window w;
        QVERIFY(!tabs(w)[0]->showsDot());
        w.paint();
        QVERIFY(tabs(w)[0]->showsDot());
        const auto tip = [&w] {
            for (const QWidget* part : tabs(w)[0]->findChildren<QWidget*>())
                if (part->toolTip().startsWith("Not saved yet")) return part->toolTip();
            return QString();
        };
        QCOMPARE(tip(), "Not saved yet");
        w.model.safety().autosaveTick();
        QTRY_COMPARE(tip(), "Not saved yet (autosaved for safety)");
        for (const auto& [button, depth, beeps] : {std::tuple{"headerRedo", 1, 1},
                                                   {"headerUndo", 0, 1},
                                                   {"headerUndo", 0, 2},
                                                   {"headerRedo", 1, 2},
                                                   {"headerUndo", 0, 2}}) {
            w.click(button);
            QVERIFY(w.doc().undoDepth() == depth && w.desktop.beeps == beeps);
        } // back to the saved state is still not saved
        QVERIFY(tabs(w)[0]->showsDot());
        w.desktop.savePaths = {w.path("kept.qirnpaint")};
        w.click("headerSave");
        QVERIFY(!tabs(w)[0]->showsDot());
        QCOMPARE(tabs(w)[0]->text(), "kept");
    }

    void whatAPhotoshopFileLostIsToldUntilASave() {
        Window w;
        PSDRecord masked;
        masked.mask = big32(0) + big32(0) + big32(2) + big32(2) + QByteArray(4, '\0');
        const QString path = w.folder.filePath("cat.psd");
        writeFile(path, PSDParts{.records = {masked, {.blocks = psdBlock("lfx2", "abcd")}}}.joined());
        w.model.files().open(path);
        QTRY_COMPARE(tabs(w).size(), 2);
        const QString told = "Opened without: masks, layer effects.";
        QCOMPARE(w.model.messages().hud(), told);
        QCOMPARE(tabs(w)[1]->toolTip(), QStringLiteral("cat (from PSD)\n") + told);
        w.desktop.savePaths.push_back(w.folder.filePath("kept.qirnpaint"));
        w.click("headerSave");
        QCOMPARE(tabs(w)[1]->toolTip(), w.folder.filePath("kept.qirnpaint"));
    }

    void whatIsTypedStaysInItsField() {
        Window w;
        w.paint();
        w.model.transform().beginTransform();
        const TransformState floating = *w.model.transform().state();
        const int64_t changes = w.doc().changeCount();
        auto& hex = w.find<QLineEdit>("hex");
        auto& slider = w.find<ChromeSlider>("Rotate");
        auto* number = slider.findChild<QLineEdit*>();
        const auto open = [&](QLineEdit* field) {
            slider.setFocus();
            field == number ? QTest::keyClick(&slider, Qt::Key_Return) : hex.setFocus();
        };
        for (QLineEdit* field : {&hex, number}) {
            for (const int key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Left, Qt::Key_Right, Qt::Key_Backspace,
                                  Qt::Key_Delete, Qt::Key_Home, Qt::Key_End, Qt::Key_PageUp, Qt::Key_Space}) {
                for (int keys = 0; keys < 16; ++keys) {
                    if (key == Qt::Key_Space && keys > 1) continue;
                    open(field);
                    QTest::keyClick(field, static_cast<Qt::Key>(key), Qt::KeyboardModifiers(keys << 25));
                    QVERIFY2(QApplication::focusWidget() == field && slider.value() == 0 &&
                                 w.model.transform().state()->center == floating.center,
                             qPrintable(QKeySequence(key | keys << 25).toString()));
                }
            }
            for (const Qt::Key end : {Qt::Key_Escape, Qt::Key_Return}) {
                open(field);
                QTest::keyClick(field, end);
                QVERIFY(QApplication::focusWidget() != field);
            }
            QVERIFY(w.model.transform().state() && w.doc().changeCount() == changes);
        }
        QCOMPARE(hex.text(), w.model.colors().primary().hex());
        hex.setFocus();
        hex.clear();
        QTest::keyClicks(&hex, "b");
        QCOMPARE(hex.text(), "b");
        QCOMPARE(w.model.tool(), Tool::move);
        open(number);
        QTest::keyClick(number, Qt::Key_J, Qt::ControlModifier); // no text's key
        QCOMPARE(w.doc().undoName(), "Duplicate Layer");
        auto& button = w.find<QWidget>("headerOpen"); // where a letter means the canvas
        button.setFocus();
        QTest::keyClick(&button, Qt::Key_E);
        QCOMPARE(w.model.tool(), Tool::eraser);
    }

    void theRailMarksTheToolAndSetsIt() {
        Window w;
        for (const ToolRow& row : kTools) {
            auto& button = w.find<QAbstractButton>(row.id);
            QCOMPARE(button.toolTip(),
                     QStringLiteral("%1 (%2)").arg(QLatin1String(row.title)).arg(QLatin1Char(row.key)));
            QTest::mouseClick(&button, Qt::LeftButton);
            QTest::mouseClick(&button, Qt::LeftButton); // a second click takes no mark away
            QCOMPARE(w.model.tool(), row.tool);
            QVERIFY(button.isChecked());
            QCOMPARE(QApplication::focusWidget(), &w.canvas()); // the keys stay with the canvas
        }
        w.model.setTool(Tool::brush); // from elsewhere
        QVERIFY(w.find<QAbstractButton>("brush").isChecked());
        QVERIFY(!w.find<QAbstractButton>("zoom").isChecked());
    }

    void aMessageStandsOverTheCanvasAndLetsThePenThrough() {
        Window w;
        auto& bubble = w.find<HudBubble>();
        QVERIFY(!bubble.isVisible());
        w.model.messages().flash("Undo Brush Stroke");
        QVERIFY(bubble.isVisible());
        QCOMPARE(bubble.text(), "Undo Brush Stroke");
        QCOMPARE(w.canvas().childAt(bubble.geometry().center()), nullptr);
        const int middle = w.canvas().width() / 2;
        QVERIFY(qAbs(bubble.geometry().center().x() - middle) <= 1);
        w.model.messages().shownFor = 1;
        w.model.messages().flash(QString(500, u'm')); // longer than the canvas is wide
        QVERIFY(w.canvas().rect().contains(bubble.geometry()));
        QTRY_VERIFY(!bubble.isVisible());
    }

    void theStatusBarTellsOfTheCurrentPicture() {
        Window w;
        QCOMPARE(status(w, "size"), "400 × 300 px · 72 DPI");
        QCOMPARE(status(w, "layer"), "Layer: Layer 1");
        QCOMPARE(status(w, "undo"), "Undo: 0 steps");
        w.paint();
        QEvent leave(QEvent::Leave); // or the canvas goes on telling where the pointer is
        QApplication::sendEvent(&w.canvas(), &leave);
        QCOMPARE(status(w, "undo"), "Undo: 1 steps");
        QSignalSpy changed(&w.model, &PaintModel::changed);
        const int64_t before = w.doc().changeCount();
        w.model.announce(); // reading the model again writes nothing
        QVERIFY(changed.count() == 1 && w.doc().changeCount() == before);
        QVERIFY(!w.shows<StatusText>("rotation") && !w.shows<StatusText>("flip") &&
                !w.shows<StatusText>("stroke"));
        w.canvas().setRotation(-15);
        w.canvas().toggleFlipView();
        QTRY_COMPARE(status(w, "rotation"), "View rotated -15°");
        QCOMPARE(status(w, "flip"), "View flipped");
        w.canvas().actualPixels();
        QTRY_COMPARE(status(w, "zoom"), "Zoom 100%");
        w.model.status().setLastStrokeStats("3.1 ms");
        QCOMPARE(status(w, "stroke"), QString());
        w.set(&PaintPrefs::showPerformance, true);
        QTRY_COMPARE(status(w, "stroke"), "3.1 ms");
        QSet<QString> shown;            // it follows the pen at its own pace
        for (int x = 0; x <= 12; ++x) { // within a millisecond
            w.model.status().setCursor({x, 34, true, 0.5});
            shown << status(w, "cursor");
        }
        QVERIFY(shown.size() <= 2);
        QTRY_COMPARE(status(w, "cursor"), "X 12  Y 34");
        QCOMPARE(w.find<PressureMeter>().pressure(), 0.5);
        w.model.status().setCursor({-1, 34, false, 0}); // outside the picture
        QTRY_COMPARE(status(w, "cursor"), "X –  Y –");
    }

    void onlyTheLayersNameGivesWayInTheStatusBar() {
        Window w;
        w.layer().name = QString(60, u'W');
        w.view.setMinimumSize(1, 1);
        w.model.status().setLastStrokeStats(QString(60, u'm'));
        for (const int width : {960, 1200, 1480}) {
            w.view.resize(width, 700);
            for (const int more : {0, 1, 2}) {
                w.canvas().setRotation(more > 0 ? -105 : 0);
                w.set(&PaintPrefs::showPerformance, more > 1);
                w.model.status().setCursor({288, 388, more != 1, 1});
                QTest::qWait(60);
                for (const auto* item : w.view.findChildren<StatusText*>()) {
                    const int wide = item->fontMetrics().horizontalAdvance(item->text());
                    if (item->isVisible() && item->objectName() != "layer")
                        QVERIFY2(item->width() >= wide, qPrintable(item->text()));
                }
                QVERIFY(w.shows<StatusText>("zoom") && w.shows<StatusText>("cursor"));
            }
        }
    }

    void theSidesComeBackAtTheirEdgesAndThePictureStays() {
        Window w;
        const auto shown = [&w] { // menu bar, header, options, tools, status bar
            QString marks;
            for (const QWidget* side : std::initializer_list<QWidget*>{
                     w.view.menuBar(), w.find<QWidget>("headerOpen").parentWidget(),
                     w.find<QWidget>("toolTitle").parentWidget(), &w.find<QWidget>("brush"),
                     &w.find<QWidget>("size")})
                marks += side->isVisible() ? u'x' : u'-';
            return marks;
        };
        const auto corner = [&w] { return w.canvas().mapToGlobal(widgetPoint(w.canvas(), {0, 0})); };
        const auto hover = [&w](QPoint at) { QTest::mouseMove(&w.canvas(), at); };
        const QPoint middle(300, 200);
        hover(middle);
        const QPointF place = corner();
        w.find<QAction>("hidePanels").trigger();
        QCOMPARE(shown(), "xx--x");
        hover({0, 200});
        QTRY_COMPARE(shown(), "xx-xx");
        QCOMPARE(corner(), place);
        auto& rail = *w.find<QWidget>("brush").parentWidget();
        QTest::mouseClick(&rail, Qt::LeftButton, {}, {1, rail.height() - 1}); // beside its buttons
        QCOMPARE(shown(), "xx-xx");
        hover(middle);
        QCOMPARE(shown(), "xx--x");
        QTest::mousePress(&w.canvas(), Qt::LeftButton, {}, middle); // a stroke to the edge and along it
        for (int y = 200; y < 206; ++y) hover({0, y});
        QTest::qWait(250);
        QCOMPARE(shown(), "xx--x");
        QTest::mouseRelease(&w.canvas(), Qt::LeftButton, {}, {0, 206});
        hover(middle);
        w.find<QAction>("hidePanels").trigger();
        w.find<QAction>("fullScreen").trigger();
        QTRY_COMPARE(shown(), "-----");
        QTRY_COMPARE(w.canvas().size(), w.view.size());
        hover({300, 0});
        QTRY_COMPARE(shown(), "xxx--");
        hover(middle);
        hover({300, w.canvas().height() - 1});
        QTRY_COMPARE(shown(), "----x");
        w.find<QAction>("fullScreen").trigger();
        QTRY_COMPARE(shown(), "xxxxx");
    }

    void lettersOfAMenuOfChoicesAndTheFirstEscapeAreForTheCanvas() {
        Window w;
        w.select({10, 10, 50, 50});
        w.find<QAction>("colorPanel").trigger();
        const auto step = w.doc().undoDepth();
        auto& blend = w.find<QComboBox>("blendMode");
        blend.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&blend, Qt::Key_S);
        QVERIFY(w.model.tool() == Tool::smudge && w.doc().undoDepth() == step);
        QTest::keyClick(&blend, Qt::Key_Escape);
        QVERIFY(w.canvas().hasFocus() && w.doc().selection);
        QTest::keyClick(&w.canvas(), Qt::Key_Escape);
        QVERIFY(!w.doc().selection);
    }

    void namesAreNoWordsOfTheProgram() {
        const QString title = "Save changes to \"macOS <b> study\"?",
                      text = "<i>⌘N\nR&D " + QString(255, u'W');
        QTimer::singleShot(0, this, [&] {
            auto* box = qobject_cast<MessageBox*>(QApplication::activeModalWidget());
            QTimer::singleShot(0, box, &QDialog::reject); // also where a check fails
            for (const auto& [name, said] : {std::pair{"messageTitle", title}, {"messageText", text}}) {
                const auto* label = box->findChild<QLabel*>(QLatin1String(name));
                QCOMPARE(label->text().remove(QChar(0x200B)), said);
                QVERIFY(label->textFormat() == Qt::PlainText &&
                        label->height() >= label->heightForWidth(label->width()));
                QVERIFY(box->rect().contains(label->geometry()) && box->width() < 600);
            }
            QCOMPARE(box->buttons()[1]->text(), "R&&D");
            QVERIFY(box->buttons()[0]->isDefault() && box->focusWidget() == box->buttons()[0]);
            QVERIFY(box->buttons()[0]->x() >
                    box->buttons()[1]->x()); // the last is the one that Return presses
        });
        QCOMPARE(QtDesktop().ask(title, text, {"OK", "R&D", "Cancel"}, 2), 2);
    }

    void turnsAndFlipsGoTheirWay() {
        Window w;
        w.fill({0, 0, 1, 1});
        for (const auto& [name, x, y] : {std::tuple{"rotateClockwise", 299, 0},
                                         {"rotateCounterClockwise", 0, 399},
                                         {"rotateHalf", 399, 299},
                                         {"flipHorizontal", 399, 0},
                                         {"flipVertical", 0, 299}}) {
            w.view.findChild<QAction*>(QLatin1String(name))->trigger();
            QCOMPARE(*w.doc().activeLayer().contentBounds(), (IRect{x, y, 1, 1}));
            w.model.undo();
        }
    }
};

QIRN_TEST(tst_MainView)
#include "tst_MainView.moc"
