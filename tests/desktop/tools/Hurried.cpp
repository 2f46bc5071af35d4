/// velorin-hurried: the program by a clock on which minutes are seconds, so that a test sees what happens
/// after ten minutes without waiting for them. Everything else is the program as it is.
#include "app/Program.h"
#include "platform/linux/desktop/SystemClock.h"

namespace {

class HurriedClock final : public velorin::Clock {
public:
    [[nodiscard]] QDateTime now() const override { return clock_.now(); }
    [[nodiscard]] velorin::Subscription after(std::chrono::milliseconds delay,
                                              std::function<void()> action) override {
        using namespace std::chrono_literals;
        return clock_.after(delay < 1min ? delay : delay / 60, std::move(action));
    }

private:
    velorin::SystemClock clock_;
};

} // namespace

int main(int argc, char* argv[]) {
    HurriedClock clock;
    return velorin::runProgram(argc, argv, clock);
}
