/// Another program that owns a selection, as well or as badly behaved as the test wants it.
#pragma once

#include "platform/Pasteboard.h"
#include "platform/linux/x11/WakeUp.h"
#include "platform/linux/x11/XConnection.h"

#include <atomic>
#include <thread>

namespace velorin {

struct TestOwnerHabits {
    /// Before each answer.
    std::chrono::milliseconds delay{0};
    /// What is larger goes in pieces of this size.
    std::size_t pieceBytes = 200'000;
    /// Never answers.
    bool hangs = false;
    /// Pieces without end.
    bool isEndless = false;
    /// After the first piece the others without end, though nobody has asked for them.
    bool pushes = false;
    /// Says to have so many forms besides, which it does not know itself.
    std::uint32_t invented = 0;
    /// Goes away at the request with this number, counted from 0.
    int diesAtRequest = -1;
};

class TestOwner final {
public:
    TestOwner(const char* selection, PasteboardContents contents, TestOwnerHabits habits = {});
    ~TestOwner();
    TestOwner(const TestOwner&) = delete;
    TestOwner& operator=(const TestOwner&) = delete;

    /// Whether the selection is (still) this one's.
    [[nodiscard]] bool isOwner() const { return isOwner_; }
    /// How many requests are answered, and how many of its own the server has refused by then: one is the end
    /// of many a program.
    [[nodiscard]] int answers() const { return answers_; }
    [[nodiscard]] int errors() const { return errors_; }

private:
    struct Piecewise {
        xcb_window_t requestor = 0;
        xcb_atom_t property = 0;
        const PasteboardEntry* entry = nullptr;
        std::size_t sent = 0;
    };

    void run();
    void handle(const xcb_generic_event_t& event);
    bool convert(const xcb_selection_request_event_t& request);
    void pushPieces();
    void sendPiece(const xcb_property_notify_event_t& notify);

    std::unique_ptr<XConnection> connection_;
    xcb_atom_t selection_;
    xcb_window_t window_;
    PasteboardContents contents_;
    TestOwnerHabits habits_;
    std::vector<Piecewise> transfers_;
    bool isPushing_ = false;
    int requests_ = 0;
    std::atomic<int> answers_ = 0;
    std::atomic<int> errors_ = 0;
    std::atomic<bool> isOwner_ = false;
    std::atomic<bool> isStopping_ = false;
    WakeUp wakeUp_;
    std::thread thread_;
};

} // namespace velorin
