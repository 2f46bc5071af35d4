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
    bool canType = true;
    /// How many of the characters are posted, if not all.
    std::optional<qsizetype> postsOnly;
    std::vector<QStringList> typed;
    std::vector<std::pair<Chord, std::optional<RunningApplication>>> chords;

    bool chord(Chord chord, const std::optional<RunningApplication>& application) override {
        chords.emplace_back(chord, application);
        return canPost;
    }
    std::optional<qsizetype> type(const QStringList& characters,
                                  const std::optional<RunningApplication>&) override {
        if (!canType)
            return std::nullopt;
        typed.push_back(characters);
        return postsOnly.value_or(characters.size());
    }
    PasteboardSelection pasteSource(const std::optional<RunningApplication>&) const override {
        return source;
    }
};

} // namespace velorin
