/// Puts text at the cursor of the focused element through accessibility, in the place of what is selected
/// there. Neither the clipboard nor the keyboard is touched.
///
///     AXInsertService insertion(accessibility, trust, clock);
///     insertion.onUnverifiedInsert = [](const QString& text) { … };    // it may not have landed
///     if (insertion.insert(text, target)) …          // the element took it
///
/// Whether it really landed is looked at `verifyDelay` later; that cannot change the answer any more. Main
/// thread, synchronous.
#pragma once

#include "platform/Accessibility.h"
#include "platform/Clock.h"
#include "platform/RunningApplication.h"
#include "platform/Trust.h"

#include <functional>
#include <list>

namespace velorin {

class AXInsertService final {
public:
    /// The longest text of an element that is written to, in characters as people count them.
    static constexpr qsizetype largestValue = 100000;
    static constexpr std::chrono::milliseconds verifyDelay{400};
    /// What the target may cost us in all.
    static constexpr std::chrono::milliseconds budget{800};
    static constexpr std::chrono::milliseconds verifyBudget{250};

    AXInsertService(Accessibility& accessibility, Trust& trust, Clock& clock)
        : accessibility_(accessibility), trust_(trust), clock_(clock) {}
    AXInsertService(const AXInsertService&) = delete;
    AXInsertService& operator=(const AXInsertService&) = delete;

    /// True when the element took the text. False without a trace in the application.
    [[nodiscard]] bool insert(const QString& text, const std::optional<RunningApplication>& target);

    /// Called with a text that `insert` answered true for and that seems not to have landed.
    std::function<void(const QString& text)> onUnverifiedInsert;

private:
    struct Written {
        QString text;
        QString before; ///< The value of the element.
    };
    void verifyLater(std::shared_ptr<AccessibleElement> element, Written written);
    void verify(AccessibleElement& element, const Written& written);

    Accessibility& accessibility_;
    Trust& trust_;
    Clock& clock_;
    std::list<Subscription> verifications_;
};

} // namespace velorin
