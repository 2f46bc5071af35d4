/// When the stages of a dictation happened: what benchmarks and the demonstration print. Holds times only.
///
/// One instance is shared by the whole program; the stages are marked from the thread on which they happen.
///
///     marks.begin();                       // key down
///     marks.mark(Stage::firstSample);      // counts once a dictation, later calls are ignored
#pragma once

#include <array>
#include <chrono>
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

    /// Starts a new dictation, whose key went down at `keyDown`; the oldest of more than `kept` goes.
    void begin(Time keyDown = std::chrono::steady_clock::now());

    /// Notes the time of a stage of the newest dictation. The first time of a stage counts, except for
    /// `keyUp`, `lastFinal`, `cleaned` and `delivered`, of which the last does.
    void mark(Stage stage, Time time = std::chrono::steady_clock::now());

    /// Oldest first.
    [[nodiscard]] std::deque<Dictation> dictations() const;

private:
    mutable std::mutex mutex_;
    std::deque<Dictation> dictations_;
};

} // namespace velorin
