// The JSON writer: string escaping of arbitrary receiver bytes, numbers, and members in order.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "Json.h"

namespace satwalk::common {
namespace {

TEST(AppendJsonString, EscapesWhatIsNotUtf8Text) {
    const std::pair<std::string, const char*> cases[] = {
        {"4807.0380", "\"4807.0380\""},
        {"a\"b\\c", "\"a\\\"b\\\\c\""},
        {std::string("\x01\r\n\x7f", 4), "\"\\u0001\\u000d\\u000a\\u007f\""},
        {"\xe4\xb8\xad", "\"\xe4\xb8\xad\""},           // a valid CJK character passes
        {"\xff", "\"\\u00ff\""},                        // never valid in UTF-8
        {"\xe4\xb8", "\"\\u00e4\\u00b8\""},             // cut sequence
        {"\xc0\x80", "\"\\u00c0\\u0080\""},             // overlong NUL
        {"\xed\xa0\x80", "\"\\u00ed\\u00a0\\u0080\""},  // surrogate
        {"\xb0\x43", "\"\\u00b0C\""}};                  // GB18030-style byte
    for (const auto& [in, expected] : cases) {
        std::string out;
        AppendJsonString(out, in);
        EXPECT_EQ(out, expected);
    }
}

TEST(AppendJsonNumber, ShortestFormAndNull) {
    const std::pair<double, const char*> cases[] = {
        {-0.0, "-0"},
        {30.25205666666667, "30.25205666666667"},
        {std::numeric_limits<double>::infinity(), "null"},
        {std::numeric_limits<double>::quiet_NaN(), "null"}};
    for (const auto& [value, expected] : cases) {
        std::string out;
        AppendJsonNumber(out, value);
        EXPECT_EQ(out, expected);
    }
}

TEST(JsonMembers, CommasOnlyBetweenMembers) {
    std::string out = "{";
    JsonMembers m(out);
    m.Int("a", -1);
    m.Bool("b", true);
    m.Text("c", "x");
    m.Name("d") += "[]";
    out += '}';
    EXPECT_EQ(out, "{\"a\":-1,\"b\":true,\"c\":\"x\",\"d\":[]}");
}

}  // namespace
}  // namespace satwalk::common
