/// Puts text into the application in front by way of the clipboard: the user's content is saved, the text
/// takes its place, the application is told to paste, and the content comes back.
///
///     PasteService paste(pasteboard, keyboard, trust, clock);
///     if (paste.insert(text, target)) …   // handed over; nothing confirms yet that it was pasted
///
/// The content comes back `restoreDelay` after the keystroke, but not before the target has read the text,
/// else a slow one would paste what the user had copied before. A page in a browser is pasted into in several
/// readings, between which its own work may come, and a change of owner among them ends the paste without a
/// word: there it comes back only when no more reading is to be expected. If nobody has read it after
/// `fetchDeadline`, the content comes back all the same and `onUnverifiedPaste` is called. Whoever copies
/// something meanwhile keeps that. Main thread.
#pragma once

#include "platform/Clock.h"
#include "platform/Pasteboard.h"
#include "platform/SyntheticKeyboard.h"
#include "platform/Trust.h"

#include <QCoro/QCoroTask>
#include <QThreadPool>

#include <array>
#include <atomic>
#include <chrono>
#include <mutex>

namespace velorin {

class PasteService final {
public:
    static constexpr std::chrono::milliseconds restoreDelay{600};
    static constexpr std::chrono::milliseconds fetchDeadline{5000};
    /// How long the owner of the clipboard may take to hand over the user's content.
    static constexpr std::chrono::milliseconds saveDeadline{300};
    /// How long a second paste waits for the application to read the text of the first one.
    static constexpr std::chrono::milliseconds earlierPasteDeadline{300};
    static constexpr std::chrono::milliseconds lookInterval{100};
    /// Its owner would have taken a password back after a while, and cannot any more once it has been ours.
    static constexpr std::chrono::seconds secretLife{30};
    /// How often the browser of a page is woken until the content has come back: its reading goes from one
    /// part of it to another, and now and then it sleeps over an answer until the server has something else.
    static constexpr std::chrono::milliseconds stirInterval{40};
    /// How long a page must have read nothing more: it reads at least twice as a rule, and once in some
    /// fields.
    static constexpr std::chrono::milliseconds pageQuiet{1000};
    static constexpr std::chrono::milliseconds pageQuietAfterOne{2000};
    /// A copy is looked for in steps of this, and what it brought is read within that.
    static constexpr std::chrono::milliseconds copyStep{20};
    static constexpr std::chrono::milliseconds copyReadDeadline{100};
    /// What is kept of the time for reading when saving takes long.
    static constexpr std::chrono::milliseconds copyReadReserve{30};
    /// A copy is made while the user speaks: it saves less patiently than a paste.
    static constexpr std::chrono::milliseconds copySaveDeadline{200};

    PasteService(Pasteboard& pasteboard, SyntheticKeyboard& keyboard, Trust& trust, Clock& clock);
    /// Content that is still to come back is given back at once.
    ~PasteService();
    PasteService(const PasteService&) = delete;
    PasteService& operator=(const PasteService&) = delete;

    /// True when the text is on the clipboard and the keystroke was posted. False without a trace on empty
    /// text, without permission, when the user's content cannot be saved in time, while an earlier text
    /// still waits to be read, or while a selection is being copied. When only the keystroke fails, the text
    /// deliberately stays on the clipboard, for the user to paste by hand.
    [[nodiscard]] bool insert(const QString& text, const std::optional<RunningApplication>& target);

    /// Has the application copy what is selected in it, and gives that as text; the user's content comes back
    /// at once. Nothing, and nothing changed, when nothing was copied by the timeout, or what would have to
    /// come back cannot be saved. Answers by `end` whoever is slow; no key is posted when what it brings
    /// could not be read by then. What waits, waits on another thread.
    [[nodiscard]] QCoro::Task<std::optional<QString>>
    copySelection(std::optional<RunningApplication> target, std::chrono::milliseconds timeout,
                  std::chrono::steady_clock::time_point end);

    /// Called with a text that `insert` had answered true for and that nobody read.
    std::function<void(const QString& text)> onUnverifiedPaste;

private:
    struct Paste {
        PasteboardSelection selection = PasteboardSelection::clipboard;
        QString text;
        PasteboardContents saved;
        quint64 changeCount = 0;
        qint64 targetProcess = 0;
        bool isPage = false;
        std::chrono::milliseconds waited{0};
        std::chrono::milliseconds quiet{0}; ///< Since the target read it.
        std::ptrdiff_t knownReadings = 0;
        Subscription nextLook;
        Subscription nextStir;
    };

    /// What a copy has brought, for the thread that makes it and the one that waits for it.
    class Copied {
    public:
        void put(std::optional<QString> text) {
            const std::scoped_lock lock(mutex_);
            text_ = std::move(text);
        }
        /// Ends the waiting.
        [[nodiscard]] std::optional<QString> take() {
            const std::scoped_lock lock(mutex_);
            isAwaited_ = false;
            return std::move(text_);
        }
        [[nodiscard]] bool isAwaited() {
            const std::scoped_lock lock(mutex_);
            return isAwaited_;
        }

    private:
        std::mutex mutex_;
        std::optional<QString> text_;
        bool isAwaited_ = true;
    };

    [[nodiscard]] std::optional<Paste>& pasteOf(PasteboardSelection selection);
    [[nodiscard]] bool isStillOurs(const Paste& paste);
    /// How often the target has read the text.
    [[nodiscard]] std::ptrdiff_t readings(const Paste& paste);
    [[nodiscard]] static std::chrono::milliseconds quietFor(const Paste& paste, std::ptrdiff_t readings);
    [[nodiscard]] bool awaitEarlier(const Paste& paste);
    [[nodiscard]] std::optional<PasteboardContents> saveFor(PasteboardSelection selection);
    /// Waits on a thread of its own. What it read is in `read` before the user's content comes back.
    void copy(const std::optional<PasteboardContents>& users, const std::optional<RunningApplication>& target,
              std::chrono::milliseconds timeout, std::chrono::steady_clock::time_point end, Copied& read);
    void lookLater(PasteboardSelection selection, std::chrono::milliseconds delay);
    void look(PasteboardSelection selection);
    void stirLater(PasteboardSelection selection);
    void finish(PasteboardSelection selection, bool read);
    void restore(PasteboardSelection selection, const Paste& paste);

    Pasteboard& pasteboard_;
    SyntheticKeyboard& keyboard_;
    Trust& trust_;
    Clock& clock_;
    std::array<std::optional<Paste>, 2> pastes_;
    std::array<Subscription, 2> secretEnds_;
    std::atomic<bool> isCopying_ =
        false;               ///< Then the selection belongs to the copy: nothing else touches it.
    QThreadPool background_; ///< Last: its end waits for what runs.
};

} // namespace velorin
