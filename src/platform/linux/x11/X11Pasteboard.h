/// The pasteboard of an X session: CLIPBOARD and PRIMARY, on a thread and a connection of their own, so that
/// applications are answered whatever the main thread does, a paste into a window of ours included.
///
/// Without a server, or once it is gone, every operation fails as its port says.
#pragma once

#include "platform/Pasteboard.h"
#include "platform/linux/x11/Deadline.h"
#include "platform/linux/x11/ThreadJobs.h"

#include <array>
#include <condition_variable>
#include <functional>
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
    bool copy(PasteboardSelection selection, const QString& text) override;
    bool restore(PasteboardSelection selection, const PasteboardContents& contents,
                 quint64 expected) override;
    [[nodiscard]] quint64 changeCount(PasteboardSelection selection) override;
    [[nodiscard]] std::optional<QString> read(PasteboardSelection selection,
                                              std::chrono::milliseconds deadline) override;
    void stirReaders(PasteboardSelection selection) override;
    [[nodiscard]] std::vector<PasteboardFetch> fetches(PasteboardSelection selection) override;
    [[nodiscard]] bool awaitFetch(PasteboardSelection selection, std::size_t known,
                                  std::chrono::milliseconds deadline) override;

private:
    void run();
    void serve(ClipboardLoop& loop, int serverDescriptor, const std::function<bool()>& isBroken);
    /// False when the work was not begun, or not done, within what a healthy server takes for it.
    bool perform(std::function<void(ClipboardLoop&)> work);
    /// The same for what only reads: it may be given up at any time, so nobody waits beyond the deadline.
    bool look(Deadline deadline, std::function<void(ClipboardLoop&)> work);
    [[nodiscard]] static std::size_t indexOf(PasteboardSelection selection);

    ThreadJobs<ClipboardLoop> jobs_;
    std::mutex fetchesMutex_;
    std::condition_variable fetched_;
    std::array<std::vector<PasteboardFetch>, 2> fetches_;
    bool isRunning_ = true; ///< Whether anything can still be fetched.
    std::thread thread_;
};

} // namespace velorin
