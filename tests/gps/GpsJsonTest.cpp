// The fix as JSON.
#include <gtest/gtest.h>

#include <string>

#include "GpsJson.h"

namespace satwalk::gps {
namespace {

TEST(AppendGpsJsonMembers, NullTimeUntilSynchronised) {
    GpsState s;
    std::string out;
    AppendGpsJsonMembers(out, s, ReadFix(s), false);
    EXPECT_NE(out.find("\"fixTimeLocal\":null"), std::string::npos);
    EXPECT_NE(out.find("\"fixValid\":false"), std::string::npos);
    EXPECT_NE(out.find("\"latitudeDegrees\":-0"), std::string::npos);
    out.clear();
    s.status = 'A';
    AppendGpsJsonMembers(out, s, ReadFix(s), true);
    EXPECT_NE(out.find("\"fixTimeLocal\":\"1601-01-01 00:00:00.000\""), std::string::npos);
    EXPECT_NE(out.find("\"fixValid\":true"), std::string::npos);
}

}  // namespace
}  // namespace satwalk::gps
