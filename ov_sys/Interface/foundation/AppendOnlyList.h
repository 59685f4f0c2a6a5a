// A sequence that only grows and whose elements never move, so that readers need no lock.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>

namespace Orvane {

// Any number of threads may read while one appends; appenders serialise themselves. Elements live in chunks
// of doubling size (chunk n holds 64 * 2^n), so an element's address is stable until the list is destroyed.
template <class T>
class AppendOnlyList {
public:
    AppendOnlyList() = default;
    AppendOnlyList(const AppendOnlyList&) = delete;
    AppendOnlyList& operator=(const AppendOnlyList&) = delete;

    std::size_t size() const noexcept { return size_.load(std::memory_order_acquire); }
    bool empty() const noexcept { return size() == 0; }

    // `index` must be below a size() that this thread has seen.
    T& operator[](std::size_t index) const noexcept {
        const Place place = placeOf(index);
        return chunks_[place.chunk][place.offset];
    }

    // Throws std::bad_alloc and leaves the list as it was.
    void push_back(T value) {
        const std::size_t index = size_.load(std::memory_order_relaxed);
        const Place place = placeOf(index);
        if (!chunks_[place.chunk])
            chunks_[place.chunk] = std::make_unique<T[]>(kFirstChunk << place.chunk);
        chunks_[place.chunk][place.offset] = std::move(value);
        size_.store(index + 1, std::memory_order_release);
    }

    class iterator {
    public:
        iterator(const AppendOnlyList* list, std::size_t index) : list_(list), index_(index) {}
        T& operator*() const { return (*list_)[index_]; }
        iterator& operator++() {
            ++index_;
            return *this;
        }
        bool operator!=(const iterator& other) const { return index_ != other.index_; }

    private:
        const AppendOnlyList* list_;
        std::size_t index_;
    };

    // Cover the elements that were there when end() was asked for.
    iterator begin() const { return {this, 0}; }
    iterator end() const { return {this, size()}; }

private:
    static constexpr std::size_t kFirstChunk = 64;
    static constexpr std::size_t kChunks = 26;

    struct Place {
        std::size_t chunk;
        std::size_t offset;
    };

    static Place placeOf(std::size_t index) noexcept {
        std::size_t chunk = 0;
        std::size_t length = kFirstChunk;
        while (index >= length) {
            index -= length;
            length *= 2;
            ++chunk;
        }
        return {chunk, index};
    }

    std::array<std::unique_ptr<T[]>, kChunks> chunks_;
    std::atomic<std::size_t> size_{0};
};

} // namespace Orvane
