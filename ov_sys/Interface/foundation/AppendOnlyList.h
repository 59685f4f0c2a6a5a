// A sequence that only grows and whose elements never move, so that readers need no lock. It is read as a
// vector is.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <utility>

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

    // The same for any index; throws std::out_of_range from size() on.
    T& at(std::size_t index) const {
        if (index >= size())
            throw std::out_of_range("AppendOnlyList::at");
        return (*this)[index];
    }

    // Of a list that is not empty.
    T& front() const noexcept { return (*this)[0]; }
    T& back() const noexcept { return (*this)[size() - 1]; }

    // Stays valid while the list grows.
    class iterator {
    public:
        using iterator_category = std::random_access_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = T*;
        using reference = T&;

        iterator() = default;
        iterator(const AppendOnlyList* list, std::size_t index) : list_(list), index_(index) {}

        T& operator*() const { return (*list_)[index_]; }
        T* operator->() const { return &**this; }
        T& operator[](difference_type distance) const { return *(*this + distance); }

        iterator& operator+=(difference_type distance) {
            index_ += static_cast<std::size_t>(distance);
            return *this;
        }
        iterator& operator-=(difference_type distance) { return *this += -distance; }
        iterator& operator++() { return *this += 1; }
        iterator& operator--() { return *this -= 1; }
        iterator operator++(int) { return std::exchange(*this, *this + 1); }
        iterator operator--(int) { return std::exchange(*this, *this - 1); }

        friend iterator operator+(iterator from, difference_type distance) { return from += distance; }
        friend iterator operator+(difference_type distance, iterator from) { return from += distance; }
        friend iterator operator-(iterator from, difference_type distance) { return from -= distance; }
        friend difference_type operator-(const iterator& to, const iterator& from) {
            return static_cast<difference_type>(to.index_ - from.index_);
        }

        friend bool operator==(const iterator& one, const iterator& other) {
            return one.index_ == other.index_;
        }
        friend bool operator!=(const iterator& one, const iterator& other) { return !(one == other); }
        friend bool operator<(const iterator& one, const iterator& other) {
            return one.index_ < other.index_;
        }
        friend bool operator>(const iterator& one, const iterator& other) { return other < one; }
        friend bool operator<=(const iterator& one, const iterator& other) { return !(other < one); }
        friend bool operator>=(const iterator& one, const iterator& other) { return !(one < other); }

    private:
        const AppendOnlyList* list_ = nullptr;
        std::size_t index_ = 0;
    };

    using value_type = T;
    using size_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    using reference = T&;
    using const_reference = T&; // a list never makes its elements constant
    using const_iterator = iterator;
    using reverse_iterator = std::reverse_iterator<iterator>;
    using const_reverse_iterator = reverse_iterator;

    // Cover the elements that were there when end() was asked for.
    iterator begin() const { return {this, 0}; }
    iterator end() const { return {this, size()}; }
    iterator cbegin() const { return begin(); }
    iterator cend() const { return end(); }
    reverse_iterator rbegin() const { return reverse_iterator(end()); }
    reverse_iterator rend() const { return reverse_iterator(begin()); }
    reverse_iterator crbegin() const { return rbegin(); }
    reverse_iterator crend() const { return rend(); }

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
