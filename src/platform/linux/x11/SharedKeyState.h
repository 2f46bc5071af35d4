/// What the process has done to the keyboard and would have to undo: in memory that the guard shares, so
/// that it is undone also when the process is killed or stopped. Each value stands for itself; any thread
/// and both processes may read and write.
///
///     SharedKeyState shared;                       // one for the program; outlives all who use it
///     shared->keys[37] |= KeyState::posted;        // before the key press is sent
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

namespace velorin {

struct KeyState {
    /// Bits of `keys`, by X key code. A bit is set before the press is sent, and cleared after the release.
    static constexpr std::uint8_t posted = 1;    ///< We hold it down.
    static constexpr std::uint8_t givenBack = 2; ///< In the stead of the user, who holds it down.

    std::array<std::atomic<std::uint8_t>, 256> keys{};
    /// Which key codes the tap has grabbed, one bit each.
    std::array<std::atomic<std::uint32_t>, 8> grabbed{};
    /// Whether somebody sees the user's own releases: else nothing is given back.
    std::atomic<std::uint32_t> isWatched = 0;
    /// A resource of the tap's connection; 0 for none. Who destroys its maker lets go of all grabs.
    std::atomic<std::uint32_t> tapResource = 0;
    /// Whether the tap holds the whole keyboard, not for one key's answer alone.
    std::atomic<std::uint32_t> isHolding = 0;
    /// The guard's question whether the tap lives, and its answer: the same number.
    std::atomic<std::uint32_t> asked = 0;
    std::atomic<std::uint32_t> answered = 0;
};
static_assert(std::atomic<std::uint32_t>::is_always_lock_free &&
              std::atomic<std::uint8_t>::is_always_lock_free);

class SharedKeyState final {
public:
    /// New memory, all zero.
    SharedKeyState();
    /// The memory behind the descriptor of another process.
    explicit SharedKeyState(int descriptor);
    ~SharedKeyState();
    SharedKeyState(const SharedKeyState&) = delete;
    SharedKeyState& operator=(const SharedKeyState&) = delete;

    KeyState* operator->() const { return state_; }
    KeyState& operator*() const { return *state_; }
    /// To hand to the guard; closed in every other new process.
    [[nodiscard]] int fileDescriptor() const { return descriptor_; }

private:
    void map();

    int descriptor_;
    KeyState* state_ = nullptr;
};

} // namespace velorin
