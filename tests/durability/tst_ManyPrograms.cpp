#include "app/files/UserBrushes.h"
#include "app/files/UserPalettes.h"
#include "app/model/Palettes.h"
#include "core/SeededRandom.h"
#include "durability/Row.h"
#include "formats/native/PaintFile.h"
#include "platform/Bytes.h"
#include "platform/Json.h"
#include "support/Studio.h"

#include <csignal>
#include <iostream>
#include <map>
#include <set>

#include <QDir>
#include <sys/stat.h>

using namespace qirn;
using namespace qirn::test;

namespace {

QString named(const QUuid& id) {
    return QString::fromStdString(uuidText(id));
}

QString fingerprintOf(const PaintDocument& doc) {
    return QString::number(doc.fingerprint(), 16);
}

/// A studio over a folder that others use as well. It does what a line of its input says, and tells what it has open.
int worksAmongOthers(const QStringList& arguments) {
    const OwnWorld::FolderOverride base(arguments[0]);
    ScriptedDesktop desktop;
    Store store(AppFolders::storeFile());
    PaintModel model(PaintModel::LoadStores::yes, desktop, store);
    const auto open = [&] { return model.pictures().sessions(); };
    for (std::string line; std::getline(std::cin, line);) {
        const QStringList words = QString::fromStdString(line).split(u' ');
        const QString &what = words[0], name = words.value(1);
        Json told = Json::object();
        told["pending"] = Json::array();
        if (what == "paint" && (open().empty() || name == "new"))
            model.pictures().newDocument(300, 300, 72, std::nullopt, "Picture");
        if (what == "paint") {
            PaintDocument& doc = model.current()->doc();
            const auto shade = static_cast<uint8_t>(doc.changeCount());
            paintRect(doc, doc.activeLayer(), {int(shade), 3, 40, 200}, {shade, 0, 0, 255});
            doc.commit("Dot");
            model.safety().keepWork();
        } else if (what == "save" && model.current()) {
            desktop.savePaths = {arguments[0] + "/" + named(model.current()->id)};
            model.files().save(nullptr, PictureFiles::SaveAs::no);
        } else if (what == "close" && model.current()) {
            desktop.answers = {2};
            model.pictures().close(*model.current());
        } else if (what == "list" || what == "recover") {
            for (const Recovery::Item& item : Recovery::pending(model.pictures().ids())) {
                told["pending"].push_back(uuidText(item.id));
                if (what == "list" || named(item.id) != name) continue;
                try {
                    model.pictures().addRecovered(Recovery::restore(item));
                } catch (const std::exception&) {
                    // Another program has it by now.
                }
            }
        } else if (what == "brush") {
            model.brushes().saveBrushAsNew(name);
        } else if (what == "unbrush") {
            for (const BrushSettings& brush : std::vector(model.brushes().userBrushes()))
                if (brush.name == name) {
                    desktop.answers = {0};
                    model.brushes().deleteUserBrush(brush);
                    told["isGone"] = true;
                }
        } else if (what == "palette") {
            model.palettes().newPalette(name, Palettes::FromRecent::no);
        } else if (what == "value") {
            store.set(name, 1);
        } else if (what == "quit") {
            desktop.answers = {2, 2, 2, 2, 2, 2, 2, 2};
            if (model.pictures().shouldQuit()) return 0;
        }
        model.flushState();
        QCoreApplication::processEvents();
        told["open"] = Json::object();
        for (const SessionRef& session : open())
            told["open"][uuidText(session->id)] = {fingerprintOf(session->doc()).toStdString(),
                                                   session->isDirty()};
        std::cout << told.dump() << std::endl;
    }
    return 0;
}
QIRN_HELPER(worksAmongOthers)

bool isEnded(QProcess& process) {
    return process.state() == QProcess::NotRunning || process.waitForFinished();
}

struct Program {
    std::unique_ptr<QProcess> process;
    QString command;                 // the one that it carries out
    std::map<QString, QString> open; // with unsaved work: what is in the copy of each
};

} // namespace

class tst_ManyPrograms : public QObject {
    Q_OBJECT
    QTemporaryDir folder_;
    Program programs_[8];
    std::map<QString, std::set<QString>> dead_; // pictures of killed programs, and what may be in the copy
    std::set<QString> perhaps_;       // of these, or of things, it cannot be said whether they are there
    std::set<QString> things_, gone_; // names of presets, palettes and values
    int64_t kills_ = 0, recovered_ = 0, listed_ = 0;

    void start(Program& program, int number) {
        const QString own = folder_.filePath(QStringLiteral("run-%1").arg(number));
        ::mkdir(QFile::encodeName(own).constData(), 0700);
        program.process = std::make_unique<QProcess>();
        startHelper(*program.process, "worksAmongOthers", {folder_.filePath("shared")}, own);
        QVERIFY(program.process->waitForStarted());
    }

    void kill(Program& program) {
        ::kill(static_cast<pid_t>(program.process->processId()), SIGKILL);
        QVERIFY(isEnded(*program.process));
        program.process.reset();
        ++kills_;
    }

    /// Takes what a program has told of its command; nothing where it was killed meanwhile.
    void note(Program& program, const std::optional<Json>& told) {
        const QStringList words = program.command.split(u' ');
        const QString name = words.value(1);
        const bool isThing = words[0] == "brush" || words[0] == "palette" || words[0] == "value";
        if (!told) {
            if (isThing || words[0] == "unbrush") things_.erase(name), perhaps_.insert(name);
            for (const auto& [id, copy] : program.open) {
                dead_[id] = {copy};
                if (words[0] != "list" && words[0] != "recover" && !isThing && words[0] != "unbrush")
                    dead_[id].clear(); // any step of it
                if (words[0] == "save" || words[0] == "close" || words[0] == "quit") perhaps_.insert(id);
            }
            program.open.clear();
            return;
        }
        if (isThing) things_.insert(name);
        if (words[0] == "unbrush" && told->contains("isGone")) things_.erase(name), gone_.insert(name);
        const auto before = std::exchange(program.open, {});
        for (const auto& [id, state] : (*told)["open"].items()) {
            const QString picture = QString::fromStdString(id);
            const QString fingerprint = QString::fromStdString(state[0].get<std::string>());
            if (const auto was = dead_.find(picture); was != dead_.end()) {
                QVERIFY2(was->second.empty() || was->second.contains(fingerprint),
                         "another state than that of the copy was recovered");
                dead_.erase(was);
                perhaps_.erase(picture);
                ++recovered_;
            }
            if (state[1].get<bool>()) program.open[picture] = fingerprint;
        }
    }

    /// All that is open belongs to one program, and its copy is what that has told; the copies of dead ones are listed.
    void check(Program& asking) {
        std::set<QString> living;
        for (const Program& program : programs_)
            for (const auto& [id, copy] : program.open) {
                QVERIFY2(living.insert(id).second, "two programs have recovered the same copy");
                const QString path = folder_.filePath("shared/Autosave/" + id + ".qirnpaint");
                const QByteArray bytes = bytesAt(path);
                QVERIFY2(!bytes.isEmpty(), "a living copy is gone");
                QVERIFY2(fingerprintOf(*PaintFile::decode(bytesOf(bytes))) == copy,
                         "a living copy was changed");
            }
        const std::optional<Json> told = tell(asking, "list");
        QVERIFY(told);
        std::set<QString> pending;
        for (const Json& id : (*told)["pending"])
            pending.insert(QString::fromStdString(id.get<std::string>()));
        for (const QString& id : pending) QVERIFY2(!living.contains(id), "a living copy is offered");
        for (const auto& [id, copies] : dead_)
            QVERIFY2(pending.contains(id) || perhaps_.contains(id), "a dead copy is missed");
        listed_ += std::ssize(pending);
        std::set<QString> there;
        const auto read = [&](const QString& name) { return bytesAt(folder_.filePath("shared/" + name)); };
        const auto brushes = UserBrushFormat::decode(bytesOf(read("My Brushes.json")));
        const auto palettes = UserPaletteFormat::decode(bytesOf(read("My Palettes.json")));
        const Json values = parseJson(bytesOf(read("Preferences.json"))).value_or(Json::object());
        if (brushes)
            for (const BrushSettings& brush : *brushes) there.insert(brush.name);
        if (palettes)
            for (const Palette& palette : *palettes) there.insert(palette.name);
        for (const auto& [key, value] : values.items()) there.insert(QString::fromStdString(key));
        for (const QString& name : things_) QVERIFY2(there.contains(name), qPrintable(name + " is lost"));
        for (const QString& name : gone_) QVERIFY2(!there.contains(name), qPrintable(name + " came back"));
    }

    void send(Program& program, const QString& command) {
        program.command = command;
        program.process->write((command + u'\n').toUtf8());
        program.process->waitForBytesWritten();
    }
    std::optional<Json> told(Program& program) {
        const auto line = nextLine(*program.process);
        return line ? parseJson(bytesOf(*line)) : std::nullopt;
    }
    std::optional<Json> tell(Program& program, const QString& command) {
        send(program, command);
        return told(program);
    }

private Q_SLOTS:
    void noneTouchesWhatAnotherHasOpenAndNothingIsMissed() {
        SeededRandom random(firstSeed());
        const auto among = [&](std::size_t count) {
            return std::min(static_cast<std::size_t>(random.unit() * double(count)), count - 1);
        };
        const auto anyOf = [&](const auto& list) {
            return list.empty() ? QString("none")
                                : QString(*std::next(list.begin(), std::ptrdiff_t(among(list.size()))));
        };
        QDir().mkpath(folder_.filePath("shared"));
        const int64_t wanted = times(160, 1000);
        int64_t steps = 0;
        while (steps < wanted) {
            for (int i = 0; i < 8; ++i, ++steps) {
                Program& program = programs_[i];
                if (!program.process) start(program, i);
                std::set<QString> dead;
                for (const auto& [id, copies] : dead_) dead.insert(id);
                const QString made = QString("thing%1").arg(steps);
                const QString commands[] = {"paint",
                                            "paint",
                                            "paint new",
                                            "save",
                                            "close",
                                            "recover " + anyOf(dead),
                                            "recover " + anyOf(dead),
                                            "brush " + made,
                                            "palette " + made,
                                            "value " + made,
                                            "unbrush " + anyOf(things_),
                                            "quit"};
                send(program, commands[among(std::size(commands))]);
            }
            for (Program& program : programs_) {
                const bool isKilled = among(6) == 0;
                if (isKilled && among(2) == 0) { // in the middle of it
                    QThread::usleep(static_cast<unsigned long>(random.unit() * 20'000));
                    kill(program);
                    note(program, std::nullopt);
                    continue;
                }
                const auto answer = told(program);
                const bool isOver = !answer && program.command == "quit" && isEnded(*program.process);
                QVERIFY2(answer || isOver, qPrintable(program.command));
                note(program, answer ? answer : Json{{"open", Json::object()}});
                if (isOver) program.process.reset();
                if (!isKilled || isOver) continue;
                program.command = "list";
                kill(program);
                note(program, std::nullopt);
            }
            if (QTest::currentTestFailed()) return;
            if (!programs_[0].process) start(programs_[0], 0);
            check(programs_[0]);
            if (QTest::currentTestFailed()) return;
        }
        tellRow(
            "8 programs on one folder: start, paint, save, close, kill", steps,
            QString(
                "0 living copies touched, 0 dead ones missed; %1 kills, %2 recovered, %3 times listed; of %4 "
                "presets, palettes and values 0 lost, of %5 deleted 0 back")
                .arg(kills_)
                .arg(recovered_)
                .arg(listed_)
                .arg(things_.size())
                .arg(gone_.size()),
            "one machine, whose file system has locks");
    }
};

QIRN_TEST(tst_ManyPrograms)
#include "tst_ManyPrograms.moc"
