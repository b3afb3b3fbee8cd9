#include "core/PaintEngine.h"
#include "core/SeededRandom.h"
#include "program/OneStudio.h"
#include "program/OpenRequests.h"
#include "program/arguments/DisplayArguments.h"
#include "support/Studio.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QImage>
#include <QTemporaryDir>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace qirn;
using namespace qirn::test;
using namespace std::chrono_literals;

namespace {

const HandOver kRequest{
    PaintEngine::version, "token", {"/a b", "/\xff\n\x01", "/tmp/\xc3\xa4.png"}, PaintSheet::Kind::recovery};

} // namespace

class tst_OneStudio : public QObject {
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> folder_;
    int sockets() const {
        return static_cast<int>(QDir(folder_->path()).entryList({"*.socket"}, QDir::System).size());
    }
    OneStudio studio(const char* display = ":1") { return OneStudio(display, folder_->path()); }

    /// A connection to the studio that is open, on which these bytes were sent.
    int peer(const QByteArray& bytes) {
        const QString name = QDir(folder_->path()).entryList({"*.socket"}, QDir::System).value(0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        qstrncpy(address.sun_path, QFile::encodeName(folder_->filePath(name)).constData(),
                 sizeof address.sun_path);
        const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0);
        if (::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
            [[maybe_unused]]
            const auto sent =
                ::send(socket, bytes.constData(), static_cast<std::size_t>(bytes.size()), MSG_NOSIGNAL);
        return socket;
    }

private Q_SLOTS:
    void init() {
        folder_ = std::make_unique<QTemporaryDir>();
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(folder_->path()));
    }
    void cleanup() { qunsetenv("XDG_RUNTIME_DIR"); }

    void onlyAWholeMessageIsTaken() {
        const QByteArray message = *kRequest.encoded();
        QCOMPARE(HandOver::decoded(message), kRequest);
        SeededRandom random(1);
        for (int i = 0; i < 20'000; ++i) {
            QByteArray other = message.first(static_cast<qsizetype>(random.unit() * double(message.size())));
            if (i % 2)
                other = other + char(int(random.unit() * 256) - 128) + message.sliced(other.size() + 1);
            const auto read = HandOver::decoded(other);
            QVERIFY(!read || (i % 2 && read->encoded() == other));
        }
        HandOver other = kRequest;
        other.paths = {QByteArray(HandOver::kMostBytes, '/')};
        QVERIFY(!other.encoded());
        other.paths = {"relative"};
        QVERIFY(!other.encoded());
        other.paths = {QByteArray("/a\0b", 4)};
        QVERIFY(!other.encoded());
        other = {PaintEngine::version, {}, {}, PaintSheet::Kind::text}; // which no start asks for
        QVERIFY(!other.encoded());
    }

    void aSecondStartHandsOverAndOthersDoNoHarm() {
        OneStudio first = studio(), second = studio(), elsewhere = studio(":2");
        QVERIFY(!first.handsOver(kRequest) && !elsewhere.handsOver(kRequest));
        QCOMPARE(sockets(), 2);
        elsewhere.close();
        // Nobody answers: the start goes on, and what it offered counts for nothing.
        QElapsedTimer clock;
        clock.start();
        QVERIFY(!second.handsOver(kRequest, 200ms));
        QVERIFY(clock.elapsed() >= 140);
        const QByteArray message = *kRequest.encoded();
        std::vector<int> peers;
        for (const QByteArray& bytes :
             {QByteArray(), QByteArray("\0", 1), QByteArray(4, '\xff'), message.first(9), message + 'k',
              message, QByteArray("GET / HTTP/1.1\r\n\r\n")})
            peers.push_back(peer(bytes));
        first.answer();
        HandOver request = kRequest;
        while (request.encoded()->size() < 990'000) request.paths << "/" + QByteArray(4000, 'x');
        QVERIFY(second.handsOver(request)); // while the thread answers
        request.version = "0.9";
        clock.start();
        QVERIFY(!second.handsOver(request));
        QVERIFY2(clock.elapsed() < 2000, "another version is told so at once");
        request.version = PaintEngine::version;
        std::list<HandOver> delivered;
        bool isOutOfMemory = true;
        first.deliverTo([&](const HandOver& taken) {
            if (std::exchange(isOutOfMemory, false)) throw std::bad_alloc();
            delivered.push_back(taken);
        });
        QVERIFY(delivered.empty());
        peers.push_back(peer({})); // the next to come
        QTRY_VERIFY(!delivered.empty());
        QCOMPARE(delivered, std::list{request});
        for (std::size_t i = 0; i < StudioListener::kMostPeers; ++i) peers.push_back(peer("x"));
        std::thread other([&] { QVERIFY(!second.handsOver(kRequest, 300ms)); }); // too many are being heard
        QTest::qWait(400);
        other.join();
        for (const int socket : peers) ::close(socket);
        std::atomic<bool> isTaken = false;
        other = std::thread([&] { isTaken = second.handsOver(kRequest); });
        QTRY_COMPARE(delivered.size(), std::size_t{2});
        other.join();
        QVERIFY(isTaken);
        QCOMPARE(delivered.back(), kRequest);
        QVERIFY(first.close().empty());
        QVERIFY(!second.handsOver(kRequest) && sockets() == 1);
    }

    void whatIsTakenAndNotDeliveredIsLeft() {
        OneStudio first = studio(), second = studio();
        QVERIFY(!first.handsOver(kRequest));
        first.answer();
        const int offered = peer(*kRequest.encoded());
        char answer = 0;
        QTRY_VERIFY(answer != 0 || ::recv(offered, &answer, 1, 0) == 1);
        QCOMPARE(answer, HandOver::kTakes);
        first.deliverTo([](const HandOver&) { QFAIL("the event loop has not run"); });
        QCOMPARE(::send(offered, &HandOver::kTaken, 1, MSG_NOSIGNAL),
                 ssize_t{1}); // heard at the latest moment
        const int late = peer(*kRequest.encoded());
        QCOMPARE(first.close(), std::list{kRequest});
        QVERIFY(::send(late, &HandOver::kTaken, 1, MSG_NOSIGNAL) < 0 || ::recv(late, &answer, 1, 0) <= 0);
        for (const int socket : {offered, late}) ::close(socket);
    }

    void onlyAFolderOfOnesOwnIsUsed() {
        const QString deep = folder_->filePath(QString(200, u'd'));
        mkdir(QFile::encodeName(deep).constData(), 0700);
        const QString own = folder_->path(), link = folder_->filePath("link");
        QVERIFY(QFile::link(own, link));
        const std::tuple<const char*, QString, mode_t, bool> cases[] = {
            {"missing", folder_->filePath("none"), 0700, false},
            {"readable by others", own, 0755, false},
            {"a link", link, 0700, false},
            {"relative", ".", 0700, false},
            {"longer than the address of a socket", deep, 0700, true}};
        for (const auto& [what, path, mode, isUsed] : cases) {
            chmod(QFile::encodeName(own).constData(), mode);
            qputenv("XDG_RUNTIME_DIR", QFile::encodeName(path));
            OneStudio first = studio(), second = studio();
            QElapsedTimer clock;
            clock.start();
            QVERIFY2(!first.handsOver(kRequest), what);
            first.answer();
            QVERIFY2(second.handsOver(kRequest) == isUsed, what);
            QVERIFY2(clock.elapsed() < 2500, what);
        }
    }

    void filesWaitUntilTheStudioHasTime() {
        Studio studio;
        OpenRequests requests(studio.model, studio.canvas);
        QDialog question;
        question.setModal(true);
        const struct {
            const char* name;
            std::function<void()> begin, end;
        } cases[] = {{"sheet", [&] { studio.model.showSheet({PaintSheet::Kind::newDocument}); },
                      [&] { studio.model.closeSheet(); }},
                     {"gesture",
                      [&] { // which presses no button that the application knows of
                          studio.model.setTool(Tool::selectRect);
                          studio.penEvent(QEvent::TabletPress, {50, 50}, 1);
                      },
                      [&] {
                          studio.penEvent(QEvent::TabletRelease, {60, 60}, 0);
                      }},
                     {"question", [&] { question.show(); }, [&] { question.hide(); }}};
        for (const auto& [name, begin, end] : cases) {
            QStringList paths;
            for (const char* number : {"1", "2"}) {
                paths << studio.path(QString("%1 %2.png").arg(name, number));
                QVERIFY(QImage(8, 8, QImage::Format_RGB32).save(paths.back()));
            }
            const std::size_t before = studio.model.pictures().sessions().size();
            begin();
            for (const QString& path : paths) requests.open({path});
            for (const auto sheet : {PaintSheet::Kind::newDocument, PaintSheet::Kind::recovery})
                for (int times = 0; times < 2; ++times) requests.show(sheet);
            QTest::qWait(200);
            QCOMPARE(requests.waiting(), paths);
            QCOMPARE(requests.waitingSheets().size(), studio.model.sheet() ? 1u : 2u); // once each
            end();
            for (std::size_t left = requests.waitingSheets().size(); left > 0; --left) {
                QTRY_COMPARE(requests.waitingSheets().size(), left - 1);
                QTest::qWait(120); // two looks of the timer, in which no other may come
                QCOMPARE(requests.waitingSheets().size(), left - 1); // one after the other, behind the files
                QVERIFY(studio.model.sheet() && requests.waiting().isEmpty());
                studio.model.closeSheet();
            }
            QCOMPARE(studio.model.pictures().sessions().size(), before + 2);
            QVERIFY(studio.session().name.startsWith(QString("%1 2").arg(name)));
        }
    }

    void theDisplayIsWhereTheWindowWouldOpen() {
        const auto display = [](const QStringList& words) {
            return DisplayArguments(QStringList{"QirnPaint"} + words).display;
        };
        qputenv("DISPLAY", ":7.0");
        QCOMPARE(display({"-style", "fusion", "a.png"}), display({"-display", ":7"}));
        QVERIFY(display({}) != display({"--platform", "xcb"}) && display({}) != display({"-display", ":8"}));
        const DisplayArguments words({"QirnPaint", "a.png", "-platform", "xcb", "--", "-b"});
        QCOMPARE(words.others, QStringList({"QirnPaint", "a.png", "--", "-b"}));
        QCOMPARE(words.taken, QStringList({"-platform", "xcb"}));
        qunsetenv("DISPLAY");
    }
};

QIRN_TEST(tst_OneStudio)
#include "tst_OneStudio.moc"
