#include "PeerTable.h"

#include "../PaintedPicture.h"
#include "operations/Fill.h"
#include "operations/LayerOperations.h"

#include <cstring>

#include <opencv2/imgproc.hpp>

namespace qirn::bench {

namespace {

/// Walls one pixel wide round cells of 20 pixels, each with a door to the next.
void drawMaze(Layer& layer) {
    for (int64_t index = 0; index < layer.grid().count(); ++index) {
        const IRect part = layer.grid().rectOf(index);
        uint8_t* pixels = layer.writableTile(index).writablePixels();
        for (int64_t y = 0; y < part.h; ++y) {
            for (int64_t x = 0; x < part.w; ++x) {
                const int64_t cx = (part.x + x) % 20, cy = (part.y + y) % 20;
                const bool wall = (cx == 0 && cy != 10) || (cy == 0 && cx != 7);
                if (wall) std::memcpy(pixels + (y * kTileSize + x) * 4, "\0\0\0\xFF", 4);
            }
        }
    }
}

/// What a program around OpenCV does for the same result: find the region, grow it by a pixel, paint through it.
void chain(const cv::Mat& source, cv::Mat& target) {
    cv::Mat region = cv::Mat::zeros(source.rows + 2, source.cols + 2, CV_8UC1);
    cv::Mat copy = source.clone();
    const cv::Scalar tolerance = cv::Scalar::all(32);
    cv::floodFill(copy, region, cv::Point(1010, 1010), cv::Scalar(0, 0, 0), nullptr, tolerance, tolerance,
                  4 | (255 << 8) | cv::FLOODFILL_FIXED_RANGE | cv::FLOODFILL_MASK_ONLY);
    cv::Mat grown;
    cv::dilate(region(cv::Rect(1, 1, source.cols, source.rows)), grown, cv::Mat::ones(3, 3, CV_8UC1));
    target.setTo(cv::Scalar(50, 25, 180, 255), grown);
}

void compareFill(const char* work, bool maze) {
    const auto doc = std::make_unique<PaintDocument>(kWidth, kHeight, 72, std::nullopt);
    if (maze) drawMaze(doc->activeLayer());
    doc->commit(QStringLiteral("Maze"));
    // Three channels: floodFill takes no fourth. The walls differ in all of them from what lies between.
    cv::Mat source(kHeight, kWidth, CV_8UC3, cv::Scalar(255, 255, 255));
    const auto pixels = doc->activeLayer().toBuffer();
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            if (pixels->pixel(x, y)[3] != 0) source.at<cv::Vec3b>(y, x) = cv::Vec3b(0, 0, 0);
        }
    }
    cv::Mat target(kHeight, kWidth, CV_8UC4, cv::Scalar::all(0));
    compare({.work = work,
             .peer = "OpenCV floodFill chain",
             .reach = 0.5,
             .ours =
                 [&] {
                     bucketFill(*doc, 1010, 1010, {0.7, 0.1, 0.2}, {}, 1);
                 },
             .theirs = [&] { chain(source, target); },
             .reset =
                 [&] {
                     doc->revertToLastCommit();
                     doc->takeDirtyParts();
                 }});
}

} // namespace

void compareFills() {
    compareFill("bucket fill of a whole 4K layer", false);
    compareFill("bucket fill of a maze of 20 px cells", true);
}

} // namespace qirn::bench
