// The sequence whose elements never move.
#include "ov_sys/Interface/foundation/AppendOnlyList.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace Orvane {
namespace {

// Beyond the first chunk of 64 and the second of 128.
constexpr int kSeveralChunks = 500;

TEST(AppendOnlyList, IsEmptyAtFirst) {
    const AppendOnlyList<int> list;
    EXPECT_TRUE(list.empty());
    EXPECT_EQ(list.size(), 0U);
    EXPECT_FALSE(list.begin() != list.end());
}

TEST(AppendOnlyList, GivesEveryElementInOrderAcrossChunks) {
    AppendOnlyList<std::string> list;
    std::vector<std::string> expected;
    for (int i = 0; i < kSeveralChunks; ++i) {
        list.push_back(std::to_string(i));
        expected.push_back(std::to_string(i));
    }
    std::vector<std::string> seen;
    for (const std::string& each : list)
        seen.push_back(each);
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(list.size(), expected.size());
    EXPECT_EQ(list[64], "64");
    EXPECT_EQ(list[192], "192");
}

TEST(AppendOnlyList, KeepsElementsInPlaceWhileItGrows) {
    AppendOnlyList<int> list;
    list.push_back(7);
    const int* const first = &list[0];
    for (int i = 1; i < kSeveralChunks; ++i)
        list.push_back(i);
    EXPECT_EQ(&list[0], first);
    EXPECT_EQ(*first, 7);
}

TEST(AppendOnlyList, EndCoversWhatWasThereWhenItWasAskedFor) {
    AppendOnlyList<int> list;
    list.push_back(1);
    const auto end = list.end();
    list.push_back(2);
    int seen = 0;
    for (auto each = list.begin(); each != end; ++each)
        ++seen;
    EXPECT_EQ(seen, 1);
}

TEST(AppendOnlyList, ShowsWholeElementsToReadersWhileItGrows) {
    AppendOnlyList<std::string> list;
    std::thread reader([&list] {
        std::size_t seen = 0;
        while (seen < kSeveralChunks) {
            const std::size_t size = list.size();
            for (; seen < size; ++seen)
                EXPECT_EQ(list[seen], "element number " + std::to_string(seen));
        }
    });
    for (int i = 0; i < kSeveralChunks; ++i)
        list.push_back("element number " + std::to_string(i));
    reader.join();
    EXPECT_EQ(list.size(), static_cast<std::size_t>(kSeveralChunks));
}

} // namespace
} // namespace Orvane
