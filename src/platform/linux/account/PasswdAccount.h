/// The full name as the system's list of accounts has it (the first field of the comment).
#pragma once

#include "platform/UserAccount.h"

namespace velorin {

class PasswdAccount final : public UserAccount {
public:
    [[nodiscard]] QString fullName() const override;
};

} // namespace velorin
