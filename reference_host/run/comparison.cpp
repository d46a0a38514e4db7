#include "reference_host/run/comparison.h"

#include <fmt/format.h>

#include <cmath>
#include <iostream>

namespace host {

void PrintComparisonHead() {
    std::cout << fmt::format("  {:<20} {:>15} {:>15} {:>12}\n", "", "computed", "published",
                             "deviation");
}

void PrintComparison(const std::string& name, double value, std::optional<double> published) {
    std::cout << fmt::format("  {:<20} {:15.10f}", name, value);
    if (published) {
        std::cout << fmt::format(" {:15.10f} {:+10.3f} %", *published,
                                 100.0 * (value / *published - 1.0));
    }
    std::cout << '\n';
}

void LimitCheck::Magnitude(const std::string& sentence, double value, double limit) {
    if (!(std::abs(value) <= limit)) {  // the negation makes NaN a miss
        misses.push_back(fmt::format("{} {:.2e}, the limit is {:.2e}", sentence, value, limit));
    }
}

void LimitCheck::AtMost(const std::string& noun, int count, int limit) {
    if (count > limit) {
        misses.push_back(fmt::format("{} {}, the limit is {}", count, noun, limit));
    }
}

int ReportMisses(const std::vector<std::string>& misses) {
    for (const std::string& miss : misses) {
        std::cerr << "reference_host: " << miss << '\n';
    }
    std::cout << (misses.empty() ? "All figures are within their limits.\n"
                                 : "Some figures are outside their limits, see above.\n");
    return misses.empty() ? 0 : 1;
}

}  // namespace host
