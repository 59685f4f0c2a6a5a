// Distances between words.
#include "tools/orvane/cli/Suggestion.h"

#include <algorithm>
#include <numeric>

namespace OrvaneTool {
namespace {

using Distances = std::vector<std::size_t>; // to the beginnings of the other word

// How many letters were added, left out, replaced or swapped with their neighbour.
std::size_t distance(std::string_view left, std::string_view right) {
    Distances before;
    Distances last(right.size() + 1);
    std::iota(last.begin(), last.end(), std::size_t{0});
    for (std::size_t i = 1; i <= left.size(); ++i) {
        Distances next{i};
        for (std::size_t j = 1; j <= right.size(); ++j) {
            const bool same = left[i - 1] == right[j - 1];
            std::size_t best = std::min({last[j] + 1, next[j - 1] + 1, last[j - 1] + (same ? 0 : 1)});
            if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1])
                best = std::min(best, before[j - 2] + 1);
            next.push_back(best);
        }
        before = std::exchange(last, std::move(next));
    }
    return last.back();
}

} // namespace

std::string nearest(std::string_view text, const std::vector<std::string>& words) {
    constexpr std::size_t kFar = 3;
    std::string best;
    std::size_t least = std::min(kFar, text.size());
    for (const std::string& word : words)
        if (const std::size_t away = distance(text, word); away < least) {
            least = away;
            best = word;
        }
    return best;
}

} // namespace OrvaneTool
