// satwalk-tool map as a whole process, on reference files written here.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "ToolRun.h"

namespace {

using satwalk::tools::test::Field;
using satwalk::tools::test::ToolRun;

ToolRun RunMap(const std::string& args) {
    return satwalk::tools::test::Tool("map " + args);
}

std::string WriteRpt(const std::string& name, const std::string& text) {
    return satwalk::tools::test::WriteTemp(name, text);
}

const char* const kInactive = "0,0.000000,0.000000,0.000000,0.000000,\r\n";

TEST(MapCommand, TwoPointCalibration) {
    const std::string rpt = WriteRpt("two.rpt",
                                     "1,30.000000,110.000000,0.000000,0.000000,\r\n"
                                     "1,29.000000,111.000000,100.000000,200.000000,\r\n" +
                                         std::string(kInactive) + kInactive + kInactive);
    const ToolRun r = RunMap("--rpt " + rpt +
                             " --size 100x200 --to-geo 50,100 --to-image 29.5,110.5"
                             " --to-image 0,0 --northing -0.5 --northing 85 --view-scale 2");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out.back(), '\n');
    EXPECT_EQ(Field(r.out, "activeReferenceCount") + Field(r.out, "calibrated"), "2true");
    const std::string lat = Field(r.out, "latPerPixel");
    EXPECT_EQ(lat, "[0.0050000000000000001,0.0050000000000000001,0,0,0,0,0,0,0,0,0]");
    EXPECT_EQ(std::strtod(lat.c_str() + 1, nullptr), 1.0 / 200.0);  // reads back exactly
    EXPECT_EQ(Field(r.out, "lonPerPixel"), "[0.01,0.01,0,0,0,0,0,0,0,0,0]");
    EXPECT_EQ(Field(r.out, "toGeo"),
              R"([{"imageX":50,"imageY":100,"latitude":29.5,"longitude":110.5}])");
    EXPECT_EQ(Field(r.out, "toImage"),
              R"([{"latitude":29.5,"longitude":110.5,"imageX":50,"imageY":100},)"
              R"({"latitude":0,"longitude":0,"imageX":-11000,"imageY":6000}])");
    // 100 pixels for 2 km, 111 km a band: -1.5 bands at -0.5°.
    EXPECT_EQ(Field(Field(r.out, "northing"), "value") + " " + Field(r.out, "residualsMetres"),
              "-8325 [0,0]");
}

TEST(MapCommand, UncalibratedAndHostileFiles) {
    const struct {
        const char* what;
        std::string text;
        const char* active;
        const char* toGeo;
        const char* toImage;
    } cases[] = {{"empty file", "", "0", R"({"imageX":5,"imageY":6,"latitude":0,"longitude":0})",
                  R"({"latitude":1,"longitude":2,"imageX":0,"imageY":0})"},
                 {"two points on one row", "1,10,20,0,5,1,11,21,9,5", "2",
                  R"({"imageX":5,"imageY":6,"latitude":10,"longitude":20.555555555555557})",
                  R"({"latitude":1,"longitude":2,"imageX":-162,"imageY":null})"}};
    for (const auto& tc : cases) {
        const std::string rpt = WriteRpt("hostile.rpt", tc.text);
        const ToolRun r = RunMap("--rpt " + rpt + " --size 10x10 --to-geo 5,6 --to-image 1,2");
        ASSERT_EQ(r.status, 0) << tc.what << r.err;
        std::string fields;
        for (const char* name : {"calibrated", "activeReferenceCount", "mapCentre",
                                 "residualsMetres", "toGeo", "toImage"})
            fields += Field(r.out, name) + " ";
        EXPECT_EQ(fields, std::string("false ") + tc.active + " null null [" + tc.toGeo + "] [" +
                              tc.toImage + "] ")
            << tc.what;
    }
}

TEST(MapCommand, ResidualsShowAnInconsistentPoint) {
    // Three points on one scale, but the third stated 0.01° too far north.
    const std::string rpt =
        WriteRpt("three.rpt", "1,10,10,0,0,\r\n1,9,11,100,100,\r\n1,8.01,12,200,200,\r\n");
    const ToolRun r = RunMap("--rpt " + rpt + " --size 200x200");
    ASSERT_EQ(r.status, 0) << r.err;
    const std::string res = Field(r.out, "residualsMetres");
    double metres[3] = {};
    ASSERT_EQ(std::sscanf(res.c_str(), "[%lf,%lf,%lf]", &metres[0], &metres[1], &metres[2]), 3);
    for (double m : metres) {
        EXPECT_GT(m, 10.0) << res;
        EXPECT_LT(m, 1112.0) << res;  // under 0.01° of latitude
    }
}

TEST(MapCommand, BadUseExitsWithStatusTwo) {
    const std::string rpt = WriteRpt("ok.rpt", "1,1,1,1,1,");
    const struct {
        const char* what;
        std::string args;
    } cases[] = {{"missing file", "--rpt " + ::testing::TempDir() + "none.rpt --size 10x10"},
                 {"no size", "--rpt " + rpt},
                 {"bad pair", "--rpt " + rpt + " --size 1x1 --to-geo 5"},
                 {"unknown option", "--rpt " + rpt + " --size 1x1 --frobnicate"}};
    for (const auto& tc : cases) {
        const ToolRun r = RunMap(tc.args);
        EXPECT_EQ(std::tuple(r.status, r.out, r.err.empty()), std::tuple(2, "", false)) << tc.what;
    }
    const ToolRun missing = RunMap(cases[0].args);
    EXPECT_EQ(std::count(missing.err.begin(), missing.err.end(), '\n'), 1) << missing.err;
}

}  // namespace
