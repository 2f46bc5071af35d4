/// Whether the desktop starts the program when the user logs in. Main thread.
#pragma once

namespace velorin {

class LoginItem {
public:
    virtual ~LoginItem() = default;

    [[nodiscard]] virtual bool isEnabled() const = 0;
    /// What cannot be written is logged and stays as it was.
    virtual void setEnabled(bool value) = 0;
};

} // namespace velorin
