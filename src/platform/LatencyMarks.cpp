#include "platform/LatencyMarks.h"

namespace velorin {

void LatencyMarks::begin(Time keyDown) {
    const std::scoped_lock lock(mutex_);
    dictations_.emplace_back().times[static_cast<std::size_t>(Stage::keyDown)] = keyDown;
    if (dictations_.size() > kept)
        dictations_.pop_front();
}

void LatencyMarks::mark(Stage stage, Time time) {
    const std::scoped_lock lock(mutex_);
    if (dictations_.empty())
        return;
    auto& slot = dictations_.back().times[static_cast<std::size_t>(stage)];
    const bool firstCounts = stage == Stage::keyDown || stage == Stage::firstSample ||
                             stage == Stage::firstPreview || stage == Stage::overlayPainted;
    if (!slot || !firstCounts)
        slot = time;
}

std::deque<LatencyMarks::Dictation> LatencyMarks::dictations() const {
    const std::scoped_lock lock(mutex_);
    return dictations_;
}

} // namespace velorin
