// The sequence whose elements never move.
#include "ov_sys/Interface/foundation/AppendOnlyList.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <numeric>
#include <stdexcept>
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

TEST(AppendOnlyList, GivesEveryElementOfALongList) {
    AppendOnlyList<int> list;
    for (int i = 0; i < 10000; ++i)
        list.push_back(i);
    int right = 0;
    for (const int each : list)
        right += each == right ? 1 : 0;
    EXPECT_EQ(right, 10000);
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

// Code as it is written for vectors.
template <class List>
struct VectorReader {
    using Value = typename List::value_type;
    using Position = typename List::const_iterator;

    static Value sum(const List& list) { return std::accumulate(list.begin(), list.end(), Value{}); }
    static std::vector<Value> reversed(const List& list) { return {list.rbegin(), list.rend()}; }
    static typename List::size_type placeOf(const List& list, const Value& wanted) {
        const Position found = std::lower_bound(list.cbegin(), list.cend(), wanted);
        return static_cast<typename List::size_type>(found - list.cbegin());
    }
};

template <class List>
class ListOfHundred : public testing::Test {
protected:
    ListOfHundred() {
        for (int i = 0; i < 100; ++i)
            list.push_back(i);
    }
    List list;
};

using Lists = testing::Types<std::vector<int>, AppendOnlyList<int>>;
TYPED_TEST_SUITE(ListOfHundred, Lists, ); // clang wants the last argument said, empty as it is

TYPED_TEST(ListOfHundred, IsReadByCodeForVectors) {
    using Reader = VectorReader<TypeParam>;
    EXPECT_EQ(Reader::sum(this->list), 4950);
    EXPECT_EQ(Reader::reversed(this->list).front(), 99);
    EXPECT_EQ(Reader::placeOf(this->list, 70), 70U);
}

TYPED_TEST(ListOfHundred, HasItsElementsAtTheirPlaces) {
    EXPECT_EQ(this->list.front(), 0);
    EXPECT_EQ(this->list.back(), 99);
    EXPECT_EQ(this->list.at(99), 99);
    EXPECT_THROW(this->list.at(100), std::out_of_range);
}

TYPED_TEST(ListOfHundred, HasIteratorsThatGoAnywhere) {
    auto position = this->list.begin();
    position += 70;
    EXPECT_EQ(*position--, 70);
    EXPECT_EQ(position[-60], 9);
    EXPECT_EQ(*(2 + position), 71);
    EXPECT_EQ(this->list.end() - position, 31);
    EXPECT_TRUE(position - 1 < position && position <= position && this->list.end() > position);
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
