// Track statistics against GeographicLib's full solution, and the profiles'
// geometry on the recording canvas.
#include <gtest/gtest.h>

#include <GeographicLib/Geodesic.hpp>

#include <cmath>

#include "RecordingCanvas.h"
#include "TrackProfilePainter.h"
#include "TrackStatistics.h"
#include "TrackTestSupport.h"

namespace satwalk::track {
namespace {

TrackFilePoint At(double latitude, double longitude, int second, double elevation = kNoValue) {
    TrackFilePoint p;
    p.latitude = latitude;
    p.longitude = longitude;
    p.time = test::Time(2024, 5, 1, 8, second / 60, second % 60);
    p.hasTime = second >= 0;
    p.elevation = elevation;
    return p;
}

TEST(TrackStatistics, DistanceAgreesWithTheFullGeodesic) {
    const struct {
        double lat1, lon1, lat2, lon2;
    } cases[] = {
        {30.25, 120.15, 30.2501, 120.1501},  // a step of a walk
        {59.9, 10.7, 59.905, 10.709},        // far north, about 700 m
        {-33.9, 151.2, -33.9, 151.2},        // standing still
        {0.0, 179.999, 0.0, -179.999},       // across the antimeridian
        {30.0, 120.0, 31.0, 121.0}           // a long jump: the full solution
    };
    for (const auto& c : cases) {
        double expected = 0;
        GeographicLib::Geodesic::WGS84().Inverse(c.lat1, c.lon1, c.lat2, c.lon2, expected);
        EXPECT_NEAR(GeodesicDistance(c.lat1, c.lon1, c.lat2, c.lon2), expected, 1e-3)
            << c.lat1 << "," << c.lon1;
    }
}

TEST(TrackStatistics, NumbersOfATrack) {
    TrackStatistics s;
    // 0-60 s: walking north 100 m a minute... then standing for a minute,
    // then up and down with noise under the elevation step.
    const double step = 100 / 110574.0;  // degrees of latitude for about 100 m
    s.Add(At(0, 0, 0, 100));
    s.Add(At(step, 0, 60, 101));  // +1: noise
    s.Add(At(step, 0, 120, 99));  // still
    s.Add(At(2 * step, 0, 180, 110));
    s.Add(At(3 * step, 0, 240, 104));
    EXPECT_EQ(s.points(), 5u);
    EXPECT_NEAR(s.distance(), 300, 0.5);
    EXPECT_EQ(std::tuple(s.duration(), s.movingTime()), std::tuple(240, 180));
    EXPECT_NEAR(s.averageSpeed(), 300 / 180.0, 0.01);
    EXPECT_NEAR(s.maxSpeed(), 100 / 60.0, 0.01);
    // Gain 100 -> 110, the wiggles below 3 m left out.
    EXPECT_EQ(std::tuple(s.gain(), s.loss(), s.minElevation(), s.maxElevation()),
              std::tuple(10, 6, 99, 110));

    const std::vector<StatisticsRow> rows = StatisticsRows(s, 0);
    ASSERT_EQ(rows.size(), 10u);
    EXPECT_EQ(
        std::tuple(rows[0].value, rows[1].value, rows[3].value, StatisticsRows(s, 1)[8].value),
        std::tuple("300 m", "0:04:00", "6.0 km/h", "361 ft"));

    TrackStatistics untimed;
    untimed.Add(At(0, 0, -1));
    untimed.Add(At(1, 0, -1));
    EXPECT_EQ(StatisticsRows(untimed, 0)[1].value, "--");
    EXPECT_TRUE(std::isnan(untimed.averageSpeed()));
    EXPECT_EQ(StatisticsJson(untimed).find("\"duration\":null") != std::string::npos, true);
}

TEST(TrackStatistics, TheProfileStaysSmallAndEndsAtTheLastPoint) {
    TrackStatistics s;
    for (int i = 0; i < 100000; ++i) s.Add(At(i * 1e-5, 0, i % 3600, i));
    const std::vector<ProfileSample> profile = s.Profile();
    EXPECT_LE(profile.size(), kProfileSamples + 1);
    EXPECT_GE(profile.size(), kProfileSamples / 2);
    EXPECT_EQ(
        std::tuple(profile.front().distance, profile.back().distance, profile.back().elevation),
        std::tuple(0, s.distance(), 99999));
    for (std::size_t i = 1; i < profile.size(); ++i)
        EXPECT_LT(profile[i - 1].distance, profile[i].distance);
}

TEST(TrackProfile, CurvesFillTheirBoxInEveryShape) {
    std::vector<ProfileSample> samples = {
        {0, 100, 1}, {500, 150, 2}, {1000, kNoValue, kNoValue}, {1500, 120, 4}, {2000, 200, 3}};
    const struct {
        screens::Rect box;
        int text;
    } cases[] = {{{0, 0, 460, 200}, 18}, {{10, 300, 310, 420}, 10}, {{0, 0, 200, 90}, 12}};
    for (const auto& c : cases) {
        for (const ProfileKind kind : {ProfileKind::Elevation, ProfileKind::Speed}) {
            screens::RecordingCanvas canvas(screens::Rect{0, 0, 800, 800});
            DrawTrackProfile(canvas, c.box, samples, kind, 0, c.text);
            const screens::Rect plot = ProfilePlotArea(c.box, c.text);
            const screens::Rect curve = ProfileCurveArea(c.box, c.text);
            const auto lines = canvas.OfKind(screens::CanvasCall::Kind::Polyline);
            ASSERT_EQ(lines.size(), 2u);  // the gap breaks the curve
            const screens::Point first = lines[0].points.front();
            const screens::Point last = lines[1].points.back();
            EXPECT_EQ(std::tuple(first.x, last.x), std::tuple(plot.left, plot.right - 1));
            // The curve keeps out of the value labels' bands.
            for (const auto& line : lines)
                for (const screens::Point p : line.points)
                    EXPECT_TRUE(p.y >= curve.top && p.y < curve.bottom) << p.y;
            for (const auto& text : canvas.OfKind(screens::CanvasCall::Kind::Text))
                EXPECT_TRUE(text.rect.bottom <= curve.top || text.rect.top >= curve.bottom)
                    << text.text;
            if (kind == ProfileKind::Elevation) {
                // The highest point at the top.
                EXPECT_EQ(std::tuple(last.y, first.y), std::tuple(curve.top, curve.bottom - 1));
                EXPECT_NE(canvas.FindText("200 m"), nullptr);
            } else {
                EXPECT_NE(canvas.FindText("0.0 km/h"), nullptr);  // speeds from zero
            }
            EXPECT_NE(canvas.FindText("2.00 km"), nullptr);
        }
    }
    screens::RecordingCanvas empty(screens::Rect{0, 0, 300, 300});
    DrawTrackProfile(empty, {0, 0, 300, 100}, {}, ProfileKind::Speed, 0, 12);
    EXPECT_TRUE(empty.OfKind(screens::CanvasCall::Kind::Polyline).empty());
    EXPECT_NE(empty.FindText("没有数据"), nullptr);
}

}  // namespace
}  // namespace satwalk::track
