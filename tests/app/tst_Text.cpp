#include "app/text/TextRenderer.h"
#include "compositing/CompositeInputs.h"
#include "program/PaintSample.h"
#include "program/SelfTestEngine.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

using namespace qirn;
using namespace qirn::test;

namespace {

TextSpec words(const QString& text) {
    TextSpec spec;
    spec.text = text;
    spec.fontFamily = "Inter";
    spec.size = 60;
    spec.color = PaintColor(1, 0, 0);
    return spec;
}

/// What is covered between two rows; the last row is not looked at.
QRect inkOf(const RGBABuffer& buffer, int64_t fromRow, int64_t toRow) {
    QRect ink;
    for (int64_t y = fromRow; y < toRow; ++y) {
        for (int64_t x = 0; x < buffer.width(); ++x)
            if (buffer.pixel(x, y)[3] > 127) ink |= QRect(static_cast<int>(x), static_cast<int>(y), 1, 1);
    }
    return ink;
}

} // namespace

class tst_Text : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void wordsStandUprightInTheirColor() {
        const auto t = TextRenderer::render(words("T"));
        QCOMPARE(t->x, int64_t{-4});
        QCOMPARE(t->y, int64_t{-4});
        const QRect ink = inkOf(*t->buffer, 0, t->buffer->height());
        // The bar of a T is at the top.
        QVERIFY(inkOf(*t->buffer, ink.top() + 3, ink.top() + 4).width() >
                2 * inkOf(*t->buffer, ink.bottom() - 3, ink.bottom() - 2).width());
        QCOMPARE(t->buffer->pixel(t->buffer->width() / 2, ink.center().y()), (PixelBytes{255, 0, 0, 255}));
        QCOMPARE(t->buffer->pixel(0, 0), PixelBytes{});
    }

    void blankAndHugeTextGiveNothing() {
        QVERIFY(!TextRenderer::render(words(" \n\t")));
        TextSpec huge = words(QString(500, u'W'));
        huge.size = 2000;
        QVERIFY(!TextRenderer::render(huge));
    }

    void aLongParagraphBreaksAndLosesNothing() {
        const auto one = TextRenderer::bounds(words("W"));
        const auto many = TextRenderer::bounds(words(QString(1000, u'W')));
        QVERIFY(many->w <= 20'008 && many->w > 19'000);
        QCOMPARE((many->h - 8) / (one->h - 8), 1000 * (one->w - 8) / 20'000 + 1);
    }

    void linesAreAlignedWithinTheWidest() {
        int starts[3];
        for (int alignment = 0; alignment < 3; ++alignment) {
            TextSpec spec = words("MMMMMM\nM");
            spec.alignment = alignment;
            const auto text = TextRenderer::render(spec);
            const int64_t height = text->buffer->height();
            starts[alignment] = inkOf(*text->buffer, height / 2 + 10, height).left();
        }
        QVERIFY(starts[0] < 20);
        QVERIFY(starts[1] > starts[0] + 80);
        QVERIFY(std::abs((starts[2] - starts[1]) - (starts[1] - starts[0])) <= 2);
        const auto one = TextRenderer::render(words("M"));
        const auto two = TextRenderer::render(words("M\nM"));
        QVERIFY(two->buffer->height() - 8 >= 2 * (one->buffer->height() - 8) - 2);
    }

    void anOutlineIsInTheSecondColor() {
        TextSpec spec = words("I");
        spec.size = 200;
        spec.outline = true;
        spec.outlineColor = PaintColor(0, 0, 1);
        spec.outlineWidth = 6;
        const auto text = TextRenderer::render(spec);
        QCOMPARE(text->x, int64_t{-10});
        const int64_t middle = text->buffer->height() / 2;
        const int edge = inkOf(*text->buffer, middle, middle + 1).left();
        QCOMPARE(text->buffer->pixel(edge + 4, middle), (PixelBytes{0, 0, 255, 255}));
        QCOMPARE(text->buffer->pixel(edge + 18, middle), (PixelBytes{255, 0, 0, 255}));
    }

    void aMissingFamilyIsReplacedByTheInterfacesOwn() {
        TextSpec spec = words("a");
        spec.fontFamily = "No Such Family 3000";
        QCOMPARE(TextRenderer::font(spec).family(), "Inter");
        spec.size = 1;
        QCOMPARE(TextRenderer::font(spec).pixelSize(), 4);
        QVERIFY(TextRenderer::font(spec).bold());
    }

    void complexScriptsAndEmojiAreDrawn() {
        for (const char* text : {"Ébauche", "مرحبا", "日本", "✏️", "a\u0301"}) {
            const auto drawn = TextRenderer::render(words(QString::fromUtf8(text)));
            QVERIFY2(drawn && !inkOf(*drawn->buffer, 0, drawn->buffer->height()).isEmpty(), text);
        }
    }

    void theSelfTestOfTheEnginePasses() {
        SelfTestReport report;
        for (const auto section :
             {SelfTestEngine::strokes, SelfTestEngine::blendModes, SelfTestEngine::bucket,
              SelfTestEngine::undoRedo, SelfTestEngine::saveReopen, SelfTestEngine::exports,
              SelfTestEngine::palettes, SelfTestEngine::canvasOps, SelfTestEngine::presets})
            section(report);
        QCOMPARE(report.failures(), 0);
    }

    void theSampleIsTheSameTwice() {
        const auto sample = PaintSample::make();
        QCOMPARE(PaintSample::make()->fingerprint(), sample->fingerprint());
        QCOMPARE(sample->layerCount(), int64_t{9});
        for (int64_t i = 0; i < 9; ++i) QVERIFY(!sample->layer(i).isEmpty());
        QCOMPARE(sample->activeLayer().name, "Ink");
        QVERIFY(sample->undoDepth() == 0 && sample->changeCount() == 0);
        // Chrome and candy show only inside the letters: without the title neither is seen.
        const auto whole = flattened(*sample);
        sample->layer(4).isVisible = false;
        const auto without = flattened(*sample);
        sample->layer(5).isVisible = sample->layer(6).isVisible = false;
        QCOMPARE(firstDifference(*without, *flattened(*sample)), QString());
        QVERIFY(whole->fingerprint() != without->fingerprint());
    }
};

QIRN_TEST(tst_Text)
#include "tst_Text.moc"
