// The list's cursor rules and its two ways of ending the program.
#include <gtest/gtest.h>

#include <sys/resource.h>

#include <string>
#include <vector>

#include "CursorList.h"

namespace satwalk::track {
namespace {

using IntList = CursorList<int>;

TEST(CursorList, CursorMoves) {
    const int big = static_cast<int>(IntList::kChunk) * 2 + 5;  // spans three chunks
    const struct {
        const char* name;
        int count;               // elements 0, 1, 2, ... appended first
        std::vector<int> seeks;  // then each of these Seek(i), then
        int nexts;               // this many Next()
        int index;               // expected cursor position
        bool hasCurrent;
    } cases[] = {{"fresh list", 0, {}, 0, -1, false},
                 {"append puts the cursor on the new element", 3, {}, 0, 2, true},
                 {"seek to the head", 3, {0}, 0, 0, true},
                 {"seek out of range is ignored", 3, {1, 3}, 0, 1, true},
                 {"next past the end stays there", 3, {0}, 7, 3, false},
                 {"seek across chunks", big, {big - 3}, 1, big - 2, true}};
    for (const auto& c : cases) {
        IntList list;
        for (int i = 0; i < c.count; ++i) EXPECT_EQ(list.Append(i), static_cast<unsigned>(i + 1));
        for (int s : c.seeks) list.Seek(s);
        for (int n = 0; n < c.nexts; ++n) list.Next();
        EXPECT_EQ(list.Index(), c.index) << c.name;
        ASSERT_EQ(list.HasCurrent(), c.hasCurrent) << c.name;
        EXPECT_TRUE(!c.hasCurrent || list.Current() == c.index) << c.name << ": " << list.Current();
    }
}

TEST(CursorList, WalksAndCopiesInOrderAcrossChunks) {
    CursorList<std::string> list;
    const int n = static_cast<int>(CursorList<std::string>::kChunk) * 3 + 1;
    for (int i = 0; i < n; ++i) list.Append(std::to_string(i));

    CursorList<std::string> copy = list;
    list.Clear();
    EXPECT_EQ(std::tuple(list.Index(), list.Count()), std::tuple(-1, 0u));

    int expected = 0;
    for (copy.Seek(0); copy.HasCurrent(); copy.Next())
        EXPECT_EQ(copy.Current(), std::to_string(expected++));
    EXPECT_EQ(expected, n);
    int spans = 0;
    expected = 0;
    copy.ForEachSpan([&](std::span<const std::string> span) {
        ++spans;
        for (const std::string& s : span) EXPECT_EQ(s, std::to_string(expected++));
    });
    EXPECT_EQ(spans, 4);
}

TEST(CursorList, StampChangesWithEveryChange) {
    IntList list;
    const auto fresh = list.Stamp();
    list.Append(1);
    const auto appended = list.Stamp();
    list.Seek(0);
    list.Next();
    EXPECT_EQ(list.Stamp(), appended);  // moving the cursor is no change
    list.Clear();
    EXPECT_NE(fresh, appended);
    EXPECT_NE(list.Stamp(), appended);
}

void ShowOnStdout(ListFailure failure) {
    std::fprintf(stderr, "shown: %s", ListFailureMessage(failure).c_str());
}

TEST(CursorListDeathTest, NoCurrentEndsTheProgram) {
    SetListFailureHandler(ShowOnStdout);
    IntList empty;
    EXPECT_EXIT((void)empty.Current(), ::testing::ExitedWithCode(1),
                "shown: Critical Error: 0x08200c02\nThe program will now exit.");
    IntList walked;
    walked.Append(1);
    walked.Next();
    EXPECT_EXIT((void)walked.Current(), ::testing::ExitedWithCode(1), "0x08200c02");
    SetListFailureHandler(nullptr);
}

TEST(CursorListDeathTest, OutOfMemoryEndsTheProgram) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer's allocator does not return null";
#else
    struct Block {
        char bytes[1 << 16];
    };
    EXPECT_EXIT(
        {
            // A small address space, so that allocation fails for real.
            rlimit limit{};
            getrlimit(RLIMIT_AS, &limit);
            limit.rlim_cur = 256u << 20;
            setrlimit(RLIMIT_AS, &limit);
            CursorList<Block> list;
            const Block b{};
            for (std::uint32_t i = 0; i < CursorList<Block>::kMaxCount; ++i) list.Append(b);
        },
        ::testing::ExitedWithCode(1), "Critical Error: 0x08200c01\nThe program will now exit.");
#endif
}

}  // namespace
}  // namespace satwalk::track
