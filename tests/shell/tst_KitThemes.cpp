#include "ChromeColors.h"
#include "QirnKit.h"
#include "QirnThemes.h"
#include "support/TestMain.h"

#include <map>

#include <QApplication>

using namespace qirn;

namespace {

double contrast(const QColor& a, const QColor& b) {
    return QirnTheme::RGB::of(a).contrast(QirnTheme::RGB::of(b));
}

struct TextOn {
    const char* what;
    QColor text;
    QColor surface;
};

/// Every text of the chrome on every surface that it stands on.
std::vector<TextOn> textsOf(const ChromeColors& c) {
    return {
        {"text on canvas", c.text, c.canvas},
        {"text on panel", c.text, c.panel},
        {"text on bar", c.text, c.bar},
        {"text on popup", c.text, c.popup},
        {"text on raised", c.text, c.raised},
        {"text on hover", c.text, c.hover},
        {"text on pressed", c.text, c.pressed},
        {"text on well", c.text, c.well},
        {"text on level", c.text, c.level},
        {"text on selected", c.text, c.selected},
        {"dim on canvas", c.dim, c.canvas},
        {"dim on panel", c.dim, c.panel},
        {"dim on bar", c.dim, c.bar},
        {"dim on popup", c.dim, c.popup},
        {"dim on raised", c.dim, c.raised},
        {"dim on well", c.dim, c.well},
        {"dim on level", c.dim, c.level},
        {"on accent", c.onAccent, c.accent},
        {"on accent hover", c.onAccent, c.accentHover},
    };
}

} // namespace

class tst_KitThemes : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QirnKit::install(QStringLiteral("Qirn Paint")); }

    void contrastIsThatOfTheStandard() {
        const auto black = QirnTheme::RGB::fromHex(0x000000), white = QirnTheme::RGB::fromHex(0xFFFFFF);
        QCOMPARE(black.contrast(white), 21.0);
        QCOMPARE(white.contrast(black), 21.0);
        QCOMPARE(white.contrast(white), 1.0);
        // A dark channel is on the straight part of the curve, a bright one on the power.
        QCOMPARE(QirnTheme::RGB::fromHex(0x0A0A0A).luminance(), 10 / 255.0 / 12.92);
        QVERIFY(qAbs(QirnTheme::RGB::fromHex(0x777777).contrast(white) - 4.478) < 0.001);
        QVERIFY(qAbs(QirnTheme::RGB::fromHex(0xFF0000).luminance() - 0.2126) < 1e-9);
    }

    void aFirstRunShowsCobaltGunmetal() {
        QCOMPARE(QirnThemes::currentID(), QStringLiteral("cobalt-gunmetal"));
        QCOMPARE(QirnThemes::current().name, QStringLiteral("Cobalt Gunmetal"));
        const QrKitTheme theme = QirnThemes::current().kitTheme();
        QCOMPARE(theme.panelTop, QColor(0x35, 0x3C, 0x48));
        QCOMPARE(theme.accent, QColor(0x2F, 0x7B, 0xF2));
        QCOMPARE(theme.rim.alpha(), 64);
        QCOMPARE(theme.text.alpha(), 255);
    }

    void theBuiltInFamiliesAreComplete() {
        std::map<QirnTheme::Family, int> count;
        for (const QirnTheme& theme : QirnThemes::builtIn()) ++count[theme.family];
        using F = QirnTheme::Family;
        const std::map<F, int> expected{{F::masculine, 2}, {F::feminine, 2}, {F::black, 1}, {F::gray, 1}};
        QVERIFY(count == expected);
    }

    void aRegisteredThemeIsFoundAndNeverReplacesAKnownOne() {
        QirnTheme mine = QirnThemes::named(QStringLiteral("rose-gold"));
        mine.name = QStringLiteral("Not this one");
        QirnTheme fresh = mine;
        fresh.id = QStringLiteral("fresh");
        fresh.name = QStringLiteral("Fresh");
        const QirnTheme list[] = {mine, fresh, fresh};
        QirnThemes::registerThemes(list);
        QCOMPARE(QirnThemes::named(QStringLiteral("rose-gold")).name, QStringLiteral("Rose Gold"));
        QCOMPARE(QirnThemes::named(QStringLiteral("fresh")).name, QStringLiteral("Fresh"));
        QCOMPARE(QirnThemes::builtIn().size(), std::size_t(6));
    }

    void theChosenThemeLivesInTheStoreAndAnUnknownOneIsTheDefault() {
        QString stored = QStringLiteral("midnight-black");
        QirnThemes::useStore({[&] { return stored; }, [&](const QString& id) { stored = id; }});
        QCOMPARE(QirnThemes::current().name, QStringLiteral("Midnight Black"));
        QirnThemes::setCurrentID(QStringLiteral("brushed-gray"));
        QCOMPARE(stored, QStringLiteral("brushed-gray"));
        QirnKit::applyTheme();
        QCOMPARE(QApplication::palette().color(QPalette::Window), QColor(0x45, 0x48, 0x4E));
        stored = QStringLiteral("gone");
        QCOMPARE(QirnThemes::current().id, QStringLiteral("cobalt-gunmetal"));
        QirnThemes::useStore({});
        QirnKit::applyTheme();
        QCOMPARE(QApplication::palette().color(QPalette::Window), QColor(0x1C, 0x21, 0x29));
    }

    void everyTextCanBeReadInEveryTheme_data() {
        QTest::addColumn<QString>("id");
        for (const QirnTheme& theme : QirnThemes::builtIn()) QTest::newRow(qPrintable(theme.id)) << theme.id;
    }
    void everyTextCanBeReadInEveryTheme() {
        QFETCH(QString, id);
        const ChromeColors colors = ChromeColors::of(QirnThemes::named(id).kitTheme());
        for (const TextOn& pair : textsOf(colors)) {
            const double ratio = contrast(pair.text, pair.surface);
            QVERIFY2(ratio >= 4.5,
                     qPrintable(QStringLiteral("%1: %2").arg(QLatin1String(pair.what)).arg(ratio)));
        }
        for (const QColor& surface :
             {colors.canvas, colors.panel, colors.bar, colors.popup, colors.raised, colors.well})
            QVERIFY(contrast(colors.focus, surface) >= 3);
        // The theme still looks like itself: its text is the table's.
        QCOMPARE(colors.text, QirnThemes::named(id).kitTheme().text);
        QCOMPARE(colors.panel, QirnThemes::named(id).kitTheme().panelBottom);
    }

    void paletteTextCanBeReadOnItsBases() {
        for (const QirnTheme& theme : QirnThemes::builtIn()) {
            const QPalette p = ChromeColors::of(theme.kitTheme()).palette();
            using P = QPalette;
            for (const auto& [text, base] : {std::pair{P::WindowText, P::Window},
                                             {P::Text, P::Base},
                                             {P::Text, P::AlternateBase},
                                             {P::ButtonText, P::Button},
                                             {P::ToolTipText, P::ToolTipBase},
                                             {P::HighlightedText, P::Highlight},
                                             {P::PlaceholderText, P::Base}})
                QVERIFY2(contrast(p.color(text), p.color(base)) >= 4.5, qPrintable(theme.id));
        }
    }
};

QIRN_TEST(tst_KitThemes)
#include "tst_KitThemes.moc"
