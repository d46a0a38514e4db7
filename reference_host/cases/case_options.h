#ifndef KVX3D_REFERENCE_HOST_CASES_CASE_OPTIONS_H
#define KVX3D_REFERENCE_HOST_CASES_CASE_OPTIONS_H

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "reference_host/cases/option.h"
#include "reference_host/mesh/mesh_reader.h"

namespace host {

/// Everything that can be set about one case, from a case file and from the command line.
///
/// Every case has a mesh, so two names are always there: `mesh.file`, and `parameters.NAME` for
/// the variable NAME of a .geo file. The object refers to the fields of the case and must not
/// outlive it.
class CaseOptions {
public:
    /// @param list  the other options of the case
    CaseOptions(std::string& meshFile, MeshParameters& parameters, std::vector<Option> list);

    /// In the order in which the help lists them, `mesh.file` first; without the parameters.
    const std::vector<Option>& List() const { return list; }
    /// The option with this name, "table.key", or null.
    const Option* Find(const std::string& name) const;
    /// The option with this short form, "--key", or null.
    const Option* FindShortForm(const std::string& shortForm) const;
    /// "unknown option solver.stepps: the table solver has steps, first_step".
    std::string UnknownName(const std::string& name) const;
    /// Names of the tables that the case has, "parameters" among them.
    std::vector<std::string> TableNames() const;

    const std::string& MeshFile() const { return meshFile; }
    const MeshParameters& Parameters() const { return parameters; }

    /// Sets an option.
    ///
    /// @param name    of an option that Find() knows
    /// @param values  see Option::assign
    /// @param place   where the value comes from, the beginning of messages about it: "--steps",
    ///                "heat.toml:4: solver.steps"
    /// @throws std::runtime_error  one line: the value is refused
    void Set(const std::string& name, const std::vector<std::string>& values,
             const std::string& place);
    /// Sets the variable `name` of the .geo; any name is accepted until Complete().
    void SetParameter(const std::string& name, double value, const std::string& place);
    /// Takes mesh and parameters of another case.
    void TakeMesh(const CaseOptions& other);

    /// True if the option (or "parameters.NAME") was set after construction.
    bool IsGiven(const std::string& name) const { return places.count(name) > 0; }
    /// Refuses a parameter that the case sets itself, from another option.
    /// @throws std::runtime_error  one line
    void RefuseParameter(const std::string& parameter, const std::string& setFrom) const;

    /// Checks the case as a whole, and settles what depends on which options were given; to be
    /// called after the last Set().
    ///
    /// @param caseFile  for messages; empty if there is none
    /// @throws std::runtime_error  one line: no mesh, a parameter that the .geo does not define,
    ///         options that contradict each other
    void Complete(const std::string& caseFile);

    /// Part of Complete() that belongs to the case; may be empty.
    std::function<void(const CaseOptions& options)> settle;

private:
    void RequireKnownParameters() const;

    std::string& meshFile;
    MeshParameters& parameters;
    std::vector<Option> list;
    std::map<std::string, std::string> places;  // where each given value comes from, by name
};

/// The part of an option's name before the dot; empty for a key above all tables.
std::string TableOf(const std::string& name);
/// The part of an option's name after the dot.
std::string KeyOf(const std::string& name);

}  // namespace host

#endif
