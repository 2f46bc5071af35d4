#include "core/DictationLine.h"

#include <algorithm>

namespace velorin {

void DictationLine::join(SharedDictation dictation) {
    line_.push_back(std::move(dictation));
    if (line_.size() == 1)
        line_.front()->turn.open();
}

void DictationLine::leave(const Dictation& dictation) {
    const auto isIt = [&dictation](const SharedDictation& other) { return other.get() == &dictation; };
    const auto place = std::ranges::find_if(line_, isIt);
    if (place == line_.end())
        return;
    const SharedDictation kept = *place; // to the end of this call
    line_.erase(place);
    if (line_.empty())
        return;
    // Whoever is resumed may leave as well.
    const SharedDictation next = line_.front();
    next->turn.open();
}

void DictationLine::overtakeBefore(const Dictation& dictation) const {
    // Whoever is told may be delivered at once, and leave.
    for (const auto& earlier : std::vector(line_)) {
        if (earlier.get() == &dictation)
            return;
        if (!std::exchange(earlier->isOvertaken, true))
            earlier->overtaking.tell();
    }
}

void DictationLine::withholdAll() const {
    for (const auto& dictation : line_)
        dictation->isWithheld = true;
}

bool DictationLine::hasAnyBefore(const Dictation& dictation) const {
    return !line_.empty() && line_.front().get() != &dictation;
}

SharedDictation DictationLine::in(Dictation::State state) const {
    const auto found = std::find_if(line_.rbegin(), line_.rend(),
                                    [state](const auto& dictation) { return dictation->state == state; });
    return found != line_.rend() ? *found : nullptr;
}

SharedDictation DictationLine::launchingBefore(const Dictation& dictation) const {
    SharedDictation nearest;
    for (const auto& earlier : line_) {
        if (earlier.get() == &dictation)
            break;
        if (earlier->state == Dictation::State::launching)
            nearest = earlier;
    }
    return nearest;
}

void DictationLine::abandon() {
    for (const auto& dictation : line_)
        dictation->recording.reset();
}

} // namespace velorin
