// The files that the JSON Schema is held against (check_schema.py): the loader takes and refuses the same
// ones.
#include <filesystem>
#include <gtest/gtest.h>
#include <orvane/maps.hpp>

namespace OrvaneTest {
namespace {

using namespace Orvane;

std::vector<std::string> filesIn(const char* folder) {
    std::vector<std::string> files;
    for (const auto& each : std::filesystem::directory_iterator(std::string(ORVANE_MAP_FILES) + folder))
        files.push_back(each.path().string());
    return files;
}

TEST(Schema, TheLoaderTakesTheAcceptedFilesForAnyPhy) {
    ASSERT_FALSE(filesIn("/accepted").empty());
    for (const std::string& file : filesIn("/accepted"))
        for (const std::uint32_t identifier : {0x00112231U, 0x00112233U, 0U}) {
            MapOptions options;
            options.identifier = identifier;
            EXPECT_NO_THROW(RegisterMap::load(file, options)) << file;
        }
}

TEST(Schema, TheLoaderRefusesTheRefusedFiles) {
    EXPECT_GE(filesIn("/refused").size(), 20U);
    for (const std::string& file : filesIn("/refused"))
        EXPECT_THROW(RegisterMap::load(file), MapError) << file;
}

} // namespace
} // namespace OrvaneTest
