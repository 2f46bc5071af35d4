/// A set of 16-bit key codes that is searched on every keystroke: a sorted run of codes, kept in place up
/// to more keys than a person holds down, so that inserting and removing allocate nothing.
#pragma once

#include <QVarLengthArray>
#include <QtGlobal>

#include <algorithm>
#include <initializer_list>

namespace velorin {

class KeyCodeSet final {
public:
    KeyCodeSet() = default;
    KeyCodeSet(std::initializer_list<quint16> codes) {
        for (const auto code : codes)
            insert(code);
    }

    [[nodiscard]] bool contains(quint16 code) const { return std::binary_search(begin(), end(), code); }
    [[nodiscard]] bool isEmpty() const { return codes_.isEmpty(); }
    [[nodiscard]] qsizetype size() const { return codes_.size(); }

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
    [[nodiscard]] const quint16* begin() const { return codes_.cbegin(); }
    [[nodiscard]] const quint16* end() const { return codes_.cend(); }

    bool operator==(const KeyCodeSet& other) const { return codes_ == other.codes_; }

private:
    QVarLengthArray<quint16, 12> codes_;
};

} // namespace velorin
