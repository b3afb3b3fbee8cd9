#include "app/desktop/FileTypes.h"
#include "core/PaintEngine.h"
#include "formats/ImageExport.h"
#include "formats/ImageImport.h"
#include "formats/native/PaintFile.h"
#include "platform/Bytes.h"
#include "program/UserLanguage.h"
#include "program/arguments/CommandLine.h"
#include "program/exporting/ExportPictures.h"
#include "support/FileFaults.h"
#include "support/Files.h"
#include "support/FullDisk.h"
#include "support/PictureFiles.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

#include <array>
#include <csignal>

#include <QMimeDatabase>
#include <QTemporaryDir>
#include <poll.h>
#include <pty.h>
#include <unistd.h>

using namespace qirn;
using namespace qirn::test;

namespace {

volatile std::sig_atomic_t theSignals = 0;

constexpr int kColumns = 32;

/// Standard error is a terminal as long as it lives; a pipe where the machine has none.
class Terminal {
public:
    Terminal() {
        const winsize size{24, kColumns, 0, 0};
        if (::openpty(&ends_[0], &ends_[1], nullptr, nullptr, &size) < 0 && ::pipe(ends_.data()) < 0)
            qFatal("There is neither a terminal nor a pipe.");
        ::dup2(ends_[1], STDERR_FILENO);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    ~Terminal() {
        ::dup2(before_, STDERR_FILENO);
        for (const int file : {before_, ends_[0], ends_[1]}) ::close(file);
    }
    bool isOne() const { return ::isatty(ends_[1]) == 1; }
    QByteArray told() const {
        QByteArray all;
        std::array<char, 4096> piece{};
        for (pollfd ready{ends_[0], POLLIN, 0}; ::poll(&ready, 1, 0) > 0;)
            all.append(piece.data(), std::max<ssize_t>(0, ::read(ends_[0], piece.data(), piece.size())));
        return all;
    }

private:
    int before_ = ::dup(STDERR_FILENO);
    std::array<int, 2> ends_{}; // what is told comes out of the first
};

} // namespace

/// What the program does for scripts and what a desktop is told of it.
class tst_CommandLine : public QObject {
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> folder_;
    QString at(const QString& name) const { return folder_->filePath(name); }
    int exported(const QStringList& words) const {
        return exportPictures(QStringList{"QirnPaint", "--export"} + words);
    }
    QByteArray expected(const QString& picture, ExportFormat format, double quality,
                        const PaintColor& color) const {
        const auto doc = ImageImport::document(bytesOf(bytesAt(at(picture))), {});
        return ImageExport::data(*doc, format, quality, color);
    }
    QStringList names() const {
        return QDir(folder_->path()).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    }

private Q_SLOTS:
    void init() {
        folder_ = std::make_unique<QTemporaryDir>();
        QVERIFY(noise(40, 30, 8)->makeImage().save(at("a.png")));
        writeFile(at("b.qirnpaint"), PaintFile::encode(*randomDocument(50, 20, 3, 7)));
        writeFile(at("broken.png"), "no picture");
        QVERIFY(QDir(folder_->path()).mkdir("out"));
    }

    void whatFailsLetsTheOthersBeWritten() {
        const QString a = at("a.png"), b = QUrl::fromLocalFile(at("b.qirnpaint")).toString();
        QVERIFY(QFile::copy(at("b.qirnpaint"), at("a name of more than one line.qirnpaint")));
        Terminal terminal;
        QCOMPARE(exported({"JPG", "--quality", "50", a, at("broken.png"), "--background=#f00",
                           at("missing.png"), b, at("a name of more than one line.qirnpaint"), at("out")}),
                 1);
        const QByteArray told = terminal.told();
        for (const char* name : {"broken.png", "missing.png"})
            QVERIFY2(told.contains(("Couldn't open " + at(name) + ": ").toUtf8()), told.constData());
        for (const QByteArray& shown : told.split('\x1b'))
            if (shown.contains('%')) QVERIFY(QString::fromUtf8(shown.mid(2).trimmed()).size() < kColumns);
        QVERIFY2(!terminal.isOne() || told.contains("Exporting a …"), told.constData());
        QVERIFY(QFile::remove(at("out/a name of more than one line.jpg")));
        QCOMPARE(QDir(at("out")).entryList(QDir::Files), QStringList({"a.jpg", "b.jpg"}));
        const PaintColor red(1, 0, 0);
        QCOMPARE(bytesAt(at("out/a.jpg")), expected("a.png", ExportFormat::jpeg, 0.5, red));
        QCOMPARE(bytesAt(at("out/b.jpg")), expected("b.qirnpaint", ExportFormat::jpeg, 0.5, red));
        for (const ExportFormatRow& row : kExportFormats) {
            QCOMPARE(exported({row.id, "--", at("b.qirnpaint"), at("it")}), 0);
            QVERIFY2(bytesAt(at("it")) == expected("b.qirnpaint", row.format, 0.9, PaintColor::white()),
                     row.id);
            QVERIFY(CommandLine::help().contains(displayName(row.format)));
        }
    }

    void senselessCallsWriteNothing() {
        const QString a = at("a.png"), b = at("b.qirnpaint"), it = at("it");
        const QStringList files = names();
        for (const QStringList& words :
             std::initializer_list<QStringList>{{},
                                                {"png"},
                                                {"png", a},
                                                {"gif", a, it},
                                                {"png", a, b, it},
                                                {"png", "-x", a, it},
                                                {"jpeg", a, it, "--quality"},
                                                {"jpeg", "--quality", "nan", a, it},
                                                {"jpeg", "--quality=29", a, it},
                                                {"jpeg", "--quality=101", a, it},
                                                {"jpeg", "--background=x", a, it}})
            QVERIFY2(exported(words) == 2, qPrintable(words.join(u' ')));
        QCOMPARE(names(), files);
    }

    void whatIsReadIsNeverReplacedNorWrittenTwice() {
        QVERIFY(QFile::link(at("a.png"), at("link.png")));
        QVERIFY(::link(qPrintable(at("a.png")), qPrintable(at("hard.png"))) == 0);
        const QByteArray before = bytesAt(at("a.png"));
        for (const char* place : {"a.png", "link.png", "hard.png", "./out/../a.png"})
            QVERIFY2(exported({"png", at("a.png"), at(place)}) == 1, place);
        QVERIFY(QFile::copy(at("b.qirnpaint"), at("out/a.qirnpaint")));
        QCOMPARE(exported({"png", at("out/a.qirnpaint"), at("a.png"), folder_->path()}), 1);
        QCOMPARE(bytesAt(at("a.png")), before);
        QCOMPARE(exported({"png", at("out/a.qirnpaint"), at("a.png"), at("out")}), 1); // both are a.png there
        QCOMPARE(bytesAt(at("out/a.png")),
                 expected("out/a.qirnpaint", ExportFormat::png, 1, PaintColor::white()));
    }

    void anExportThatIsStoppedLeavesWhatWasThere() {
        writeFile(at("it"), "what was there");
        const QStringList files = names();
        {
            const FullDisk full;
            QCOMPARE(exported({"png", at("a.png"), at("it")}), 1);
        }
        std::signal(SIGINT, [](int) { theSignals = theSignals + 1; }); // what a signal did before
        {
            const FileCallsInstead instead(withEachCall(FileCalls::inUse(), [](std::string_view name) {
                return name == "write" ? std::raise(SIGINT) : 0;
            }));
            QCOMPARE(exported({"png", at("a.png"), at("b.qirnpaint"), at("out")}), 1);
            QCOMPARE(exported({"png", at("a.png"), at("it")}), 1);
        }
        std::signal(SIGINT, SIG_DFL);
        QCOMPARE(theSignals, 2); // at the end of each, the second picture of which was not begun
        QCOMPARE(bytesAt(at("it")), "what was there");
        QCOMPARE(names(), files);
        QVERIFY(
            QDir(at("out")).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot));
    }

    void theWindowSpeaksTheUsersLanguageWhereItCan() {
        QByteArray words =
            QByteArray::fromHex("3cb86418caef9c95cd211cbf60a1bddd"); // of a file that holds nothing
        words += QByteArray::fromHex("4200000008 0000000000000000 6900000001 01");
        writeFile(at("qirnpaint_ar.qm"), words);
        const QLocale before;
        const struct {
            const char* user;
            QString folder, number;
            Qt::LayoutDirection direction;
        } rows[] = {
            {"ar_EG", folder_->path(), QStringLiteral("١٩٢٠٫٥"), Qt::RightToLeft},
            {"ar_EG", at("out"), "1920.5", Qt::LeftToRight},
            {"de_DE", folder_->path(), "1920,5", Qt::LeftToRight},
        };
        for (const auto& row : rows) {
            QGuiApplication::setLayoutDirection(Qt::LeftToRight);
            const UserLanguage language(QLocale(row.user), row.folder);
            QCOMPARE(QLocale().toString(1920.5, 'f', 1), row.number);
            QCOMPARE(QGuiApplication::layoutDirection(), row.direction);
        }
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
        QLocale::setDefault(before);
    }

    void theDesktopKnowsWhatTheProgramDoes() {
        const auto typesOf = [](const QString& entry) {
            const QRegularExpression line("^MimeType=(.*)$", QRegularExpression::MultilineOption);
            return line.match(entry).captured(1).split(u';', Qt::SkipEmptyParts);
        };
        const QString entry = testData("../../packaging/example.qirnpaint.QirnPaint.desktop");
        const QString pictures = testData("../../packaging/zz-qirnpaint-pictures.desktop");
        QCOMPARE(typesOf(entry), QStringList("image/x-qirnpaint")); // that of no other program
        QStringList opened, listed = typesOf(pictures);
        for (const FileType& type : FileTypes::import())
            for (const QString& extension : type.extensions)
                opened << QMimeDatabase()
                              .mimeTypeForFile("x." + extension, QMimeDatabase::MatchExtension)
                              .name();
        QCOMPARE(QSet(listed.begin(), listed.end()), QSet(opened.begin(), opened.end()));
        for (const auto& [option, sheet] : {std::pair{"--new-canvas", PaintSheet::Kind::newDocument},
                                            {"--recover", PaintSheet::Kind::recovery}}) {
            QVERIFY(entry.contains(QStringLiteral("\nExec=QirnPaint %1\n").arg(option)));
            QCOMPARE(CommandLine::parsed({"QirnPaint", option}).sheet(), sheet);
            QCOMPARE(CommandLine::optionOf(sheet), option);
        }
        const QByteArray type = testData("../../packaging/example.qirnpaint.QirnPaint.xml");
        const QByteArray magic(reinterpret_cast<const char*>(PaintFile::magic.data()),
                               PaintFile::magic.size());
        QVERIFY(type.contains("value=\"" + QByteArray(magic).replace('\1', "\\x01") + '"'));
        QVERIFY(type.contains(QByteArray("pattern=\"*.") + PaintFile::fileExtension + '"'));
    }
};

QIRN_TEST(tst_CommandLine)
#include "tst_CommandLine.moc"
