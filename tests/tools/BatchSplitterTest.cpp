// How satwalk-tool cuts a stream into decoder batches.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "BatchSplitter.h"

namespace satwalk::tools {
namespace {

// Splits `input`, handing it over `chunk` bytes per read.
std::vector<std::string> Split(const std::string& input, std::size_t batch, bool cut,
                               std::size_t chunk = 7) {
    std::size_t pos = 0;
    BatchSplitter splitter(
        [&](char* buf, std::size_t size) -> long {
            const std::size_t n = std::min({size, chunk, input.size() - pos});
            std::memcpy(buf, input.data() + pos, n);
            pos += n;
            return static_cast<long>(n);
        },
        batch, cut);
    std::vector<std::string> out;
    std::string_view b;
    while (splitter.Next(b)) out.emplace_back(b);
    return out;
}

using V = std::vector<std::string>;

TEST(BatchSplitter, Cases) {
    const std::string l10 = "123456789\n", l20 = l10 + l10;
    const auto x = [](std::size_t n, char c = 'x') { return std::string(n, c); };
    const struct {
        const char* name;
        std::string input;
        std::size_t batch;
        bool cut;
        V expected;
    } cases[] = {
        {"empty", "", 25, false, {}},
        {"lines packed greedily", l20 + l20 + l10, 25, false, {l20, l20, l10}},
        {"exact fit", l20 + l10, 20, false, {l20, l10}},
        {"unterminated last line", l10 + "abc", 25, false, {l10 + "abc"}},
        {"unterminated, does not fit", l20 + "abcdefg", 25, false, {l20, "abcdefg"}},
        {"long line", l10 + x(60) + "\n" + l10, 25, false, {l10, x(25), x(25), x(10) + "\n" + l10}},
        {"cut mode", x(60, 'y'), 25, true, {x(25, 'y'), x(25, 'y'), x(10, 'y')}},
        {"cut mode ignores lines", l20 + l10, 25, true, {l20 + "12345", "6789\n"}},
        {"batch of one byte", "ab\n", 1, false, {"a", "b", "\n"}}};
    for (const auto& c : cases) EXPECT_EQ(Split(c.input, c.batch, c.cut), c.expected) << c.name;
}

TEST(BatchSplitter, LargeStreamsLoseNothing) {
    std::mt19937 rng(42);
    std::string input;
    while (input.size() < 3'500'000) {
        const int len = std::uniform_int_distribution<int>(0, 3000)(rng);
        input.append(static_cast<std::size_t>(len), static_cast<char>('a' + len % 26));
        input += '\n';
    }
    for (bool cut : {false, true}) {
        const V batches = Split(input, 2047, cut, 65536);
        std::string joined;
        for (const auto& b : batches) {
            ASSERT_LE(b.size(), 2047u);
            ASSERT_FALSE(b.empty());
            joined += b;
        }
        EXPECT_EQ(joined, input) << (cut ? "cut" : "lines");
    }
}

TEST(BatchSplitter, ReadErrorEndsAndIsReported) {
    int calls = 0;
    BatchSplitter splitter(
        [&](char* buf, std::size_t) -> long {
            if (calls++ == 0) {
                std::memcpy(buf, "ab\n", 3);
                return 3;
            }
            return -1;
        },
        100, false);
    std::string_view b;
    EXPECT_FALSE(splitter.Next(b));
    EXPECT_TRUE(splitter.failed());
}

}  // namespace
}  // namespace satwalk::tools
