/// Records the chords it was asked for, and answers what the test set.
#pragma once

#include "platform/SyntheticKeyboard.h"

#include <utility>
#include <vector>

namespace velorin {

class FakeSyntheticKeyboard final : public SyntheticKeyboard {
public:
    bool canPost = true;
    PasteboardSelection source = PasteboardSelection::clipboard;
    std::vector<std::pair<Chord, std::optional<RunningApplication>>> chords;

    bool chord(Chord chord, const std::optional<RunningApplication>& application) override {
        chords.emplace_back(chord, application);
        return canPost;
    }
    PasteboardSelection pasteSource(const std::optional<RunningApplication>&) const override {
        return source;
    }
};

} // namespace velorin
