#include "core/SeededRandom.h"
#include "durability/Row.h"
#include "formats/native/PaintFile.h"
#include "operations/LayerOperations.h"
#include "platform/Bytes.h"
#include "platform/files/AtomicFile.h"
#include "support/Studio.h"

#include <csignal>

#include <QElapsedTimer>

using namespace qirn;
using namespace qirn::test;

namespace {

/// How often the picture was changed, which its first pixel tells.
int64_t changesIn(const Layer& layer) {
    const Tile* tile = layer.tile(0);
    if (!tile) return 0;
    const uint8_t* pixel = tile->pixels();
    return pixel[0] + 256 * pixel[1] + 65536 * pixel[2];
}

/// Opens a picture, tells how many changes are in it, and goes on changing and saving it.
int savesUntilKilled(const QStringList& arguments) {
    const auto tell = [](const QString& line) {
        std::puts(qPrintable(line));
        std::fflush(stdout);
    };
    OwnWorld world;
    world.model.files().open(arguments[0]);
    const QString was = arguments[1];
    if (!world.desktop.asked.empty() || !world.model.current() || world.doc().layers().size() != 2 ||
        QString::number(world.doc().layers()[0]->fingerprint()) != was) {
        tell(QStringLiteral("unreadable"));
        return 1;
    }
    world.doc().setActiveIndex(1);
    int64_t changes = changesIn(world.layer());
    tell(QString::number(changes));
    while (true) {
        ++changes;
        const auto part = [&](int shift) { return static_cast<uint8_t>(changes >> shift); };
        world.fill({0, 0, 1, 1}, {part(0), part(8), part(16), 255});
        if (!world.model.files().save(nullptr, PictureFiles::SaveAs::no)) {
            tell(QStringLiteral("refused"));
            return 1;
        }
        tell(QString::number(changes));
    }
}
QIRN_HELPER(savesUntilKilled)

} // namespace

class tst_KilledSaves : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void nothingIsUnreadableOrOlderThanTheLastSave() {
        struct Size {
            int side; // of noise, which does not get smaller
            int64_t kills;
        };
        const Size sizes[] = {{256, times(20, 8000)},
                              {1024 + 256, times(5, 1700)},
                              {3584, times(1, 300)}}; // 0.3, 6.5 and 51 MB
        SeededRandom random(firstSeed());
        int64_t kills = 0, unreported = 0;
        for (const auto& [side, wanted] : sizes) {
            const QTemporaryDir folder;
            const QString path = folder.filePath(QStringLiteral("picture.qirnpaint"));
            const auto doc = documentOf(*noise(side, side, 1));
            addLayer(*doc);
            const QString fingerprint = QString::number(doc->layers()[0]->fingerprint());
            writeAtomically(path, bytesOf(PaintFile::encode(*doc)));
            int64_t saved = 0;      // reported
            double saveTakes = 100; // milliseconds
            for (int64_t i = 0; i < wanted; ++i, ++kills) {
                QProcess process;
                startHelper(process, QStringLiteral("savesUntilKilled"), {path, fingerprint}, folder.path());
                const QByteArray found = nextLine(process).value_or("nothing");
                const bool isLast = found == QByteArray::number(saved);
                if (!isLast && found != QByteArray::number(saved + 1))
                    QFAIL(qPrintable(QStringLiteral("kill %1: %2 where change %3 was reported saved")
                                         .arg(kills)
                                         .arg(QString::fromUtf8(found))
                                         .arg(saved)));
                unreported += !isLast;
                saved = found.toLongLong();
                QElapsedTimer clock;
                clock.start();
                const auto killAfter = static_cast<int64_t>(random.unit() * 2 * saveTakes);
                const int64_t before = saved;
                const auto listen = [&] {
                    while (process.canReadLine()) {
                        const QByteArray line = process.readLine().trimmed();
                        QCOMPARE(line, QByteArray::number(saved + 1));
                        ++saved;
                    }
                };
                while (clock.elapsed() < killAfter) {
                    process.waitForReadyRead(static_cast<int>(killAfter - clock.elapsed()));
                    listen();
                }
                ::kill(static_cast<pid_t>(process.processId()), SIGKILL);
                QVERIFY(process.waitForFinished(60'000));
                listen();
                if (QTest::currentTestFailed()) return;
                if (saved > before) saveTakes = double(clock.elapsed()) / double(saved - before);
            }
        }
        tellRow(
            QStringLiteral("SIGKILL in saves of 0.3, 6.5 and 51 MB"), kills,
            QStringLiteral(
                "0 unreadable, 0 older than the last one reported; %1 new ones that were not reported yet")
                .arg(unreported),
            QStringLiteral("moments are chosen by time, not by call"));
    }
};

QIRN_TEST(tst_KilledSaves)
#include "tst_KilledSaves.moc"
