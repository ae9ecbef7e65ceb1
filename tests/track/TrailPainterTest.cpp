// The trail painter: what reaches the canvas, and when it is built again.
#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "RecordingCanvas.h"
#include "TrailPainter.h"

namespace satwalk::track {
namespace {

using screens::CanvasCall;
using screens::Point;
using screens::Rect;

const Rect kView{0, 0, 480, 640};

TrackList Trail(const std::vector<std::pair<float, float>>& points) {
    TrackList list;
    for (const auto& [x, y] : points) list.Append(TrackPoint{x, y, {}});
    return list;
}

TEST(TrailPainter, SimplifiesInScreenSpace) {
    const TrailTransform identity;
    const struct {
        const char* name;
        std::vector<std::pair<float, float>> points;
        TrailTransform transform;
        std::vector<Point> polyline;
    } cases[] = {
        {"points are truncated", {{10.9f, 20.2f}, {30.5f, 40.7f}}, identity, {{10, 20}, {30, 40}}},
        {"scaled and shifted per axis", {{1, 1}, {2, 3}}, {10, 5, -10, 100}, {{15, 90}, {25, 70}}},
        {"a pixel is drawn once",
         {{10, 10}, {10.2f, 10.7f}, {11, 10}, {10.9f, 10.1f}},
         identity,
         {{10, 10}, {11, 10}, {10, 10}}},
        {"a stretch beyond one edge keeps its ends",
         {{100, 100}, {-50, 10}, {-60, 300}, {-70, 20}, {-80, 500}, {200, 200}},
         identity,
         {{100, 100}, {-50, 10}, {-80, 500}, {200, 200}}},
        {"a stretch through a corner region keeps the sides it shares",
         {{100, 100}, {-50, -50}, {-50, 300}, {600, -50}, {100, 100}},
         identity,
         {{100, 100}, {-50, -50}, {-50, 300}, {600, -50}, {100, 100}}},
        {"far points", {{1e30f, 0}, {100, 100}}, identity, {{100000000, 0}, {100, 100}}}};
    for (const auto& c : cases) {
        screens::RecordingCanvas canvas(kView);
        TrailPainter painter;
        const TrackList trail = Trail(c.points);
        painter.Draw(canvas, trail, c.transform, kView);
        const auto vertices = painter.Polyline();
        EXPECT_EQ(std::vector<Point>(vertices.begin(), vertices.end()), c.polyline) << c.name;
    }
}

TEST(TrailPainter, LinesHiddenUnderMarkersAreLeftOut) {
    const struct {
        const char* name;
        std::vector<std::pair<float, float>> points;
        int penWidth;
        std::vector<std::vector<Point>> strokes;
    } cases[] = {
        {"4 pixels apart: covered", {{100, 100}, {104, 96}}, 1, {}},
        {"5 pixels apart: drawn", {{100, 100}, {105, 100}}, 1, {{{100, 100}, {105, 100}}}},
        {"a wide pen shows", {{100, 100}, {104, 100}}, 3, {{{100, 100}, {104, 100}}}},
        {"an end whose marker is clipped", {{1, 100}, {4, 100}}, 1, {{{1, 100}, {4, 100}}}},
        {"pieces join while they follow on",
         {{100, 100}, {110, 100}, {120, 100}, {121, 101}, {140, 100}},
         1,
         {{{100, 100}, {110, 100}, {120, 100}}, {{121, 101}, {140, 100}}}}};
    for (const auto& c : cases) {
        screens::RecordingCanvas canvas(kView);
        TrailPainter painter;
        const TrackList trail = Trail(c.points);
        painter.Draw(canvas, trail, {}, kView, {{screens::kBlack, c.penWidth}, {255, 0, 0}});
        std::vector<std::vector<Point>> strokes;
        for (const CanvasCall& call : canvas.OfKind(CanvasCall::Kind::Polyline))
            strokes.push_back(call.points);
        EXPECT_EQ(strokes, c.strokes) << c.name;
    }
}

TEST(TrailPainter, MarkersCoverEveryVisibleVertexClippedToTheView) {
    const struct {
        const char* name;
        std::vector<std::pair<float, float>> points;
        std::vector<Rect> rects;
    } cases[] = {
        {"one vertex: a 6 x 6 square from x - 3 to x + 2", {{100, 200}}, {{97, 197, 103, 203}}},
        {"clipped at the corner", {{1, 1}}, {{0, 0, 4, 4}}},
        {"outside the view", {{-10, -10}}, {}},
        {"diagonal", {{10, 10}, {12, 12}}, {{7, 7, 13, 9}, {7, 9, 15, 13}, {9, 13, 15, 15}}}};
    for (const auto& c : cases) {
        screens::RecordingCanvas canvas(kView);
        TrailPainter painter;
        const TrackList trail = Trail(c.points);
        painter.Draw(canvas, trail, {}, kView, {{screens::kBlack, 1}, screens::Rgb(255, 0, 0)});
        std::vector<Rect> rects;
        for (const CanvasCall& call : canvas.OfKind(CanvasCall::Kind::FillRect)) {
            EXPECT_EQ(call.colour, screens::Rgb(255, 0, 0));
            rects.push_back(call.rect);
        }
        EXPECT_EQ(rects, c.rects) << c.name;
    }
}

TEST(TrailPainter, BuildsAgainOnlyWhenTheTrailOrViewChanges) {
    TrackList trail = Trail({{10, 10}, {20, 20}});
    TrailPainter painter;
    screens::RecordingCanvas canvas(kView);
    const TrailTransform moved{1, 5, 1, 0};
    const Rect turned{0, 0, 640, 480};
    const struct {
        const char* name;
        std::function<void()> change;
        TrailTransform transform;
        Rect view;
        bool rebuilt;
    } steps[] = {{"first draw", [] {}, {}, kView, true},
                 {"nothing changed", [] {}, {}, kView, false},
                 {"view moved", [] {}, moved, kView, true},
                 {"view resized", [] {}, moved, turned, true},
                 {"point appended",
                  [&] {
                      trail.Append(TrackPoint{30, 30, {}});
                  },
                  moved, turned, true},
                 {"cleared and refilled alike",
                  [&] {
                      trail.Clear();
                      trail = Trail({{10, 10}, {20, 20}, {30, 30}});
                  },
                  moved, turned, true}};
    for (const auto& s : steps) {
        s.change();
        painter.Draw(canvas, trail, s.transform, s.view);
        EXPECT_EQ(painter.Rebuilt(), s.rebuilt) << s.name;
    }
}

}  // namespace
}  // namespace satwalk::track
