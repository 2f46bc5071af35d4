/// A desktop on which applications tell nothing of their insides.
#pragma once

#include "platform/Accessibility.h"

namespace velorin {

class NoAccessibility final : public Accessibility {
public:
    [[nodiscard]] std::shared_ptr<AccessibleElement> focusedElement(qint64,
                                                                    std::chrono::milliseconds) override {
        return nullptr;
    }
};

} // namespace velorin
