#include "compositing/CompositeInputs.h"
#include "operations/LayerOperations.h"
#include "operations/SelectionOperations.h"
#include "platform/BlockPool.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

using namespace qirn;
using namespace qirn::test;

namespace {

std::unique_ptr<PaintDocument> stackOf(const QStringList& names, int64_t active) {
    std::vector<LayerRef> layers;
    for (const QString& name : names) layers.push_back(std::make_shared<Layer>(name, TileGrid(300, 200)));
    return std::make_unique<PaintDocument>(300, 200, 72, std::move(layers), active);
}

/// The names from the bottom, the active layer's in brackets.
QString stack(const PaintDocument& doc) {
    QStringList list;
    for (int64_t i = 0; i < doc.layerCount(); ++i) {
        const QString& name = doc.layer(i).name;
        list += i == doc.activeIndex() ? '[' + name + ']' : name;
    }
    return list.join(' ');
}

using Merge = void (*)(PaintDocument&);

QString whole(const PaintDocument& doc, const RGBABuffer& picture) {
    return firstDifference(*flattened(doc), picture);
}

} // namespace

class tst_LayerOperations : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void newLayersGetTheFirstFreeNumber() {
        const auto check = [](const QStringList& names, int active, const QString& result) {
            const auto doc = stackOf(names, active);
            addLayer(*doc);
            QCOMPARE(stack(*doc), result);
            QVERIFY(doc->takeDirtyTiles().empty()); // an empty layer changes no pixel
        };
        check({"Layer 1"}, 0, "Layer 1 [Layer 2]");
        check({"Background", "Layer 1"}, 1, "Background Layer 1 [Layer 2]");
        check({"Layer 1", "Layer 2"}, 0, "Layer 1 [Layer 3] Layer 2");
        check({"Layer 2", "Layer 3"}, 1, "Layer 2 Layer 3 [Layer 4]");
        check({"Layer 3", "Layer 4"}, 0, "Layer 3 [Layer 2] Layer 4");
    }

    void deletingAndMovingKeepTheSameLayerActive() {
        // From every place to every place and beyond, with every layer active.
        for (int i = 0; i < 3 * 5 * 8; ++i) {
            const int active = i % 3, from = i / 3 % 5 - 1, to = i / 15 - 2; // -2: it is deleted
            const auto doc = stackOf({"a", "b", "c"}, active);
            QStringList wanted{"a", "b", "c"};
            wanted[active] = '[' + wanted[active] + ']';
            if (from >= 0 && from < 3) {
                const QString taken = wanted.takeAt(from);
                if (to > -2) wanted.insert(std::clamp(to, 0, 2), taken);
                // The next one, or the top, takes a deleted layer's place.
                if (to == -2 && from == active)
                    wanted[std::min(from, 1)] = '[' + wanted[std::min(from, 1)] + ']';
            }
            const QString before = stack(*doc);
            to == -2 ? deleteLayer(*doc, from) : moveLayer(*doc, from, to < 0 ? -9 : to);
            QCOMPARE(stack(*doc), wanted.join(' '));
            QCOMPARE(doc->takeDirtyTiles().empty(), stack(*doc) == before);
        }
    }

    void aDuplicateSharesItsTilesUntilOneIsPainted() {
        const auto doc = randomDocument(600, 300, 1, 3);
        Layer& source = doc->layer(0);
        source.isLocked = source.alphaLocked = source.isClipping = true;
        source.isVisible = false;
        const uint64_t before = source.fingerprint();
        Layer& copy = *duplicateLayer(*doc, 0);
        QCOMPARE(doc->activeIndex(), 1);
        QCOMPARE(copy.name, source.name + " copy");
        QVERIFY(copy.id != source.id && !copy.isLocked);
        for (int64_t i = 0; i < doc->grid().count(); ++i) QCOMPARE(copy.tile(i), source.tile(i));
        paintRect(*doc, copy, {250, 250, 20, 20}, {1, 2, 3, 4});
        QCOMPARE(source.fingerprint(), before);
        QCOMPARE(copy.tile(2), source.tile(2)); // not touched by the rectangle
        paintRect(*doc, source, {250, 250, 20, 20}, {1, 2, 3, 4});
        copy.name = source.name;
        copy.isLocked = true;
        QCOMPARE(copy.fingerprint(), source.fingerprint());
    }

    void mergingDownKeepsThePicture() {
        for (uint64_t seed = 1; seed <= 12; ++seed) {
            const auto doc = randomDocument(300, 200, 3, seed);
            Layer& lower = doc->layer(1);
            doc->fillLayer(doc->layer(0), PaintColor::white());
            doc->fillLayer(lower, PaintColor(0.3, 0.6, 0.9));
            lower.opacity = 1;
            lower.blendMode = BlendMode::normal;
            lower.isVisible = true;
            lower.isClipping = false;
            const auto before = flattened(*doc);
            mergeDown(*doc, 2);
            QCOMPARE(whole(*doc, *before), QString());
            QCOMPARE(stack(*doc), QStringLiteral("Layer 1 [Layer 2]"));
        }
    }

    void mergingDownRespectsTheLayerBelow() {
        const auto doc = stackOf({"base", "upper"}, 1);
        Layer &base = doc->layer(0), &upper = doc->layer(1);
        paintRect(*doc, base, {10, 10, 50, 50}, {0, 0, 0, 255});
        doc->fillLayer(upper, PaintColor(1, 0, 0));
        upper.isClipping = true;
        base.opacity = 0.5;
        base.isLocked = true;
        base.blendMode = BlendMode::multiply;
        doc->commit("Setup");
        mergeDown(*doc, 1);
        QCOMPARE(*doc->layer(0).contentBounds(), (IRect{10, 10, 50, 50}));
        QCOMPARE(text(doc->layer(0).pixel(20, 20)), QStringLiteral("255,0,0,255"));
        QVERIFY(doc->layer(0).opacity == 0.5 && doc->layer(0).isLocked);
        QCOMPARE(doc->layer(0).blendMode, BlendMode::multiply);

        // Two layers clipped to a third: the lower one is no base, and the upper one shows beside it too.
        doc->revertToLastCommit();
        doc->layer(0).isClipping = true;
        mergeDown(*doc, 1);
        QCOMPARE(*doc->layer(0).contentBounds(), (IRect{0, 0, 300, 200}));
    }

    void mergingTheVisibleOnesKeepsTheHiddenAndFlatteningThePictureAlone() {
        for (const auto& [visible, result] : {std::pair("a-c--", "b [Merged] d e"),
                                              {"-b--e", "a c d [Merged]"},
                                              {"abcde", "[Merged]"},
                                              {"--c--", "a b [c] d e"},
                                              {"-----", "a b [c] d e"}}) {
            const auto doc = stackOf({"a", "b", "c", "d", "e"}, 2);
            for (int i = 0; i < 5; ++i) {
                doc->layer(i).load(*noise(300, 200, static_cast<uint64_t>(i)));
                doc->layer(i).isVisible = visible[i] != '-';
                doc->layer(i).blendMode = BlendMode(i + 3);
            }
            doc->fillLayer(doc->layer(1), PaintColor(0.3, 0.6, 0.9)); // beyond the edge too
            doc->onion.enabled = true;                                // never in the picture
            const auto before = flattened(*doc);
            mergeVisible(*doc);
            QCOMPARE(stack(*doc), QString(result));
            QCOMPARE(whole(*doc, *before), QString());
            Layer plain("Background", doc->grid());
            plain.load(*before);
            doc->takeDirtyTiles();
            flattenImage(*doc);
            QCOMPARE(stack(*doc), QStringLiteral("[Background]"));
            QCOMPARE(doc->layer(0).fingerprint(), plain.fingerprint());
            QCOMPARE(doc->takeDirtyTiles().size(), std::size_t{2});
        }
    }

    void mergingTakesMemoryOnlyForWhatDiffers() {
        const auto check = [](const Merge& merge, int tiles) {
            PaintDocument doc(30000, 30000, 72, PaintColor::white());
            addLayer(doc);
            for (int64_t i : {1, 2}) paintRect(doc, doc.layer(i), {i * 5000, 300, 1, 1}, {9, 9, 9, 255});
            const int64_t before = BlockPool::usedBytes();
            const auto pixels = [&] {
                return text(compositePixel(doc, 10000, 300)) + text(compositePixel(doc, 0, 0));
            };
            const QString picture = pixels();
            merge(doc);
            QCOMPARE(pixels(), picture);
            QCOMPARE((BlockPool::usedBytes() - before) / kTileBytes, int64_t{tiles});
        };
        // Paper within the canvas, at its edges and in its corner, two tiles with something on them; those below go.
        check([](PaintDocument& doc) { mergeVisible(doc); }, 4);
        check([](PaintDocument& doc) { flattenImage(doc); }, 4);
        const auto paperOverPaper = [](PaintDocument& doc) {
            moveLayer(doc, 1, 0);
            mergeDown(doc, 1);
        };
        check(paperOverPaper, 1);
    }

    void clearingStaysInsideTheSelection() {
        const auto picture = noise(300, 200, 8);
        const auto doc = documentOf(*picture);
        Layer& layer = doc->activeLayer();
        doc->selection = selectionOf(300, 200, [](int64_t x, int64_t y) {
            return IRect{250, 50, 12, 10}.contains(x, y) ? static_cast<int>(x) : 0;
        });
        clearLayer(*doc, layer);
        const auto wanted = pictureOf(300, 200, [&](int64_t x, int64_t y) {
            PixelBytes pixel = picture->pixel(x, y);
            for (uint8_t& c : pixel) // to nearest
                c = static_cast<uint8_t>((2 * c * (255 - doc->selection->value(x, y)) + 255) / 510);
            return pixel;
        });
        QCOMPARE(firstDifference(*layer.toBuffer(), *wanted), QString());
        QCOMPARE(doc->takeDirtyTiles(), (std::vector<int64_t>{0, 1}));

        doc->fillLayer(layer, PaintColor::white());
        doc->selection = selectionOf(300, 200, [](int64_t, int64_t) { return 128; });
        clearLayer(*doc, layer);
        QCOMPARE(text(layer.pixel(299, 199)), QStringLiteral("127,127,127,127"));
        clearLayer(*doc, *addLayer(*doc)); // nothing to clear makes no tile
        QVERIFY(!doc->activeLayer().tile(0));
        deselect(*doc);
        clearLayer(*doc, layer);
        QVERIFY(!layer.tile(0));
    }
};

QIRN_TEST(tst_LayerOperations)
#include "tst_LayerOperations.moc"
