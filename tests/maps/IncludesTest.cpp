// Maps of several files, and includes that lead where they must not.
#include "tests/support/maps/MapTexts.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using namespace Orvane;
namespace fs = std::filesystem;

class Includes : public testing::Test {
protected:
    const fs::path folder = fs::temp_directory_path() / ("orvane-maps-" + std::to_string(getpid()));

    void SetUp() override { fs::create_directories(folder / "sub"); }
    void TearDown() override { fs::remove_all(folder); }

    void write(const std::string& name, const std::string& members) const {
        std::ofstream(folder / name) << mapText(members);
    }
    RegisterMap load() const { return RegisterMap::load((folder / "top.json").string()); }
    // What is wrong, with the folder's name left out.
    std::string problems() const {
        std::string all;
        try {
            load();
        } catch (const MapError& error) {
            all = error.what();
        }
        const std::string prefix = folder.string() + "/";
        for (std::size_t at = all.find(prefix); at != std::string::npos; at = all.find(prefix))
            all.erase(at, prefix.size());
        return all;
    }
};

const char* const kRefused =
    "has to be a built-in map or, from a file, a path beneath its folder without '..'";

TEST_F(Includes, AddTheRegistersOfOtherFiles) {
    write("top.json", R"("include": ["sub/more.json"], "registers": {"A": {"at": "7.1"}})");
    write("sub/more.json", R"("include": ["last.json"], "registers": {"B": {"at": "7.2"}})");
    write("sub/last.json", R"("registers": {"C": {"at": "7.3"}})");
    EXPECT_EQ(load().size(), 3U);
    EXPECT_NE(load().find("C"), nullptr);
}

TEST_F(Includes, LetAFileAddToAnIncludedBlockAndChangeIt) {
    write("top.json", R"("include": ["base.json"], "blocks": {"A": {"registers": {"NEW": {"at": 9}}}},
        "overrides": [{"blocks": {"A": {"registers": {"R": {"reset": 5}}}}}])");
    write("base.json", R"("blocks": {"A": {"at": "30.0", "registers": {"R": {"at": 1}}}})");
    EXPECT_EQ(load().find("A.NEW")->address().text(), "30.0x0009");
    EXPECT_EQ(load().find("A.R")->reset(), 5U);
}

TEST_F(Includes, ThatDeclareARegisterTwiceAreRefused) {
    write("top.json", R"("include": ["base.json"], "registers": {"R": {"at": "7.2"}})");
    write("base.json", R"("registers": {"R": {"at": "7.1"}})");
    EXPECT_EQ(problems(), "top.json:1: registers.R: is there already; what changes it stands in 'overrides'");
}

TEST_F(Includes, TellTheFileThatIsWrong) {
    write("top.json", R"("include": ["base.json"])");
    write("base.json", R"("registers": {"R": {"at": "7.1", "reset": "0x10000"}})");
    EXPECT_EQ(problems(), "base.json:1: registers.R.reset: 0x10000 is wider than the register's 16 bits");
}

TEST_F(Includes, InACircleAreRefused) {
    write("top.json", R"("include": ["base.json"])");
    write("base.json", R"("include": ["top.json"])");
    EXPECT_EQ(problems(), "base.json:1: include[0]: is included already");
}

TEST_F(Includes, OfAFileThatIsNotThereAreRefused) {
    write("top.json", R"("include": ["none.json"])");
    EXPECT_EQ(problems(), "none.json: cannot be read: No such file or directory");
}

TEST_F(Includes, ThatLeadUpwardsOrAwayAreRefused) {
    for (const std::string name : {"../top.json", "/etc/passwd", "sub/../../x.json", "", "a\\\\b.json",
                                   "\\\\b.json", "a\\u0000b.json"}) {
        SCOPED_TRACE(name);
        write("top.json", R"("include": [")" + name + R"("])");
        EXPECT_EQ(problems(), std::string("top.json:1: include[0]: ") + kRefused);
    }
}

TEST_F(Includes, ThatLeaveTheFolderByALinkAreRefused) {
    fs::create_symlink("/etc", folder / "link");
    write("top.json", R"("include": ["link/passwd"])");
    EXPECT_EQ(problems(), "top.json:1: include[0]: leads out of the folder of the first file");
}

TEST_F(Includes, OfFilesThatMayBeExecutedAreTaken) {
    write("top.json", R"("registers": {"R": {"at": "7.1"}})");
    fs::permissions(folder / "top.json", fs::perms::all);
    EXPECT_EQ(problems(), "");
}

TEST_F(Includes, OfATextWithoutAFileMayNameBuiltInMapsOnly) {
    EXPECT_EQ(problemsOf(R"("include": ["base.json"])"), std::string("map:1: include[0]: ") + kRefused);
}

TEST_F(Includes, OfAPartOfABuiltInMapNameItsWholeFile) {
    EXPECT_NE(mapOf(R"("include": ["ieee8023/c22.json"])").find("C22.CONTROL"), nullptr);
    EXPECT_EQ(problemsOf(R"("include": ["ieee8023/c22"])"), std::string("map:1: include[0]: ") + kRefused);
}

TEST_F(Includes, BeyondEightLevelsAreRefused) {
    write("top.json", R"("include": ["ieee8023", "beside.json", "1.json"])");
    write("beside.json", R"("text": "")");
    for (int i = 1; i < 12; ++i)
        write(std::to_string(i) + ".json", R"("include": [")" + std::to_string(i + 1) + R"(.json"])");
    EXPECT_EQ(problems(), "8.json:1: include[0]: is included deeper than 8 files");
}

TEST_F(Includes, LetOnlyOverridesChangeAnIncludedBlockItself) {
    EXPECT_EQ(problemsOf(R"("include": ["ieee8023"], "blocks": {"AN": {"at": "6.0"}})"),
              "map:1: blocks.AN.at: of a block that is there already changes in 'overrides' only");
}

TEST_F(Includes, OfABrokenFileHideWhatOverridesWouldMiss) {
    write("top.json", R"("include": ["base.json"], "overrides": [{"registers": {"R": {"reset": 1}}}])");
    write("base.json", R"("registers": {)");
    EXPECT_EQ(problems().find("top.json"), std::string::npos) << problems();
    EXPECT_EQ(problems().find("base.json:"), 0U) << problems();
}

TEST_F(Includes, OfManyFilesBesideEachOtherKeepTheNameOfTheFirst) {
    std::string names = R"("ieee8023")";
    for (int i = 1; i < 10; ++i) {
        names += ", \"" + std::to_string(i) + ".json\"";
        write(std::to_string(i) + ".json", R"("registers": {"R)" + std::to_string(i) +
                                               R"(": {"at": "smbus:)" + std::to_string(i) + "\"}}");
    }
    write("top.json", R"("include": [)" + names + "]");
    const RegisterMap map = load();
    EXPECT_EQ(map.size(), RegisterMap::ieee8023().size() + 9);
    EXPECT_NE(map.name(), "ieee8023");
}

TEST_F(Includes, OfABuiltInMapKeepTheNameOfTheFileThatIncludesIt) {
    EXPECT_EQ(mapOf(R"("include": ["ieee8023"])").name(), "test");
}

} // namespace
} // namespace OrvaneTest
