#include "app/desktop/BackgroundQueue.h"
#include "app/desktop/Store.h"
#include "app/model/choices/PaintPrefs.h"
#include "platform/Json.h"
#include "support/Files.h"
#include "support/FullDisk.h"
#include "support/TestMain.h"

#include <QDeadlineTimer>
#include <QGuiApplication>
#include <QSettings>
#include <QTemporaryDir>

using namespace qirn;
using namespace qirn::test;

namespace {
const QString kKey = "qirn.pt.tool";
} // namespace

class tst_Store : public QObject {
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> folder_;
    QString file_;

    QByteArray stored() const { return bytesAt(file_); }

private Q_SLOTS:
    void init() {
        folder_ = std::make_unique<QTemporaryDir>();
        file_ = folder_->filePath("Preferences.json");
    }

    void manyChangesAreOneWrite() {
        Store store(file_, {}, {100, 300});
        for (int i = 0; i < 64; ++i) {
            store.set(kKey, i);
            QCoreApplication::processEvents();
        }
        BackgroundQueue::ownFiles().finish();
        QVERIFY(!QFile::exists(file_)); // nothing before a rest
        QTRY_COMPARE(stored(), QByteArray("{\"qirn.pt.tool\":63}"));
        const QByteArray before = stored();
        const QDeadlineTimer late(5000);
        for (int i = 0; stored() == before; ++i) { // written although it never rests
            QVERIFY(!late.hasExpired());
            store.set(kKey, -i);
            QCoreApplication::processEvents();
        }
        store.set(kKey, true);
        Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationInactive);
        QTRY_COMPARE(stored(), QByteArray("{\"qirn.pt.tool\":true}"));
        QVERIFY(QFile::remove(file_));
        store.set(kKey, true);
        store.flush();
        QVERIFY(!QFile::exists(file_)); // nothing has changed
    }

    void anotherProgramsValuesStay() {
        writeFile(file_, "{\"a\":1,\"b\":1,\"c\":1}");
        Store one(file_), two(file_);
        one.set("a", 2);
        one.set("b", 2);
        one.set("new", 2);
        one.flush();
        two.keep("a", 1); // as it was when that program began
        two.set("b", 3);
        two.set("c", 3);
        {
            const FullDisk full;
            two.flush();
        }
        two.flush(); // tried again without another change
        QCOMPARE(stored(), QByteArray("{\"a\":2,\"b\":3,\"c\":3,\"new\":2}"));
        QCOMPARE(two.number("new"), 2);
        two.keep("a", 1); // still, although it is 2 by now
        two.flush();
        QCOMPARE(Store(file_).number("a"), 2);
        two.keep("a", 3);
        two.flush();
        QCOMPARE(Store(file_).number("a"), 3);
    }

    void anOlderStoreIsReadOnce() {
        const QString ini = folder_->filePath("Qirn Paint.ini");
        const QMap<QString, QByteArray> values{{kKey, "eraser"},
                                               {"qirn.pt.textFont", "Gänsefüßchen; \"A\""},
                                               {"qirn.pt.textBold", "0"},
                                               {"qirn.pt.jpegQuality", "0.80000000000000004"},
                                               {"qirn.pt.fill", "{\"expand\":2}"},
                                               {"qirn.pt.colors", "[{\"r\":"}};
        {
            QSettings older(ini, QSettings::IniFormat);
            for (auto value = values.begin(); value != values.end(); ++value)
                older.setValue(value.key(), value.value());
        }
        Store(file_, ini).flush();
        const QByteArray taken(
            "{\"qirn.pt.colors\":\"[{\\\"r\\\":\",\"qirn.pt.fill\":{\"expand\":2},"
            "\"qirn.pt.jpegQuality\":0.8,\"qirn.pt.textBold\":0,"
            "\"qirn.pt.textFont\":\"Gänsefüßchen; \\\"A\\\"\",\"qirn.pt.tool\":\"eraser\"}");
        QCOMPARE(stored(), taken);
        QSettings(ini, QSettings::IniFormat).setValue(kKey, QByteArray("blur"));
        const Store again(file_, ini);
        QCOMPARE(again.text(kKey), "eraser");
        QCOMPARE(again.flag("qirn.pt.textBold"), std::optional(false));
    }

    void preferencesAreBroughtIntoTheirRanges() {
        const auto loaded = [](double number) {
            Store store;
            PaintPrefs prefs;
            prefs.autosaveSeconds = prefs.pressureCurve = prefs.checkerSize = number;
            prefs.undoSteps = static_cast<int64_t>(number);
            prefs.save(store);
            return PaintPrefs::load(store);
        };
        const auto numbers = [&](double given) {
            const PaintPrefs prefs = loaded(given);
            return QList<double>({prefs.autosaveSeconds, prefs.pressureCurve, prefs.checkerSize,
                                  static_cast<double>(prefs.undoSteps)});
        };
        QCOMPARE(numbers(-1e9), QList<double>({30, 0.4, 4, 20}));
        QCOMPARE(numbers(0), QList<double>({0, 0.4, 4, 20}));
        QCOMPARE(numbers(1e18), QList<double>({600, 2.5, 40, 500}));
    }
};

QIRN_TEST(tst_Store)
#include "tst_Store.moc"
