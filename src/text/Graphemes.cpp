#include "text/Graphemes.h"

#include <unicode/brkiter.h>
#include <unicode/utext.h>

#include <memory>
#include <optional>

namespace velorin::Graphemes {

namespace {

/// Units with nothing to join them: a boundary lies between any two of these.
constexpr bool isPlain(char16_t c) {
    if (c < 0x80)
        return c != u'\r';
    if (c < 0x300)
        return c >= 0xA0 && c != 0xA9 && c != 0xAD && c != 0xAE;
    return (c >= 0x400 && c < 0x482) || (c >= 0x3041 && c < 0x3097) || (c >= 0x4E00 && c < 0xA000);
}

bool isPlainBoundary(QStringView text, qsizetype position) {
    return isPlain(text[position - 1].unicode()) && isPlain(text[position].unicode());
}

/// ICU's segmentation of one text, in place. Making an iterator is dear: each thread keeps one.
class Segmentation final {
public:
    explicit Segmentation(QStringView text) {
        UErrorCode status = U_ZERO_ERROR;
        utext_openUChars(&text_, text.utf16(), text.size(), &status);
        iterator().setText(&text_, status);
    }
    ~Segmentation() { utext_close(&text_); }
    Q_DISABLE_COPY_MOVE(Segmentation)

    qsizetype following(qsizetype position) { return iterator().following(static_cast<int32_t>(position)); }
    qsizetype preceding(qsizetype position) { return iterator().preceding(static_cast<int32_t>(position)); }
    bool isBoundary(qsizetype position) { return iterator().isBoundary(static_cast<int32_t>(position)); }

private:
    static icu::BreakIterator& iterator() {
        static const std::unique_ptr<icu::BreakIterator> original = [] {
            UErrorCode status = U_ZERO_ERROR;
            return std::unique_ptr<icu::BreakIterator>(
                icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
        }();
        static thread_local const std::unique_ptr<icu::BreakIterator> mine(original->clone());
        return *mine;
    }

    UText text_ = UTEXT_INITIALIZER;
};

/// Walks forward; ICU is given the text only if it comes to that.
class Walker final {
public:
    explicit Walker(QStringView text) : text_(text) {}

    qsizetype next(qsizetype position) {
        const qsizetype end = position + 1;
        if (end == text_.size() || isPlainBoundary(text_, end))
            return end;
        if (!segmentation_)
            segmentation_.emplace(text_);
        return segmentation_->following(position);
    }

    qsizetype positionAfter(qsizetype count) {
        qsizetype position = 0;
        for (; count > 0 && position < text_.size(); --count)
            position = next(position);
        return position;
    }

private:
    QStringView text_;
    std::optional<Segmentation> segmentation_;
};

} // namespace

qsizetype count(QStringView text) {
    Walker walker(text);
    qsizetype count = 0;
    for (qsizetype position = 0; position < text.size(); position = walker.next(position))
        ++count;
    return count;
}

QStringView first(QStringView text) { return prefix(text, 1); }

QStringView last(QStringView text) {
    return text.isEmpty() ? text : text.sliced(previous(text, text.size()));
}

QStringView prefix(QStringView text, qsizetype count) {
    return text.first(Walker(text).positionAfter(count));
}

QStringView drop(QStringView text, qsizetype count) { return text.sliced(Walker(text).positionAfter(count)); }

bool isBoundary(QStringView text, qsizetype position) {
    if (position < 0 || position > text.size())
        return false;
    if (position == 0 || position == text.size() || isPlainBoundary(text, position))
        return true;
    return Segmentation(text).isBoundary(position);
}

qsizetype next(QStringView text, qsizetype position) { return Walker(text).next(position); }

qsizetype previous(QStringView text, qsizetype position) {
    if (position == 1 || isPlainBoundary(text, position - 1))
        return position - 1;
    return Segmentation(text).preceding(position);
}

bool beginsWith(QStringView text, QStringView start) {
    return text.startsWith(start) && isBoundary(text, start.size());
}

} // namespace velorin::Graphemes
