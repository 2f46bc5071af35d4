/// A launcher as desktops have them: it opens when Super is pressed and let go of with no other key between.
#pragma once

#include "platform/linux/x11/XConnection.h"

#include <memory>

namespace velorin::tap {

class Launcher final {
public:
    enum class Kind {
        listens, ///< Hears every key, like small daemons and compositors do.
        grabs,   ///< Takes the keyboard from the press of Super to its release.
    };

    explicit Launcher(Kind kind);
    /// How often it has opened since the last call, of all that the server has told so far.
    [[nodiscard]] int opened();

private:
    void take(bool isPress, int key);

    std::unique_ptr<XConnection> connection_;
    bool isAlone_ = false;
    int opened_ = 0;
};

} // namespace velorin::tap
