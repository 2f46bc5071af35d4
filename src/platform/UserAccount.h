/// The account of whoever uses the desktop.
#pragma once

#include <QString>

namespace velorin {

class UserAccount {
public:
    virtual ~UserAccount() = default;

    /// The person's full name as the system knows it, or the login name; empty when it knows neither. Returns
    /// within half a second.
    [[nodiscard]] virtual QString fullName() const = 0;
};

} // namespace velorin
