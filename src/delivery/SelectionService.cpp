#include "delivery/SelectionService.h"

#include "delivery/ElectronApplications.h"
#include "platform/Background.h"
#include "platform/Log.h"
#include "text/Graphemes.h"
#include "text/WhiteSpace.h"

#include <algorithm>
#include <array>
#include <span>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

/// Their pages show accessibility no selection.
constexpr std::array<QStringView, 10> webApps{
    u"com.apple.Safari",          u"com.apple.Notes",         u"com.apple.mail",
    u"org.mozilla.firefox",       u"com.microsoft.edgemac",   u"com.brave.Browser",
    u"com.vivaldi.Vivaldi",       u"com.operasoftware.Opera", u"company.thebrowser.Browser",
    u"com.tinyspeck.slackmacgap",
};

/// There, the keys for copying may end what runs.
constexpr std::array<QStringView, 5> terminalApps{
    u"com.apple.Terminal",   u"com.googlecode.iterm2", u"com.cmuxterm.app",
    u"dev.warp.Warp-Stable", u"com.mitchellh.ghostty",
};

bool isIn(std::span<const QStringView> identifiers, QStringView kin) {
    return std::ranges::find(identifiers, kin) != identifiers.end();
}

bool isBlank(QStringView text) {
    return WhiteSpace::trimmed(text, WhiteSpace::Set::whitespacesAndNewlines).isEmpty();
}

bool isUsable(QStringView text) {
    // Not counted to the end: it may be millions.
    return !isBlank(text) && Graphemes::prefix(text, SelectionService::longest).size() == text.size();
}

bool isSecure(AccessibleElement& element) { return element.role() == QStringView(secureTextFieldRole); }

std::optional<QString> selectedTextIn(AccessibleElement& element) {
    if (auto selected = element.selectedText(); selected && isUsable(*selected))
        return selected;
    const auto value = element.value();
    const auto range = value ? element.selectedTextRange() : std::nullopt;
    if (!range || range->location < 0 || range->length < 1 || range->length > value->size() - range->location)
        return std::nullopt;
    return value->sliced(range->location, range->length);
}

struct Found {
    std::shared_ptr<AccessibleElement> element;
    QString text;
};

std::optional<Found> selectionInTree(AccessibleElement& element, int depth, int& budget) {
    if (depth > SelectionService::deepest || budget < 1)
        return std::nullopt;
    for (const auto& child : element.children()) {
        if (--budget < 1)
            return std::nullopt;
        if (!isSecure(*child))
            if (auto text = selectedTextIn(*child); text && isUsable(*text))
                return Found{child, std::move(*text)};
        if (auto found = selectionInTree(*child, depth + 1, budget))
            return found;
    }
    return std::nullopt;
}

QString roleOf(AccessibleElement& element) { return element.role().value_or(u"unknown"_s); }

std::optional<SelectionSnapshot> accessibleSnapshot(const std::shared_ptr<AccessibleElement>& focus) {
    if (!focus || isSecure(*focus))
        return std::nullopt;
    if (auto text = selectedTextIn(*focus); text && isUsable(*text))
        return SelectionSnapshot{.text = std::move(*text), .element = focus, .focus = focus};
    int budget = SelectionService::nodeBudget;
    if (auto found = selectionInTree(*focus, 0, budget)) {
        qCDebug(selectionLog).noquote()
            << u"selection: found on descendant role=%1"_s.arg(roleOf(*found->element));
        return SelectionSnapshot{.text = std::move(found->text), .element = found->element, .focus = focus};
    }
    qCDebug(selectionLog).noquote() << u"selection: none via AX (role=%1)"_s.arg(roleOf(*focus));
    return std::nullopt;
}

bool isStillSelectedIn(const std::shared_ptr<AccessibleElement>& now, const SelectionSnapshot& snapshot,
                       std::chrono::milliseconds left) {
    if (!now || !now->isSameAs(*snapshot.focus))
        return false;
    const auto element = snapshot.element->renewed(left);
    if (const auto text = selectedTextIn(*element))
        return *text == snapshot.text;
    return !snapshot.element->isSameAs(*snapshot.focus);
}

std::chrono::milliseconds leftUntil(std::chrono::steady_clock::time_point end) {
    return std::chrono::floor<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
}

bool canCopySelection(const RunningApplication& application) {
    if (!application.kin || isIn(terminalApps, *application.kin))
        return false;
    return isIn(webApps, *application.kin) || Graphemes::beginsWith(*application.kin, u"com.google.Chrome") ||
           isElectron(application);
}

} // namespace

QCoro::Task<std::optional<SelectionSnapshot>>
SelectionService::snapshot(std::optional<RunningApplication> app) {
    if (!trust_.isProcessTrusted())
        co_return std::nullopt;
    const auto end = std::chrono::steady_clock::now() + wholeBudget;
    // A window of our own answers on this very thread: it is not asked.
    const auto frontmost = workspace_.frontmostApplication();
    if (!frontmost || !workspace_.isCurrent(*frontmost)) {
        const auto process = frontmost ? frontmost->processIdentifier : 0;
        auto search = inBackground<std::optional<SelectionSnapshot>>(
            background_, clock_, budget, [&accessibility = accessibility_, process] {
                return accessibleSnapshot(accessibility.focusedElement(process, budget));
            });
        auto found = co_await search.answer;
        if (found) {
            if (app)
                found->appPID = static_cast<qint32>(app->processIdentifier);
            co_return found;
        }
    }
    co_return co_await copiedSnapshot(std::move(app), end);
}

QCoro::Task<std::optional<SelectionSnapshot>>
SelectionService::copiedSnapshot(std::optional<RunningApplication> app, Moment end) {
    const auto frontmost = workspace_.frontmostApplication();
    const auto target = app ? app : frontmost;
    if (!target || workspace_.isCurrent(*target) || !frontmost ||
        frontmost->processIdentifier != target->processIdentifier || !canCopySelection(*target))
        co_return std::nullopt;
    auto text = co_await paste_.copySelection(target, copyTimeout, end);
    if (!text || !isUsable(*text)) {
        qCDebug(selectionLog).noquote() << u"selection: none"_s;
        co_return std::nullopt;
    }
    qCDebug(selectionLog).noquote() << u"selection: copied from %1"_s.arg(
        target->bundleIdentifier.value_or(u"unknown"_s));
    co_return SelectionSnapshot{.text = std::move(*text),
                                .source = SelectionSource::clipboard,
                                .appPID = static_cast<qint32>(target->processIdentifier)};
}

QCoro::Task<bool> SelectionService::isStillSelected(SelectionSnapshot snapshot) {
    const auto end = std::chrono::steady_clock::now() + wholeBudget;
    const auto frontmost = workspace_.frontmostApplication();
    if (snapshot.source == SelectionSource::accessibility) {
        if (!snapshot.focus || !snapshot.element || (frontmost && workspace_.isCurrent(*frontmost)))
            co_return false;
        const auto process = frontmost ? frontmost->processIdentifier : 0;
        auto look = inBackground<bool>(background_, clock_, budget,
                                       [&accessibility = accessibility_, process, snapshot] {
                                           const auto lookEnd = std::chrono::steady_clock::now() + budget;
                                           const auto focused = accessibility.focusedElement(process, budget);
                                           return isStillSelectedIn(focused, snapshot, leftUntil(lookEnd));
                                       });
        co_return co_await look.answer;
    }
    if (!snapshot.appPID || !frontmost || frontmost->processIdentifier != *snapshot.appPID)
        co_return false;
    const auto text = co_await paste_.copySelection(frontmost, copyTimeout, end);
    const auto trimmed = [](const QString& whole) {
        return WhiteSpace::trimmed(whole, WhiteSpace::Set::whitespacesAndNewlines);
    };
    co_return text&& trimmed(*text) == trimmed(snapshot.text);
}

std::optional<QString> SelectionService::contextText() {
    const auto frontmost = workspace_.frontmostApplication();
    if (!trust_.isProcessTrusted() || (frontmost && workspace_.isCurrent(*frontmost)))
        return std::nullopt;
    const auto element = accessibility_.focusedElement(frontmost ? frontmost->processIdentifier : 0, budget);
    if (!element || isSecure(*element))
        return std::nullopt;
    auto text = element->selectedText();
    if (!text || isBlank(*text))
        text = element->value();
    return text && !isBlank(*text) ? std::optional(Graphemes::prefix(*text, longest).toString())
                                   : std::nullopt;
}

} // namespace velorin
