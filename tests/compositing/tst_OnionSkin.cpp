#include "compositing/CompositeInputs.h"
#include "operations/LayerOperations.h"
#include "support/Pictures.h"
#include "support/Rows.h"
#include "support/TestMain.h"

using namespace qirn;
using namespace qirn::test;

namespace {

/// Five layers, each with one pixel, all of them hidden multiply layers at half opacity. The top one has the name of
/// a paper layer without being one.
std::unique_ptr<PaintDocument> animation(const QString& bottom) {
    auto doc = std::make_unique<PaintDocument>(40, 40, 72, std::nullopt);
    doc->activeLayer().name = bottom;
    for (const char* name : {"A", "B", "C", "Background"}) addLayer(*doc, name);
    int64_t x = 0;
    for (const LayerRef& layer : doc->layers()) {
        paintRect(*doc, *layer, {x++, 0, 1, 1}, {100, 100, 100, 200});
        layer->blendMode = BlendMode::multiply;
        layer->isVisible = false;
        layer->isClipping = x == 4;
        layer->opacity = 0.5;
    }
    doc->onion.enabled = true;
    return doc;
}

/// What goes to the screen: the layer's pixel column, its opacity, "-" when hidden, and its tint.
QStringList shown(const PaintDocument& doc) {
    QStringList list;
    for (const CompositeInput& input : compositeInputs(doc, ForDisplay::yes)) {
        int column = 0;
        while (input.tiles.at(0)->pixels()[column * 4 + 3] == 0) ++column;
        QString line = QStringLiteral("%1 %2").arg(column).arg(static_cast<double>(input.opacity));
        if (!input.visible) line += '-';
        if (input.tint) line += input.tint->r > 0.9f ? " red" : " green";
        if (input.mode != BlendMode::normal || input.clipping) line += " not plain";
        list += line;
    }
    return list;
}

} // namespace

class tst_OnionSkin : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nearLayersShowAsGhosts() {
        forRows<QString, int, int, int, bool, QStringList>(
            {{"two below", "Sketch", 3, 2, 0, true, {"1 0.24 red", "2 0.4 red", "3 0.5"}},
             {"both sides", "Sketch", 2, 1, 2, true, {"1 0.4 red", "2 0.5", "3 0.4 green", "4 0.24 green"}},
             {"own colours", "Sketch", 1, 1, 1, false, {"0 0.4", "1 0.5", "2 0.4"}},
             {"paper stays", "Background", 2, 0, 0, true, {"0 0.5-", "2 0.5"}},
             {"paper in range is a ghost", "Background", 1, 1, 0, true, {"0 0.4 red", "1 0.5"}},
             {"the name is exact", "background", 2, 0, 0, true, {"2 0.5"}}},
            [](const QString& bottom, int active, int before, int after, bool tint, const QStringList& list) {
                const auto doc = animation(bottom);
                doc->setActiveIndex(active);
                doc->onion.before = before;
                doc->onion.after = after;
                doc->onion.tint = tint;
                QCOMPARE(shown(*doc), list);
            });
    }

    void ghostsNeverReachThePicture() {
        const auto doc = animation("Sketch");
        for (const LayerRef& layer : doc->layers()) layer->isVisible = true;
        doc->onion.enabled = false;
        const uint64_t off = flattened(*doc)->fingerprint();
        const PixelBytes pixel = compositePixel(*doc, 3, 0);
        const QStringList plain = shown(*doc);
        doc->onion.enabled = true;
        QCOMPARE(flattened(*doc)->fingerprint(), off);
        QCOMPARE(compositePixel(*doc, 3, 0), pixel);
        QVERIFY(shown(*doc) != plain);
    }
};

QIRN_TEST(tst_OnionSkin)
#include "tst_OnionSkin.moc"
