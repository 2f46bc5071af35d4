/// A person of the test's choice.
#pragma once

#include "platform/UserAccount.h"

namespace velorin {

class FakeUserAccount final : public UserAccount {
public:
    QString name = QStringLiteral("Ada Lovelace");

    [[nodiscard]] QString fullName() const override { return name; }
};

} // namespace velorin
