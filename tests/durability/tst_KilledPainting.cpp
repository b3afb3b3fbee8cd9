#include "app/desktop/SuddenEnd.h"
#include "core/SeededRandom.h"
#include "durability/Row.h"
#include "support/Studio.h"

#include <chrono>
#include <csignal>
#include <map>
#include <set>

#include <QSocketNotifier>
#include <QThread>
#include <unistd.h>

using namespace qirn;
using namespace qirn::test;

namespace {

constexpr double kInterval = 0.15; // seconds
constexpr std::chrono::milliseconds kTick(40), kPoint(3);
constexpr int kPictures = 3;
constexpr double kStall = 0.02; // seconds: longer turns of the main loop are told

double now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void tell(const char* what, int64_t picture, double time, uint64_t value = 0) {
    std::printf("%s %lld %.6f %llu\n", what, static_cast<long long>(picture), time,
                static_cast<unsigned long long>(value));
    std::fflush(stdout);
}

/// Paints in the pictures of a studio, a point each turn of the main loop, and tells of each stroke, copy and save.
struct Painter {
    Painter(uint64_t seed, double interval) : random(seed) {
        studio.set(&PaintPrefs::autosaveSeconds, interval);
        for (int i = 0; i < kPictures; ++i)
            studio.model.pictures().newDocument(600, 400, 72, PaintColor::white(), QString::number(i));
        std::printf("%s\n", qPrintable(studio.folder.path()));
        for (int i = 0; i < kPictures; ++i) tell("saved", i, now(), session(i).doc().fingerprint());
    }
    DocSession& session(int i) {
        return *studio.model.pictures().sessions()[static_cast<std::size_t>(i) + 1];
    }
    int64_t upTo(int64_t most) { return static_cast<int64_t>(random.unit() * static_cast<double>(most)); }

    void turn() {
        const double turned = std::exchange(latest, now());
        if (latest - turned > kStall)
            tell("stall", 0, latest, static_cast<uint64_t>((latest - turned) * 1e6));
        for (int i = 0; i < kPictures; ++i) {
            const SafetyCopy& copy = session(i).copy;
            if (!copy.underWay.empty() && taken[i] != copy.taken) {
                taken[i] = copy.taken;
                tell("taken", i, now());
            }
            if (copy.underWay.empty() && taken[i]) {
                taken[i].reset();
                tell("written", i, now());
            }
        }
        if (left == 0) {
            if (upTo(4) == 0) studio.model.pictures().select(session(static_cast<int>(upTo(kPictures))));
            picture = studio.session().name.toInt();
            if (upTo(30) == 0) return save();
            left = 4 + upTo(20);
            at = {random.unit() * 400, random.unit() * 300};
            tell("press", picture, now());
            studio.penEvent(QEvent::TabletPress, at, 0.5);
        } else if (--left > 0) {
            at += QPointF(random.unit() * 20 - 10, random.unit() * 20 - 10);
            studio.penEvent(QEvent::TabletMove, at, random.unit());
        } else {
            studio.penEvent(QEvent::TabletRelease, at, 0);
            tell("painted", picture, now(), studio.doc().fingerprint());
        }
    }
    void save() {
        const QString name = studio.session().name;
        studio.desktop.savePaths = {studio.path(name + ".qirnpaint")};
        tell("saving", picture, now());
        if (studio.model.files().save(nullptr, PictureFiles::SaveAs::no))
            tell("saved", picture, now(), studio.doc().fingerprint());
    }

    SeededRandom random;
    Studio studio;
    std::optional<std::chrono::steady_clock::time_point>
        taken[kPictures];  // of a copy that is not on disk yet
    double latest = now(); // turn
    int64_t left = 0;      // points of the stroke
    int picture = 0;
    QPointF at;
};

int paintsUntilKilled(const QStringList& arguments) {
    Painter painter(arguments[0].toULongLong(), arguments[1].toDouble());
    Safety& safety = painter.studio.model.safety();
    safety.startAutosave(kTick);
    for (const int number : {SIGTERM, SIGHUP, SIGINT}) std::signal(number, SIG_DFL);
    const SuddenEnd end([&] { safety.keepWork(); });
    // The display goes as Qt finds it gone: on X11 it calls exit, on Wayland it warns and calls _exit.
    const QSocketNotifier told(0, QSocketNotifier::Read);
    QObject::connect(&told, &QSocketNotifier::activated, [] {
        char way = 0;
        if (::read(0, &way, 1) == 1 && way == 'X') std::exit(1);
        const auto leave = [] {
            qWarning("The Wayland connection broke. Did the Wayland compositor die?");
            _exit(1);
        };
        QThread::create(leave)->start(); // either may be the first
        leave();
    });
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { painter.turn(); });
    timer.start(kPoint);
    return QCoreApplication::exec();
}
QIRN_HELPER(paintsUntilKilled)

struct Told {
    QByteArray what;
    int picture;
    double time;
    uint64_t value;
};

/// What is known of one picture: its states since it was saved last, that one first, and those before.
struct Painted {
    std::vector<std::pair<double, uint64_t>> states;
    std::set<uint64_t> older;
    bool isSaving =
        false; ///< Killed in it: whether it is in the file or in the copy is another row's matter.
};

} // namespace

class tst_KilledPainting : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void everyDirtyPictureIsRestoredAndNotTooOld() {
        const char* const ways[] = {"SIGKILL", "SIGTERM", "SIGHUP", "SIGINT", "X11", "Wayland"};
        const int numbers[] = {SIGKILL, SIGTERM, SIGHUP, SIGINT, 0, 0};
        constexpr int64_t kAtOnce = 4;
        const int64_t wanted = times(24, 1000);
        SeededRandom random(firstSeed());
        int64_t dirty = 0, strokes = 0;
        std::vector<double> ages;
        for (int64_t first = 0; first < wanted; first += kAtOnce) {
            const QTemporaryDir folder;
            const int64_t count = std::min(kAtOnce, wanted - first);
            std::vector<std::unique_ptr<QProcess>> processes;
            QByteArrayList folders;
            for (int64_t i = first; i < first + count; ++i) {
                processes.push_back(std::make_unique<QProcess>());
                startHelper(*processes.back(), QStringLiteral("paintsUntilKilled"),
                            {QString::number(firstSeed() + static_cast<uint64_t>(i)),
                             QString::number(i % 4 == 1 ? 0 : kInterval)}, // or without copies meanwhile
                            folder.path());
            }
            for (const auto& process : processes) {
                const auto line = nextLine(*process);
                QVERIFY2(line, "a painter did not start");
                folders << *line;
            }
            for (int64_t i = 0; i < count; ++i) {
                QProcess& process = *processes[static_cast<std::size_t>(i)];
                // Half of them are killed outright, whose copies have an age.
                const auto way = static_cast<std::size_t>((first + i) % 2 == 0 ? 0 : 1 + (first + i) / 2 % 5);
                QThread::usleep(static_cast<unsigned long>(random.unit() * 500'000));
                const double end = now();
                if (numbers[way] != 0)
                    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), numbers[way]), 0);
                else
                    process.write(ways[way], 1);
                QVERIFY2(process.waitForFinished(60'000), ways[way]);
                QCOMPARE(process.exitCode(), numbers[way] != 0 ? numbers[way] : 1);
                AppFolders::setBaseOverride(QString::fromUtf8(folders[i]));
                check(process.readAllStandardOutput(), ways[way], end, ages, dirty, strokes);
                AppFolders::setBaseOverride({});
                if (QTest::currentTestFailed()) {
                    qWarning("seed %lld", static_cast<long long>(firstSeed()) + first + i);
                    return;
                }
            }
        }
        std::ranges::sort(ages);
        const auto age = [&](double share) {
            return QString::number(
                ages[static_cast<std::size_t>(share * static_cast<double>(ages.size() - 1))] * 1000, 'f', 0);
        };
        tellRow("SIGKILL, SIGTERM, HUP, INT, display gone while painting", wanted,
                QStringLiteral(
                    "%1 strokes, %2 dirty pictures, all listed and restored; by signals and with the "
                    "display 0 lost; killed: none older than interval (%3 ms) + tick (%4 ms) + stroke + "
                    "write, half under %5 ms, 95% under %6 ms, all under %7 ms")
                    .arg(strokes)
                    .arg(dirty)
                    .arg(kInterval * 1000)
                    .arg(kTick.count())
                    .arg(age(0.5), age(0.95), age(1)),
                QStringLiteral(
                    "stroke and write are as long as they took, and turns of the main loop over %1 ms are "
                    "allowed for; the display's loss is played as Qt meets it, without a display")
                    .arg(kStall * 1000));
    }

private:
    static void check(const QByteArray& output, const char* way, double end, std::vector<double>& ages,
                      int64_t& dirty, int64_t& strokes) {
        std::map<int, Painted> pictures;
        std::map<QByteArray, double> open;                   // presses and copies under way, since when
        double stroke = 0, write = 0, stall = 0, last = end; // the longest
        const auto close = [&](const QByteArray& key, double time, double& longest) {
            if (const auto since = open.extract(key)) longest = std::max(longest, time - since.mapped());
        };
        for (const QByteArray& line : output.left(output.lastIndexOf('\n')).split('\n')) {
            const QByteArrayList words = line.split(' ');
            QVERIFY2(words.size() == 4, line.constData());
            const Told told{words[0], words[1].toInt(), words[2].toDouble(), words[3].toULongLong()};
            Painted& painted = pictures[told.picture];
            last = told.time;
            const QByteArray copy = "copy " + words[1];
            if (told.what == "press") open["press"] = told.time;
            if (told.what == "taken") open.emplace(copy, told.time);
            if (told.what == "written") close(copy, told.time, write);
            if (told.what == "stall") stall = std::max(stall, static_cast<double>(told.value) / 1e6);
            if (told.what == "painted") {
                close("press", told.time, stroke);
                painted.states.emplace_back(told.time, told.value);
                ++strokes;
            }
            painted.isSaving |= told.what == "saving";
            if (told.what == "saved") {
                painted.isSaving = false;
                for (const auto& state : painted.states) painted.older.insert(state.second);
                painted.states = {{told.time, told.value}};
            }
        }
        stall = std::max(stall, end - last);
        const std::map<QByteArray, double> unended = open;
        for (const auto& [key, since] : unended) close(key, end, key == "press" ? stroke : write);

        std::map<QString, uint64_t> restored;
        for (const Recovery::Item& item : Recovery::pending({})) try {
                restored[item.info.name] = Recovery::restore(item)->doc().fingerprint();
            } catch (const std::exception& error) {
                QFAIL(qPrintable(
                    QStringLiteral("%1: %2").arg(QLatin1String(way), QLatin1String(error.what()))));
            }
        for (const auto& [number, painted] : pictures) {
            if (painted.states.size() < 2 || painted.isSaving) continue;
            ++dirty;
            std::size_t state = 0;
            if (const auto found = restored.find(QString::number(number)); found != restored.end()) {
                while (state < painted.states.size() && painted.states[state].second != found->second)
                    ++state;
                const bool isOlder = state == painted.states.size();
                QVERIFY2(!isOlder || painted.older.contains(found->second), "a copy of what never was");
                if (isOlder) state = 0;
            }
            const double age = state + 1 < painted.states.size() ? end - painted.states[state + 1].first : 0;
            const bool isKilled = qstrcmp(way, "SIGKILL") == 0;
            const double most = isKilled ? kInterval + kTick.count() / 1e3 + stroke + write + stall : 0;
            if (isKilled) ages.push_back(age);
            QVERIFY2(age <= most,
                     qPrintable(QStringLiteral(
                                    "%1: picture %2 lost %3 s; allowed %4 (stroke %5, write %6, stall %7)")
                                    .arg(way)
                                    .arg(number)
                                    .arg(age)
                                    .arg(most)
                                    .arg(stroke)
                                    .arg(write)
                                    .arg(stall)));
        }
    }
};

QIRN_TEST(tst_KilledPainting)
#include "tst_KilledPainting.moc"
