#include "app/desktop/FileTypes.h"
#include "app/desktop/QtDesktop.h"
#include "support/Files.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

using namespace qirn;
using namespace qirn::test;

class tst_QtDesktop : public QObject {
    Q_OBJECT

private Q_SLOTS:
    /// The panel asks about a name as it was typed; the ending is ours, and so is the question about the file that it
    /// leads to.
    void aFileThatTheEndingLeadsToIsNotReplacedUnasked() {
        for (const bool replaces : {false, true}) {
            QTemporaryDir folder;
            writeFile(folder.filePath("a.b.png"), "there already");
            int asked = 0, shown = 0;
            QTimer person; // does the next thing whenever a window waits for it
            connect(&person, &QTimer::timeout, this, [&] {
                QWidget* const window = QApplication::activeModalWidget();
                if (auto* box = qobject_cast<QMessageBox*>(window)) {
                    ++asked;
                    box->buttons()[replaces ? 0 : 1]->click();
                } else if (auto* panel = qobject_cast<QDialog*>(window)) {
                    if (++shown > 1) return panel->reject();
                    panel->findChild<QLineEdit*>()->setText(folder.filePath("a.b"));
                    panel->accept();
                }
            });
            person.start(1);
            const FileType png{"PNG", {"png"}};
            const auto path = QtDesktop().saveFile("x", {png}, "Export");
            QCOMPARE(asked, 1);
            QCOMPARE(path.has_value(), replaces);
            if (replaces) QCOMPARE(*path, folder.filePath("a.b.png"));
        }
    }
};

QIRN_TEST(tst_QtDesktop)
#include "tst_QtDesktop.moc"
