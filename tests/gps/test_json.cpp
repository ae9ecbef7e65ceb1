// The fix as JSON: string escaping of arbitrary receiver bytes and numbers.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "GpsJson.h"

namespace satwalk::gps {
namespace {

TEST(AppendJsonString, EscapesWhatIsNotUtf8Text) {
    const struct {
        std::string in;
        const char* out;
    } cases[] = {
        {"4807.0380", "\"4807.0380\""},
        {"a\"b\\c", "\"a\\\"b\\\\c\""},
        {std::string("\x01\r\n\x7f", 4), "\"\\u0001\\u000d\\u000a\\u007f\""},
        {"\xe4\xb8\xad", "\"\xe4\xb8\xad\""},           // a valid CJK character passes
        {"\xff", "\"\\u00ff\""},                        // never valid in UTF-8
        {"\xe4\xb8", "\"\\u00e4\\u00b8\""},             // cut sequence
        {"\xc0\x80", "\"\\u00c0\\u0080\""},             // overlong NUL
        {"\xed\xa0\x80", "\"\\u00ed\\u00a0\\u0080\""},  // surrogate
        {"\xb0"
         "C",
         "\"\\u00b0C\""},  // GB18030-style byte
    };
    for (const auto& c : cases) {
        std::string out;
        AppendJsonString(out, c.in);
        EXPECT_EQ(out, c.out);
    }
}

TEST(AppendJsonNumber, ShortestFormAndNull) {
    const struct {
        double value;
        const char* out;
    } cases[] = {
        {-0.0, "-0"},
        {30.25205666666667, "30.25205666666667"},
        {std::numeric_limits<double>::infinity(), "null"},
        {std::numeric_limits<double>::quiet_NaN(), "null"},
    };
    for (const auto& c : cases) {
        std::string out;
        AppendJsonNumber(out, c.value);
        EXPECT_EQ(out, c.out);
    }
}

TEST(AppendGpsJsonMembers, NullTimeUntilSynchronised) {
    GpsState s;
    std::string out;
    AppendGpsJsonMembers(out, s, false);
    EXPECT_NE(out.find("\"fixTimeLocal\":null"), std::string::npos);
    EXPECT_NE(out.find("\"fixValid\":false"), std::string::npos);
    EXPECT_NE(out.find("\"latitudeDegrees\":-0"), std::string::npos);
    out.clear();
    s.status = 'A';
    AppendGpsJsonMembers(out, s, true);
    EXPECT_NE(out.find("\"fixTimeLocal\":\"1601-01-01 00:00:00.000\""), std::string::npos);
    EXPECT_NE(out.find("\"fixValid\":true"), std::string::npos);
}

}  // namespace
}  // namespace satwalk::gps
