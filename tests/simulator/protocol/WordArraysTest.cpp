// Lists of words as libtirpc converts them.
#include "simulator/protocol/WordArrays.h"

#include <array>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace OrvaneSim {
namespace {

constexpr u_int kMostWords = 1000;
constexpr std::size_t kWordRoom = 8192;
const auto kWordRoutine = reinterpret_cast<xdrproc_t>(xdr_u_int);

using ArrayRoutine = bool_t (*)(XDR*, char**, u_int*, u_int, u_int, xdrproc_t);

std::vector<u_int> wordsUpTo(u_int count) {
    std::vector<u_int> words;
    for (u_int i = 0; i < count; ++i)
        words.push_back(0x01020304U * (i + 1));
    return words;
}

// The bytes, empty when they do not fit.
std::string wordsWritten(ArrayRoutine routine, std::vector<u_int> words, std::size_t room = kWordRoom) {
    std::string bytes(room, '?');
    XDR stream{};
    xdrmem_create(&stream, bytes.data(), static_cast<u_int>(room), XDR_ENCODE);
    auto* list = reinterpret_cast<char*>(words.data());
    auto count = static_cast<u_int>(words.size());
    if (!routine(&stream, &list, &count, kMostWords, sizeof(u_int), kWordRoutine))
        return {};
    bytes.resize(xdr_getpos(&stream));
    return bytes;
}

struct WordsRead {
    bool done = false;
    u_int at = 0;
    std::vector<u_int> words;
};

WordsRead wordsRead(std::string bytes) {
    XDR stream{};
    xdrmem_create(&stream, bytes.data(), static_cast<u_int>(bytes.size()), XDR_DECODE);
    char* list = nullptr;
    u_int count = 0;
    WordsRead result;
    result.done = orvane_sim_xdr_array(&stream, &list, &count, kMostWords, sizeof(u_int), kWordRoutine) != 0;
    result.at = xdr_getpos(&stream);
    if (result.done && list != nullptr)
        result.words.assign(reinterpret_cast<u_int*>(list), reinterpret_cast<u_int*>(list) + count);
    std::free(list);
    return result;
}

TEST(WordArrays, AreEncodedAsByLibtirpc) {
    for (const u_int count : {0U, 1U, 873U, kMostWords})
        EXPECT_EQ(wordsWritten(orvane_sim_xdr_array, wordsUpTo(count)),
                  wordsWritten(xdr_array, wordsUpTo(count)))
            << count;
}

TEST(WordArrays, AreDecodedFromWhatLibtirpcEncodes) {
    for (const u_int count : {0U, 1U, 873U, kMostWords}) {
        const WordsRead result = wordsRead(wordsWritten(xdr_array, wordsUpTo(count)));
        EXPECT_TRUE(result.done) << count;
        EXPECT_EQ(result.words, wordsUpTo(count)) << count;
        EXPECT_EQ(result.at, 4 * (count + 1)) << count;
    }
}

TEST(WordArrays, ThatAreLongerThanAllowedAreRefused) {
    EXPECT_EQ(wordsWritten(orvane_sim_xdr_array, wordsUpTo(kMostWords + 1)), "");
    const std::string announced("\0\0\x03\xE9", 4);
    EXPECT_FALSE(wordsRead(announced + std::string(4 * (kMostWords + 1), '\0')).done);
}

TEST(WordArrays, OfWhichAWordIsMissingAreRefused) {
    std::string bytes = wordsWritten(xdr_array, wordsUpTo(3));
    bytes.resize(bytes.size() - 4);
    EXPECT_FALSE(wordsRead(bytes).done);
    EXPECT_FALSE(wordsRead(std::string("\0\0", 2)).done) << "no length";
}

TEST(WordArrays, ThatDoNotFitIntoTheMessageAreRefused) {
    EXPECT_EQ(wordsWritten(orvane_sim_xdr_array, wordsUpTo(3), 12), "");
    EXPECT_EQ(wordsWritten(orvane_sim_xdr_array, wordsUpTo(3), 16).size(), 16U);
}

TEST(WordArrays, AreDecodedIntoTheMemoryThatIsThere) {
    std::string bytes = wordsWritten(xdr_array, wordsUpTo(2));
    XDR stream{};
    xdrmem_create(&stream, bytes.data(), static_cast<u_int>(bytes.size()), XDR_DECODE);
    std::array<u_int, 2> room{};
    auto* list = reinterpret_cast<char*>(room.data());
    u_int count = 0;
    ASSERT_TRUE(orvane_sim_xdr_array(&stream, &list, &count, kMostWords, sizeof(u_int), kWordRoutine));
    EXPECT_EQ(room, (std::array<u_int, 2>{0x01020304U, 0x02040608U}));
}

TEST(WordArrays, AreFreed) {
    auto* list = static_cast<char*>(std::calloc(2, sizeof(u_int)));
    XDR stream{};
    stream.x_op = XDR_FREE;
    u_int count = 2;
    ASSERT_TRUE(orvane_sim_xdr_array(&stream, &list, &count, kMostWords, sizeof(u_int), kWordRoutine));
    EXPECT_EQ(list, nullptr);
}

TEST(WordArrays, OfOtherThingsAreLeftToLibtirpc) {
    std::array<bool_t, 2> flags{1, 0};
    std::array<char, 64> bytes{};
    XDR stream{};
    xdrmem_create(&stream, bytes.data(), bytes.size(), XDR_ENCODE);
    auto* list = reinterpret_cast<char*>(flags.data());
    u_int count = 2;
    ASSERT_TRUE(orvane_sim_xdr_array(&stream, &list, &count, kMostWords, sizeof(bool_t),
                                     reinterpret_cast<xdrproc_t>(xdr_bool)));
    EXPECT_EQ(std::string(bytes.data(), 12), std::string("\0\0\0\x02\0\0\0\x01\0\0\0\0", 12));
}

} // namespace
} // namespace OrvaneSim
