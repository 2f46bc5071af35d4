#include "Report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace velorin::tap {

void Report::row(const std::string& what, const std::string& figure, const std::string& limit, bool isGood) {
    double load = 0;
    (void)getloadavg(&load, 1);
    std::printf("%s\t%s\t%s\t%s\tload %.1f\n", what.c_str(), figure.c_str(), limit.c_str(),
                isGood ? "ok" : "BEYOND", load);
    std::fflush(stdout);
    isGood_ = isGood_ && isGood;
}

void Report::note(const std::string& text) {
    std::printf("  %s\n", text.c_str());
    std::fflush(stdout);
}

double percentile(std::vector<double>& values, double percent) {
    if (values.empty())
        return 0;
    std::ranges::sort(values);
    const auto rank = std::ceil(static_cast<double>(values.size()) * percent / 100);
    return values[static_cast<std::size_t>(std::max(rank, 1.0)) - 1];
}

std::string milliseconds(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3f ms", value);
    return text;
}

} // namespace velorin::tap
