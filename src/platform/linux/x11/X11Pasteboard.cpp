#include "platform/linux/x11/X11Pasteboard.h"

#include "platform/Log.h"
#include "platform/linux/x11/ClipboardLoop.h"
#include "platform/linux/x11/ThreadSetup.h"

#include <poll.h>

namespace velorin {

namespace {
using namespace std::chrono_literals;
/// A healthy server takes a few milliseconds.
constexpr auto workDeadline = 2 * serverDeadline;
/// What the thread leaves of a deadline for its answer to reach the caller.
constexpr auto handing = 10ms;
/// Nobody reads a text more often than that.
constexpr std::size_t mostFetches = 1000;
} // namespace

X11Pasteboard::X11Pasteboard() {
    jobs_.open(); // what is asked before the thread is there waits for it
    thread_ = std::thread([this] { run(); });
}

X11Pasteboard::~X11Pasteboard() {
    jobs_.stop();
    thread_.join();
}

void X11Pasteboard::run() {
    setUpThread("velorin-clip");
    if (const auto connection = XConnection::open()) {
        ClipboardLoop loop(*connection, [this](PasteboardSelection selection, const PasteboardFetch& fetch) {
            const std::scoped_lock lock(fetchesMutex_);
            auto& fetches = fetches_[indexOf(selection)];
            if (fetches.size() < mostFetches)
                fetches.push_back(fetch);
            fetched_.notify_all();
        });
        if (loop.isUsable())
            serve(loop, connection->fileDescriptor(), [&] { return connection->isBroken(); });
    }
    if (!jobs_.isStopping())
        qCInfo(insertLog) << "clipboard: no X server";
    jobs_.close();
    const std::scoped_lock lock(fetchesMutex_);
    isRunning_ = false;
    fetched_.notify_all();
}

void X11Pasteboard::serve(ClipboardLoop& loop, int serverDescriptor, const std::function<bool()>& isBroken) {
    while (!isBroken()) {
        jobs_.run(loop);
        loop.serve();
        if (jobs_.isStopping())
            break;
        if (jobs_.isAnyWaiting())
            continue;
        std::array<pollfd, 2> waiting{{{serverDescriptor, POLLIN, 0}, {jobs_.fileDescriptor(), POLLIN, 0}}};
        poll(waiting.data(), waiting.size(), -1);
        if (waiting[1].revents != 0)
            jobs_.clearWakeUp();
    }
    if (!isBroken())
        loop.handOver();
}

bool X11Pasteboard::perform(std::function<void(ClipboardLoop&)> work) {
    return jobs_.perform(std::chrono::steady_clock::now() + workDeadline, std::move(work));
}

bool X11Pasteboard::look(Deadline deadline, std::function<void(ClipboardLoop&)> work) {
    return jobs_.perform(deadline.time() + handing, std::move(work));
}

std::optional<PasteboardContents> X11Pasteboard::save(PasteboardSelection selection,
                                                      std::chrono::milliseconds deadline) {
    const auto result = std::make_shared<std::optional<PasteboardContents>>();
    const Deadline until(deadline - handing);
    const bool isDone = look(until, [=](ClipboardLoop& loop) { *result = loop.save(selection, until); });
    return isDone ? std::move(*result) : std::nullopt;
}

std::optional<quint64> X11Pasteboard::write(PasteboardSelection selection, const QString& text) {
    const auto result = std::make_shared<std::optional<quint64>>();
    const bool isDone = perform([=, this](ClipboardLoop& loop) {
        {
            const std::scoped_lock lock(fetchesMutex_);
            fetches_[indexOf(selection)].clear();
        }
        *result = loop.write(selection, text);
    });
    return isDone ? *result : std::nullopt;
}

bool X11Pasteboard::copy(PasteboardSelection selection, const QString& text) {
    const auto result = std::make_shared<bool>(false);
    const bool isDone = perform([=](ClipboardLoop& loop) { *result = loop.copy(selection, text); });
    return isDone && *result;
}

bool X11Pasteboard::restore(PasteboardSelection selection, const PasteboardContents& contents,
                            quint64 expected) {
    const auto result = std::make_shared<bool>(false);
    const bool isDone =
        perform([=](ClipboardLoop& loop) { *result = loop.restore(selection, contents, expected); });
    return isDone && *result;
}

quint64 X11Pasteboard::changeCount(PasteboardSelection selection) {
    const auto result = std::make_shared<quint64>(0);
    const bool isDone = perform([=](ClipboardLoop& loop) { *result = loop.changeCount(selection); });
    return isDone ? *result : 0;
}

std::optional<QString> X11Pasteboard::read(PasteboardSelection selection,
                                           std::chrono::milliseconds deadline) {
    const auto result = std::make_shared<std::optional<QString>>();
    const Deadline until(deadline - handing);
    const bool isDone = look(until, [=](ClipboardLoop& loop) { *result = loop.read(selection, until); });
    return isDone ? std::move(*result) : std::nullopt;
}

void X11Pasteboard::stirReaders(PasteboardSelection selection) {
    jobs_.post([=](ClipboardLoop& loop) { loop.stirReaders(selection); });
}

std::vector<PasteboardFetch> X11Pasteboard::fetches(PasteboardSelection selection) {
    const std::scoped_lock lock(fetchesMutex_);
    return fetches_[indexOf(selection)];
}

bool X11Pasteboard::awaitFetch(PasteboardSelection selection, std::size_t known,
                               std::chrono::milliseconds deadline) {
    std::unique_lock lock(fetchesMutex_);
    const auto& fetches = fetches_[indexOf(selection)];
    fetched_.wait_for(lock, deadline, [&] { return fetches.size() > known || !isRunning_; });
    return fetches.size() > known;
}

std::size_t X11Pasteboard::indexOf(PasteboardSelection selection) {
    return selection == PasteboardSelection::clipboard ? 0 : 1;
}

} // namespace velorin
