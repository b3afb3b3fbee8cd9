#include "kit/ChromeColors.h"
#include "kit/QirnKit.h"
#include "kit/QirnThemes.h"
#include "kit/QrZoom.h"
#include "support/TestMain.h"

#include <QApplication>

using namespace qirn;

namespace {

double contrast(const QColor& a, const QColor& b) {
    return QirnTheme::RGB::fromColor(a).contrast(QirnTheme::RGB::fromColor(b));
}

} // namespace

class tst_KitThemes : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QirnKit::install("Qirn Paint"); }

    void contrastIsThatOfTheStandard() {
        const auto white = QirnTheme::RGB::fromHex(0xFFFFFF);
        // A dark channel is on the straight part of the curve, a bright one on the power.
        QCOMPARE(QirnTheme::RGB::fromHex(0x0A0A0A).luminance(), 10 / 255.0 / 12.92);
        QVERIFY(qAbs(white.contrast(QirnTheme::RGB::fromHex(0x777777)) - 4.478) < 0.001);
        QVERIFY(qAbs(QirnTheme::RGB::fromHex(0xFF0000).contrast(white) - 3.998) < 0.001);
    }

    void aRegisteredThemeIsFoundAndNeverReplacesAKnownOne() {
        QirnTheme mine = QirnThemes::named("rose-gold");
        mine.name = "Not this one";
        QirnTheme fresh = mine;
        fresh.id = "fresh";
        fresh.name = "Fresh";
        const QirnTheme list[] = {mine, fresh, fresh};
        QirnThemes::registerThemes(list);
        QCOMPARE(QirnThemes::named("rose-gold").name, "Rose Gold");
        QCOMPARE(QirnThemes::named("fresh").name, "Fresh");
        QCOMPARE(QirnThemes::builtIn().size(), std::size_t(6));
    }

    void theChosenThemeLivesInTheStoreAndAnUnknownOneIsTheDefault() {
        const KitStore& store = QirnKitHost::store();
        store.setText(QirnThemes::kKey, "midnight-black");
        QCOMPARE(QirnThemes::current().name, "Midnight Black");
        QirnThemes::setCurrentID("brushed-gray");
        QCOMPARE(store.text("qirn.theme"), "brushed-gray");
        QCOMPARE(QApplication::palette().color(QPalette::Window), QColor(0x45, 0x48, 0x4E));
        QirnThemes::setCurrentID("gone");
        QCOMPARE(QirnThemes::current().id, "cobalt-gunmetal");
        QCOMPARE(QApplication::palette().color(QPalette::Window), QColor(0x1C, 0x21, 0x29));
    }

    void theZoomIsStoredInWholePercentWithinItsRange() {
        const KitStore& store = QirnKitHost::store();
        QCOMPARE(QrZoom::value(), 1);
        for (const auto& [chosen, kept] : {std::pair{5.0, 2.0}, {0.5, 0.85}, {1.234, 1.23}, {1.0, 1.0}}) {
            QrZoom::setValue(chosen);
            QVERIFY(store.number("qirn.zoom") == kept && QrZoom::value() == kept &&
                    QirnKitHost::metrics().zoom == kept);
        }
        store.setNumber("qirn.zoom", 7); // stored by somebody else
        QCOMPARE(QrZoom::value(), 2);
        store.setNumber("qirn.zoom", 0);
    }

    void everyTextCanBeReadInEveryTheme() {
        for (const QirnTheme& theme : QirnThemes::builtIn()) {
            const ChromeColors c = ChromeColors::fromTheme(theme.kitTheme());
            const auto canBeRead = [](const QColor& text, const QColor& on, int which) {
                const double ratio = contrast(text, on);
                QVERIFY2(ratio >= 4.5, qPrintable(QString("surface %1: %2").arg(which).arg(ratio)));
            };
            // Every text of the chrome on every surface that it stands on, and so in the widgets' palette.
            const QColor surfaces[] = {c.canvas, c.panel, c.bar,   c.popup,   c.raised,
                                       c.well,   c.level, c.hover, c.pressed, c.selected};
            for (int i = 0; i < 10; ++i) canBeRead(c.text, surfaces[i], i);
            for (int i = 0; i < 7; ++i) canBeRead(c.dim, surfaces[i], i);
            canBeRead(c.onAccent, c.accent, 10);
            canBeRead(c.onAccent, c.accentHover, 11);
            for (const QColor& edge : {c.focus, c.edge, c.edgeHover, c.accentEdge})
                for (int i = 0; i < 7; ++i) QVERIFY(contrast(edge, surfaces[i]) >= 3);
            const QPalette p = c.palette();
            using P = QPalette;
            for (const auto& [text, base] : {std::pair{P::WindowText, P::Window},
                                             {P::Text, P::Base},
                                             {P::Text, P::AlternateBase},
                                             {P::ButtonText, P::Button},
                                             {P::ToolTipText, P::ToolTipBase},
                                             {P::HighlightedText, P::Highlight},
                                             {P::PlaceholderText, P::Base}})
                canBeRead(p.color(text), p.color(base), 100 + base);
            // The theme still looks like itself: its text is the table's.
            QCOMPARE(c.text, theme.kitTheme().text);
            QCOMPARE(c.panel, theme.kitTheme().panelBottom);
        }
    }
};

QIRN_TEST(tst_KitThemes)
#include "tst_KitThemes.moc"
