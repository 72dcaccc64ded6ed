/// Queues of fixed size between two threads, without locks.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <type_traits>
#include <vector>

namespace zv::engine {

/// One writer, one reader. Capacity is a power of two.
template <typename T>
class Ring {
    static_assert(std::is_trivially_copyable_v<T>);

  public:
    explicit Ring(std::size_t atLeast) {
        std::size_t size = 1;
        while (size < atLeast) size *= 2;
        items_.resize(size);
    }
    std::size_t capacity() const { return items_.size(); }
    /// Items waiting: no fewer for the reader, no more for the writer.
    std::size_t filled() const {
        return written_.load(std::memory_order_acquire) - read_.load(std::memory_order_acquire);
    }
    std::size_t free() const { return capacity() - filled(); }
    /// Items ever written: a mark for skipTo(). By the writer.
    std::size_t mark() const { return written_.load(std::memory_order_relaxed); }
    /// Forgets what was written before the mark. By the reader.
    void skipTo(std::size_t mark) {
        const std::size_t ahead = mark - read_.load(std::memory_order_relaxed);
        if (ahead <= filled()) read_.store(mark, std::memory_order_release);
    }
    bool push(const T& item) {
        const std::size_t at = written_.load(std::memory_order_relaxed);
        if (at - read_.load(std::memory_order_acquire) == capacity()) return false;
        items_[at & (capacity() - 1)] = item;
        written_.store(at + 1, std::memory_order_release);
        return true;
    }
    bool pop(T& item) {
        const std::size_t at = read_.load(std::memory_order_relaxed);
        if (at == written_.load(std::memory_order_acquire)) return false;
        item = items_[at & (capacity() - 1)];
        read_.store(at + 1, std::memory_order_release);
        return true;
    }
    /// Writes up to `count` items; returns how many found room.
    std::size_t write(const T* from, std::size_t count) {
        const std::size_t at = written_.load(std::memory_order_relaxed);
        count = std::min(count, capacity() - (at - read_.load(std::memory_order_acquire)));
        const std::size_t start = at & (capacity() - 1);
        const std::size_t first = std::min(count, capacity() - start);
        std::copy_n(from, first, items_.data() + start);
        std::copy_n(from + first, count - first, items_.data());
        written_.store(at + count, std::memory_order_release);
        return count;
    }
    /// Reads up to `count` items (into nothing when `to` is null); returns how many there were.
    std::size_t read(T* to, std::size_t count) {
        const std::size_t at = read_.load(std::memory_order_relaxed);
        count = std::min(count, written_.load(std::memory_order_acquire) - at);
        const std::size_t start = at & (capacity() - 1);
        const std::size_t first = std::min(count, capacity() - start);
        if (to) {
            std::copy_n(items_.data() + start, first, to);
            std::copy_n(items_.data(), count - first, to + first);
        }
        read_.store(at + count, std::memory_order_release);
        return count;
    }

  private:
    std::vector<T> items_;
    alignas(64) std::atomic<std::size_t> written_{0};
    alignas(64) std::atomic<std::size_t> read_{0};
};

}  // namespace zv::engine
