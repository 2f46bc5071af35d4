// What elements say of their text, and how text is put into them.
#include "platform/linux/atspi/AtspiLoop.h"

#include "text/ForeignText.h"

#include <QList>

#include <atomic>
#include <thread>

namespace velorin {

namespace {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

constexpr char accessibleInterface[] = "org.a11y.atspi.Accessible";
constexpr char textInterface[] = "org.a11y.atspi.Text";
constexpr char editableInterface[] = "org.a11y.atspi.EditableText";

constexpr std::uint32_t passwordRole = 40;
constexpr unsigned editableState = 7;

/// Longer texts than anybody writes by hand are not fetched.
constexpr std::int32_t longestText = 4'000'000;
constexpr std::size_t longestTextBytes = 4UL * longestText;
/// Nobody has as much text as that; sums with it stay numbers.
constexpr std::int32_t furthestPlace = 1'000'000'000;
/// Of what a toolkit calls a kind of element.
constexpr qsizetype longestRole = 64;

/// This one says yes to every write and does nothing.
bool isKnownToLie(const std::string& toolkit) { return toolkit == "Gecko"; }

/// This one puts a blank of no width behind each character that takes two units, so that its offsets, which
/// count units, seem to count characters.
bool padsCharacters(const std::string& toolkit) { return toolkit == "Gecko"; }
constexpr char16_t padding = u'\ufeff';

/// Most count characters by code points; this one as its own strings do.
bool countsUnits(const std::string& toolkit) { return toolkit == "Qt"; }

std::int32_t positionsIn(const QString& text, bool byUnits) {
    return static_cast<std::int32_t>(byUnits ? text.size() : text.toUcs4().size());
}

/// How long a text is for the one who is to take it.
std::int32_t lengthOf(const QString& text, bool byUnits) {
    return static_cast<std::int32_t>(byUnits ? text.size() : text.toUtf8().size());
}

} // namespace

std::optional<QString> AtspiLoop::role(const BusObject& element, AtspiOperation& operation) {
    const auto number = ask({element, accessibleInterface, "GetRole", {}}, operation);
    const auto role = number ? BusReader(*number).uint32() : std::nullopt;
    if (role == passwordRole)
        return QString::fromUtf16(secureTextFieldRole);
    const auto reply = ask({element, accessibleInterface, "GetRoleName", {}}, operation);
    const auto name = reply ? BusReader(*reply).string() : std::nullopt;
    return role && name ? std::optional(ForeignText::oneLine(QString::fromStdString(*name), longestRole))
                        : std::nullopt;
}

bool AtspiLoop::mayBeRead(const BusObject& element, AtspiOperation& operation) {
    // Asked before any text: some hand out a password in clear.
    const auto reply = ask({element, accessibleInterface, "GetRole", {}}, operation);
    const auto role = reply ? BusReader(*reply).uint32() : std::nullopt;
    return role && role != passwordRole;
}

std::optional<std::int32_t> AtspiLoop::textNumber(const BusObject& element, const char* property,
                                                  AtspiOperation& operation) {
    const auto reply =
        ask({element, DBUS_INTERFACE_PROPERTIES, "Get", {std::string(textInterface), std::string(property)}},
            operation);
    auto held = reply ? BusReader(*reply).variant() : std::nullopt;
    return held ? held->int32() : std::nullopt;
}

std::optional<QString> AtspiLoop::textBetween(const BusObject& element, std::int32_t start, std::int32_t end,
                                              AtspiOperation& operation) {
    if (start == end)
        return QString();
    const auto reply = ask({element, textInterface, "GetText", {start, end}}, operation);
    const auto text = reply ? BusReader(*reply).string(longestTextBytes) : std::nullopt;
    return text ? std::optional(QString::fromStdString(*text)) : std::nullopt;
}

std::optional<QString> AtspiLoop::value(const BusObject& element, AtspiOperation& operation) {
    if (!mayBeRead(element, operation))
        return std::nullopt;
    const auto count = textNumber(element, "CharacterCount", operation);
    if (!count || *count < 0 || *count > longestText)
        return std::nullopt;
    auto text = textBetween(element, 0, *count, operation);
    return text ? std::optional(withoutPadding(*std::move(text), element, operation)) : std::nullopt;
}

QString AtspiLoop::withoutPadding(QString text, const BusObject& element, AtspiOperation& operation) {
    return text.contains(padding) && padsCharacters(toolkitOf(element.owner(), operation))
               ? text.remove(padding)
               : text;
}

std::optional<AtspiLoop::Place> AtspiLoop::placeIn(const BusObject& element, AtspiOperation& operation) {
    const auto count = textNumber(element, "CharacterCount", operation);
    const auto caret = textNumber(element, "CaretOffset", operation);
    if (!count || !caret)
        return std::nullopt;
    Place place{*count, *caret, *caret, *caret};
    const auto answer = ask({element, textInterface, "GetNSelections", {}}, operation);
    const auto selections = answer ? BusReader(*answer).int32() : std::nullopt;
    if (!selections)
        return std::nullopt;
    if (*selections > 0) {
        const auto reply = ask({element, textInterface, "GetSelection", {0}}, operation);
        if (!reply)
            return std::nullopt;
        BusReader reader(*reply);
        const auto start = reader.int32();
        const auto end = reader.int32();
        if (!start || !end)
            return std::nullopt;
        place.start = std::min(*start, *end);
        place.end = std::max(*start, *end);
    }
    const bool isWithin = place.start >= 0 && place.end <= place.count && place.count <= furthestPlace;
    return isWithin ? std::optional(place) : std::nullopt;
}

std::optional<QString> AtspiLoop::selectedText(const BusObject& element, AtspiOperation& operation) {
    if (!mayBeRead(element, operation))
        return std::nullopt;
    const auto place = placeIn(element, operation);
    if (!place || place->end - place->start > longestText)
        return std::nullopt;
    auto text = textBetween(element, place->start, place->end, operation);
    return text ? std::optional(withoutPadding(*std::move(text), element, operation)) : std::nullopt;
}

std::optional<TextRange> AtspiLoop::selectedRange(const BusObject& element, AtspiOperation& operation) {
    if (!mayBeRead(element, operation))
        return std::nullopt;
    const auto place = placeIn(element, operation);
    if (!place || place->end > longestText)
        return std::nullopt;
    if (countsUnits(toolkitOf(element.owner(), operation)))
        return TextRange{place->start, place->end - place->start};
    const auto upToEnd = textBetween(element, 0, place->end, operation);
    if (!upToEnd)
        return std::nullopt;
    const auto before = upToEnd->toUcs4().first(std::min<qsizetype>(place->start, upToEnd->toUcs4().size()));
    const auto start =
        QString::fromUcs4(reinterpret_cast<const char32_t*>(before.constData()), before.size());
    const auto location = withoutPadding(start, element, operation).size();
    return TextRange{location, withoutPadding(*upToEnd, element, operation).size() - location};
}

bool AtspiLoop::isSettable(const BusObject& element, AtspiOperation& operation) {
    return has(element, editableInterface, operation) && isInState(element, editableState, operation) &&
           !isKnownToLie(toolkitOf(element.owner(), operation)) && mayBeRead(element, operation);
}

tl::expected<void, AccessibilityError> AtspiLoop::replaceSelection(const BusObject& element,
                                                                   const QString& text,
                                                                   AtspiOperation& operation,
                                                                   std::atomic<bool>& isDecided) {
    const auto place = text.contains(u'\0') ? std::nullopt : placeIn(element, operation);
    const auto replaced = place ? textBetween(element, place->start, place->end, operation) : std::nullopt;
    if (!replaced)
        return tl::unexpected(AccessibilityError::unanswered);
    const bool byUnits = countsUnits(toolkitOf(element.owner(), operation));
    // Both go out before either is answered: an application that hangs in between still gets both.
    std::uint32_t deletion = 0;
    if (isDecided.exchange(true))
        return tl::unexpected(AccessibilityError::unanswered);
    if (place->start != place->end)
        deletion = bus_.send({element, editableInterface, "DeleteText", {place->start, place->end}});
    const auto insertion = bus_.send({element,
                                      editableInterface,
                                      "InsertText",
                                      {place->start, text.toStdString(), lengthOf(text, byUnits)}});
    const Deadline deadline(callDeadline);
    if (deletion != 0)
        (void)bus_.await(deletion, deadline);
    const auto answer = insertion != 0 ? bus_.await(insertion, deadline) : nullptr;
    if (!answer && bus_.hasTimedOut()) {
        operation.silent.insert(element.owner());
        return {}; // handed over: another road could bring it a second time
    }
    if (!answer || !BusReader(*answer).boolean().value_or(false))
        return tl::unexpected(AccessibilityError::refused);
    if (*replaced != text && !awaitChange(element, *place, operation))
        return tl::unexpected(AccessibilityError::dropped);
    putCaretBehind(element, place->start + positionsIn(text, byUnits), operation);
    return {};
}

bool AtspiLoop::awaitChange(const BusObject& element, const Place& before, AtspiOperation& operation) {
    const Deadline deadline(writePatience);
    for (;;) {
        const auto now = placeIn(element, operation);
        // One that does not answer any more may well have taken it.
        if (!now || *now != before)
            return true;
        if (deadline.hasPassed())
            return false;
        std::this_thread::sleep_for(5ms);
    }
}

void AtspiLoop::putCaretBehind(const BusObject& element, std::int32_t caret, AtspiOperation& operation) {
    // Some leave it in front of what was inserted at it.
    if (textNumber(element, "CaretOffset", operation) != caret)
        (void)ask({element, textInterface, "SetCaretOffset", {caret}}, operation);
}

} // namespace velorin
