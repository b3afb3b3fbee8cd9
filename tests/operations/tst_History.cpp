#include "core/SeededRandom.h"
#include "operations/LayerOperations.h"
#include "operations/Selection.h"
#include "support/Pictures.h"
#include "support/TestMain.h"

#include <set>
#include <span>

using namespace qirn;
using namespace qirn::test;

namespace {

/// One dab of a colour that tells which stroke it was.
void stroke(PaintDocument& doc, int number) {
    const int64_t x = number * 37 % doc.grid().width, y = number * 53 % doc.grid().height;
    const auto shade = static_cast<uint8_t>(number % 251);
    paintRect(doc, doc.activeLayer(), {x, y, 9, 9}, {shade, 7, 7, 255});
}

void commitStrokes(PaintDocument& doc, int count) {
    for (int i = 0; i < count; ++i) {
        stroke(doc, i);
        doc.commit(QStringLiteral("Stroke %1").arg(i));
    }
}

using History = std::span<const PaintDocument::HistoryEntry>;

/// What the layers of states hold, counted afresh: every tile of every state, each once.
int64_t recounted(History history) {
    std::set<const Tile*> tiles;
    for (const auto& entry : history) {
        for (const LayerState& layer : entry.state.layers) {
            layer.tiles.forEachTile([&](int64_t, const Tile& tile) { tiles.insert(&tile); });
        }
    }
    return static_cast<int64_t>(tiles.size()) * kTileBytes;
}

/// The same of their selections.
int64_t recountedMasks(History history) {
    std::set<const MaskTile*> tiles;
    for (const auto& entry : history) {
        if (entry.state.selection)
            entry.state.selection->tiles().forEachOwnTile([&](const MaskTile& tile) { tiles.insert(&tile); });
    }
    return static_cast<int64_t>(tiles.size()) * kTilePixels;
}

LayerRef takeOut(PaintDocument& doc, int64_t index) {
    std::vector<LayerRef> layers = doc.layers();
    LayerRef taken = layers[static_cast<std::size_t>(index)];
    layers.erase(layers.begin() + index);
    doc.replaceLayers(std::move(layers), 0);
    return taken;
}

/// One thing that a person may do next, at random.
void anyAction(PaintDocument& doc, SeededRandom& random) {
    const auto layer = static_cast<int64_t>(random.next() % static_cast<uint64_t>(doc.layerCount()));
    const auto other = static_cast<int64_t>(random.next() % 5);
    switch (random.next() % 14) {
    case 0:
        doc.fillLayer(doc.layer(layer), PaintColor(random.unit(), random.unit(), 0));
        break;
    case 1:
        addLayer(doc);
        break;
    case 2:
        if (doc.layerCount() < 6) duplicateLayer(doc, layer);
        break;
    case 3:
        deleteLayer(doc, layer);
        break;
    case 4:
        moveLayer(doc, layer, other);
        break;
    case 5:
        mergeDown(doc, layer);
        break;
    case 6:
        clearLayer(doc, doc.layer(layer));
        break;
    case 7:
        doc.undo();
        return;
    case 8:
        doc.redo();
        return;
    case 9:
        doc.revertToLastCommit();
        return;
    case 10: // out of the stack and in again, with a tile that is in two slots
        if (doc.layerCount() > 1) {
            const LayerRef taken = takeOut(doc, layer);
            taken->freezeTiles();
            taken->setTile(0, taken->tiles().share(1));
            insertLayer(doc, taken, other);
        }
        break;
    case 11:
        if (random.next() % 8 == 0) doc.resetHistory();
        break;
    default:
        stroke(doc, static_cast<int>(random.next() % 1000));
        break;
    }
    if (random.next() % 4 != 0) doc.commit("Action");
}

} // namespace

class tst_History : public QObject {
    Q_OBJECT

private Q_SLOTS:

    void aStateKeepsSelectionActiveLayerAndResolution() {
        PaintDocument doc(300, 300, 72, PaintColor::white());
        selectAll(doc);
        const auto all = doc.selection;
        doc.commit("Select All");
        deselect(doc);
        doc.setActiveIndex(0);
        doc.dpi = 300;
        doc.onion.enabled = true;
        doc.commit("Others");
        doc.undo();
        QCOMPARE(doc.selection, all);
        QCOMPARE(doc.activeIndex(), 1);
        QCOMPARE(doc.dpi, 72.0);
        QVERIFY(doc.onion.enabled); // a setting of the view
        doc.redo();
        QVERIFY(!doc.selection && doc.activeIndex() == 0 && doc.dpi == 300);
    }

    void theOldestStepsGoFirst_data() {
        QTest::addColumn<int>("maxSteps");
        QTest::addColumn<int>("commits");
        QTest::addColumn<int>("entries");
        QTest::newRow("three of ten") << 3 << 10 << 4;
        QTest::newRow("just full") << 3 << 3 << 4;
        QTest::newRow("none still leaves one") << 0 << 5 << 2;
        QTest::newRow("nonsense too") << -7 << 5 << 2;
    }
    void theOldestStepsGoFirst() {
        QFETCH(int, maxSteps);
        QFETCH(int, commits);
        QFETCH(int, entries);
        PaintDocument doc(300, 300, 72, {});
        doc.maxUndoSteps = maxSteps;
        commitStrokes(doc, commits);
        QCOMPARE(doc.history().size(), std::size_t(entries));
        QCOMPARE(doc.undoDepth(), entries - 1);
        QCOMPARE(*doc.undoName(), QStringLiteral("Stroke %1").arg(commits - 1));
        const uint64_t now = doc.fingerprint();
        for (int i = 0; i < 20; ++i) doc.undo();
        QCOMPARE(doc.undoDepth(), 0);
        for (int i = 0; i < 20; ++i) doc.redo();
        QCOMPARE(doc.fingerprint(), now);
    }

    void aShortHistoryIsNeverTrimmedByMemory_data() {
        QTest::addColumn<int>("entries");
        QTest::addColumn<int64_t>("maxTiles");
        QTest::addColumn<int>("left");
        QTest::newRow("20 entries") << 20 << int64_t{0} << 20;
        QTest::newRow("21 entries") << 21 << int64_t{0} << 2;
        QTest::newRow("21, enough") << 21 << int64_t{20} << 21;
        QTest::newRow("21, one too many") << 21 << int64_t{19} << 19;
        QTest::newRow("21, room for five") << 21 << int64_t{5} << 5;
    }
    void aShortHistoryIsNeverTrimmedByMemory() {
        QFETCH(int, entries);
        QFETCH(int64_t, maxTiles);
        PaintDocument doc(200, 200, 72, {}); // one tile, rewritten by each stroke
        doc.maxUndoBytes = maxTiles * kTileBytes;
        commitStrokes(doc, entries - 1);
        QTEST(static_cast<int>(doc.history().size()), "left");
        QCOMPARE(doc.undoDepth(), static_cast<int64_t>(doc.history().size()) - 1);
        QCOMPARE(doc.historyBytes(), recounted(doc.history()));
    }

    void theMemoryCountIsThatOfARecount() {
        for (uint64_t seed = 1; seed <= 4; ++seed) {
            SeededRandom random(seed);
            PaintDocument doc(700, 300, 72, seed % 2 ? std::optional(PaintColor::white()) : std::nullopt);
            doc.maxUndoSteps = seed == 1 ? 100 : 25;
            doc.maxUndoBytes = seed < 3 ? 1'500'000'000 : 30 * kTileBytes;
            for (int i = 0; i < 400; ++i) {
                anyAction(doc, random);
                QCOMPARE(doc.historyBytes(), recounted(doc.history()));
                QVERIFY(doc.activeIndex() >= 0 && doc.activeIndex() < doc.layerCount());
            }
        }
    }

    void selectionsCountForTheBudget() {
        SeededRandom random(3);
        PaintDocument doc(700, 700, 72, {});
        doc.maxUndoBytes = kTileBytes + 30 * kTilePixels;
        stroke(doc, 0);
        for (int step = 0; step < 200; ++step) {
            QPainterPath path;
            path.addEllipse(QPointF(700 * random.unit(), 700 * random.unit()), 90, 90);
            const auto op = random.next() % 4 ? SelectionOp::add : SelectionOp::replace;
            if (random.next() % 3) // otherwise states share one
                doc.selection = Selection::make(path, op, doc.selection, 700, 700, Antialias::yes);
            const std::vector<PaintDocument::HistoryEntry> before = doc.history();
            doc.commit("Select");
            const History kept(doc.history());
            std::vector<PaintDocument::HistoryEntry> all = before;
            all.push_back(kept.back());
            const auto held = [&](History history) { return recounted(history) + recountedMasks(history); };
            if (all.size() < 21) {
                QCOMPARE(kept.size(), all.size());
                continue;
            }
            QVERIFY(held(kept) <= doc.maxUndoBytes || kept.size() == 2);
            const History oneMore = History(all).last(std::min(kept.size() + 1, all.size()));
            QVERIFY(oneMore.size() == kept.size() || held(oneMore) > doc.maxUndoBytes);
        }
    }

    void everyStateOfARandomWalkComesBack() {
        SeededRandom random(21);
        PaintDocument doc(500, 300, 72, {});
        std::vector<uint64_t> prints;
        for (int i = 0; i < 150; ++i) {
            anyAction(doc, random);
            doc.commit("Mark");
            if (doc.undoDepth() < static_cast<int64_t>(prints.size())) {
                prints.resize(static_cast<std::size_t>(doc.undoDepth()));
            }
        }
        while (true) {
            prints.push_back(doc.fingerprint());
            if (!doc.canUndo()) break;
            doc.undo();
        }
        while (doc.canRedo()) {
            doc.redo();
            prints.pop_back();
            QCOMPARE(doc.fingerprint(), prints.back());
        }
    }
};

QIRN_TEST(tst_History)
#include "tst_History.moc"
