/// The text on its way through the stages: each replaces some ranges of it, from left to right, then commits.
///
///     draft.replace(4, 7, u".");
///     draft.replace(9, 12, u"/");
///     draft.commit();               // text() is the new text from here on
///
/// A stage that replaces nothing costs no allocation, and the stages share two buffers.
#pragma once

#include <QString>

namespace velorin {

class Draft final {
public:
    explicit Draft(QString text) : text_(std::move(text)) {}

    /// As of the last commit.
    [[nodiscard]] QStringView text() const { return text_; }

    /// Ranges in ascending order, none overlapping, all in terms of text().
    void replace(qsizetype start, qsizetype end, QStringView written) {
        if (copied_ == 0)
            begin();
        next_.append(text().sliced(copied_ - 1, start - copied_ + 1));
        next_.append(written);
        copied_ = end + 1;
    }

    /// Whether anything was replaced since the last commit.
    bool commit() {
        if (copied_ == 0)
            return false;
        next_.append(text().sliced(copied_ - 1));
        text_.swap(next_);
        copied_ = 0;
        return true;
    }

    /// For stages that change the text where it stands; not between replace() and commit().
    [[nodiscard]] QString& string() { return text_; }
    [[nodiscard]] QString take() { return std::move(text_); }

private:
    void begin() {
        next_.resize(0);
        next_.reserve(text_.size() + slack);
        copied_ = 1;
    }

    static constexpr qsizetype slack = 32;

    QString text_;
    QString next_;
    /// One more than the units of text_ that went into next_; 0 while nothing was replaced.
    qsizetype copied_ = 0;
};

} // namespace velorin
