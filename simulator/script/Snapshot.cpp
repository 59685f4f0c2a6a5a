// Snapshots of registers.
#include "simulator/script/Snapshot.h"

#include "simulator/script/ActionText.h"

#include <algorithm>
#include <fstream>
#include <utility>

namespace OrvaneSim {
namespace {

Board& boardOf(const std::vector<Board*>& boards, const std::string& serial, const std::string& path) {
    const auto found = std::find_if(boards.begin(), boards.end(),
                                    [&](const Board* board) { return board->serial() == serial; });
    if (found == boards.end())
        throw ScriptError(path, "the lab has no board \"" + serial + "\"");
    return **found;
}

} // namespace

Json snapshotOf(const std::vector<Board*>& boards) {
    Json list = Json::array();
    for (const Board* board : boards) {
        Json registers = Json::array();
        for (const RegisterValue& value : board->registers())
            registers.push_back(registerText(value));
        list.push_back({{"serial", board->serial()}, {"registers", std::move(registers)}});
    }
    return {{"boards", std::move(list)}};
}

void restoreSnapshot(const std::vector<Board*>& boards, const Json& snapshot) {
    std::vector<std::pair<Board*, std::vector<RegisterValue>>> restored;
    ObjectReader whole(snapshot, "");
    const auto list = whole.list("boards");
    whole.finish();
    for (std::size_t i = 0; i < list.size(); ++i) {
        ObjectReader one(*list[i], elementPath("boards", i));
        one.need("serial");
        Board& board = boardOf(boards, one.text("serial", ""), one.at("serial"));
        std::vector<RegisterValue> values;
        for (const Json* value : one.list("registers")) {
            ObjectReader entry(*value, elementPath(one.at("registers"), values.size()));
            values.push_back(readRegister(entry));
            entry.finish();
        }
        one.finish();
        restored.emplace_back(&board, std::move(values));
    }
    for (const auto& [board, values] : restored)
        board->replaceRegisters(values);
}

void writeSnapshot(const std::string& file, const Json& snapshot) {
    std::ofstream stream(file);
    const char* boardSeparator = "\n";
    stream << "{\"boards\": [";
    for (const Json& board : snapshot["boards"]) {
        stream << boardSeparator << "{\"serial\": " << board["serial"] << ", \"registers\": [";
        const char* separator = "\n";
        for (const Json& value : board["registers"]) {
            stream << separator << "  " << value;
            separator = ",\n";
        }
        stream << "]}";
        boardSeparator = ",\n";
    }
    stream << "]}\n" << std::flush;
    if (!stream)
        throw ScriptError(file, "cannot be written");
}

} // namespace OrvaneSim
