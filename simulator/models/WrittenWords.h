// Words that were written, by their keys; most of those that are asked for never were.
#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <unordered_map>

namespace OrvaneSim {

class WrittenWords {
public:
    using Map = std::unordered_map<std::uint64_t, std::uint32_t>;

    // False when there is certainly none.
    bool mayHold(std::uint64_t key) const { return perhaps_[markOf(key)]; }
    // Null when there is none; good until the next change.
    const std::uint32_t* find(std::uint64_t key) const {
        const auto found = words_.find(key);
        return found != words_.end() ? &found->second : nullptr;
    }
    void set(std::uint64_t key, std::uint32_t value) {
        perhaps_.set(markOf(key));
        words_[key] = value;
    }
    void erase(std::uint64_t key) { words_.erase(key); }
    void clear() {
        words_.clear();
        perhaps_.reset();
    }
    const Map& all() const { return words_; }

private:
    static constexpr std::size_t kMarks = 1024;
    static std::size_t markOf(std::uint64_t key) { return (key ^ key >> 16 ^ key >> 32) % kMarks; }

    Map words_;
    std::bitset<kMarks> perhaps_; // the marks of all that is there, and of some that was
};

} // namespace OrvaneSim
