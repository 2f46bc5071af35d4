/// What other applications tell of their insides: which element has the keyboard, the text in it, and what
/// is selected.
///
///     auto element = accessibility.focusedElement(target.processIdentifier, 800ms);
///     if (element && element->isSelectedTextSettable())
///         element->replaceSelection(text);
///
/// All that is asked of an element, and of those reached from it, shares the budget that it was got with:
/// when that is spent, or as soon as the application has let one question go unanswered, everything else is
/// answered at once with nothing. May be used from any thread.
#pragma once

#include <QString>

#include <tl/expected.hpp>

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

namespace velorin {

/// Counted in UTF-16 units.
struct TextRange {
    qsizetype location = 0;
    qsizetype length = 0;

    bool operator==(const TextRange&) const = default;
};

/// Why a write did not happen. The numbers stand in the log.
enum class AccessibilityError {
    unanswered = 1, ///< No answer to a question that had to be asked before the write.
    refused = 2,    ///< The application said no.
    dropped = 3,    ///< It said yes and did nothing.
};

class AccessibleElement {
public:
    virtual ~AccessibleElement() = default;

    /// The kind of element; `secureTextFieldRole` for the field of a password.
    [[nodiscard]] virtual std::optional<QString> role() = 0;

    /// The whole text. Nothing for elements without text, for secret ones, and for texts that nobody writes
    /// by hand.
    [[nodiscard]] virtual std::optional<QString> value() = 0;
    /// The first selection; empty when nothing is selected.
    [[nodiscard]] virtual std::optional<QString> selectedText() = 0;
    [[nodiscard]] virtual std::optional<TextRange> selectedTextRange() = 0;

    /// Whether `replaceSelection` is known to work here.
    [[nodiscard]] virtual bool isSelectedTextSettable() = 0;
    /// Puts the text in the place of the selection, or at the caret. Success says that the text was handed
    /// over: also when the answer did not come in time.
    [[nodiscard]] virtual tl::expected<void, AccessibilityError> replaceSelection(const QString& text) = 0;

    [[nodiscard]] virtual std::vector<std::shared_ptr<AccessibleElement>> children() = 0;

    [[nodiscard]] virtual bool isSameAs(const AccessibleElement& other) const = 0;
    /// The same element, with a budget of its own.
    [[nodiscard]] virtual std::shared_ptr<AccessibleElement>
    renewed(std::chrono::milliseconds budget) const = 0;
};

inline constexpr char16_t secureTextFieldRole[] = u"AXSecureTextField";

class Accessibility {
public:
    virtual ~Accessibility() = default;

    /// The element of this process that has the keyboard; of whichever process for 0. Null when there is
    /// none, or it cannot be told in time.
    [[nodiscard]] virtual std::shared_ptr<AccessibleElement>
    focusedElement(qint64 process, std::chrono::milliseconds budget) = 0;
};

} // namespace velorin
