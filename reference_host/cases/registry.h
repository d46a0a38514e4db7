#ifndef KVX3D_REFERENCE_HOST_CASES_REGISTRY_H
#define KVX3D_REFERENCE_HOST_CASES_REGISTRY_H

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "reference_host/cases/case_options.h"

namespace host {

/// A case with its settings: the command line sets its options, main() runs it.
class Case {
public:
    virtual ~Case() = default;
    /// Everything that can be set; refers to this object.
    virtual CaseOptions Options() = 0;
    /// @return the exit code
    /// @throws std::runtime_error  one line for each fault
    virtual int Run() const = 0;
};

/// A Case made of its settings, OptionsOf(settings) and its run function.
template <class Settings>
class CaseOf final : public Case {
public:
    explicit CaseOf(int (*run_)(const Settings&)) : run(run_) {}
    CaseOptions Options() override { return OptionsOf(settings); }
    int Run() const override { return run(settings); }

    Settings settings;

private:
    int (*run)(const Settings&);
};

/// Which case files a case can read besides its own.
enum class CaseFiles {
    Own,  ///< none
    Any   ///< mesh and parameters of any other: `reference_host dump cases/cylinder.toml`
};

/// A case that the program knows.
struct CaseEntry {
    std::string name;     ///< on the command line and in case files
    std::string summary;  ///< one line for the help
    CaseFiles files = CaseFiles::Own;
    std::function<std::unique_ptr<Case>()> make;  ///< a case with its default settings
};

/// All cases in the order of the help.
const std::vector<CaseEntry>& AllCases();
/// The case of this name, or null.
const CaseEntry* FindCase(const std::string& name);
/// The names of all cases, separated by commas.
std::string CaseNames();

}  // namespace host

#endif
