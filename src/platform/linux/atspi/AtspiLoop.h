/// The accessibility bus as the accessibility thread sees it: who has the keyboard, and what an element says.
///
/// The focus is followed by the applications' own events. What had it before we came is looked for once, and
/// again when a window comes to the front whose application tells of no focus.
///
/// One thread. A question that runs into its deadline makes its application count as silent for the rest of
/// the operation, so that a hung one costs one deadline.
#pragma once

#include "platform/Accessibility.h"
#include "platform/linux/atspi/BusConnection.h"

#include <atomic>
#include <functional>
#include <map>
#include <set>

namespace velorin {

/// One use of the bus: what it may cost in all, and who has let it down.
struct AtspiOperation {
    explicit AtspiOperation(std::chrono::milliseconds budget) : end(budget) {}

    Deadline end;
    bool givesWay = false; ///< Nobody waits for it: it ends as soon as somebody wants something else.
    std::set<BusName> silent;
};

class AtspiLoop final {
public:
    /// What one call may cost.
    static constexpr std::chrono::milliseconds callDeadline{250};
    /// How long a window may be in front before we look for its focus ourselves.
    static constexpr std::chrono::milliseconds focusPatience{150};
    /// How long a write may take to show.
    static constexpr std::chrono::milliseconds writePatience{50};
    /// How often what gives way looks whether it has to.
    static constexpr std::chrono::milliseconds givingWayStep{10};
    /// What listening may cost at a time, however much is told.
    static constexpr std::chrono::milliseconds listeningPatience{20};

    /// `isWanted` tells a long search that somebody waits for something else.
    AtspiLoop(BusConnection& bus, std::function<bool()> isWanted);

    /// Takes in what has been told, and looks for the focus where that is due.
    void serve();
    /// For poll(): when `serve` has something to do by itself; -1 for never.
    [[nodiscard]] int pollTimeout() const;

    [[nodiscard]] std::optional<BusObject> focused(std::int64_t process, AtspiOperation& operation);

    [[nodiscard]] std::optional<QString> role(const BusObject& element, AtspiOperation& operation);
    [[nodiscard]] std::optional<QString> value(const BusObject& element, AtspiOperation& operation);
    [[nodiscard]] std::optional<QString> selectedText(const BusObject& element, AtspiOperation& operation);
    [[nodiscard]] std::optional<TextRange> selectedRange(const BusObject& element, AtspiOperation& operation);
    [[nodiscard]] bool isSettable(const BusObject& element, AtspiOperation& operation);
    /// `isDecided` is taken by whoever comes first: by us, before the text is sent, or by who does not wait for
    /// it any longer and takes another road. Nothing is sent any more then.
    [[nodiscard]] tl::expected<void, AccessibilityError> replaceSelection(const BusObject& element,
                                                                          const QString& text,
                                                                          AtspiOperation& operation,
                                                                          std::atomic<bool>& isDecided);
    [[nodiscard]] std::vector<BusObject> children(const BusObject& element, AtspiOperation& operation);

private:
    /// Where the caret is and what is selected, in the application's own units.
    struct Place {
        std::int32_t count = 0;
        std::int32_t caret = 0;
        std::int32_t start = 0; ///< With nothing selected, both are the caret.
        std::int32_t end = 0;

        bool operator==(const Place&) const = default;
    };

    [[nodiscard]] BusMessage ask(const BusCall& call, AtspiOperation& operation);
    [[nodiscard]] BusMessage await(std::uint32_t serial, Deadline deadline, const AtspiOperation& operation);
    [[nodiscard]] std::optional<std::int32_t> textNumber(const BusObject& element, const char* property,
                                                         AtspiOperation& operation);
    [[nodiscard]] std::optional<QString> textBetween(const BusObject& element, std::int32_t start,
                                                     std::int32_t end, AtspiOperation& operation);
    /// What people see of it.
    [[nodiscard]] QString withoutPadding(QString text, const BusObject& element, AtspiOperation& operation);
    [[nodiscard]] std::optional<Place> placeIn(const BusObject& element, AtspiOperation& operation);
    [[nodiscard]] bool awaitChange(const BusObject& element, const Place& before, AtspiOperation& operation);
    void putCaretBehind(const BusObject& element, std::int32_t caret, AtspiOperation& operation);
    [[nodiscard]] bool mayBeRead(const BusObject& element, AtspiOperation& operation);
    [[nodiscard]] bool has(const BusObject& element, const char* interface, AtspiOperation& operation);
    [[nodiscard]] std::vector<std::uint32_t> statesOf(const BusObject& element, AtspiOperation& operation);
    [[nodiscard]] bool isMenu(const BusObject& element, AtspiOperation& operation);
    [[nodiscard]] bool isInState(const BusObject& element, unsigned state, AtspiOperation& operation);
    [[nodiscard]] std::string toolkitOf(const BusName& owner, AtspiOperation& operation);
    [[nodiscard]] std::int64_t processOf(const BusName& owner, AtspiOperation& operation);

    void takeSignals();
    void take(const BusSignal& signal);
    void ownerChanged(const std::string& name, bool isThere);
    void focusMoved(const BusObject& element, bool isThere);
    void subscribe();
    void forget(const BusName& owner);
    [[nodiscard]] std::vector<BusObject> applications(AtspiOperation& operation);
    std::optional<BusObject> searchIn(const BusObject& application, AtspiOperation& operation);
    [[nodiscard]] std::optional<BusObject> focusIn(const BusObject& element, int& budget,
                                                   AtspiOperation& operation);

    BusConnection& bus_;
    std::function<bool()> isWanted_;
    std::vector<BusObject> focused_; ///< The last one is the latest.
    std::map<BusName, std::int64_t> processes_;
    std::map<BusName, std::string> toolkits_;
    std::map<BusName, Deadline> searches_; ///< Applications whose focus is not known, and when to look.
};

} // namespace velorin
