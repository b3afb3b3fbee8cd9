#include "app/desktop/BackgroundQueue.h"
#include "app/desktop/FilePanel.h"
#include "app/desktop/FilePreview.h"
#include "app/desktop/FileTypes.h"
#include "app/desktop/QtDesktop.h"
#include "compositing/CompositeInputs.h"
#include "formats/native/PaintFile.h"
#include "kit/controls/MessageBox.h"
#include "support/Files.h"
#include "support/PictureFiles.h"
#include "support/TestMain.h"

#include <ctime>

#include <QApplication>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <sys/stat.h>

using namespace qirn;
using namespace qirn::test;

class tst_QtDesktop : public QObject {
    Q_OBJECT

private Q_SLOTS:
    /// The panel asks about a name as it was typed; the ending is ours, and so are the questions about another kind of
    /// picture and about the file that the ending leads to.
    void whatANameLeadsToIsAskedAbout() {
        QTemporaryDir folder;
        writeFile(folder.filePath("there.b.png"), "already");
        const SaveQuestion save{"Save", "x", {FileTypes::native()}, "Words", true},
            png{"Export", "x", {FileTypes::exported(ExportFormat::png)}};
        const QStringList native{"Save as foo.qirnpaint", "Export…", "Cancel"}, replaces{"Replace", "Cancel"};
        const auto at = [&](const char* name) { return SavePlace{folder.filePath(name)}; };
        const struct {
            const char* typed;
            SaveQuestion question;
            int button;
            QStringList buttons;
            std::optional<SavePlace> place;
        } cases[] = {{"foo.png", save, 0, native, at("foo.qirnpaint")},
                     {"foo.PSD", save, 1, native, SavePlace{{}, true}},
                     {"pic.v1.jpg", png, 0, {"Save as pic.v1.png", "Cancel"}, at("pic.v1.png")},
                     {"pic.qirnpaint", png, 1, {"Save as pic.png", "Cancel"}, std::nullopt},
                     {"pic.txt", png, 0, {}, at("pic.txt.png")},
                     {"there.b", png, 0, replaces, at("there.b.png")},
                     {"there.b", png, 1, replaces, std::nullopt}};
        for (const auto& [typed, question, button, buttons, place] : cases) {
            QSet<QString> seen;
            int shown = 0;
            QTimer person;
            connect(&person, &QTimer::timeout, this, [&, name = typed, press = buttons.value(button)] {
                QWidget* const window = QApplication::activeModalWidget();
                if (auto* box = qobject_cast<MessageBox*>(window)) {
                    for (QPushButton* each : box->buttons()) seen.insert(each->text());
                    for (QPushButton* each : box->buttons())
                        if (each->text() == press) return each->click();
                } else if (auto* panel = qobject_cast<QFileDialog*>(window)) {
                    if (++shown > 1) return panel->reject();
                    panel->findChild<QLineEdit*>()->setText(folder.filePath(name));
                    static_cast<QDialog*>(panel)->accept();
                }
            });
            person.start(1);
            const auto found = QtDesktop().saveFile(question);
            QVERIFY2(seen == QSet<QString>(buttons.begin(), buttons.end()) &&
                         found.has_value() == place.has_value(),
                     typed);
            if (place)
                QVERIFY2(found->path == place->path && found->exportInstead == place->exportInstead, typed);
        }
    }

    void aPanelShowsWhatAFileHoldsAndWaitsForNone() {
        QTemporaryDir folder;
        PaintDocument doc(300, 200, 72, PaintColor(0, 0, 1));
        writeFile(folder.filePath("a.qirnpaint"), PaintFile::encode(doc));
        writeFile(folder.filePath("b.png"), *ImageExport::pngData(flattenedImage(doc), 72));
        writeFile(folder.filePath("c.qirnpaint"), bytesAt(folder.filePath("a.qirnpaint")).chopped(20));
        const QByteArray pipe = QFile::encodeName(folder.filePath("pipe.png"));
        QCOMPARE(mkfifo(pipe.constData(), 0600), 0);
        FilePanel panel("Open", "A message", folder.path(), {});
        QVERIFY(panel.isOurs());
        panel.showPreviews();
        panel.show();
        auto& preview = *panel.findChild<FilePreview*>();
        for (const auto& [name, shows] :
             {std::pair{"a.qirnpaint", true}, {"c.qirnpaint", false}, {"b.png", true}, {"pipe.png", false}}) {
            preview.setFile(folder.filePath(name));
            BackgroundQueue::previews().finish();
            QCoreApplication::processEvents();
            QVERIFY2(preview.image().isNull() != shows, name);
            if (shows) QCOMPARE(preview.image().pixelColor(10, 10), QColor(Qt::blue));
        }
        writeFile(folder.filePath("d.png"),
                  pngFile(20'000, 20'000, QByteArray("\1\0\0\0\0", 5), QByteArray(20'000 * 2501, 0)));
        std::clock_t taken[2]; // of the processor: on a busy machine a clock tells of others' work
        for (const bool isWanted : {true, false}) {
            const std::clock_t before = std::clock();
            preview.setFile(folder.filePath("d.png"));
            // For the reading to begin, of which nothing tells; one that has not ends at once.
            QTest::qSleep(20);
            if (!isWanted) preview.setFile({});
            BackgroundQueue::previews().finish();
            taken[isWanted] = std::clock() - before;
        }
        QVERIFY(taken[false] < taken[true] / 2);
        auto labels = panel.findChildren<QLabel*>();
        QVERIFY(std::any_of(labels.begin(), labels.end(),
                            [](QLabel* label) { return label->text() == "A message"; }));
    }
};

QIRN_TEST(tst_QtDesktop)
#include "tst_QtDesktop.moc"
