#include "app/commands/CommandRows.h"
#include "app/commands/PaintCommands.h"
#include "core/BlendMode.h"
#include "kit/help/HelpPage.h"
#include "kit/help/HelpText.h"
#include "kit/help/QirnAbout.h"
#include "kit/help/QirnHelpViewer.h"
#include "shell/help/AboutLines.h"
#include "shell/help/PaintHelp.h"
#include "shell/options/ToolOptionRows.h"
#include "shell/panels/brush/BrushSettingRows.h"
#include "support/PictureFiles.h"
#include "support/Window.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QRegularExpression>

using namespace qirn;
using namespace qirn::test;

class tst_Help : public QObject {
    Q_OBJECT

    static QStringList found(const QString& query) {
        QStringList ids;
        for (const QirnHelpTopic& topic : QirnHelp::search(query)) ids << topic.id;
        return ids;
    }
    /// The window that is up, by its title.
    static QWidget* window(const QString& title) {
        for (QWidget* each : QApplication::topLevelWidgets())
            if (each->isVisible() && each->windowTitle() == title) return each;
        return nullptr;
    }

private Q_SLOTS:
    void initTestCase() { QirnKit::install("Qirn Paint", PaintHelp::topics()); }

    void aSearchFindsTheTopicsThatHoldEveryWord() {
        for (const auto& [query, first] :
             {std::pair{"", "start"},
              {" \t ", "start"},
              {"multiply screen", "blend"},
              {"ÉRASÈR", "eraser"},
              {"autosave", "autosave"},              // before one with the word in its body only
              {"harley", "tutorial-chrome"},         // a keyword
              {"ctrl+shift+z redo history", "undo"}, // a key, as this machine names it
              {"lavender", "look"},                  // the kit's own
              {"multiply zzqx", ""}}) {
            QCOMPARE(found(query).value(0), first);
            if (first == QLatin1String("start")) QCOMPARE(found(query).size(), 38);
        }
    }

    void everyLinkLeadsToATopicAndEveryKeyIsThatOfThisMachine() {
        QStringList ids;
        for (const QirnHelpTopic& topic : QirnHelp::allTopics()) {
            QVERIFY2(!ids.contains(topic.id), qPrintable(topic.id));
            ids << topic.id;
            for (const HelpParagraph& paragraph : paragraphsOf(topic.body)) {
                for (const HelpParagraph::Piece& piece : paragraph.pieces)
                    QVERIFY2(piece.topic.isEmpty() || QirnHelp::topicWithId(piece.topic),
                             qPrintable(topic.id + ": " + piece.topic));
            }
            static const QRegularExpression unresolved("[{}⌘⌥⇧⌃]|\\(\\)|(Ctrl|Alt|Shift)\\+[ ).;]");
            const auto left = unresolved.match(topic.body);
            QVERIFY2(!left.hasMatch(),
                     qPrintable(topic.id + ": " + topic.body.mid(left.capturedStart() - 40, 80)));
        }
    }

    void whateverAPersonMeetsIsNamed() {
        QString manual;
        for (const QirnHelpTopic& topic : QirnHelp::allTopics()) manual += topic.title + topic.body;
        QStringList words{"New Canvas",        "Export",   "Image Size",  "Canvas Size",
                          "Recover Your Work", "Add Text", "Rename Layer"};
        for (const ToolRow& row : kTools) {
            words << toolTitle(row.tool);
            QVERIFY2(QirnHelp::topicWithId(row.helpTopic), row.helpTopic);
        }
        for (const BlendModeRow& row : kBlendModes) words << row.displayName;
        for (const CommandRow& row : commandRows()) {
            static const QRegularExpression provisional("^(import|export)(Brushes|Palette|Gpl|Aco)$");
            if (row.name && row.title && !provisional.match(row.name).hasMatch())
                words << PaintCommands::tr(row.title).section(QRegularExpression(" *[(…]"), 0, 0);
        }
        for (const QString& each : words) QVERIFY2(manual.contains(each), qPrintable(each));
        const auto everyLabel = [](std::span<const ControlRow<PaintModel>> rows, const QString& text) {
            for (const auto& row : rows) {
                const auto isNamed = [&](const auto& control) {
                    if constexpr (requires { control.label; })
                        QVERIFY2(text.contains(control.label), control.label);
                };
                std::visit(isNamed, row.control);
            }
        };
        everyLabel(BrushSettingRows::all(), QirnHelp::topicWithId("brush-settings")->body);
        everyLabel(ToolOptionRows::all(), manual);
    }

    void theHelpWindowOpensWhereOneIsAndFollowsLinks() {
        Window w;
        w.model.setTool(Tool::smudge);
        w.find<QAction>("help").trigger();
        QWidget* const help = window("Qirn Paint Help");
        QVERIFY(help);
        auto& viewer = *help->findChild<QirnHelpViewer*>();
        auto& search = *help->findChild<QLineEdit*>("helpSearch");
        auto& list = *help->findChild<QListWidget*>("helpTopics");
        auto& page = *help->findChild<HelpPage*>("helpPage");
        QCOMPARE(viewer.currentTopic(), "smudge-blur");
        QVERIFY(page.toPlainText().contains("Finger Blend"));
        QCOMPARE(help->size(), QSize(860, 600).boundedTo(help->screen()->availableSize()));
        w.model.showSheet({PaintSheet::Kind::exportPicture});
        w.find<QAction>("help").trigger(); // also over a sheet
        QCOMPARE(viewer.currentTopic(), "export");
        w.model.closeSheet();

        QTest::keyClicks(&search, "zzqx\"");
        QCOMPARE(help->findChild<QLabel*>("helpNothing")->text(), "Nothing found for \"zzqx\"\".");
        QVERIFY(list.isHidden());
        QTest::keyClick(&search, Qt::Key_Escape);
        QCOMPARE(list.count(), 38);
        QCOMPARE(list.currentItem()->text(), QirnHelp::topicWithId(viewer.currentTopic())->title);
        QTest::keyClicks(&search, "multiply screen");
        QTRY_COMPARE(viewer.currentTopic(), "blend");
        Q_EMIT page.anchorClicked(QUrl("topic:layers")); // not among the topics found
        QCOMPARE(viewer.currentTopic(), "layers");
        QVERIFY(search.text().isEmpty());
        QTest::mouseClick(help->findChild<QWidget*>("helpBack"), Qt::LeftButton);
        QCOMPARE(viewer.currentTopic(), "blend");

        showActive(*help);
        help->setGeometry(40, 50, 700, 500);
        QTest::keyClick(&search, Qt::Key_Escape);
        QVERIFY(!help->isVisible() && !QirnKitHost::store().text("QirnHelpWindow").isEmpty());
        help->move(5, 5); // as a desktop does to a window that comes back
        QirnHelp::show();
        QCOMPARE(help->geometry(), QRect(40, 50, 700, 500));
        QVERIFY(help->isVisible() && viewer.currentTopic() == "blend");
        help->close();
    }

    void aboutTellsTheVersionAndWhatTheProgramIsBuiltOn() {
        const QString listed = testData("../../docs/dependencies.md");
        int rows = 0;
        for (const QString& line : listed.split('\n')) {
            const QStringList cells = line.split(" | ");
            const QString name = cells[0].mid(2);
            if (cells.size() < 5 || name == "library" || name == "Google Benchmark") continue;
            rows += name.startsWith("Qt 6: Core") ? 0 : 1; // two rows of one
            const auto isIt = [&](const Ingredient& part) {
                return name.startsWith(part.name) && cells[2] == part.licence;
            };
            QVERIFY2(std::ranges::any_of(ingredients(), isIt), qPrintable(line));
        }
        QCOMPARE(rows, int(ingredients().size()));
        QirnAbout::setExtraLines(aboutLines());
        QirnAbout::show();
        QWidget* const about = window("About Qirn Paint");
        const QString text = about->findChild<HelpPage*>("aboutPage")->toPlainText();
        QVERIFY(text.contains(QRegularExpression("Version \\d+\\.\\d+ \\(\\d+\\)")));
        QVERIFY(text.contains("Tessaly Works (Qirn)") && text.contains("LGPL-3.0"));
        about->close();
    }
};

QIRN_TEST(tst_Help)
#include "tst_Help.moc"
