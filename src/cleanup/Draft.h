/// The text on its way through the stages: each replaces some ranges of it, from left to right, then commits.
///
///     for (const Lexicon::Trigger& word : draft.triggers().words) {
///         if (word.key == wordKey(u"dot"))
///             draft.replace(word.start, word.end, u".");
///     }
///     draft.commit();               // text() is the new text from here on, and the triggers are those in it
///
/// A stage that replaces nothing costs no allocation, and the stages share two buffers. The words of the text
/// are read again only after it has changed, when somebody asks for them.
#pragma once

#include "cleanup/Lexicon.h"

#include <QString>

namespace velorin {

class Draft final {
public:
    explicit Draft(QString text) : text_(std::move(text)) {}
    /// Collapsed text: its only white space is single spaces between other characters.
    Draft(QString collapsed, Lexicon::Triggers triggers)
        : text_(std::move(collapsed)), triggers_(std::move(triggers)), isRead_(true), isCollapsed_(true) {}

    /// As of the last commit.
    [[nodiscard]] QStringView text() const { return text_; }
    /// The words in it that some pass looks for.
    [[nodiscard]] const Lexicon::Triggers& triggers() {
        if (!std::exchange(isRead_, true))
            Lexicon::read(text_, triggers_);
        return triggers_;
    }
    /// Whether one of the words concerns one of the passes.
    [[nodiscard]] bool concerns(Lexicon::Concerns passes) { return (triggers().concerns & passes) != 0; }

    /// Whether it is still as it was when it was collapsed.
    [[nodiscard]] bool isCollapsed() const { return isCollapsed_; }

    /// Ranges in ascending order, none overlapping, all in terms of text().
    void replace(qsizetype start, qsizetype end, QStringView written) {
        if (!isRewriting_)
            begin();
        next_.append(text().sliced(copied_, start - copied_));
        next_.append(written);
        copied_ = end;
    }

    /// Whether anything was replaced since the last commit.
    bool commit() {
        if (!std::exchange(isRewriting_, false))
            return false;
        next_.append(text().sliced(copied_));
        text_.swap(next_);
        isRead_ = isCollapsed_ = false;
        return true;
    }

    /// For stages that change the text where it stands, or put another in its place; not between replace()
    /// and commit().
    [[nodiscard]] QString& string() {
        isRead_ = isCollapsed_ = false;
        return text_;
    }
    /// Changes that leave the words as they are, but for their case.
    void append(QChar punctuation) { text_.append(punctuation); }
    void truncate(qsizetype size) { text_.truncate(size); }
    void overwrite(qsizetype position, QChar letter) { text_[position] = letter; }

    [[nodiscard]] QString take() { return std::move(text_); }

private:
    void begin() {
        isRewriting_ = true;
        next_.resize(0);
        next_.reserve(text_.size() + slack);
        copied_ = 0;
    }

    static constexpr qsizetype slack = 32;

    QString text_;
    QString next_;
    /// How much of text_ went into next_, replaced or not.
    qsizetype copied_ = 0;
    Lexicon::Triggers triggers_;
    bool isRewriting_ = false;
    bool isRead_ = false;
    bool isCollapsed_ = false;
};

} // namespace velorin
