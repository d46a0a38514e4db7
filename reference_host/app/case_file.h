#ifndef KVX3D_REFERENCE_HOST_APP_CASE_FILE_H
#define KVX3D_REFERENCE_HOST_APP_CASE_FILE_H

#include <memory>
#include <string>
#include <vector>

#include "reference_host/app/case_options.h"

namespace host {

/// A case as a TOML file: which case, and the options that differ from its defaults.
///
///     case = "cylinder"
///     [mesh]
///     file = "../meshes/channel_cylinder_overset.geo"  # from the directory of the case file
///     [parameters]
///     n = 10                                           # numbers in a .geo
///     [schemes]
///     transport = "lud"
///     [output]
///     directory = "cylinder_results"                   # from where the program is run
///
/// Tables and keys are those of case_options.h. Every error is one line with file, line and key:
/// `cylinder.toml:12: "iterations" must be at least 1, not 0`. The first one of the file is told.
class CaseFile {
public:
    /// @throws std::runtime_error  one line: the file cannot be read, or is no TOML
    explicit CaseFile(const std::string& path);
    ~CaseFile();
    CaseFile(const CaseFile&) = delete;
    CaseFile& operator=(const CaseFile&) = delete;

    /// The value of `case`.
    /// @throws std::runtime_error  one line: there is none, or none of `names`
    std::string CaseName(const std::vector<std::string>& names) const;

    /// Sets what the file gives.
    /// @throws std::runtime_error  one line: unknown table or key, wrong type, value out of its
    ///         limits, no such mesh file
    void Apply(CaseOptions& options) const;

    const std::string path;

private:
    struct Content;
    std::unique_ptr<const Content> content;
};

}  // namespace host

#endif
