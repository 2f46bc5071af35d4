/// A display that stands before another one and knows less: what programs ask of its extensions is changed on
/// the way. `DISPLAY` points to it as long as it lives.
///
///     PrivateServer server;
///     LesserServer lesser(server, LesserServer::Lack::input);   // XInput is not there
#pragma once

#include "tests/platform/linux/x11/support/DisplaySockets.h"
#include "tests/platform/linux/x11/support/PrivateServer.h"

#include <thread>

namespace velorin {

class LesserServer final {
public:
    enum class Lack {
        input,  ///< There is no XInput.
        input22 ///< There is XInput 2.1.
    };

    LesserServer(const PrivateServer& server, Lack lack);
    ~LesserServer();
    LesserServer(const LesserServer&) = delete;
    LesserServer& operator=(const LesserServer&) = delete;

private:
    void serve();
    void rewrite(char* bytes, std::size_t count) const;

    std::string behind_;
    Lack lack_;
    DisplaySocket socket_;
    int end_;
    std::thread thread_;
};

} // namespace velorin
