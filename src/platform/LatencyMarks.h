/// When the stages of a dictation happened: what benchmarks and the demonstration print. Holds times only.
///
/// One instance is shared by the whole program; the stages are marked from the thread on which they happen.
///
///     const auto dictation = marks.begin();           // key down
///     marks.mark(dictation, Stage::firstSample);      // counts once a dictation, later calls are ignored
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>

namespace velorin {

enum class Stage { keyDown, firstSample, firstPreview, keyUp, lastFinal, cleaned, delivered, overlayPainted };
inline constexpr std::size_t stageCount = 8;

class LatencyMarks final {
public:
    using Time = std::chrono::steady_clock::time_point;
    struct Dictation {
        std::array<std::optional<Time>, stageCount> times;
        [[nodiscard]] std::optional<Time> at(Stage stage) const {
            return times[static_cast<std::size_t>(stage)];
        }
    };
    static constexpr std::size_t kept = 100;

    /// Counted from 1; the number of no dictation is 0.
    using Number = std::uint64_t;

    /// Starts a new dictation, whose key went down at `keyDown`; the oldest of more than `kept` goes.
    Number begin(Time keyDown = std::chrono::steady_clock::now());
    [[nodiscard]] Number newest() const;

    /// Notes the time of a stage of that dictation, which others may have followed meanwhile; of one that is
    /// no longer kept nothing is noted. The first time of a stage counts, except for `keyUp`, `lastFinal`,
    /// `cleaned` and `delivered`, of which the last does.
    void mark(Number dictation, Stage stage, Time time = std::chrono::steady_clock::now());
    /// The same for the newest one.
    void mark(Stage stage, Time time = std::chrono::steady_clock::now());

    /// Oldest first.
    [[nodiscard]] std::deque<Dictation> dictations() const;

private:
    void note(Number dictation, Stage stage, Time time);

    mutable std::mutex mutex_;
    std::deque<Dictation> dictations_;
    Number begun_ = 0; ///< The number of the last in the list.
};

} // namespace velorin
