#include "Measurements.h"
#include "StudioWindow.h"

#include "../PlainPass.h"
#include "app/edits/LayerEdits.h"
#include "app/files/BrushPreviewCache.h"
#include "app/files/DocSession.h"
#include "app/model/Brushes.h"
#include "app/model/Colors.h"
#include "app/model/OpenPictures.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace qirn::bench {

namespace {

constexpr int kLayers = 200;
constexpr int kTimes = 60;

struct Choice {
    const char* name;
    std::function<void(PaintModel&, int time)> change;
};

} // namespace

int measureChoices(int argc, char** argv) {
    StudioWindow studio(argc, argv);
    PaintModel& model = studio.model();
    model.pictures().newDocument(1920, 1080, 72, PaintColor::white(), QStringLiteral("Layers"));
    const PaintDocument& doc = model.current()->doc();
    while (doc.layerCount() < kLayers) LayerEdits::addLayer(model);
    studio.show(QSize(1480, 920));
    const Choice choices[] = {
        {"tool", [](PaintModel& m,
                    int time) { m.setTool(kTools[static_cast<std::size_t>(time) % kToolCount].tool); }},
        {"color", [](PaintModel& m, int time) { m.colors().setPrimary(PaintColor(time / 60.0, 0.4, 0.7)); }},
        {"layer", [](PaintModel& m, int time) { LayerEdits::setActiveLayer(m, (time * 37) % kLayers); }},
    };
    const Stopwatch watch;
    studio.act("brushPanel");
    const std::size_t presets = model.brushes().brushesFor(model.tool()).size();
    while (model.brushes().previews().kept() < presets && watch.seconds() < 10) pass(0.001);
    studio.waitUntilShown();
    std::printf("brushPanel, its %zu samples of strokes at first sight: %.0f ms\n", presets,
                watch.seconds() * 1000);
    for (const char* panel : {"colorPanel", "brushPanel", "palettesPanel"}) {
        studio.act(panel);
        pass(1);
        for (const Choice& choice : choices) {
            std::vector<double> work;
            for (int time = 0; time < kTimes; ++time) {
                const double before = threadSeconds();
                choice.change(model, time);
                studio.waitUntilShown();
                work.push_back((threadSeconds() - before) * 1000);
                pass(0.02);
            }
            std::sort(work.begin(), work.end());
            std::printf("%s, another %s with %d layers: %.2f ms of the main thread, 95%% %.2f, worst %.2f\n",
                        panel, choice.name, kLayers, work[work.size() / 2], work[work.size() * 95 / 100],
                        work.back());
            std::fflush(stdout);
        }
    }
    return 0;
}

} // namespace qirn::bench
