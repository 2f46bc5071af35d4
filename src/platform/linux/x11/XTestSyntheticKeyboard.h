/// Keys posted through the XTEST extension.
///
/// A chord goes out in one write, so that no end of the process leaves half of it. Modifiers that the user
/// holds are released first and given back after it; as soon as the real key comes up, the tap releases
/// ours as well. From any thread.
///
/// Characters are typed with the keys that the layout has for them, others with spare key codes. They go out
/// a few at a time, while no other program can change the layout; one that the user switches to
/// meanwhile waits for each handful.
#pragma once

#include "platform/SyntheticKeyboard.h"
#include "platform/linux/x11/KeyWriter.h"
#include "platform/linux/x11/SpareKeys.h"

namespace velorin {

class Typist;

class XTestSyntheticKeyboard final : public SyntheticKeyboard {
public:
    explicit XTestSyntheticKeyboard(SharedKeyState& state);
    ~XTestSyntheticKeyboard() override;

    [[nodiscard]] bool chord(Chord chord, const std::optional<RunningApplication>& application) override;
    [[nodiscard]] std::optional<qsizetype>
    type(const QStringList& characters, const std::optional<RunningApplication>& application) override;
    [[nodiscard]] PasteboardSelection
    pasteSource(const std::optional<RunningApplication>& application) const override;

    /// Whether key codes are lent to characters.
    [[nodiscard]] bool isLendingKeys() { return spares_.isLending(); }

private:
    [[nodiscard]] bool ensureConnection();
    [[nodiscard]] bool post(const std::vector<xcb_keycode_t>& keys, const KeyboardMap& map,
                            Deadline deadline);

    SharedKeyState& state_;
    SpareKeys spares_;
    std::mutex mutex_;
    std::unique_ptr<XConnection> connection_;
    std::unique_ptr<Typist> typist_;
};

} // namespace velorin
