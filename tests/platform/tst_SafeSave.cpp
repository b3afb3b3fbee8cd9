#include "formats/native/PaintFile.h"
#include "platform/Bytes.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/ReadFile.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <fcntl.h>
#include <unistd.h>

using namespace qirn;
using namespace qirn::test;

class tst_SafeSave : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() {
        folder_ = std::make_unique<QTemporaryDir>();
        others_ = std::make_unique<QTemporaryDir>();
        path_ = folder_->filePath(QStringLiteral("picture.qirnpaint"));
    }

    void aSaveKilledAtAnyStepLeavesTheOldFileOrTheNew_data() {
        QTest::addColumn<int>("wantedLeft"); // files beside, of all the steps at which it is killed
        QTest::newRow("unnamed") << 4;       // between the link and the rename
        QTest::newRow("named") << 11;        // from the open to the rename
    }
    void aSaveKilledAtAnyStepLeavesTheOldFileOrTheNew() {
        QFETCH(int, wantedLeft);
        const QString names = QString::fromLatin1(QTest::currentDataTag());
        const int file = ::open(QFile::encodeName(folder_->path()).constData(), O_TMPFILE | O_WRONLY, 0600);
        if (file < 0 && names == QStringLiteral("unnamed"))
            QSKIP("The file system of the temporary folder has no files without a name.");
        ::close(file);
        const auto before = randomDocument(400, 300, 1, 1), after = randomDocument(400, 300, 1, 2);
        const QByteArray old = PaintFile::encode(*before), fresh = PaintFile::encode(*after);
        int left = 0, replaced = 0, kills = 0;
        for (bool isKilled = true; isKilled; kills += isKilled) {
            writeAtomically(path_, bytesOf(old)); // and what the last one left goes
            QVERIFY(namesBeside().isEmpty());
            QProcess process;
            save(process, fresh, {QString::number(kills + 1), names});
            isKilled = process.exitStatus() == QProcess::CrashExit;
            const QByteArray found = readFile(path_);
            QVERIFY2(found == old || found == fresh, qPrintable(QString::number(kills)));
            QVERIFY(isKilled || (found == fresh && process.exitCode() == 0));
            replaced += isKilled && found == fresh;
            // The file that a killed save leaves has a recognizable name and does not disturb the next save.
            static const QRegularExpression temporary(
                QStringLiteral("^\\.picture\\.qirnpaint\\.qirn-[0-9a-f]{8}-1$"));
            for (const QString& name : namesBeside()) {
                QVERIFY2(temporary.match(name).hasMatch(), qPrintable(name));
                ++left;
            }
        }
        QVERIFY2(kills >= 10 && replaced > 0, qPrintable(QString::number(kills)));
        QCOMPARE(left, wantedLeft);
    }

private:
    QStringList namesBeside() const {
        QStringList names =
            QDir(folder_->path())
                .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
        names.removeOne(QStringLiteral("picture.qirnpaint"));
        return names;
    }
    /// In a process of its own, to its end.
    void save(QProcess& process, const QByteArray& bytes, const QStringList& how) const {
        const QString source = others_->filePath(QStringLiteral("bytes"));
        writeAtomically(source, bytesOf(bytes));
        process.start(QCoreApplication::applicationDirPath() + QStringLiteral("/saving_process"),
                      QStringList{path_, source} + how);
        QVERIFY(process.waitForFinished());
    }

    std::unique_ptr<QTemporaryDir> folder_, others_;
    QString path_;
};

QIRN_TEST(tst_SafeSave)
#include "tst_SafeSave.moc"
