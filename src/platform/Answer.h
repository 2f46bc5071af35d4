/// An answer that a main-thread task waits for and somebody gives later, on the main thread.
///
///     const auto answer = std::make_shared<Answer<int>>();
///     later([answer] { answer->give(42); });
///     const int value = co_await answer->given();
///
/// One task waits at most. If nobody answers, as at the program's end, it is never resumed.
#pragma once

#include <coroutine>
#include <optional>
#include <utility>

namespace velorin {

template <typename Value>
class Answer final {
public:
    Answer() = default;
    Answer(const Answer&) = delete;
    Answer& operator=(const Answer&) = delete;

    /// The first answer counts.
    void give(Value value) {
        if (value_)
            return;
        value_ = std::move(value);
        if (const auto waiting = std::exchange(waiting_, {}))
            waiting.resume();
    }

    [[nodiscard]] auto given() {
        struct Wait {
            Answer& answer;
            bool await_ready() const noexcept { return answer.value_.has_value(); }
            void await_suspend(std::coroutine_handle<> handle) { answer.waiting_ = handle; }
            Value await_resume() { return std::move(*answer.value_); }
        };
        return Wait{*this};
    }

private:
    std::optional<Value> value_;
    std::coroutine_handle<> waiting_;
};

} // namespace velorin
