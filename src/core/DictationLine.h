/// The dictations that are alive, in the order in which they were spoken: whose turn it is to be delivered,
/// and which are overtaken. Main thread.
///
///     line.join(dictation);
///     …
///     co_await dictation->turn.opened();     // all that was said before has been delivered
///     line.leave(*dictation);                // the next one's turn
#pragma once

#include "core/Dictation.h"

#include <vector>

namespace velorin {

class DictationLine final {
public:
    /// Behind all others. Whoever joins must leave.
    void join(SharedDictation dictation);
    /// Whoever waits for the turn that comes now is resumed within the call. Does nothing a second time.
    void leave(const Dictation& dictation);

    /// Tells all that stand before this one that it has begun, the oldest first.
    void overtakeBefore(const Dictation& dictation) const;

    /// None of those that are alive now is to be delivered.
    void withholdAll() const;

    [[nodiscard]] bool isEmpty() const { return line_.empty(); }
    [[nodiscard]] bool hasAnyBefore(const Dictation& dictation) const;
    /// The newest in this state; null where there is none.
    [[nodiscard]] SharedDictation in(Dictation::State state) const;
    /// The one just before that still waits for the microphone; null where there is none.
    [[nodiscard]] SharedDictation launchingBefore(const Dictation& dictation) const;

    /// Nobody is waited for any more: what they have on the disk goes.
    void abandon();

private:
    std::vector<SharedDictation> line_;
};

/// Leaves the line for a dictation, whichever way its end takes.
class PlaceInLine final {
public:
    PlaceInLine(DictationLine& line, SharedDictation dictation)
        : line_(line), dictation_(std::move(dictation)) {}
    PlaceInLine(const PlaceInLine&) = delete;
    PlaceInLine& operator=(const PlaceInLine&) = delete;
    ~PlaceInLine() { line_.leave(*dictation_); }

private:
    DictationLine& line_;
    SharedDictation dictation_;
};

} // namespace velorin
