/// The table of a proof: a row a measurement, its columns parted by tabs.
#pragma once

#include <string>
#include <vector>

namespace velorin::tap {

class Report final {
public:
    /// Printed at once, with the load of the machine.
    void row(const std::string& what, const std::string& figure, const std::string& limit, bool isGood);
    /// A line that says more about the row that follows.
    static void note(const std::string& text);
    [[nodiscard]] bool isGood() const { return isGood_; }

private:
    bool isGood_ = true;
};

/// Of a list of milliseconds; sorts it.
[[nodiscard]] double percentile(std::vector<double>& values, double percent);
[[nodiscard]] std::string milliseconds(double value);

} // namespace velorin::tap
