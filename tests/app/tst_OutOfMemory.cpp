#include "DocSession.h"
#include "Guarded.h"
#include "PaintCommands.h"
#include "TextSpec.h"
#include "core/TileMemory.h"
#include "formats/pictures/ImageExport.h"
#include "support/Files.h"
#include "support/Studio.h"
#include "support/TestMain.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include <QAction>
#include <QMenuBar>

using namespace qirn;
using namespace qirn::test;

// --- Memory of this program: a large piece that its own code asks for, and not Qt or another library, can be refused.

extern "C" char __executable_start, etext;

namespace {

constexpr std::size_t kLarge = 16 * 1024;
std::atomic<int64_t> untilRefused = 0; // 1: the next large piece

void* memory(std::size_t size, std::size_t alignment, const void* caller) {
    const auto* place = static_cast<const char*>(caller);
    const bool ours = place >= &__executable_start && place < &etext;
    const bool refused = size >= kLarge && ours && untilRefused.load() > 0 && untilRefused.fetch_sub(1) == 1;
    void* const piece = refused ? nullptr : std::aligned_alloc(alignment, (size / alignment + 1) * alignment);
    if (!piece) throw std::bad_alloc();
    return piece;
}

} // namespace

void* operator new(std::size_t size) {
    return memory(size, alignof(std::max_align_t), __builtin_return_address(0));
}
void* operator new[](std::size_t size) {
    return memory(size, alignof(std::max_align_t), __builtin_return_address(0));
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return memory(size, static_cast<std::size_t>(alignment), __builtin_return_address(0));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
    return memory(size, static_cast<std::size_t>(alignment), __builtin_return_address(0));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size);
}
void operator delete(void* piece) noexcept {
    std::free(piece);
}
void operator delete[](void* piece) noexcept {
    std::free(piece);
}
void operator delete(void* piece, std::size_t) noexcept {
    std::free(piece);
}
void operator delete[](void* piece, std::size_t) noexcept {
    std::free(piece);
}
void operator delete(void* piece, std::align_val_t) noexcept {
    std::free(piece);
}
void operator delete[](void* piece, std::align_val_t) noexcept {
    std::free(piece);
}
void operator delete(void* piece, std::size_t, std::align_val_t) noexcept {
    std::free(piece);
}
void operator delete[](void* piece, std::size_t, std::align_val_t) noexcept {
    std::free(piece);
}

// --- Commands, each by the way it takes from Qt

namespace {

const QString kMessage = "There is not enough memory for this. Nothing was changed.";

/// A studio with a menu and a picture of three painted layers, one step of which is undone.
struct World : Studio {
    static inline QString files; ///< Where those to open are.
    QMenuBar bar;
    PaintCommands commands{model, bar};

    explicit World(bool selected) {
        penStroke({{30, 40}, {370, 250}});
        choose("newLayer");
        model.setPrimary(PaintColor(0, 0, 1));
        penStroke({{250, 30}, {270, 290}});
        choose("copyMerged");
        if (selected) gesture(Tool::selectEllipse, {20, 20}, {300, 280});
        gesture(Tool::brush, {200, 200}, {390, 200});
        choose("undo");
    }
    void choose(const char* command) { commands.action(command)->trigger(); }
    void gesture(Tool tool, QPointF from, QPointF to) {
        model.setTool(tool);
        penStroke({from, (from + to) / 2, to});
    }
    void strokeOf(Tool tool, double size) {
        model.setTool(tool);
        BrushSettings brush = model.activeBrush();
        brush.size = size;
        model.setActiveBrush(brush);
        penStroke({{60, 60}, {200, 140}, {350, 250}});
    }
    void move(bool turned) {
        gesture(Tool::move, {100, 100}, {131, 117});
        if (turned) model.updateTransform([](TransformState& state) { state.angle = 20; });
        key(Qt::Key_Return);
    }
    void open(const char* command, const char* file) {
        desktop.openPaths = {{QDir(files).filePath(file)}};
        choose(command);
    }
    void exportAs(ExportFormat format, const QString& name = QStringLiteral("picture")) {
        desktop.savePaths = {QDir(folder.path()).filePath(name)}; // or elsewhere
        guarded(model, [&] { model.exportPicture(format, 0.9, PaintColor::white()); });
    }
    /// Back to as many steps and pictures as there were.
    void goBackTo(int64_t depth, std::size_t pictures) {
        while (model.sessions().size() > pictures) model.close(*model.sessions().back());
        while (doc().undoDepth() > depth) model.undo();
        while (doc().undoDepth() < depth) model.redo();
        pass();
    }
    static void pass() { // painting, and what follows from it
        for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
    }
};

struct Command {
    const char* name;
    void (*run)(World& world) = nullptr; ///< Null: that of the menu.
};
constexpr Command kCommands[] = {
    {"stroke", [](World& world) { world.strokeOf(Tool::brush, 12); }},
    {"wide stroke", [](World& world) { world.strokeOf(Tool::brush, 300); }},
    {"eraser", [](World& world) { world.strokeOf(Tool::eraser, 30); }},
    {"smudge", [](World& world) { world.strokeOf(Tool::smudge, 60); }},
    {"blur", [](World& world) { world.strokeOf(Tool::blur, 60); }},
    {"bucket",
     [](World& world) {
         world.gesture(Tool::bucket, {50, 200}, {50, 200});
     }},
    {"gradient",
     [](World& world) {
         world.gesture(Tool::gradient, {10, 10}, {300, 250});
     }},
    {"ellipse",
     [](World& world) {
         world.gesture(Tool::selectEllipse, {10, 10}, {390, 290});
     }},
    {"lasso",
     [](World& world) {
         world.gesture(Tool::lasso, {10, 10}, {300, 10});
     }},
    {"shape",
     [](World& world) {
         world.gesture(Tool::shape, {10, 10}, {390, 290});
     }},
    {"move", [](World& world) { world.move(false); }},
    {"turn", [](World& world) { world.move(true); }},
    {"text",
     [](World& world) {
         TextSpec spec;
         spec.text = "Words";
         spec.size = 90;
         guarded(world.model, [&] { world.model.placeText(spec, {20, 20}); });
     }},
    {"zoom", [](World& world) { world.canvas.setZoom(world.session().view.zoom > 0.5 ? 0.3 : 1); }},
    {"undo"},
    {"redo"},
    {"newLayer"},
    {"duplicateLayer"},
    {"deleteLayer"},
    {"mergeDown"},
    {"mergeVisible"},
    {"flatten"},
    {"clear"},
    {"selectAll"},
    {"invertSelection"},
    {"fillPrimary"},
    {"crop"},
    {"rotateClockwise"},
    {"flipHorizontal"},
    {"copy"},
    {"copyMerged"},
    {"cut"},
    {"paste"},
    {"newCanvas"},
    {"save",
     [](World& world) {
         world.desktop.savePaths = {world.path("saved")};
         world.choose("save");
     }},
    {"PNG", [](World& world) { world.exportAs(ExportFormat::png); }},
    {"JPEG", [](World& world) { world.exportAs(ExportFormat::jpeg); }},
    {"TIFF", [](World& world) { world.exportAs(ExportFormat::tiff); }},
    {"layered PSD", [](World& world) { world.exportAs(ExportFormat::psdLayered); }},
    {"flat PSD", [](World& world) { world.exportAs(ExportFormat::psdFlat); }},
    {"open document", [](World& world) { world.open("open", "saved.qirnpaint"); }},
    {"open PNG", [](World& world) { world.open("open", "a.png"); }},
    {"open JPEG", [](World& world) { world.open("open", "a.jpg"); }},
    {"open TIFF", [](World& world) { world.open("open", "a.tiff"); }},
    {"open layered PSD", [](World& world) { world.open("open", "layered.psd"); }},
    {"open flat PSD", [](World& world) { world.open("open", "flat.psd"); }},
    {"import", [](World& world) { world.open("importLayer", "a.png"); }},
};

/// What a failure must leave as it was.
struct Facts {
    uint64_t picture;
    int64_t depth;
    bool canRedo;
    const Selection* selection;
    std::size_t pictures;

    explicit Facts(World& world)
        : picture(world.doc().fingerprint()),
          depth(world.doc().undoDepth()),
          canRedo(world.doc().canRedo()),
          selection(world.doc().selection.get()),
          pictures(world.model.sessions().size()) {}
    bool operator==(const Facts&) const = default;
};

/// Refuses the n-th block of tile memory or the n-th large piece of other memory.
enum class Refused { block, piece };
void refuse(Refused what, int64_t n) {
    if (what == Refused::block)
        TileMemory::refuse(n);
    else
        untilRefused = n;
}
bool wasRefused(Refused what) {
    return (what == Refused::block ? TileMemory::refuse(0) : untilRefused.exchange(0)) <= 0;
}

} // namespace

class tst_OutOfMemory : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() {
        World::files = files_.path();
        World world(false);
        const auto at = [this](const char* name) { return QDir(files_.path()).filePath(name); };
        world.desktop.savePaths = {at("saved")};
        world.choose("save");
        world.exportAs(ExportFormat::png, at("a"));
        world.exportAs(ExportFormat::jpeg, at("a"));
        world.exportAs(ExportFormat::tiff, at("a"));
        world.exportAs(ExportFormat::psdLayered, at("layered"));
        world.exportAs(ExportFormat::psdFlat, at("flat"));
    }
    void aCommandIsDoneOrLeavesNothing_data() {
        QTest::addColumn<int>("command");
        QTest::addColumn<bool>("selected");
        for (int i = 0; i < static_cast<int>(std::size(kCommands)); ++i) {
            QTest::addRow("%s", kCommands[i].name) << i << false;
            QTest::addRow("%s, selected", kCommands[i].name) << i << true;
        }
    }
    void aCommandIsDoneOrLeavesNothing();

private:
    QTemporaryDir files_;
};

void tst_OutOfMemory::aCommandIsDoneOrLeavesNothing() {
    QFETCH(int, command);
    QFETCH(bool, selected);
    const int64_t used = TileMemory::usedBytes();
    {
        World world(selected);
        const Command& row = kCommands[command];
        const auto run = [&] {
            world.desktop.asked.clear();
            world.model.flash({});
            row.run ? row.run(world) : world.choose(row.name);
            World::pass();
        };
        const Facts before(world);
        run();
        const Facts done(world);
        world.goBackTo(before.depth, before.pictures);
        for (const Refused what : {Refused::block, Refused::piece}) {
            for (int64_t n = 1;; ++n) {
                const Facts start(world);
                refuse(what, n);
                run();
                if (!wasRefused(what)) break;
                const Facts end(world);
                const bool isDone = end.picture == done.picture && end.depth == done.depth;
                const auto& asked = world.desktop.asked;
                const QString said =
                    asked.empty() ? world.model.hud().value_or(QString()) : asked.back().text;
                const QString which = QStringLiteral("%1 %2: %3")
                                          .arg(what == Refused::block ? "block" : "piece")
                                          .arg(n)
                                          .arg(said);
                QVERIFY2(end == start || isDone, qPrintable(which));
                QVERIFY2(said.startsWith(kMessage), qPrintable(which));
                QVERIFY(!world.model.transform() && !world.canvas.isBusy());
                world.goBackTo(start.depth, start.pictures);
                QVERIFY(n < 2000);
            }
            QVERIFY(Facts(world).picture == done.picture); // the next one works
            world.goBackTo(before.depth, before.pictures);
        }
    }
    TileMemory::trim();
    QCOMPARE(TileMemory::usedBytes(), used);
}

QIRN_TEST(tst_OutOfMemory)
#include "tst_OutOfMemory.moc"
