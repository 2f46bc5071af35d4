/// A message bus of the test's own, which `DBUS_SESSION_BUS_ADDRESS` points to as long as it lives.
#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace velorin {

class PrivateBus final {
public:
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    [[nodiscard]] const std::string& address() const { return address_; }
    /// The bus ends as if it had crashed.
    void kill();

private:
    pid_t process_ = -1;
    std::string address_;
};

} // namespace velorin
