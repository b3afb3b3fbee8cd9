#include "compositing/CompositeInputs.h"
#include "core/SeededRandom.h"
#include "operations/flood/FloodMask.h"
#include "operations/flood/PixelMatcher.h"
#include "operations/flood/TileFlood.h"
#include "platform/lanes/InstructionSets.h"
#include "support/Pictures.h"
#include "support/Rows.h"
#include "support/TestMain.h"

#include <algorithm>
#include <deque>

using namespace qirn;
using namespace qirn::test;

namespace {

bool matches(const PixelBytes& a, const PixelBytes& target, int64_t tolerance) {
    if (a == target) return true;
    if (tolerance < 1) return false;
    for (std::size_t c = 0; c < 4; ++c) {
        if (std::abs(a[c] - target[c]) > std::min<int64_t>(tolerance, 255)) return false;
    }
    return true;
}

/// A queue of single pixels, and growth round by round; the mask has a frame of a pixel round the canvas.
class SimpleFill {
public:
    SimpleFill(const RGBABuffer& source, int64_t x, int64_t y, const FillOptions& options)
        : width_(source.width()),
          height_(source.height()),
          stride_(width_ + 2),
          mask_(static_cast<std::size_t>(stride_ * (height_ + 2))) {
        std::deque<int64_t> queue{at(x, y)};
        mask_[static_cast<std::size_t>(at(x, y))] = true;
        std::vector<bool> like(mask_.size());
        forEachPixel([&](int64_t px, int64_t py) {
            like[static_cast<std::size_t>(at(px, py))] =
                matches(source.pixel(px, py), source.pixel(x, y), options.tolerance);
        });
        for (; options.contiguous && !queue.empty(); queue.pop_front()) {
            for (const int64_t side : {-stride_, int64_t{-1}, int64_t{1}, stride_}) {
                const auto i = static_cast<std::size_t>(queue.front() + side);
                if (!like[i] || mask_[i]) continue;
                mask_[i] = true;
                queue.push_back(queue.front() + side);
            }
        }
        if (!options.contiguous) mask_ = like;
        for (int64_t round = 0; round < std::min<int64_t>(options.expand, 4); ++round) {
            const std::vector<bool> before = mask_;
            forEachPixel([&](int64_t px, int64_t py) {
                const auto i = static_cast<std::size_t>(at(px, py)), row = static_cast<std::size_t>(stride_);
                mask_[i] = before[i] || before[i - 1] || before[i + 1] || before[i - row] || before[i + row];
            });
        }
    }

    /// Empty when the mask is this one and its bounds are tight, otherwise what is wrong.
    QString differenceFrom(const std::optional<FloodMask>& flood) const {
        QString wrong = flood ? "" : "no mask";
        IRect box;
        forEachPixel([&](int64_t x, int64_t y) {
            const bool isCovered = mask_[static_cast<std::size_t>(at(x, y))];
            if (isCovered) box = box.united({x, y, 1, 1});
            if (wrong.isEmpty() && flood->mask.covers(x, y) != isCovered)
                wrong = QStringLiteral("at %1,%2, where the simple fill has %3").arg(x).arg(y).arg(isCovered);
        });
        return wrong.isEmpty() && flood->bounds != box ? flood->bounds.description() : wrong;
    }

private:
    int64_t at(int64_t x, int64_t y) const { return (y + 1) * stride_ + x + 1; }
    template <class Body> void forEachPixel(Body body) const {
        for (int64_t i = 0; i < width_ * height_; ++i) body(i % width_, i / width_);
    }

    const int64_t width_, height_, stride_;
    std::vector<bool> mask_;
};

/// Gray of three shades 10 apart, drawn for each block of so many pixels; some blocks are transparent.
std::unique_ptr<PaintDocument> maze(int64_t width, int64_t height, int64_t block, uint64_t seed) {
    auto doc = std::make_unique<PaintDocument>(width, height, 72, std::nullopt);
    SeededRandom random(seed);
    for (int64_t y = 0; y < height; y += block) {
        for (int64_t x = 0; x < width; x += block) {
            const uint64_t draw = random.next() % 20;
            const auto shade = static_cast<uint8_t>(100 + draw % 3 * 10);
            if (draw > 0)
                paintRect(*doc, doc->activeLayer(), {x, y, block, block}, {shade, shade, shade, 255});
        }
    }
    return doc;
}

} // namespace

class tst_FloodMask : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void mazesAreFilledAsByAQueueOfPixels() {
        forRows<int, int, int>({{"pixels across seams", 530, 300, 1},
                                {"corridors", 700, 520, 3},
                                {"blocks as large as tiles", 1000, 800, 128},
                                {"one pixel", 1, 1, 1},
                                {"one column", 1, 2000, 2},
                                {"one very long row", 30000, 1, 5}},
                               [](int width, int height, int block) {
                                   for (uint64_t seed = 1; seed <= 12; ++seed) {
                                       const auto doc = maze(width, height, block, seed);
                                       SeededRandom random(seed);
                                       const auto x = static_cast<int64_t>(random.unit() * width);
                                       const auto y = static_cast<int64_t>(random.unit() * height);
                                       // With 10 two of the three shades are alike, which is where mazes wind the most.
                                       const FillOptions options{
                                           .tolerance = seed % 3 == 0 ? 0 : 10,
                                           .contiguous = seed % 4 != 0,
                                           .expand = seed % 6 == 0 ? 9 : static_cast<int64_t>(seed % 6) - 1};
                                       QCOMPARE(SimpleFill(*doc->activeLayer().toBuffer(), x, y, options)
                                                    .differenceFrom(fillMask(*doc, x, y, options)),
                                                QString());
                                   }
                               });
    }

    void matchingIsTheSameWithAnyInstructions() {
        const auto pixels = noise(256, 256, 9);
        for (int tolerance : {-7, 0, 1, 40, 200, 255, 100'000}) {
            // Limits at both ends of what a byte holds.
            for (const PixelBytes& clicked : {pixels->pixel(3, 3), PixelBytes{}, {255, 255, 255, 255}}) {
                for (const std::string& name : instructionSets()) {
                    useInstructionSet(name);
                    TileBits like;
                    PixelMatcher(clicked, tolerance).match(pixels->row(0), like);
                    for (int i = 0; i < kTilePixels; ++i) {
                        if (like[i / 256].has(i % 256) !=
                            matches(pixels->pixel(i % 256, i / 256), clicked, std::clamp(tolerance, 0, 255)))
                            QFAIL(qPrintable(QStringLiteral("%1 with %2").arg(i).arg(name.c_str())));
                    }
                }
            }
        }
        useInstructionSet({});
    }

    void theFinishedPictureIsWhatIsSeen() {
        const auto doc = randomDocument(530, 300, 4, 7);
        doc->onion.enabled = true; // shows the nearest layers only; the picture has them all
        const FillOptions options{.tolerance = 90, .contiguous = false, .sampleAllLayers = true, .expand = 0};
        QCOMPARE(
            SimpleFill(*flattened(*doc), 260, 150, options).differenceFrom(fillMask(*doc, 260, 150, options)),
            QString());
    }
};

QIRN_TEST(tst_FloodMask)
#include "tst_FloodMask.moc"
