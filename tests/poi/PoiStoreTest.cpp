// Categories, the store's groups, and drawing the store.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "PoiCategories.h"
#include "PoiPainter.h"
#include "PoiStore.h"
#include "RecordingCanvas.h"

namespace satwalk::poi {
namespace {

using screens::CanvasCall;
using screens::Point;
using screens::Rect;

// The last case is a GB18030 file name.
TEST(PoiCategories, FileNamesChooseTheCategory) {
    const struct {
        const char* path;
        std::uint32_t category;
        const char* name;
    } cases[] = {{"/data/00008.csv", 19, "Gas Station"},
                 {"GAS STATION.CSV", 19, "Gas Station"},
                 {"Informaion.csv", 6, "Informaion"},
                 {"00157.csv", 6, "Informaion"},
                 {"Restaurant.v2.csv", 17, "Restaurant"},
                 {".csv", 0, ""},
                 {"Swimming Area But Longer.csv", 0, "Swimming Area But L"},
                 {"加油站加油站加油站加油站加油站加油站加油站.csv", 0,
                  "加油站加油站加油站加油站加油站加油站加"},
                 {"\xBC\xD3\xD3\xCD\xD5\xBE.csv", 0, "加油站"}};
    for (const auto& c : cases) {
        std::string name = PoiBaseName(c.path);
        EXPECT_EQ(std::tuple(LookUpPoiCategory(name), name), std::tuple(c.category, c.name))
            << c.path;
    }
}

class PoiStoreTest : public ::testing::Test {
  protected:
    std::string Write(const std::string& name, const std::string& bytes) {
        const std::string path = ::testing::TempDir() + name;
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }
};

TEST_F(PoiStoreTest, OneGroupPerFileUntilDeleteAll) {
    PoiStore store;
    const PoiImport gas = ImportPoiFile(store, Write("00008.csv", "1,2,A\r\n3,4,B\r\n"));
    EXPECT_EQ(std::tuple(gas.read, gas.category, gas.points), std::tuple(true, 19u, 2u));
    EXPECT_TRUE(ImportPoiFile(store, Write("empty.csv", "")).read);  // an empty group
    EXPECT_FALSE(ImportPoiFile(store, ::testing::TempDir() + "missing.csv").read);
    ASSERT_EQ(store.Count(), 2u);
    EXPECT_EQ(std::tuple(store.At(1).name, PoiPointCount(store)), std::tuple("empty", 2u));

    DeleteAllPois(store);
    EXPECT_TRUE(store.Empty());
    ImportPoiFile(store, Write("bar.csv", "1,2,A\r\n"));
    ASSERT_EQ(store.Count(), 1u);
    EXPECT_EQ(store.At(0).category, 15u);
}

TEST(PoiPainter, IconsCentredLabelsBesideCulledToTheCanvas) {
    PoiStore store;
    PoiGroup group;
    group.category = 17;
    const struct {
        double lat, lon;
        const char* name;
    } points[] = {
        {100, 200, "Lou Wai Lou"},  // on screen
        {-5, 50, "Edge"},           // icon half outside, label inside
        {100, -2000, "Far left"},   // off screen
        {5000, 100, "Far below"},   // off screen
        {300, 300, ""}              // no label
    };
    for (const auto& p : points) {
        PoiRecord r;
        r.latitude = p.lat;
        r.longitude = p.lon;
        std::snprintf(r.name, sizeof r.name, "%s", p.name);
        group.points.Append(r);
    }
    store.Append(group);
    PoiGroup uncategorised;
    uncategorised.points.Append(PoiRecord{400, 400, "X", ""});
    store.Append(uncategorised);

    // Latitude is the row and longitude the column of this made-up projection.
    const PoiProjection project = [](double lat, double lon, double& x, double& y) {
        x = lon + 0.9;
        y = lat;
        return true;
    };
    screens::RecordingCanvas canvas(Rect{0, 0, 480, 640});
    const screens::Bitmap icons{screens::BitmapId::Markers, 496, 16};
    DrawPois(canvas, store, project, &icons, PoiDrawStyle{30, screens::kBlack});

    const auto blits = canvas.OfKind(CanvasCall::Kind::Blit);
    ASSERT_EQ(blits.size(), 4u);
    // Cells 17 and 0 of the strip.
    EXPECT_EQ(
        std::tuple(blits[0].rect, blits[0].to, blits[1].to, blits[3].rect),
        std::tuple(Rect{272, 0, 288, 16}, Point{192, 92}, Point{42, -13}, Rect{0, 0, 16, 16}));
    const auto texts = canvas.OfKind(CanvasCall::Kind::Text);
    ASSERT_EQ(texts.size(), 3u);
    EXPECT_EQ(std::tuple(texts[0].text, texts[0].font.height, texts[1].text),
              std::tuple("Lou Wai Lou", 21, "Edge"));
    const screens::Size size = screens::RecordingCanvas::MeasureWith(texts[0].font, "Lou Wai Lou");
    EXPECT_EQ(texts[0].rect, (Rect{209, 108 - size.height, 209 + size.width, 108}));

    // Without the strip the labels are still drawn; a projection that
    // declines (no calibrated map) draws nothing.
    canvas.Clear();
    DrawPois(canvas, store, project, nullptr);
    EXPECT_TRUE(canvas.OfKind(CanvasCall::Kind::Blit).empty());
    EXPECT_EQ(canvas.OfKind(CanvasCall::Kind::Text).size(), 3u);
    canvas.Clear();
    DrawPois(
        canvas, store, [](double, double, double&, double&) { return false; }, &icons);
    EXPECT_TRUE(canvas.OfKind(CanvasCall::Kind::Text).empty());
}

// Many points in one place: one icon per 16-pixel cell, the rest counted;
// names only while few are in view, and never one over another.
TEST(PoiPainter, CellsAndLabelsStayReadable) {
    const struct {
        const char* what;
        int points;
        double spread;  // pixels between neighbours along the diagonal
        PoiDrawCount drawn;
    } cases[] = {{"a pile on one pixel", 5000, 0, {5000, 1, 0}},
                 {"two in one cell, one name", 2, 3, {2, 1, 1}},
                 {"two names that would overlap", 2, 17, {2, 2, 1}},
                 {"too many in view for names", 300, 1, {300, 19, 0}}};
    const PoiProjection project = [](double lat, double lon, double& x, double& y) {
        x = 100 + lon;
        y = 100 + lat;
        return true;
    };
    const screens::Bitmap icons{screens::BitmapId::Markers, 496, 16};
    for (const auto& c : cases) {
        PoiStore store;
        PoiGroup group;
        for (int i = 0; i < c.points; ++i)
            group.points.Append(PoiRecord{i * c.spread, i * c.spread, "Name", ""});
        store.Append(group);
        screens::RecordingCanvas canvas(Rect{0, 0, 480, 640});
        const PoiDrawCount drawn = DrawPois(canvas, store, project, &icons);
        EXPECT_EQ(std::tuple(drawn.inView, drawn.icons, drawn.labels,
                             canvas.OfKind(CanvasCall::Kind::Blit).size()),
                  std::tuple(c.drawn.inView, c.drawn.icons, c.drawn.labels, c.drawn.icons))
            << c.what;
    }
}

}  // namespace
}  // namespace satwalk::poi
