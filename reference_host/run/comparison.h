#ifndef KVX3D_REFERENCE_HOST_RUN_COMPARISON_H
#define KVX3D_REFERENCE_HOST_RUN_COMPARISON_H

#include <optional>
#include <string>
#include <vector>

namespace host {

/// Prints the head of a table of computed and published figures.
void PrintComparisonHead();
/// Prints a row of the table: a figure, its published value and the deviation in percent.
/// @param published  none: only the figure is printed
void PrintComparison(const std::string& name, double value, std::optional<double> published);

/// Figures that are outside their limits, one sentence each.
class LimitCheck {
public:
    /// Checks the magnitude of a figure or of a deviation. NaN is outside every limit.
    /// @param sentence  its beginning: "Cd deviates by", "side force is"
    void Magnitude(const std::string& sentence, double value, double limit);
    /// Checks a count.
    /// @param noun  what is counted: "iterations"
    void AtMost(const std::string& noun, int count, int limit);

    const std::vector<std::string>& Misses() const { return misses; }

private:
    std::vector<std::string> misses;
};

/// Prints each miss on standard error, and on standard output whether there were any.
/// @return exit code: 0, or 1 if there is a miss
int ReportMisses(const std::vector<std::string>& misses);

}  // namespace host

#endif
