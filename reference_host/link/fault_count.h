#ifndef KVX3D_REFERENCE_HOST_LINK_FAULT_COUNT_H
#define KVX3D_REFERENCE_HOST_LINK_FAULT_COUNT_H

#include <fmt/format.h>

#include <string>
#include <vector>

namespace host {

/// Counts how often a rule is broken and keeps the first place, so that a fault of a whole grid
/// is one line and not thousands.
class FaultCount {
public:
    /// @param where  called for the first fault only: returns the text that names the place
    template <class Where>
    void Add(Where where) {
        if (++count == 1) {
            first = where();
        }
    }

    /// Appends "<first place> (and n more): <remedy>", or nothing if nothing was added.
    void ReportTo(std::vector<std::string>& lines, const std::string& remedy) const {
        if (count > 0) {
            const std::string more = count > 1 ? fmt::format(" (and {} more)", count - 1) : "";
            lines.push_back(first + more + ": " + remedy);
        }
    }

private:
    int count = 0;
    std::string first;
};

}  // namespace host

#endif
