/// What this session lets the process do. Asked each time, never remembered. Main thread.
#pragma once

#include <QCoro/QCoroTask>

namespace velorin {

class Trust {
public:
    virtual ~Trust() = default;

    /// Whether the session lets us watch keys and post keys.
    [[nodiscard]] virtual bool isProcessTrusted() const = 0;

    /// Whether the microphone has been granted. Never asks the user.
    [[nodiscard]] virtual bool isMicrophoneAuthorized() const = 0;

    /// Asks the user where the answer is not known yet.
    [[nodiscard]] virtual QCoro::Task<bool> requestMicrophone() = 0;
};

} // namespace velorin
