#include "delivery/AXInsertService.h"

#include "platform/Log.h"
#include "text/Graphemes.h"

using namespace Qt::Literals::StringLiterals;

namespace velorin {

bool AXInsertService::insert(const QString& text, const std::optional<RunningApplication>& target) {
    if (text.isEmpty() || !trust_.isProcessTrusted())
        return false;
    const auto element = accessibility_.focusedElement(target ? target->processIdentifier : 0, budget);
    if (!element) {
        qCDebug(insertLog).noquote() << u"ax insert: no focused element"_s;
        return false;
    }
    const auto before = element->value();
    if (!before) {
        qCDebug(insertLog).noquote() << u"ax insert: element exposes no readable AXValue"_s;
        return false;
    }
    const auto length = Graphemes::count(*before);
    if (length > largestValue) {
        qCDebug(insertLog).noquote() << u"ax insert: value too large (%1 chars)"_s.arg(length);
        return false;
    }
    if (!element->isSelectedTextSettable()) {
        qCDebug(insertLog).noquote() << u"ax insert: AXSelectedText not settable (role=%1)"_s.arg(
            element->role().value_or(u"unknown"_s));
        return false;
    }
    if (const auto written = element->replaceSelection(text); !written) {
        qCDebug(insertLog).noquote() << u"ax insert: set failed with AXError %1"_s.arg(
            static_cast<int>(written.error()));
        return false;
    }
    qCInfo(insertLog).noquote() << u"ax insert: ok, committed (%1 chars before)"_s.arg(length);
    verifyLater(element, {text, *before});
    return true;
}

void AXInsertService::verifyLater(std::shared_ptr<AccessibleElement> element, Written written) {
    const auto entry = verifications_.emplace(verifications_.end());
    *entry =
        clock_.after(verifyDelay, [this, entry, element = std::move(element), written = std::move(written)] {
            verifications_.erase(entry);
            verify(*element->renewed(verifyBudget), written);
        });
}

void AXInsertService::verify(AccessibleElement& element, const Written& written) {
    const auto value = element.value();
    if (!value) {
        qCDebug(insertLog).noquote() << u"ax insert: unverified (value no longer readable)"_s;
    } else if (*value == written.before) {
        qCInfo(insertLog).noquote()
            << u"ax insert: value still unchanged 0.4s later — text may not have landed"_s;
        if (onUnverifiedInsert)
            onUnverifiedInsert(written.text);
    } else {
        qCDebug(insertLog).noquote() << u"ax insert: verified (%1 -> %2 chars)"_s.arg(
            QString::number(Graphemes::count(written.before)), QString::number(Graphemes::count(*value)));
    }
}

} // namespace velorin
