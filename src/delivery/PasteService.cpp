#include "delivery/PasteService.h"

#include "delivery/ContextDetector.h"
#include "delivery/ElectronApplications.h"
#include "platform/Background.h"
#include "text/Graphemes.h"

#include <algorithm>
#include <thread>

namespace velorin {

using namespace std::chrono_literals;

namespace {

using Moment = std::chrono::steady_clock::time_point;

std::chrono::milliseconds leftUntil(Moment end) {
    return std::chrono::floor<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
}

std::size_t indexOf(PasteboardSelection selection) {
    return selection == PasteboardSelection::clipboard ? 0 : 1;
}

/// Whether what is pasted goes through a page, as in all browsers but one.
bool isPage(const std::optional<RunningApplication>& target) {
    const auto kin = target ? target->kin : std::nullopt;
    const bool isBrowser =
        kin && ContextDetector::isBrowser(*kin) && !Graphemes::beginsWith(*kin, u"org.mozilla.firefox");
    return isBrowser || (target && isElectron(*target));
}

} // namespace

PasteService::PasteService(Pasteboard& pasteboard, SyntheticKeyboard& keyboard, Trust& trust, Clock& clock)
    : pasteboard_(pasteboard), keyboard_(keyboard), trust_(trust), clock_(clock) {}

PasteService::~PasteService() {
    for (const auto& paste : pastes_)
        if (paste && !paste->saved.empty())
            pasteboard_.restore(paste->selection, paste->saved, paste->changeCount);
}

bool PasteService::insert(const QString& text, const std::optional<RunningApplication>& target) {
    if (text.isEmpty() || !trust_.isProcessTrusted() || isCopying_)
        return false;
    const auto selection = keyboard_.pasteSource(target);
    auto& paste = pasteOf(selection);
    if (paste && isStillOurs(*paste) && !awaitEarlier(*paste))
        return false;
    auto saved = saveFor(selection);
    if (!saved)
        return false;
    const auto count = pasteboard_.write(selection, text);
    if (!count)
        return false;
    paste.reset(); // what it had saved is in `saved`, or lost to somebody's newer content
    if (!keyboard_.chord(Chord::paste, target))
        return false;
    paste.emplace();
    paste->selection = selection;
    paste->text = text;
    paste->saved = std::move(*saved);
    paste->changeCount = *count;
    paste->targetProcess = target ? target->processIdentifier : 0;
    paste->isPage = isPage(target);
    // The look before the one at which the content may come back tells whether the target is still reading:
    // some read twice.
    lookLater(selection, restoreDelay - lookInterval);
    if (paste->isPage)
        stirLater(selection);
    return true;
}

std::optional<PasteService::Paste>& PasteService::pasteOf(PasteboardSelection selection) {
    return pastes_[indexOf(selection)];
}

bool PasteService::isStillOurs(const Paste& paste) {
    return pasteboard_.changeCount(paste.selection) == paste.changeCount;
}

std::ptrdiff_t PasteService::readings(const Paste& paste) {
    return std::ranges::count_if(pasteboard_.fetches(paste.selection), [&](const PasteboardFetch& fetch) {
        if (fetch.processIdentifier == 0 || paste.targetProcess == 0)
            return !fetch.isClipboardManager;
        return fetch.processIdentifier == paste.targetProcess;
    });
}

bool PasteService::awaitEarlier(const Paste& paste) {
    // A target that has not yet read the first text would paste the second one twice.
    const auto deadline = std::chrono::steady_clock::now() + earlierPasteDeadline;
    for (;;) {
        const auto known = pasteboard_.fetches(paste.selection).size();
        const auto read = readings(paste);
        if (read >= (paste.isPage ? 2 : 1))
            return true;
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (left <= 0ms || !pasteboard_.awaitFetch(paste.selection, known, left))
            return read > 0;
    }
}

std::optional<PasteboardContents> PasteService::saveFor(PasteboardSelection selection) {
    const auto& earlier = pasteOf(selection);
    if (earlier && isStillOurs(*earlier))
        return earlier->saved;
    return pasteboard_.save(selection, saveDeadline);
}

void PasteService::lookLater(PasteboardSelection selection, std::chrono::milliseconds delay) {
    auto& paste = *pasteOf(selection);
    paste.waited += delay;
    paste.nextLook = clock_.after(delay, [this, selection] { look(selection); });
}

void PasteService::look(PasteboardSelection selection) {
    if (isCopying_) {
        lookLater(selection, lookInterval);
        return;
    }
    auto& paste = *pasteOf(selection);
    const auto read = readings(paste);
    // Others may look at the clipboard as often as they like.
    const bool wasQuiet = read == std::exchange(paste.knownReadings, read);
    paste.quiet = wasQuiet ? paste.quiet + lookInterval : 0ms;
    const bool isDone = paste.waited >= restoreDelay && read > 0 && paste.quiet >= quietFor(paste, read);
    const bool isGivenUp = paste.waited >= (read > 0 ? 2 * fetchDeadline : fetchDeadline);
    if (isDone || isGivenUp || !isStillOurs(paste))
        finish(selection, read > 0);
    else
        lookLater(selection, lookInterval);
}

void PasteService::stirLater(PasteboardSelection selection) {
    pasteOf(selection)->nextStir = clock_.after(stirInterval, [this, selection] {
        pasteboard_.stirReaders(selection);
        stirLater(selection);
    });
}

std::chrono::milliseconds PasteService::quietFor(const Paste& paste, std::ptrdiff_t readings) {
    if (!paste.isPage)
        return lookInterval;
    return readings > 1 ? pageQuiet : pageQuietAfterOne;
}

void PasteService::finish(PasteboardSelection selection, bool read) {
    // Moved out first: the callback may paste again.
    const auto paste = std::exchange(pasteOf(selection), std::nullopt);
    if (!paste->saved.empty())
        restore(selection, *paste);
    if (!read && onUnverifiedPaste)
        onUnverifiedPaste(paste->text);
}

void PasteService::restore(PasteboardSelection selection, const Paste& paste) {
    const bool isBack = pasteboard_.restore(selection, paste.saved, paste.changeCount);
    if (!isBack || !isSecret(paste.saved))
        return;
    secretEnds_[indexOf(selection)] =
        clock_.after(secretLife, [this, selection, count = pasteboard_.changeCount(selection)] {
            pasteboard_.restore(selection, {}, count); // unless somebody has copied something since
        });
}

QCoro::Task<std::optional<QString>> PasteService::copySelection(std::optional<RunningApplication> target,
                                                                std::chrono::milliseconds timeout,
                                                                Moment end) {
    if (!trust_.isProcessTrusted() || isCopying_)
        co_return std::nullopt;
    const auto& pending = pasteOf(PasteboardSelection::clipboard);
    std::optional<PasteboardContents> users;
    if (pending && isStillOurs(*pending)) // what lies there is a text of ours that passes through
        users = pending->saved;
    isCopying_ = true;
    const auto read = std::make_shared<Copied>();
    auto copying =
        inBackground<bool>(background_, clock_, leftUntil(end), [this, users, target, timeout, end, read] {
            copy(users, target, timeout, end, *read);
            isCopying_ = false;
            return true;
        });
    co_await copying.answer;
    co_return read->take(); // also when the user's content is still on its way back
}

void PasteService::copy(const std::optional<PasteboardContents>& users,
                        const std::optional<RunningApplication>& target, std::chrono::milliseconds timeout,
                        Moment end, Copied& read) {
    constexpr auto clipboard = PasteboardSelection::clipboard;
    const auto keysBy = end - timeout - copyReadReserve;
    const auto forSaving = std::min(copySaveDeadline, leftUntil(keysBy));
    const auto saved = users || forSaving <= 0ms ? users : pasteboard_.save(clipboard, forSaving);
    const auto before = pasteboard_.changeCount(clipboard);
    const bool isInTime = leftUntil(keysBy) > 0ms && read.isAwaited();
    if (!saved || !isInTime || !keyboard_.chord(Chord::copy, target))
        return;
    // Looked for to the end even if nobody waits any more: what was copied has to go again.
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(copyStep);
        if (pasteboard_.changeCount(clipboard) == before)
            continue;
        if (const auto forReading = std::min(copyReadDeadline, leftUntil(end)); forReading > 0ms)
            read.put(pasteboard_.read(clipboard, forReading));
        pasteboard_.restore(clipboard, *saved, pasteboard_.changeCount(clipboard));
        return;
    }
}

} // namespace velorin
