#ifndef KVX3D_REFERENCE_HOST_APP_CASE_OPTIONS_H
#define KVX3D_REFERENCE_HOST_APP_CASE_OPTIONS_H

#include <functional>
#include <string>
#include <vector>

#include "reference_host/cases/case_cylinder.h"
#include "reference_host/cases/case_dump.h"
#include "reference_host/cases/case_heat.h"
#include "reference_host/cases/case_mms.h"
#include "reference_host/cases/case_nonmatching.h"
#include "reference_host/cases/case_sphere.h"

namespace host {

/// What an option's value is made of.
enum class ValueKind { Flag, Whole, Number, Text, MeshFile, Wholes, Texts };

/// "a whole number", "a text or a list of texts", ... for messages.
const char* Description(ValueKind kind);

/// One field of a case, with its name in both notations. This is the only place where a field gets
/// its names, its limits and its help, so that case file and command line cannot differ.
struct CaseOption {
    std::string table;   ///< of the case file; empty: above all tables
    std::string key;     ///< in that table
    std::string option;  ///< on the command line, with its dashes
    std::string help;
    ValueKind kind = ValueKind::Text;
    std::string shown;   ///< the value as it stands, for the help; may be empty
    bool given = false;  ///< Set() was called

    /// Sets the field; lists take any number of values, the rest one. Numbers are decimal texts,
    /// flags "true" or "false".
    /// @throws std::invalid_argument  "must be at least 1, not 0": the sentence after the name
    void Set(const std::vector<std::string>& values);

    std::function<void(const std::vector<std::string>&)> assign;
};

/// All that can be chosen about a case. Borrows the case.
struct CaseOptions {
    MeshParameters& parameters;  ///< [parameters] and --set: any name, a number
    const std::string& meshFile;
    std::vector<CaseOption> list;
    /// Settles what depends on which options were given; to be called after the last Set().
    std::function<void(const std::vector<CaseOption>&)> complete;
};

CaseOptions OptionsOf(CylinderCase& run);
CaseOptions OptionsOf(SphereCase& run);
CaseOptions OptionsOf(HeatCase& run);
CaseOptions OptionsOf(MmsCase& run);
CaseOptions OptionsOf(NonmatchingCase& run);
CaseOptions OptionsOf(DumpCase& run);

/// A number from the whole of a text.
/// @throws std::invalid_argument  "must be a number, not "ten""; infinite ones count as none
double ParseNumber(const std::string& text);

}  // namespace host

#endif
