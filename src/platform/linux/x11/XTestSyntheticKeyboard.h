/// Keys posted through the XTEST extension.
///
/// A chord goes out in one write, so that no end of the process leaves half of it. Modifiers that the user
/// holds are released first and given back after it; as soon as the real key comes up, the tap releases
/// ours as well. From any thread.
#pragma once

#include "platform/SyntheticKeyboard.h"
#include "platform/linux/x11/KeyboardMap.h"
#include "platform/linux/x11/SharedKeyState.h"

#include <mutex>

namespace velorin {

class XTestSyntheticKeyboard final : public SyntheticKeyboard {
public:
    explicit XTestSyntheticKeyboard(SharedKeyState& state);

    [[nodiscard]] bool chord(Chord chord, const std::optional<RunningApplication>& application) override;
    [[nodiscard]] PasteboardSelection
    pasteSource(const std::optional<RunningApplication>& application) const override;

private:
    [[nodiscard]] bool ensureConnection();
    [[nodiscard]] bool post(const std::vector<xcb_keycode_t>& keys, const KeyboardMap& map,
                            Deadline deadline);
    void press(xcb_keycode_t key, std::uint8_t why);
    void release(xcb_keycode_t key);

    SharedKeyState& state_;
    std::mutex mutex_;
    std::unique_ptr<XConnection> connection_;
};

} // namespace velorin
