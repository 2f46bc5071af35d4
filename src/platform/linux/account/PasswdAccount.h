/// The full name as the system's list of accounts has it (the first field of the comment), else the login name.
#pragma once

#include "platform/UserAccount.h"

namespace velorin {

class PasswdAccount final : public UserAccount {
public:
    [[nodiscard]] QString fullName() const override;

    /// What an entry of the list gives.
    [[nodiscard]] static QString nameOf(const QString& comment, const QString& login);
};

} // namespace velorin
