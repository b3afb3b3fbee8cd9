#include "app/commands/PaintCommands.h"
#include "app/model/Guarded.h"
#include "app/text/TextSpec.h"
#include "formats/ImageExport.h"
#include "platform/BlockPool.h"
#include "support/Studio.h"

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
// Newer compilers believe that memory of `new` comes from their own.
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void operator delete(void* piece) noexcept {
    std::free(piece);
}
void operator delete[](void* piece) noexcept { // by name: a sanitizer's own does not call the one above
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
struct Work : Studio {
    static inline QString files; ///< Where those to open are.
    QMenuBar bar;
    PaintCommands commands{model, canvas, bar};

    explicit Work(bool selected) {
        penStroke({{30, 40}, {370, 250}});
        choose("newLayer");
        model.colors().setPrimary(PaintColor(0, 0, 1));
        penStroke({{250, 30}, {270, 290}});
        choose("copyMerged");
        if (selected) gesture(Tool::selectEllipse, 20, 20, 300, 280);
        gesture(Tool::brush, 200, 200, 390, 200);
        choose("undo");
    }
    void choose(const char* command) { commands.action(command)->trigger(); }
    void gesture(Tool tool, double x0, double y0, double x1, double y1) {
        model.setTool(tool);
        penStroke({{x0, y0}, {(x0 + x1) / 2, (y0 + y1) / 2}, {x1, y1}});
    }
    void strokeOf(Tool tool, double size) {
        model.setTool(tool);
        set(&BrushSettings::size, size);
        penStroke({{60, 60}, {200, 140}, {350, 250}});
    }
    void place(const QString& words) {
        TextSpec spec;
        spec.text = words;
        spec.size = 90;
        guarded(model, [&] { CanvasEdits::placeText(model, spec, {20, 20}); });
    }
    void move(bool turned) {
        gesture(Tool::move, 100, 100, 131, 117);
        if (turned) model.transform().updateTransform([](TransformState& state) { state.angle = 20; });
        key(Qt::Key_Return);
    }
    void open(const char* command, const char* file) {
        desktop.openPaths = {{QDir(files).filePath(file)}};
        choose(command);
    }
    void save(const QString& path) {
        desktop.savePaths = {path};
        choose("save");
    }
    void exportAs(ExportFormat format, const QString& name = "picture") {
        desktop.savePaths = {QDir(folder.path()).filePath(name)}; // or elsewhere
        guarded(model, [&] { model.files().exportPicture(format, 0.9, PaintColor::white()); });
    }
    /// Back to as many steps and pictures as there were.
    void goBackTo(int64_t depth, std::size_t pictures) {
        while (model.pictures().sessions().size() > pictures)
            model.pictures().close(*model.pictures().sessions().back());
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
    void (*run)(Work& work); ///< Null: that of the menu.
};
constexpr Command kCommands[] = {
    {"stroke", [](Work& work) { work.strokeOf(Tool::brush, 12); }},
    {"wide stroke", [](Work& work) { work.strokeOf(Tool::brush, 300); }},
    {"eraser", [](Work& work) { work.strokeOf(Tool::eraser, 30); }},
    {"smudge", [](Work& work) { work.strokeOf(Tool::smudge, 60); }},
    {"blur", [](Work& work) { work.strokeOf(Tool::blur, 60); }},
    {"bucket", [](Work& work) { work.gesture(Tool::bucket, 50, 200, 50, 200); }},
    {"gradient", [](Work& work) { work.gesture(Tool::gradient, 10, 10, 300, 250); }},
    {"ellipse", [](Work& work) { work.gesture(Tool::selectEllipse, 10, 10, 390, 290); }},
    {"lasso", [](Work& work) { work.gesture(Tool::lasso, 10, 10, 300, 10); }},
    {"shape", [](Work& work) { work.gesture(Tool::shape, 10, 10, 390, 290); }},
    {"move", [](Work& work) { work.move(false); }},
    {"turn", [](Work& work) { work.move(true); }},
    {"text", [](Work& work) { work.place("Words"); }},
    {"new canvas",
     [](Work& work) {
         guarded(work.model,
                 [&] { work.model.pictures().newDocument(600, 400, 72, PaintColor::white(), "New"); });
     }},
    {"image size",
     [](Work& work) { guarded(work.model, [&] { CanvasEdits::resizeImage(work.model, 500, 333, 72); }); }},
    {"canvas size",
     [](Work& work) {
         guarded(work.model, [&] { CanvasEdits::resizeCanvas(work.model, 901, 702, 0.5, 0.5); });
     }},
    {"zoom", [](Work& work) { work.canvas.setZoom(work.session().view.zoom > 0.5 ? 0.3 : 1); }},
    {"save", [](Work& work) { work.save(work.path("saved")); }},
    {"PNG", [](Work& work) { work.exportAs(ExportFormat::png); }},
    {"JPEG", [](Work& work) { work.exportAs(ExportFormat::jpeg); }},
    {"TIFF", [](Work& work) { work.exportAs(ExportFormat::tiff); }},
    {"WebP", [](Work& work) { work.exportAs(ExportFormat::webp); }},
    {"OpenRaster", [](Work& work) { work.exportAs(ExportFormat::openRaster); }},
    {"layered PSD", [](Work& work) { work.exportAs(ExportFormat::psdLayered); }},
    {"flat PSD", [](Work& work) { work.exportAs(ExportFormat::psdFlat); }},
    {"open document", [](Work& work) { work.open("open", "saved.qirnpaint"); }},
    {"open PNG", [](Work& work) { work.open("open", "a.png"); }},
    {"open JPEG", [](Work& work) { work.open("open", "a.jpg"); }},
    {"open TIFF", [](Work& work) { work.open("open", "a.tiff"); }},
    {"open OpenRaster", [](Work& work) { work.open("open", "layered.ora"); }},
    {"open layered PSD", [](Work& work) { work.open("open", "layered.psd"); }},
    {"open flat PSD", [](Work& work) { work.open("open", "flat.psd"); }},
    {"import", [](Work& work) { work.open("importLayer", "a.png"); }},
};

const QByteArrayList kMenuCommands =
    QByteArray("undo redo newLayer duplicateLayer deleteLayer mergeDown mergeVisible flatten clear selectAll "
               "invertSelection fillPrimary crop rotateClockwise flipHorizontal copy copyMerged cut paste")
        .split(' ');

/// What a failure must leave as it was.
struct Facts {
    uint64_t picture;
    int64_t depth;
    bool canRedo;
    const Selection* selection;
    std::size_t pictures;
    bool operator==(const Facts&) const = default;
};
Facts factsOf(Work& work) {
    PaintDocument& doc = work.doc();
    return {doc.fingerprint(), doc.undoDepth(), doc.canRedo(), doc.selection.get(),
            work.model.pictures().sessions().size()};
}

/// Refuses the n-th block of tile memory or the n-th large piece of other memory, and tells how far off the last was.
enum class Refused { block, piece };
int64_t refuse(Refused what, int64_t n) {
    return what == Refused::block ? BlockPool::refuse(n) : untilRefused.exchange(n);
}

} // namespace

class tst_OutOfMemory : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() {
        Work::files = files_.path();
        Work work(false);
        const auto at = [this](const char* name) { return QDir(files_.path()).filePath(name); };
        work.save(at("saved"));
        work.exportAs(ExportFormat::png, at("a"));
        work.exportAs(ExportFormat::jpeg, at("a"));
        work.exportAs(ExportFormat::tiff, at("a"));
        work.exportAs(ExportFormat::openRaster, at("layered"));
        work.exportAs(ExportFormat::psdLayered, at("layered"));
        work.exportAs(ExportFormat::psdFlat, at("flat"));
    }
    void aCommandIsDoneOrLeavesNothing_data() {
        QTest::addColumn<Command>("command");
        QTest::addColumn<bool>("selected");
        std::vector<Command> all(std::begin(kCommands), std::end(kCommands));
        for (const QByteArray& name : kMenuCommands) all.push_back({name.constData(), nullptr});
        for (const Command& command : all) {
            QTest::addRow("%s", command.name) << command << false;
            QTest::addRow("%s, selected", command.name) << command << true;
        }
    }
    void aCommandIsDoneOrLeavesNothing() {
        QFETCH(Command, command);
        QFETCH(bool, selected);
        const int64_t used = BlockPool::usedBytes();
        {
            Work work(selected);
            const auto run = [&] {
                work.desktop.asked.clear();
                work.model.messages().flash({});
                command.run ? command.run(work) : work.choose(command.name);
                Work::pass();
            };
            const Facts before = factsOf(work);
            run();
            const Facts done = factsOf(work);
            work.goBackTo(before.depth, before.pictures);
            QCOMPARE(work.doc().fingerprint(), before.picture);
            for (const Refused what : {Refused::block, Refused::piece}) {
                for (int64_t n = 1;; ++n) {
                    const Facts start = factsOf(work);
                    refuse(what, n);
                    run();
                    if (refuse(what, 0) > 0) break;
                    const Facts end = factsOf(work);
                    const bool isDone = end.picture == done.picture && end.depth == done.depth;
                    const auto& asked = work.desktop.asked;
                    const QString said =
                        asked.empty() ? work.model.messages().hud().value_or(QString()) : asked.back().text;
                    const QString which = QStringLiteral("%1 %2: %3")
                                              .arg(what == Refused::block ? "block" : "piece")
                                              .arg(n)
                                              .arg(said);
                    QVERIFY2(end == start || isDone, qPrintable(which));
                    QVERIFY2(said.startsWith(kMessage), qPrintable(which));
                    QVERIFY(!work.model.transform().state() && !work.canvas.isBusy());
                    work.goBackTo(start.depth, start.pictures);
                    QVERIFY(n < 2000);
                }
                QVERIFY(factsOf(work).picture == done.picture); // the next one works
                work.goBackTo(before.depth, before.pictures);
            }
        }
        BlockPool::trim();
        QCOMPARE(BlockPool::usedBytes(), used);
    }

private:
    QTemporaryDir files_;
};

QIRN_TEST(tst_OutOfMemory)
#include "tst_OutOfMemory.moc"
