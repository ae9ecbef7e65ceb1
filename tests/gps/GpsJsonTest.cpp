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
    for (const char* m : {"\"fixTimeLocal\":null", "\"fixValid\":false", "\"latitudeDegrees\":-0"})
        EXPECT_NE(out.find(m), std::string::npos) << m;
    out.clear();
    s.status = 'A';
    AppendGpsJsonMembers(out, s, ReadFix(s), true);
    EXPECT_NE(out.find("\"fixTimeLocal\":\"1601-01-01 00:00:00.000\""), std::string::npos);
    EXPECT_NE(out.find("\"fixValid\":true"), std::string::npos);
}

}  // namespace
}  // namespace satwalk::gps
