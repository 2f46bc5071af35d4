/// Decodes one window at a time beside whoever asks for it: the previews, which nobody waits for.
///
///     ahead.begin(window);
///     …
///     if (auto decoded = ahead.take()) show(decoded->text);   // once it has ended
///
/// One thread asks. A stale window is not interrupted; its result is simply not wanted any more.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace velorin {

class AheadDecoder {
public:
    struct Decoded {
        std::string text;
        std::chrono::steady_clock::duration time{0}; ///< How long it took.
    };

    virtual ~AheadDecoder() = default;

    /// Only while `isIdle`. Returns at once.
    virtual void begin(std::vector<float> window) = 0;
    /// Whether nothing is being decoded and no result waits to be taken.
    [[nodiscard]] virtual bool isIdle() const = 0;
    /// The result, once, when there is one.
    [[nodiscard]] virtual std::optional<Decoded> take() = 0;
    /// The result of what has begun and was not taken, as soon as it is there.
    [[nodiscard]] virtual Decoded await() = 0;
};

} // namespace velorin
