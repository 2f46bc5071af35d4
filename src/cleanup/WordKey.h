/// A short word of plain letters as one number, so that words are compared and looked up at once, whatever
/// their case.
///
///     wordKey(u"Dot") == wordKey(u"dot")
#pragma once

#include <QStringView>

#include <array>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace velorin {

/// Five bits a letter; 0 is no word.
using WordKey = std::uint64_t;

inline constexpr int longestKeyedWord = 12;

/// The key of what was read so far and one letter more, 1 for "a" to 26 for "z".
[[nodiscard]] constexpr WordKey extended(WordKey key, unsigned letter) { return key << 5 | letter; }

/// The word must be of 1 to 12 letters from a to z.
[[nodiscard]] constexpr WordKey wordKey(QStringView word) {
    WordKey key = 0;
    for (qsizetype i = 0; i < word.size(); ++i)
        key = extended(key, word.utf16()[i] & 0x1F);
    return key;
}

/// What is known of some words. Made once, then only read; a look-up is a few instructions.
template <typename Value>
class WordMap final {
public:
    [[nodiscard]] Value* find(WordKey key) { return const_cast<Value*>(std::as_const(*this).find(key)); }
    [[nodiscard]] const Value* find(WordKey key) const {
        for (std::size_t slot = slotOf(key);; slot = (slot + 1) % slots_.size()) {
            if (slots_[slot].first == key)
                return &slots_[slot].second;
            if (slots_[slot].first == 0)
                return nullptr;
        }
    }

    /// The value of the word, a new one if there is none. At most some hundred words fit.
    Value& operator[](WordKey key) {
        std::size_t slot = slotOf(key);
        while (slots_[slot].first != 0 && slots_[slot].first != key)
            slot = (slot + 1) % slots_.size();
        slots_[slot].first = key;
        return slots_[slot].second;
    }

private:
    static std::size_t slotOf(WordKey key) {
        return static_cast<std::size_t>(key * 0x9E3779B97F4A7C15 >> 54);
    }

    std::array<std::pair<WordKey, Value>, 1024> slots_{};
};

} // namespace velorin
