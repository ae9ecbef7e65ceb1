#include <gtest/gtest.h>

#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <fstream>

#include "GdalBackend.h"
#include "GeoFiles.h"
#include "Georeference.h"
#include "MapGeometry.h"

namespace satwalk::map {
namespace {

TEST(WorldFile, TextToTransform) {
    struct Case {
        const char* name;
        const char* text;
        bool ok;
    };
    const Case cases[] = {
        {"six numbers, CRLF", "2\r\n0\r\n0\r\n-2\r\n101\r\n199\r\n", true},
        {"extra text after six", "2 0 0 -2 101 199 trailing", true},
        {"five numbers", "2\n0\n0\n-2\n101\n", false},
        {"NaN", "nan\n0\n0\n-2\n101\n199\n", false},
        {"infinite", "inf\n0\n0\n-2\n101\n199\n", false},
        {"zero scale", "0\n0\n0\n0\n101\n199\n", false},
        {"a word", "2\n0\nzero\n-2\n101\n199\n", false},
        {"empty", "", false},
    };
    for (const Case& c : cases) {
        Affine a{};
        std::string error;
        EXPECT_EQ(ParseWorldFile(c.text, a, error), c.ok) << c.name;
        EXPECT_EQ(error.empty(), c.ok) << c.name;
        if (c.ok) {
            // The file names the first pixel's centre; the transform its corner.
            EXPECT_EQ(a, (Affine{100, 2, 0, 200, 0, -2})) << c.name;
        }
    }
    EXPECT_TRUE(LooksLikeDegrees({120, 0.001, 0, 30, 0, -0.001}));
    EXPECT_FALSE(LooksLikeDegrees({500000, 25, 0, 3300000, 0, -25}));
}

constexpr const char* kOziHeader =
    "OziExplorer Map Data File Version 2.2\r\nt\r\nC:\\maps\\Lake.PNG\r\n1 ,Map Code,\r\n"
    "WGS 84,WGS 84,0,0,WGS 84\r\nMap Projection,Transverse Mercator,PolyCal,No\r\n"
    "Projection Setup, 0, 120, 0.9996, 500000, 0,,,,,\r\n";

TEST(OziMap, Fields) {
    const std::string text =
        std::string(kOziHeader) +
        "Point01,xy, 10, 20,in, deg, 30, 15.0,N, 120, 30.0,W, grid, , , ,N\r\n"
        "Point02,xy, , ,in, deg, , ,N, , ,E, grid, , , ,N\r\n"
        "Point03,xy, 5, 6,in, deg, , ,N, , ,E, grid, 51, 210000, 3350000,S\r\n";
    OziMap m;
    std::string error;
    ASSERT_TRUE(ParseOziMap(text, m, error)) << error;
    EXPECT_EQ(std::tuple(m.imagePath, m.datum, m.projection, m.setup[1], m.setup[2]),
              std::tuple("C:\\maps\\Lake.PNG", "WGS 84", "Transverse Mercator", 120, 0.9996));
    ASSERT_EQ(m.points.size(), 2u);  // the empty slot is no point
    const OziPoint &p = m.points[0], &q = m.points[1];
    EXPECT_EQ(std::tuple(p.hasDegrees, p.latitude, p.longitude), std::tuple(true, 30.25, -120.5));
    EXPECT_EQ(std::tuple(q.hasGrid, q.hasDegrees, q.zone, q.south),
              std::tuple(true, false, 51, true));
    EXPECT_TRUE(NamesImage(m.imagePath, "lake.png"));

    EXPECT_FALSE(ParseOziMap("GPX\r\n", m, error));
    EXPECT_FALSE(ParseOziMap("OziExplorer Map Data File Version 2.2\r\nt\r\n", m, error));
}

TEST(Kml, OverlaysAndNames) {
    const char* text =
        "<kml xmlns:gx='http://www.google.com/kml/ext/2.2'><Document>"
        "<GroundOverlay><Icon><href>maps/a.png</href></Icon><LatLonBox><north>31</north>"
        "<south>30</south><east>121</east><west>120</west><rotation>90</rotation></LatLonBox>"
        "</GroundOverlay><kml:GroundOverlay><Icon><href>b.jpg</href></Icon><gx:LatLonQuad>"
        "<coordinates>120,30 122,30 122,31 120,31</coordinates></gx:LatLonQuad>"
        "</kml:GroundOverlay></Document></kml>";
    std::vector<KmlOverlay> overlays;
    std::string error;
    ASSERT_TRUE(ParseKml(text, overlays, error)) << error;
    ASSERT_EQ(overlays.size(), 2u);
    EXPECT_TRUE(overlays[0].hasBox && overlays[0].rotation == 90);
    EXPECT_TRUE(overlays[1].hasQuad);

    // A quarter turn counter-clockwise about the centre takes the image's
    // top-left corner from the north-west to the south-west.
    Affine a{};
    std::vector<ControlPoint> corners;
    ASSERT_TRUE(OverlayToUnitAffine(overlays[0], a, corners, error));
    EXPECT_NEAR(a[0], 120.0, 1e-12);
    EXPECT_NEAR(a[3], 30.0, 1e-12);
    ASSERT_TRUE(OverlayToUnitAffine(overlays[1], a, corners, error));
    EXPECT_NEAR(a[0], 120.0, 1e-12);  // upper-left corner
    EXPECT_NEAR(a[3], 31.0, 1e-12);
    EXPECT_EQ(corners.size(), 4u);

    const struct {
        const char* href;
        bool names;
    } names[] = {{"a.png", true},        {"dir/A.PNG", true},
                 {"C:\\x\\a.png", true}, {"http://host/a.png", false},
                 {"a.png.bak", false},   {"", false}};
    for (const auto& n : names) EXPECT_EQ(NamesImage(n.href, "a.png"), n.names) << n.href;

    KmlOverlay bad;
    bad.hasBox = true;
    bad.north = 30;
    bad.south = 31;  // upside down
    EXPECT_FALSE(OverlayToUnitAffine(bad, a, corners, error));
    EXPECT_FALSE(ParseKml("<kml><GroundOverlay>", overlays, error));
}

TEST(FitAffine, LeastSquaresAndDegenerate) {
    // Four points of an exact affine map: the fit finds it, either way.
    const Affine truth{500000, 2, 0.5, 3300000, -0.25, -2};
    std::vector<ControlPoint> pts;
    for (const auto& [x, y] : {std::pair{0.0, 0.0}, {100.0, 0.0}, {0.0, 80.0}, {100.0, 80.0}}) {
        ControlPoint p;
        p.imageX = x;
        p.imageY = y;
        p.mapX = truth[0] + truth[1] * x + truth[2] * y;
        p.mapY = truth[3] + truth[4] * x + truth[5] * y;
        pts.push_back(p);
    }
    Affine a{};
    ASSERT_TRUE(FitAffine(pts, a));
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(a[i], truth[i], 1e-6);
    pts.resize(2);
    EXPECT_FALSE(FitAffine(pts, a));
    pts = {pts[0], pts[1], pts[1]};
    pts[2].imageX = 50;  // on the line through the other two
    pts[2].mapX = (pts[0].mapX + pts[1].mapX) / 2;
    pts[2].mapY = (pts[0].mapY + pts[1].mapY) / 2;
    EXPECT_FALSE(FitAffine(pts, a));
}

// The finder on files written here: the reference file beside the image
// comes first, a hostile world file is refused, a UTM world file converts
// both ways through the calibration value.
TEST(FindGeoreference, BesideTheImage) {
    const auto dir =
        std::filesystem::temp_directory_path() / ("satwalk-geo-" + std::to_string(::getpid()));
    std::filesystem::create_directories(dir);
    const std::string image = (dir / "m.png").string();
    auto write = [&](const char* name, const std::string& text) {
        std::ofstream(dir / name, std::ios::binary) << text;
    };
    write("m.pgw", "25\n0\n0\n-25\n210012.5\n3352987.5\n");
    write("m.prj", "EPSG:32651");
    Georeference g = FindGeoreference(image);
    ASSERT_TRUE(g.Georeferenced()) << g.error;
    EXPECT_EQ(GeoSourceName(g.source), "worldfile");
    const MapCalibration c = g.Bind({64, 48});
    ASSERT_TRUE(c.Georeferenced());
    GeoPoint p{.imageX = 12.5, .imageY = 30};
    ImageToGeo(c, p);
    EXPECT_NEAR(p.latitude, 30.27, 0.05);  // near Hangzhou
    EXPECT_NEAR(p.longitude, 120.0, 0.1);
    GeoPoint q;
    const PointF back = GeoToImage(c, q, p.latitude, p.longitude);
    EXPECT_NEAR(back.x, 12.5, 1e-6);
    EXPECT_NEAR(back.y, 30, 1e-6);
    EXPECT_NEAR(ScaleBarDistanceAt(c, {32, 24}, 1.0, 100), 2.5, 0.1);  // 100 px of 25 m

    write("m.prj", "PROJCS[nonsense");
    g = FindGeoreference(image);
    EXPECT_FALSE(g.error.empty());
    EXPECT_FALSE(g.Bind({64, 48}).IsValid());

    write("Ref Pt_m.rpt", "1,30,120,0,0,\r\n1,29,121,64,48,\r\n");
    g = FindGeoreference(image);
    EXPECT_EQ(g.source, GeoSource::ReferenceFile);
    std::filesystem::remove_all(dir);
}

// Run with SATWALK_GDAL_MODULE naming no file (the test
// map_geo_without_gdal_module): only what needs GDAL is refused, with the
// reason; a plain image and files that do not name it still load.
TEST(FindGeoreference, WithoutGdal) {
    if (GdalLibrary() != nullptr)
        GTEST_SKIP() << "GDAL's module is loaded";
    const auto dir =
        std::filesystem::temp_directory_path() / ("satwalk-nogdal-" + std::to_string(::getpid()));
    struct Case {
        const char* image;
        std::vector<const char*> beside;
        bool refused;
    };
    const Case cases[] = {
        {"plain.png", {}, false},
        {"plain.png", {"other.kmz"}, false},
        {"zipped.png", {"zipped.kmz"}, true},
        {"world.png", {"world.pgw", "world.prj"}, true},
        {"scan.tif", {}, true},
    };
    for (const Case& c : cases) {
        std::filesystem::remove_all(dir);
        std::filesystem::create_directories(dir);
        std::ofstream(dir / "world.pgw") << "25\n0\n0\n-25\n210012.5\n3352987.5\n";
        for (const char* name : c.beside)
            if (!std::filesystem::exists(dir / name))
                std::ofstream(dir / name) << "EPSG:32651";
        const Georeference g = FindGeoreference((dir / c.image).string());
        EXPECT_EQ(g.error.find("cannot be loaded") != std::string::npos, c.refused)
            << c.image << ": " << g.error;
        EXPECT_EQ(g.error.empty(), !c.refused) << c.image;
    }
    std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace satwalk::map
