// What a board is called and which discovery requests it answers.
#pragma once

#include <string>
#include <vector>

namespace OrvaneSim {

// The names of one board.
struct BoardName {
    std::string serial;
    std::string firstWord;
    std::vector<std::string> devices;

    // First word and device names, separated by single blanks.
    std::string line() const;

    // Whether a request for `word` is meant for this board: the word is empty or, letter case aside, its
    // serial number or one of its device names.
    bool answersTo(const std::string& word) const;
};

} // namespace OrvaneSim
