/// The keyboard under the user's fingers: a device of the server other than the one of synthetic events.
#pragma once

#include "platform/linux/x11/XConnection.h"

namespace velorin {

class PhysicalKeyboard final {
public:
    PhysicalKeyboard();

    /// X key codes: those of the kernel and 8.
    void press(int key);
    void release(int key);
    void tap(int key) {
        press(key);
        release(key);
    }
    /// Waits until the server has taken all of it.
    void sync();
    [[nodiscard]] int device() const { return device_; }
    [[nodiscard]] XConnection& connection() { return *connection_; }

private:
    void post(int offset, int key);

    std::unique_ptr<XConnection> connection_;
    int firstEvent_ = 0;
    int device_ = 0;
};

} // namespace velorin
