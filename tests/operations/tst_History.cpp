#include "core/SeededRandom.h"
#include "operations/LayerOperations.h"
#include "support/Pictures.h"
#include "support/Rows.h"
#include "support/TestMain.h"

#include <span>

using namespace qirn;
using namespace qirn::test;

namespace {

using History = std::span<const PaintDocument::HistoryEntry>;

struct Held {
    int64_t layers, selections; // bytes
};

/// What a step gives back: all but the settings of the view.
auto stateOf(const PaintDocument& doc) {
    return std::tuple(doc.fingerprint(), doc.selection, doc.activeIndex(), doc.dpi);
}

/// The memory that states hold, counted from scratch: every tile of every state, each once.
Held recounted(History history) {
    std::set<const void*> tiles, masks;
    for (const auto& entry : history) {
        for (const LayerState& layer : entry.state.layers)
            layer.tiles.forEachTile([&](int64_t, const Tile& tile) { tiles.insert(&tile); });
        if (entry.state.selection)
            entry.state.selection->tiles().forEachOwnTile([&](const MaskTile& tile) { masks.insert(&tile); });
    }
    return {std::ssize(tiles) * kTileBytes, std::ssize(masks) * kTilePixels};
}

/// How many of these entries a document must keep; the last was just committed.
std::size_t keptOf(History all, const PaintDocument& doc) {
    std::size_t kept =
        std::min(all.size(), static_cast<std::size_t>(std::max<int64_t>(doc.maxUndoSteps + 1, 2)));
    const auto bytes = [&] {
        const Held held = recounted(all.last(kept));
        return held.layers + held.selections;
    };
    for (bool isLong = kept >= 21; isLong && kept > 2 && bytes() > doc.maxUndoBytes;) --kept;
    return kept;
}

/// One thing that a person may do next, at random.
void anyAction(PaintDocument& doc, SeededRandom& random) {
    const auto below = [&random](int64_t limit) {
        return static_cast<int64_t>(random.next() % static_cast<uint64_t>(limit));
    };
    const int64_t layer = below(doc.layerCount()), other = below(5);
    switch (below(17)) {
    case 0:
        return doc.fillLayer(doc.layer(layer), PaintColor(random.unit(), random.unit(), 0));
    case 1:
        return static_cast<void>(addLayer(doc));
    case 2:
        return static_cast<void>(doc.layerCount() < 6 ? duplicateLayer(doc, layer) : nullptr);
    case 3:
        return deleteLayer(doc, layer);
    case 4:
        return moveLayer(doc, layer, other);
    case 5:
        return static_cast<void>(mergeDown(doc, layer));
    case 6:
        return static_cast<void>(clearLayer(doc, doc.layer(layer)));
    case 7:
        return doc.undo();
    case 8:
        return doc.redo();
    case 9:
        return doc.revertToLastCommit();
    case 10: { // out of the stack and in again, with a tile that is in two slots
        std::vector<LayerRef> layers = doc.layers();
        const LayerRef taken = layers[static_cast<std::size_t>(layer)];
        if (layers.size() == 1) return;
        layers.erase(layers.begin() + layer);
        doc.replaceLayers(std::move(layers), 0);
        taken->freezeTiles();
        taken->setTile(0, taken->tiles().share(1));
        return insertLayer(doc, taken, other);
    }
    case 11:
        doc.selection = nullptr;
        return doc.setActiveIndex(layer);
    case 12:
        doc.dpi = 72 + static_cast<double>(other);
        return;
    case 13: {
        QPainterPath path;
        path.addEllipse(QPointF(500 * random.unit(), 200 * random.unit()), 40, 40);
        doc.selection = Selection::make(path, SelectionOp::add, doc.selection, 500, 200, Antialias::yes);
        return;
    }
    default:
        return paintRect(doc, doc.activeLayer(), {below(500), below(200), 9, 9},
                         {static_cast<uint8_t>(other), 7, 7, 255});
    }
}

} // namespace

class tst_History : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyStepOfARandomWalkIsKeptByTheRule() {
        using Action = std::function<void(PaintDocument&, SeededRandom&)>;
        // One tile and one of a selection each time.
        const Action alike = [](PaintDocument& doc, SeededRandom& random) {
            const auto shade = static_cast<uint8_t>(1 + random.next() % 250);
            paintRect(doc, doc.activeLayer(), {0, 0, 9, 9}, {shade, 7, 7, 255});
            doc.selection = selectionOf(500, 200, [=](int64_t x, int64_t y) { return x + y ? 0 : shade; });
        };
        forRows<int, int64_t, Action>(
            {{"as usual", 100, 1'500'000'000, anyAction},
             {"three steps", 3, 1'500'000'000, anyAction},
             {"none still leaves one", 0, 1'500'000'000, anyAction},
             {"nonsense too", -7, 1'500'000'000, anyAction},
             {"no memory", 40, 0, anyAction},
             {"little memory", 25, 20 * kTileBytes, anyAction},
             {"just enough", 60, 24 * (kTileBytes + kTilePixels), alike}},
            [](int maxSteps, int64_t maxBytes, const Action& act) {
                SeededRandom random(21);
                PaintDocument doc(500, 200, 72, {});
                doc.maxUndoSteps = maxSteps;
                doc.maxUndoBytes = maxBytes;
                std::vector states{stateOf(doc)}; // of each entry
                for (int i = 0; i < 160; ++i) {
                    act(doc, random);
                    QCOMPARE(doc.historyBytes(), recounted(doc.history()).layers);
                    QVERIFY(doc.activeIndex() >= 0 && doc.activeIndex() < doc.layerCount());
                    if (random.next() % 4 == 0) continue; // several make one step
                    std::vector<PaintDocument::HistoryEntry> all(doc.history().begin(),
                                                                 doc.history().begin() + doc.undoDepth() + 1);
                    doc.commit(QString::number(i));
                    all.push_back(doc.history().back());
                    const std::size_t kept = keptOf(all, doc);
                    QCOMPARE(doc.history().size(), kept);
                    QCOMPARE(doc.undoDepth(), static_cast<int64_t>(kept) - 1);
                    QCOMPARE(*doc.undoName(), QString::number(i));
                    states.erase(states.begin() + std::ssize(all) - 1, states.end());
                    states.push_back(stateOf(doc));
                    states.erase(states.begin(), states.end() - static_cast<std::ptrdiff_t>(kept));
                    if (i % 80 == 19) {
                        doc.resetHistory();
                        states = {states.back()};
                    }
                }
                doc.onion.enabled = true;
                const auto isAsItWas = [&] {
                    return doc.onion.enabled &&
                           stateOf(doc) == states[static_cast<std::size_t>(doc.undoDepth())];
                };
                for (doc.revertToLastCommit(); doc.canUndo(); doc.undo()) QVERIFY(isAsItWas());
                for (; doc.canRedo(); doc.redo()) QVERIFY(isAsItWas());
                QVERIFY(isAsItWas());
            });
    }
};

QIRN_TEST(tst_History)
#include "tst_History.moc"
