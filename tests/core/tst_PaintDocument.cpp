#include "compositing/CompositeInputs.h"
#include "operations/LayerOperations.h"
#include "support/Pictures.h"
#include "support/Stops.h"
#include "support/TestMain.h"

#include <fstream>

#include <unistd.h>

using namespace qirn;
using namespace qirn::test;

namespace {

QStringList names(const PaintDocument& doc) {
    QStringList list;
    for (const LayerRef& layer : doc.layers()) list += layer->name;
    return list;
}

int64_t residentBytes() {
    int64_t total = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

} // namespace

class tst_PaintDocument : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aNewPictureStartsOnAnEmptyLayer() {
        const PaintDocument bare(300, 600, 72, {});
        QCOMPARE(names(bare), QStringList{"Layer 1"});
        for (const PaintColor& paper : {PaintColor::white(), PaintColor(1, 1, 1, 0)}) {
            const PaintDocument doc(300, 600, 72, paper);
            QCOMPARE(names(doc), (QStringList{"Background", "Layer 1"}));
            QVERIFY(doc.activeIndex() == 1 && doc.activeLayer().isEmpty() && !doc.canUndo());
            for (int64_t i = 0; i < doc.grid().count(); ++i)
                QCOMPARE(doc.layer(0).tile(i) != nullptr, paper.a > 0);
        }
        const PaintDocument doc(300, 600, 72, PaintColor::white());
        QCOMPARE(doc.layer(0).tile(5)->pixels()[kTileBytes - 1], 255); // also beyond the canvas
        QCOMPARE(text(compositePixel(doc, 299, 599)), QStringLiteral("255,255,255,255"));
        for (const auto& [x, y] : {std::pair{300, 599}, {0, -1}})
            QCOMPARE(compositePixel(doc, x, y), PixelBytes{});
    }

    void aDocumentOfPartsIsChecked() {
        QCOMPARE(names(PaintDocument(5, 5, 72, {}, 0)), QStringList{"Layer 1"});
        const auto layer = std::make_shared<Layer>("a", TileGrid(5, 5));
        QVERIFY(!stopsTheProcess([&] { PaintDocument(5, 5, 72, {layer}, 0); }));
        QVERIFY(stopsTheProcess([&] { PaintDocument(5, 5, 72, {layer}, 1); }));
        QVERIFY(stopsTheProcess([&] { PaintDocument(5, 300, 72, {layer}, 0); }));
    }

    void theActiveLayerIsAlwaysOneOfTheStack() {
        PaintDocument doc(9, 9, 72, {});
        addLayer(doc);
        addLayer(doc);
        doc.setActiveIndex(99);
        QCOMPARE(doc.activeIndex(), 2);
        doc.setActiveIndex(-1);
        QCOMPARE(doc.activeIndex(), 0);
        QCOMPARE(doc.indexOf(doc.layer(2).id), std::optional<int64_t>(2));
        QVERIFY(!doc.indexOf(QUuid::createUuid()));
    }

    void fillingALayerSharesNothingThatIsPaintedLater() {
        PaintDocument doc(600, 300, 72, PaintColor(0.5, 0.25, 1, 0.5));
        QCOMPARE(text(doc.layer(0).pixel(599, 299)), QStringLiteral("64,32,128,128"));
        doc.takeDirtyTiles();
        paintRect(doc, doc.layer(0), {10, 10, 1, 1}, {1, 2, 3, 4});
        QCOMPARE(text(doc.layer(0).pixel(266, 10)), QStringLiteral("64,32,128,128"));
        QCOMPARE(doc.takeDirtyTiles(), std::vector<int64_t>{0});
        Layer loose("not in the stack", doc.grid());
        doc.fillLayer(loose, PaintColor::black());
        QCOMPARE(doc.takeDirtyTiles().size(), std::size_t{6});
        QVERIFY(!loose.isEmpty());
    }

    void aHugeBlankPictureCostsNothing() {
        const int64_t before = residentBytes();
        std::vector<LayerRef> layers;
        const TileGrid grid(30000, 30000);
        for (int i = 0; i < 1000; ++i) layers.push_back(std::make_shared<Layer>("Layer", grid));
        PaintDocument doc(30000, 30000, 72, std::move(layers), 999);
        for (int i = 0; i < 100; ++i) doc.commit("Nothing");
        for (int i = 0; i < 50; ++i) doc.undo();
        QVERIFY(doc.activeLayer().isEmpty() && !doc.activeLayer().contentBounds());
        QVERIFY(displayImages(doc, doc.takeDirtyTiles()).empty());
        paintRect(doc, doc.layer(500), {29999, 29999, 1, 1}, {9, 9, 9, 9});
        doc.commit("Dot");
        QCOMPARE(doc.historyBytes(), kTileBytes);
        const int64_t grown = residentBytes() - before;
        // One byte for each pixel would be 900 MB; sanitizers hold back some of what was freed.
        QVERIFY2(grown < 450'000'000, qPrintable(QString::number(grown)));
    }
};

QIRN_TEST(tst_PaintDocument)
#include "tst_PaintDocument.moc"
