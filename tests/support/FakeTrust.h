/// Answers what the test set.
#pragma once

#include "platform/Gate.h"
#include "platform/Trust.h"

namespace velorin {

class FakeTrust final : public Trust {
public:
    bool processTrusted = true;
    bool microphoneAuthorized = true;
    bool microphoneAnswer = true;
    int microphoneRequests = 0;
    /// Closed, it keeps a request waiting for the user's answer.
    Gate microphoneGate{true};

    [[nodiscard]] bool isProcessTrusted() const override { return processTrusted; }
    [[nodiscard]] bool isMicrophoneAuthorized() const override { return microphoneAuthorized; }
    [[nodiscard]] QCoro::Task<bool> requestMicrophone() override {
        ++microphoneRequests;
        co_await microphoneGate.opened();
        co_return microphoneAnswer;
    }
};

} // namespace velorin
