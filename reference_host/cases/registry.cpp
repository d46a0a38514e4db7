#include "reference_host/cases/registry.h"

#include <algorithm>

#include "reference_host/cases/case_cavity.h"
#include "reference_host/cases/case_cylinder.h"
#include "reference_host/cases/case_dump.h"
#include "reference_host/cases/case_heat.h"
#include "reference_host/cases/case_inspect.h"
#include "reference_host/cases/case_mms.h"
#include "reference_host/cases/case_nonmatching.h"
#include "reference_host/cases/case_sphere.h"

namespace host {

namespace {

template <class Settings>
CaseEntry Entry(const char* name, const char* summary, int (*run)(const Settings&),
                CaseFiles files = CaseFiles::Own) {
    return {name, summary, files, [run] { return std::make_unique<CaseOf<Settings>>(run); }};
}

}  // namespace

// A new case needs its own unit (.h and .cpp) and one line in this table, with its #include above.
const std::vector<CaseEntry>& AllCases() {
    static const std::vector<CaseEntry> cases = {
        Entry("cylinder", "laminar flow around a cylinder in a channel, benchmark 2D-1",
              RunCylinder),
        Entry("sphere", "laminar flow around a sphere at Reynolds number 100", RunSphere),
        Entry("cavity", "laminar flow in a lid-driven cavity, on one grid or an overset pair",
              RunCavity),
        Entry("heat", "heat conduction around a hot body: time steps, then steady state", RunHeat),
        Entry("mms", "order study with a manufactured solution", RunMms),
        Entry("nonmatching", "order study across an interface with non-matching faces",
              RunNonmatching),
        Entry("inspect", "how a mesh is cut, and why: verdict, inspection files, explanations",
              RunInspect, CaseFiles::Any),
        Entry("dump", "what the toolbox linked, and its overset report, as text", RunDump,
              CaseFiles::Any),
    };
    return cases;
}

const CaseEntry* FindCase(const std::string& name) {
    const auto& cases = AllCases();
    const auto found = std::find_if(cases.begin(), cases.end(),
                                    [&](const CaseEntry& entry) { return entry.name == name; });
    return found == cases.end() ? nullptr : &*found;
}

std::string CaseNames() {
    std::string names;
    for (const CaseEntry& entry : AllCases()) {
        names += (names.empty() ? "" : ", ") + entry.name;
    }
    return names;
}

}  // namespace host
