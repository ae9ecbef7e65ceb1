// The reference-point file (name, text both ways, hostile contents) and the
// dialog's degrees, minutes and seconds.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <string>
#include <tuple>

#include "ReferencePoints.h"

namespace satwalk::map {
namespace {

using namespace std::string_literals;

ReferencePoints Parse(const std::string& text, int* active = nullptr) {
    ReferencePoints s{};
    const int n = ParseReferenceText(std::span<const char>(text.data(), text.size()), s);
    if (active)
        *active = n;
    return s;
}

std::string TempPath(const std::string& name) {
    return ::testing::TempDir() + name;
}

TEST(ReferenceFileName, StemUpToTheFirstDot) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"/media/card/Documents", "/home/u/Maps/city.2007.jpg",
         "/media/card/Documents/My GPS/Reference Points/Ref Pt_city.rpt"},
        {"/home/u/Documents/", "scan", "/home/u/Documents/My GPS/Reference Points/Ref Pt_scan.rpt"},
        {"/d", "/maps/.hidden.png", "/d/My GPS/Reference Points/Ref Pt_.rpt"},
        {"/d", "/maps.v2/plain", "/d/My GPS/Reference Points/Ref Pt_plain.rpt"}};
    for (const auto& [root, map, file] : cases) EXPECT_EQ(MakeReferenceFileName(root, map), file);
}

TEST(ReferenceText, FormatsFiveLinesWithPointDecimals) {
    ReferencePoints s{};
    s[0] = GeoPoint{1, 30.5, 114.3, 0, 0, 120, 245};
    s[3] = GeoPoint{0, -33.5, -70.25, 0, 0, 1.5, 2.25};
    const std::string zero = "0,0.000000,0.000000,0.000000,0.000000,\r\n";
    EXPECT_EQ(FormatReferenceText(s), "1,30.500000,114.300000,120.000000,245.000000,\r\n" + zero +
                                          zero + "0,-33.500000,-70.250000,1.500000,2.250000,\r\n" +
                                          zero);
    // Absurd values fill the text's room and no more.
    s[1].latitude = 1e200;
    EXPECT_EQ(FormatReferenceText(s).size(), kReferenceTextLimit - 1);
}

TEST(ReferenceText, TokenRules) {
    const std::tuple<const char*, std::string, int, GeoPoint> cases[] = {
        {"empty", "", 0, {}},
        {"no line end, no trailing comma", "1,30,114,10,20", 1, {1, 30, 114, 0, 0, 10, 20}},
        {"line breaks vanish", "1,3\r\n0.5,1\n14,\r10,20,\r\n", 1, {1, 30.5, 114, 0, 0, 10, 20}},
        {"empty tokens read 0", "1,,5,,7,", 1, {1, 0, 5, 0, 0, 0, 7}},
        {"flag 1.9 counts as 1", "1.9,1,2,3,4,", 1, {1, 1, 2, 0, 0, 3, 4}},
        {"flag 2 is inactive", "2,1,2,3,4,", 0, {0, 1, 2, 0, 0, 3, 4}},
        {"flag past int range is not 1", "4294967297,1,2,3,4,", 0, {0, 1, 2, 0, 0, 3, 4}},
        {"garbage numbers read 0", "1,north,1e999x,-,0x10,", 1, {1, 0, 0, 0, 0, 0, 16}},
        {"nan and inf read 0", "1,nan,inf,-infinity,NAN(1),", 1, {1, 0, 0, 0, 0, 0, 0}},
        {"number prefix counts", "1,12abc,3.5.6,7e1,8,", 1, {1, 12, 3.5, 0, 0, 70, 8}},
        {"long token: tail kept", "1,12345678901234567890123,2,3,4,", 1, {1, 123, 2, 0, 0, 3, 4}},
        {"NUL ends the text", "1,10,20,30,40,\0"s + "1,1,1,1,1,", 1, {1, 10, 20, 0, 0, 30, 40}},
        {"binary", "\xff\xfe\x01,\x80\x7f,\x1b[0m"s, 0, {0, 0, 0, 0, 0, 0, 0}}};
    for (const auto& [what, text, expectedActive, first] : cases) {
        int active = -1;
        const ReferencePoints s = Parse(text, &active);
        EXPECT_EQ(std::tuple(active, s[0], s[1]), std::tuple(expectedActive, first, GeoPoint{}))
            << what;
    }
    // Seven slots' worth of tokens: the last two slots' are ignored.
    std::string seven;
    for (int i = 0; i < 7; ++i) seven += "1,1,1,1,1,\r\n";
    int active = 0;
    EXPECT_EQ(Parse(seven, &active)[4], (GeoPoint{1, 1, 1, 0, 0, 1, 1}));
    EXPECT_EQ(active, 5);
}

TEST(ReferenceFile, ReadsOnlyTheFirst300Bytes) {
    // Four slots, then line breaks up to well past byte 300, then slot 5.
    std::string text;
    for (int i = 0; i < 4; ++i) text += "1,1.5,2.5,3.5,4.5,\r\n";
    text += std::string(300, '\n') + "1,9,9,9,9,\r\n";
    const std::string path = TempPath("long.rpt");
    std::ofstream(path, std::ios::binary) << text;

    ReferencePoints s;
    int active = -1;
    ASSERT_EQ(ReadReferenceFile(path, s, active), ReferenceRead::Read);
    EXPECT_EQ(std::tuple(active, s[3], s[4]),
              std::tuple(4, GeoPoint{1, 1.5, 2.5, 0, 0, 3.5, 4.5}, GeoPoint{}));
}

TEST(ReferenceFile, MissingUnreadableAndUnwritable) {
    ReferencePoints s;
    s.fill(GeoPoint{1, 1, 1, 1, 1, 1, 1});
    int active = -1;
    EXPECT_EQ(ReadReferenceFile(TempPath("no-such.rpt"), s, active), ReferenceRead::NotOpened);
    EXPECT_TRUE(active == 0 && s[2] == GeoPoint{});
    // A folder where the file should be: opened, nothing read.
    const std::string dir = TempPath("folder.rpt");
    ::mkdir(dir.c_str(), 0755);
    EXPECT_EQ(ReadReferenceFile(dir, s, active), ReferenceRead::ReadFailed);
    EXPECT_EQ(active, 0);

    EXPECT_FALSE(WriteReferenceFile(TempPath("no-such-folder/x.rpt"), s) ||
                 WriteReferenceFile(dir, s));

    // A file that is there but cannot be opened (a link to itself: root too
    // is refused) is said, and kept as .bak before a new file is written.
    const std::string loop = TempPath("loop.rpt");
    ::unlink(loop.c_str());
    ::unlink((loop + ".bak").c_str());
    ASSERT_EQ(::symlink(loop.c_str(), loop.c_str()), 0);
    EXPECT_EQ(ReadReferenceFile(loop, s, active), ReferenceRead::Unreadable);
    std::string keptAs;
    EXPECT_TRUE(WriteReferenceFile(loop, s, &keptAs));
    EXPECT_EQ(keptAs, loop + ".bak");
    struct stat st {};
    EXPECT_TRUE(::lstat(keptAs.c_str(), &st) == 0 && S_ISLNK(st.st_mode))
        << "the unreadable file is the one kept";
    EXPECT_EQ(ReadReferenceFile(loop, s, active), ReferenceRead::Read);
}

TEST(Dms, DialogSplitsDegreesMinutesSeconds) {
    const std::tuple<double, const char*, const char*, const char*> cases[] = {
        {-33.5, "33.000000", "30.000000", "0.000000"},
        // 0.3° is a hair under 18 minutes: 17 minutes and seconds that show as 60.
        {114.3, "114.000000", "17.000000", "60.000000"},
        {0.0, "0.000000", "0.000000", "0.000000"},
        {-179.999999, "179.000000", "59.000000", "59.996400"}};
    for (const auto& [value, deg, min, sec] : cases) {
        const ReferenceDialogFields f =
            OpenReferenceDialog({.latitude = value, .longitude = value});
        EXPECT_EQ(f.latitude, (std::array<std::string, 3>{deg, min, sec})) << value;
        EXPECT_EQ(f.longitude, f.latitude) << value;
    }
}

class Confirm : public ::testing::Test {
  protected:
    void SetUp() override {
        editing_.referencePoints[0] = GeoPoint{1, 30, 110, 0, 0, 0, 0};
        editing_.activeReferenceCount = 1;
        editing_.placementCursor = GeoPoint{1, 0, 0, 7, 8, 0, 0};
    }
    // Places slot 2 at `pixel` with 29°N 111°E typed in.
    ReferenceConfirmation Place(PointF pixel, const std::string& file) {
        EnterPlacementMode(editing_, 1);
        PlaceCursor(editing_, {50, 60}, pixel);
        ReferenceDialogFields f = OpenReferenceDialog(editing_.referencePoints[1]);
        f.active = true;
        f.latitude = {"29", "0", "0"};
        f.longitude = {"111", "0", "0"};
        return ConfirmReferencePoint(editing_, f, file, true, {100, 200}, 240, 60, calibration_,
                                     extent_);
    }
    ReferenceEditing editing_;
    MapCalibration calibration_;
    MapExtent extent_;
};

TEST_F(Confirm, SecondPointCalibratesAndMovesTheCursorToTheCentre) {
    const std::string file = TempPath("confirm.rpt");
    const ReferenceConfirmation r = Place({100, 200}, file);
    EXPECT_TRUE(r.saved && r.calibrated);
    EXPECT_EQ(std::pair(editing_.placingReferencePoint, editing_.activeReferenceCount),
              std::pair(0, 2));
    EXPECT_EQ(editing_.referencePoints[1], (GeoPoint{1, 29, 111, 0, 0, 100, 200}));
    EXPECT_TRUE(calibration_.IsValid());
    EXPECT_DOUBLE_EQ(extent_.centre.latitude, 29.5);
    EXPECT_DOUBLE_EQ(editing_.placementCursor.latitude, 29.5);
    EXPECT_DOUBLE_EQ(editing_.placementCursor.longitude, 110.5);
    EXPECT_GT(r.scaleBarDistance, 0.0);
    int active = 0;
    ReferencePoints back;
    ASSERT_EQ(ReadReferenceFile(file, back, active), ReferenceRead::Read);
    EXPECT_EQ(active, 2);
}

TEST_F(Confirm, FailedCalibrationRestoresTheCursorAndUnsavedFileIsReported) {
    // Same row as slot 1: no latitude scale; the folder does not exist.
    const ReferenceConfirmation r = Place({100, 0}, TempPath("missing/confirm.rpt"));
    EXPECT_FALSE(r.saved || r.calibrated || calibration_.IsValid());
    EXPECT_EQ(editing_.placementCursor, (GeoPoint{1, 0, 0, 7, 8, 0, 0}));
    // The slots keep what was typed for this run.
    EXPECT_EQ(editing_.referencePoints[1].valid, 1);
}

}  // namespace
}  // namespace satwalk::map
