#include "platform/LatencyMarks.h"

namespace velorin {

LatencyMarks::Number LatencyMarks::begin(Time keyDown) {
    const std::scoped_lock lock(mutex_);
    dictations_.emplace_back().times[static_cast<std::size_t>(Stage::keyDown)] = keyDown;
    if (dictations_.size() > kept)
        dictations_.pop_front();
    return ++begun_;
}

LatencyMarks::Number LatencyMarks::newest() const {
    const std::scoped_lock lock(mutex_);
    return begun_;
}

void LatencyMarks::mark(Number dictation, Stage stage, Time time) {
    const std::scoped_lock lock(mutex_);
    note(dictation, stage, time);
}

void LatencyMarks::mark(Stage stage, Time time) {
    const std::scoped_lock lock(mutex_);
    note(begun_, stage, time);
}

void LatencyMarks::note(Number dictation, Stage stage, Time time) {
    const Number followers = begun_ - dictation;
    if (dictation == 0 || dictation > begun_ || followers >= dictations_.size())
        return;
    auto& slot = dictations_[dictations_.size() - 1 - followers].times[static_cast<std::size_t>(stage)];
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
