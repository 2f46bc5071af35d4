/// A set of 16-bit key codes that is searched on every keystroke: a sorted run of codes that keeps
/// its room, so that only a key more than were ever held at once asks for memory.
#pragma once

#include <QtGlobal>

#include <algorithm>
#include <initializer_list>
#include <vector>

namespace velorin {

class KeyCodeSet final {
public:
    using value_type = quint16;
    using const_iterator = std::vector<quint16>::const_iterator;

    KeyCodeSet() = default;
    KeyCodeSet(std::initializer_list<quint16> codes) {
        for (const auto code : codes)
            insert(code);
    }

    [[nodiscard]] bool contains(quint16 code) const { return std::binary_search(begin(), end(), code); }
    [[nodiscard]] bool isEmpty() const { return codes_.empty(); }
    [[nodiscard]] std::size_t size() const { return codes_.size(); }

    void insert(quint16 code) {
        const auto place = std::lower_bound(codes_.cbegin(), codes_.cend(), code);
        if (place == codes_.cend() || *place != code)
            codes_.insert(place, code);
    }
    void remove(quint16 code) {
        const auto place = std::lower_bound(codes_.cbegin(), codes_.cend(), code);
        if (place != codes_.cend() && *place == code)
            codes_.erase(place);
    }
    void clear() { codes_.clear(); }

    /// In ascending order.
    [[nodiscard]] const_iterator begin() const { return codes_.cbegin(); }
    [[nodiscard]] const_iterator end() const { return codes_.cend(); }

    bool operator==(const KeyCodeSet&) const = default;

private:
    std::vector<quint16> codes_;
};

} // namespace velorin
