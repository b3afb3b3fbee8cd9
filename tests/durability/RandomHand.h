#pragma once
#include "core/SeededRandom.h"
#include "shell/sheets/SheetHost.h"
#include "support/Studio.h"

#include <map>

namespace qirn::test {

/// Somebody who does anything at all in a studio of its own: tools on the canvas, commands, and sheets filled in and
/// pressed. What the n-th deed is depends on the seed and on n alone, so that a list of deeds can be shortened.
class RandomHand : public OwnWorld {
public:
    explicit RandomHand(uint64_t seed);

    void act(int64_t deed);
    /// What of an open picture is not as it must be, in words: undoing everything gives what it was at first, doing all
    /// of it again what it is now, and the canvas shows what is there. Empty where all is well.
    QString fault();
    void closeAll();

private:
    struct Deed {
        const char* name;
        int share; // of all of them
        void (*run)(RandomHand& hand);
    };
    static const std::vector<Deed> kDeeds; // RandomDeeds.cpp
    static constexpr Qt::KeyboardModifier kModifiers[] = {Qt::NoModifier, Qt::NoModifier, Qt::ShiftModifier,
                                                          Qt::AltModifier, Qt::ControlModifier};

    void notePictures(); // how those that are new begin
    void fillSheet();
    void gesture();
    void press(int key, Qt::KeyboardModifiers modifiers, const QString& text);

    // What it chooses, of the deed in hand.
    int below(int64_t count) { return static_cast<int>(random_.next() % static_cast<uint64_t>(count)); }
    bool sometimes(int oneOf) { return below(oneOf) == 0; }
    double between(double lower, double upper) { return lower + random_.unit() * (upper - lower); }
    template <class List> const auto& anyOf(const List& all) {
        return *std::next(std::begin(all), below(std::ssize(all)));
    }
    int64_t side() { return 1 + below(sometimes(5) ? 520 : 250); }
    PaintColor color() { return PaintColor(random_.unit(), random_.unit(), random_.unit(), random_.unit()); }
    QPointF point(); // of the canvas, or a little outside
    QString file();  // of a few, some of which are there
    int64_t anyLayer() { return below(doc().layerCount()); }

    const uint64_t seed_;
    SeededRandom random_{0};
    QWidget window_;
    CanvasView canvas_{model, kToolTable, &window_};
    SheetHost sheets_{model, &canvas_};
    QPointingDevice pen_, eraser_;
    double seconds_ = 0;
    std::map<QUuid, uint64_t> starts_; // fingerprints of the open pictures as they were at first
};

} // namespace qirn::test
