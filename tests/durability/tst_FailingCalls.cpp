#include "durability/Row.h"
#include "durability/Writers.h"

#include <unistd.h>

using namespace qirn;
using namespace qirn::test;

namespace {

constexpr std::pair<const char*, int> kErrors[] = {{"ENOSPC", ENOSPC}, {"EIO", EIO},       {"EDQUOT", EDQUOT},
                                                   {"EACCES", EACCES}, {"EROFS", EROFS},   {"EMFILE", EMFILE},
                                                   {"EPERM", EPERM},   {"ENOLCK", ENOLCK}, {"EINTR", EINTR}};

/// Writes in a process of its own, which exits before the call of a number: WRITER SYSTEM NUMBER.
int exitsBeforeCall(const QStringList& arguments) {
    const Writer& writer = kWriters[arguments[0].toUInt()];
    const System system = kSystems[arguments[1].toInt()];
    WritingWorld world;
    std::puts(qPrintable(world.folder.path()));
    std::fflush(stdout);
    {
        const FileCallsInstead fast(callsOf(system));
        writer.prepare(world);
        finishWriting();
    }
    std::atomic<int64_t> left = arguments[2].toLongLong();
    const FileCallsInstead ending(withEachCall(callsOf(system), [&](const char*) {
        if (--left == 0) ::_exit(0);
        return 0;
    }));
    const Told told = writer.write(world);
    finishWriting();
    std::puts(told.isDone == true ? "done" : "not told");
    std::fflush(stdout);
    ::_exit(0);
}
QIRN_HELPER(exitsBeforeCall)

} // namespace

class tst_FailingCalls : public QObject {
    Q_OBJECT
    template <class Try> int64_t everywhere(Try tryAt) {
        int64_t count = 0;
        for (std::size_t i = 0; i < kWriters.size(); ++i) {
            for (const System system : kSystems) {
                const Reference reference = referenceOf(kWriters[i], system);
                for (int64_t number = 1; number <= reference.calls; ++number) {
                    const auto [tries, wrong] = tryAt(i, reference, system, number);
                    count += tries;
                    if (wrong.isEmpty()) continue;
                    QTest::qFail(qPrintable(QStringLiteral("%1, system %2, call %3: %4")
                                                .arg(QLatin1String(kWriters[i].name))
                                                .arg(static_cast<int>(system))
                                                .arg(number)
                                                .arg(wrong)),
                                 __FILE__, __LINE__);
                }
            }
        }
        return count;
    }

private Q_SLOTS:
    /// As if the process had ended there: no later call does anything.
    void endsBeforeEachCall() {
        int64_t processes = 0;
        const int64_t count =
            everywhere([&](std::size_t i, const Reference& reference, System system, int64_t number) {
                std::string name;
                QString wrong =
                    wrongAfter(kWriters[i], reference, system, [&](const std::string& call, int64_t made) {
                        if (made == number) name = call;
                        return made >= number ? EIO : 0;
                    });
                if (isLongForm() && wrong.isEmpty()) {
                    const QTemporaryDir folder;
                    QProcess process;
                    startHelper(process, QStringLiteral("exitsBeforeCall"),
                                {QString::number(i), QString::number(static_cast<int>(system)),
                                 QString::number(number), "--", "long"},
                                folder.path());
                    const QString world = QString::fromUtf8(nextLine(process).value_or(""));
                    process.waitForFinished(60'000);
                    const bool isDone = process.readAllStandardOutput().contains("done");
                    wrong = wrongIn(reference, {isDone ? std::optional(true) : std::nullopt, {}},
                                    kWriters[i].content(world));
                    ++processes;
                }
                return std::pair<int, QString>(
                    1, wrong.isEmpty() ? QString() : QString::fromStdString(name) + ": " + wrong);
            });
        if (QTest::currentTestFailed()) return;
        tellRow(QStringLiteral("end before and after each system call of %1 writers").arg(kWriters.size()),
                count, QStringLiteral("0 losses"),
                processes ? QStringLiteral("%1 of them in processes that exit as well").arg(processes)
                          : QStringLiteral("no later call does anything; no process exits"));
    }

    void eachCallFails() {
        int64_t kind = 0;
        const auto chosen = [&kind] { return isLongForm() || ++kind % 16 == 0; };
        const int64_t count =
            everywhere([&](std::size_t i, const Reference& reference, System system, int64_t number) {
                int tries = 0;
                QString failed;
                for (const auto& failure : kErrors) {
                    const int error = failure.second;
                    for (const bool forGood : {false, true}) {
                        if (error == EINTR && forGood) continue; // would be tried again for ever
                        if (!failed.isEmpty() || !chosen()) continue;
                        std::string at;
                        const QString wrong = wrongAfter(
                            kWriters[i], reference, system,
                            [&](const std::string& call, int64_t made) {
                                if (made == number) at = call;
                                return made == number || (forGood && call == at && made > number) ? error : 0;
                            },
                            error == EINTR ? std::optional(true) : std::nullopt);
                        ++tries;
                        if (!wrong.isEmpty())
                            failed =
                                QStringLiteral("%1 of %2%3: %4")
                                    .arg(QLatin1String(failure.first), QString::fromStdString(at),
                                         forGood ? QLatin1String(" for good") : QLatin1String(""), wrong);
                    }
                }
                return std::pair<int, QString>(tries, failed);
            });
        if (QTest::currentTestFailed()) return;
        tellRow(
            QStringLiteral("each call failing (%1 errors), once and for good").arg(std::size(kErrors)), count,
            QStringLiteral(
                "0 false successes; the old content, or the new one told as such; pictures still changed"),
            isLongForm() ? QStringLiteral("two calls that fail for different reasons")
                         : QStringLiteral("15 of 16 of them, in turn"));
    }
};

QIRN_TEST(tst_FailingCalls)
#include "tst_FailingCalls.moc"
