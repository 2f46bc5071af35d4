/// A queue from one thread to one other that never waits and never refuses: it grows by whole chunks of
/// slots.
///
///     queue.put(std::move(samples));             // the one producer
///     while (auto samples = queue.take()) …      // the one consumer
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <utility>

namespace velorin {

template <typename Value>
class ChunkQueue final {
public:
    ChunkQueue() : first_(std::make_unique<Chunk>()), last_(first_.get()) {}
    ChunkQueue(const ChunkQueue&) = delete;
    ChunkQueue& operator=(const ChunkQueue&) = delete;
    ~ChunkQueue() {
        // One by one: a long queue would overflow the stack if each chunk destroyed the next.
        while (first_)
            first_ = std::move(first_->next);
    }

    void put(Value value) {
        if (putInLast_ == slots) {
            last_->next = std::make_unique<Chunk>();
            Chunk* const fresh = last_->next.get();
            last_->hasNext.store(true, std::memory_order_release);
            last_ = fresh;
            putInLast_ = 0;
        }
        last_->values[putInLast_] = std::move(value);
        last_->filled.store(++putInLast_, std::memory_order_release);
    }

    /// The oldest value; nothing when there is none.
    [[nodiscard]] std::optional<Value> take() {
        if (takenFromFirst_ == slots) {
            if (!first_->hasNext.load(std::memory_order_acquire))
                return std::nullopt;
            first_ = std::move(first_->next);
            takenFromFirst_ = 0;
        }
        if (takenFromFirst_ == first_->filled.load(std::memory_order_acquire))
            return std::nullopt;
        return std::move(first_->values[takenFromFirst_++]);
    }

private:
    static constexpr std::size_t slots = 64;
    struct Chunk {
        std::array<Value, slots> values{};
        std::atomic<std::size_t> filled{0};
        std::unique_ptr<Chunk> next;
        std::atomic<bool> hasNext{false};
    };

    // The consumer's.
    std::unique_ptr<Chunk> first_;
    std::size_t takenFromFirst_ = 0;
    // The producer's.
    Chunk* last_;
    std::size_t putInLast_ = 0;
};

} // namespace velorin
