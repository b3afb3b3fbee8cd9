#include "durability/ModelDisk.h"
#include "durability/Row.h"
#include "durability/Writers.h"

#include <QCryptographicHash>

using namespace qirn;
using namespace qirn::test;

class tst_PowerCut : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theOldContentOrTheNewIsWhole() {
        SeededRandom random(firstSeed());
        int64_t states = 0, moments = 0;
        QStringList written;
        for (const Writer& writer : kWriters) {
            // Of the two that only move or remove a copy the loss leaves the copy.
            if (QByteArray(writer.name).startsWith("clos") || QByteArray(writer.name).startsWith("Don't"))
                continue;
            written << QLatin1String(writer.name);
            for (const System system : kSystems) {
                WritingWorld world;
                const std::string folder = world.folder.path().toStdString();
                {
                    const FileCallsInstead fast(callsOf(system));
                    writer.prepare(world);
                    finishWriting();
                }
                const QString before = writer.content(world.folder.path());
                ModelDisk disk(world.folder.path());
                {
                    const FileCallsInstead modelled(disk.calls(callsOf(system)));
                    writer.write(world);
                    finishWriting();
                }
                const QString after = writer.content(world.folder.path());
                QVERIFY(before != after && disk.moments() > 5);
                std::map<QByteArray, QString> seen;
                for (std::size_t moment = 0; moment < disk.moments(); ++moment, ++moments) {
                    states += disk.states(moment, random, [&](const ModelDisk::Content& content) {
                        QCryptographicHash hash(QCryptographicHash::Sha1);
                        for (const auto& [path, bytes] : content) {
                            hash.addData(QByteArray::fromStdString(path));
                            hash.addData(bytes);
                        }
                        auto [found, isNew] = seen.try_emplace(hash.result());
                        if (isNew) {
                            const QTemporaryDir scratch;
                            for (const auto& [path, bytes] : content) {
                                const QString copy =
                                    scratch.path() + QString::fromStdString(path.substr(folder.size()));
                                QDir().mkpath(QFileInfo(copy).path());
                                writeFile(copy, bytes);
                            }
                            found->second = writer.content(scratch.path());
                        }
                        const bool isReported = moment + 1 == disk.moments();
                        if (found->second == after || (!isReported && found->second == before)) return;
                        QTest::qFail(qPrintable(QStringLiteral("%1 after step %2 of %3: %4")
                                                    .arg(QLatin1String(writer.name))
                                                    .arg(moment)
                                                    .arg(disk.moments() - 1)
                                                    .arg(found->second)),
                                     __FILE__, __LINE__);
                    });
                    if (QTest::currentTestFailed()) return;
                }
            }
        }
        tellRow(QStringLiteral("power cut at %L1 moments of: %2")
                    .arg(moments)
                    .arg(written.join(QStringLiteral(", "))),
                states, QStringLiteral("the old content or the new one, whole; after the report the new one"),
                QStringLiteral("more than %1 mixtures of unflushed pages at a moment, chosen by chance")
                    .arg(kMostVariants));
    }
};

QIRN_TEST(tst_PowerCut)
#include "tst_PowerCut.moc"
