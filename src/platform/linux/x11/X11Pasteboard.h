/// The pasteboard of an X session: CLIPBOARD and PRIMARY, on a thread and a connection of their own, so that
/// applications are answered whatever the main thread does, a paste into a window of ours included.
///
/// Without a server, or once it is gone, every operation fails as its port says.
#pragma once

#include "platform/Pasteboard.h"
#include "platform/linux/x11/WakeUp.h"

#include <array>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace velorin {

class ClipboardLoop;

class X11Pasteboard final : public Pasteboard {
public:
    X11Pasteboard();
    /// What we still own goes to the clipboard manager.
    ~X11Pasteboard() override;

    [[nodiscard]] std::optional<PasteboardContents> save(PasteboardSelection selection,
                                                         std::chrono::milliseconds deadline) override;
    [[nodiscard]] std::optional<quint64> write(PasteboardSelection selection, const QString& text) override;
    bool restore(PasteboardSelection selection, const PasteboardContents& contents,
                 quint64 expected) override;
    [[nodiscard]] quint64 changeCount(PasteboardSelection selection) override;
    [[nodiscard]] std::optional<QString> read(PasteboardSelection selection,
                                              std::chrono::milliseconds deadline) override;
    [[nodiscard]] std::vector<PasteboardFetch> fetches(PasteboardSelection selection) override;
    [[nodiscard]] bool awaitFetch(PasteboardSelection selection, std::size_t known,
                                  std::chrono::milliseconds deadline) override;

private:
    /// Something to do on the clipboard's thread. Claimed by that thread, or by a caller who gave up
    /// waiting: what was given up never happens later.
    struct Job {
        std::function<void(ClipboardLoop&)> work;
        enum class State { waiting, running, done, abandoned } state = State::waiting;
    };

    void run();
    void serve(ClipboardLoop& loop, int serverDescriptor, const std::function<bool()>& isBroken);
    void runJobs(ClipboardLoop& loop);
    /// False when the work was not begun, or not done, within the deadline and some more for the server.
    bool perform(std::chrono::milliseconds deadline, std::function<void(ClipboardLoop&)> work);
    [[nodiscard]] static std::size_t indexOf(PasteboardSelection selection);

    WakeUp wakeUp_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::shared_ptr<Job>> jobs_;
    std::array<std::vector<PasteboardFetch>, 2> fetches_;
    bool isStopping_ = false;
    bool isRunning_ = true;
    std::thread thread_;
};

} // namespace velorin
