// Files of maps: what a file must have, and how everything that is wrong is told at once.
#include "tests/support/maps/MapTexts.h"

#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

namespace OrvaneTest {
namespace {

using namespace Orvane;

TEST(Loader, TellsEverythingThatIsWrongAtOnceWithItsLineAndPath) {
    EXPECT_EQ(problemsOf(R"("registers": {
  "A": {"at": "7.1", "reset": "0x12345"},
  "9B": {"at": "7.2"},
  "C": {"at": "7.3", "fields": {
    "X": "16",
    "Y": "3 sometimes"
  }},
  "D": {"text": 5}
})"),
              "map:2: registers.A.reset: 0x12345 is wider than the register's 16 bits\n"
              "map:3: registers.9B: is no name: letters, digits and '_', a letter first, 64 at most, then an "
              "index as "
              "[0]\n"
              "map:6: registers.C.fields.Y: 'sometimes' is no access\n"
              "map:5: registers.C.fields.X: 'X' has bits beyond the register's 16\n"
              "map:8: registers.D: 'at' is missing\n"
              "map:8: registers.D.text: has to be a string");
}

TEST(Loader, TellsOfAFieldThatIsDeclaredAndTakenAway) {
    EXPECT_EQ(problemsOfRegister(R"("fields": {"F": "0", "F": null})"),
              ".fields.F: is there twice\n.fields.F: has to be an object");
}

TEST(Loader, KeepsTwoHundredProblemsAndCountsTheRest) {
    std::string registers;
    for (int i = 0; i < 250; ++i)
        registers += (i > 0 ? ", \"R" : "\"R") + std::to_string(i) + "\": {}";
    try {
        mapOf("\"registers\": {" + registers + "}");
        FAIL() << "loaded";
    } catch (const MapError& error) {
        EXPECT_EQ(error.problems().size(), 201U);
        EXPECT_EQ(error.problems().back().message, "and 50 more");
    }
}

TEST(Loader, NeedsFormatAndName) {
    try {
        RegisterMap::parse("{}");
        FAIL() << "loaded";
    } catch (const MapError& error) {
        EXPECT_STREQ(error.what(), "map:1: 'format' is missing\nmap:1: 'name' is missing");
    }
}

TEST(Loader, RefusesAFileThatIsNotThere) {
    try {
        RegisterMap::load("/nowhere/map.json");
        FAIL() << "loaded";
    } catch (const MapError& error) {
        EXPECT_STREQ(error.what(), "/nowhere/map.json: cannot be read: No such file or directory");
    }
}

TEST(Loader, RefusesADeviceAsAFile) {
    try {
        RegisterMap::load("/dev/zero");
        FAIL() << "loaded";
    } catch (const MapError& error) {
        EXPECT_STREQ(error.what(), "/dev/zero: is no file");
    }
}

TEST(Loader, KeepsWhatTheMapSaysOfItself) {
    const RegisterMap map =
        mapOf(R"("text": "About", "identifiers": ["0x00112230/0xFFFFFFF0", "0x00445566"])");
    EXPECT_EQ(map.name(), "test");
    EXPECT_EQ(map.text(), "About");
    EXPECT_TRUE(map.describes(0x0011223F));
    EXPECT_TRUE(map.describes(0x00445566));
    EXPECT_FALSE(map.describes(0x00445567));
    EXPECT_TRUE(map.empty());
}

TEST(Loader, RefusesAnIdentifierWithOnesOutsideItsMask) {
    EXPECT_NE(problemsOf(R"("identifiers": ["0x00112231/0xFFFFFFF0"])")
                  .find("identifiers[0]: has to be a PHY identifier"),
              std::string::npos);
}

TEST(Loader, SharesEnumerationsByName) {
    const RegisterMap map = mapOf(R"("enumerations": {"onoff": {"0": "off", "1": "on"}},
        "registers": {"R": {"at": "7.1", "fields": {"A": {"bits": 0, "values": "onoff"}, "B": {"bits": 1, "values": "onoff"}}}})");
    EXPECT_EQ(map.at("R.B").field->choice(1)->name, "on");
    EXPECT_EQ(problemsOfRegister(R"("fields": {"A": {"bits": 0, "values": "offon"}})"),
              ".fields.A.values: names no enumeration of this file");
}

TEST(Loader, GivesCopiesThatShareTheMap) {
    const RegisterMap map = registerOf(R"("reset": 1)");
    const RegisterMap copy =
        map; // NOLINT(performance-unnecessary-copy-initialization): the copy is what is tested
    EXPECT_EQ(copy.find("R"), map.find("R"));
}

TEST(Loader, GivesAMapThatThreadsReadAtOnce) {
    const RegisterMap map = registerOf(R"("fields": {"A": "3:0"})");
    std::vector<std::thread> readers;
    std::atomic<int> right{0};
    for (int i = 0; i < 4; ++i)
        readers.emplace_back([&, copy = map] {
            for (int turn = 0; turn < 1000; ++turn)
                right +=
                    copy.resolve("R.A").field == map.find("R")->field("A") && copy.match("R.*").size() == 1
                        ? 1
                        : 0;
        });
    for (std::thread& each : readers)
        each.join();
    EXPECT_EQ(right, 4000);
}

TEST(Loader, TakesIdentifiersOf32Bits) {
    EXPECT_EQ(problemsOf(R"("identifiers": ["0xFFFFFFFF/0xFFFFFFFF"])"), "");
    EXPECT_NE(problemsOf(R"("identifiers": ["0x100000000/0x1FFFFFFFF"])"), "");
    EXPECT_NE(problemsOf(R"("identifiers": ["0x00000000/0x100000000"])"), "");
}

TEST(Loader, TakesTheNameOfASchema) {
    EXPECT_EQ(problemsOf(R"("$schema": "register-map.schema.json")"), "");
}

TEST(Loader, TakesNamesOfLettersDigitsAndUnderscores_64AtMost) {
    const auto isName = [](const std::string& name) {
        return problemsOf(R"("registers": {")" + name + R"(": {"at": "7.1"}})").find("is no name") ==
               std::string::npos;
    };
    for (const std::string name : {"azAZ_09", "a", "z", "A", "Z", "_", "L[0]", "L[9]", "L[10]"})
        EXPECT_TRUE(isName(name)) << name;
    for (const char first : std::string("`{@[/:0"))
        EXPECT_FALSE(isName(std::string(1, first))) << first;
    for (const std::string name : {"a`", "a{", "a@", "a/", "a:", "L[00]", "L[01]", "L[/]", "L[:]", "L[]",
                                   "L]", "L[0x1]", "L[1", "L[+1]", "L[x1]"})
        EXPECT_FALSE(isName(name)) << name;
    EXPECT_TRUE(isName(std::string(64, 'n')));
    EXPECT_FALSE(isName(std::string(65, 'n')));
}

TEST(Loader, TellsWhatKindAListHasToBe) {
    EXPECT_EQ(problemsOf(R"("include": {})"), "map:1: include: has to be an array");
    EXPECT_EQ(problemsOf(R"("registers": [])"), "map:1: registers: has to be an object");
}

TEST(Loader, TellsOfOneProblemMoreThanTwoHundred) {
    std::string registers;
    for (int i = 0; i < 201; ++i)
        registers += (i > 0 ? ", \"R" : "\"R") + std::to_string(i) + "\": {}";
    const std::string problems = problemsOf("\"registers\": {" + registers + "}");
    EXPECT_EQ(problems.substr(problems.rfind('\n')), "\nand 1 more");
}

TEST(Loader, ShowsTheFirst80CharactersOfWhatIsWrong_AndOnlyThosePeopleRead) {
    const auto shown = [](const std::string& bits) {
        const std::string problem = problemsOfRegister(R"("fields": {"A": {"bits": ")" + bits + R"("}})");
        return problem.substr(0, problem.find(" are no bits"));
    };
    EXPECT_EQ(shown(std::string(80, 'x')), ".fields.A.bits: '" + std::string(80, 'x') + "'");
    EXPECT_EQ(shown(std::string(81, 'x')), ".fields.A.bits: '" + std::string(80, 'x') + "...'");
    EXPECT_EQ(shown("a ~\\u007f\\u001f"), ".fields.A.bits: 'a ~?"
                                          "?'");
}

TEST(Loader, TakesAFileOf8MiBAndNoLargerOne) {
    const std::string path = "/tmp/orvane-large-" + std::to_string(getpid());
    const auto errorOfSize = [&](std::size_t size) {
        const std::string text = mapText(R"("text": "")");
        std::ofstream(path) << text << std::string(size - text.size(), ' ');
        try {
            RegisterMap::load(path);
        } catch (const MapError& error) {
            return std::string(error.what());
        }
        return std::string();
    };
    constexpr std::size_t kMost = 8U << 20U;
    EXPECT_EQ(errorOfSize(kMost), "");
    EXPECT_EQ(errorOfSize(kMost + 1), path + ": is larger than 8 MiB, with the files that include it");
    std::remove(path.c_str());
}

TEST(Loader, RefusesANameThatIsNone) {
    try {
        RegisterMap::parse(R"({"format": "orvane-map-1", "name": "9x"})");
        FAIL() << "loaded";
    } catch (const MapError& error) {
        EXPECT_STREQ(error.what(),
                     "map:1: name: is no name: letters, digits and '_', a letter first, 64 at most");
    }
}

TEST(Loader, TakesTextsOf4096BytesForTheMapAndItsOverrides) {
    for (const std::size_t size : {4096U, 4097U}) {
        const std::string text = R"("text": ")" + std::string(size, 'x') + '"';
        const std::string refusal = size == 4096 ? "" : "text: is longer than 4096 bytes";
        EXPECT_EQ(problemsOf(text), refusal.empty() ? "" : "map:1: " + refusal);
        EXPECT_EQ(problemsOf(R"("overrides": [{)" + text + "}]"),
                  refusal.empty() ? "" : "map:1: overrides[0]." + refusal);
    }
}

TEST(Loader, TakesWordsOf200BytesAtMost) {
    for (const std::size_t size : {200U, 201U}) {
        const std::string word = ": \"" + std::string(size, 'x') + '"';
        const auto isTooLong = [](const std::string& problems) {
            return problems.find("is longer than 200 bytes") != std::string::npos;
        };
        const auto ofField = [&](const std::string& name) {
            return problemsOfRegister(R"("fields": {"A": {"bits": "0", ")" + name + '"' + word + "}}");
        };
        EXPECT_EQ(isTooLong(problemsOfRegister("\"access\"" + word)), size > 200);
        EXPECT_EQ(isTooLong(ofField("access")), size > 200);
        EXPECT_EQ(isTooLong(ofField("unit")), size > 200);
        EXPECT_EQ(isTooLong(problemsOf(R"("blocks": {"B": {"page": {"value": 0, "select")" + word + "}}}")),
                  size > 200);
        try {
            RegisterMap::parse("{\"name\": \"test\", \"format\"" + word + '}');
            ADD_FAILURE() << "loaded";
        } catch (const MapError& error) {
            EXPECT_EQ(isTooLong(error.what()), size > 200) << error.what();
        }
    }
}

} // namespace
} // namespace OrvaneTest
