/// Wakes a thread that waits in poll(). An eventfd.
#pragma once

namespace velorin {

class WakeUp final {
public:
    WakeUp();
    ~WakeUp();
    WakeUp(const WakeUp&) = delete;
    WakeUp& operator=(const WakeUp&) = delete;

    /// Readable from the next `wake` until `clear`.
    [[nodiscard]] int fileDescriptor() const { return descriptor_; }
    /// From any thread.
    void wake() const;
    void clear() const;

private:
    int descriptor_;
};

} // namespace velorin
