#ifndef KVX3D_REFERENCE_HOST_APP_CASE_FILE_H
#define KVX3D_REFERENCE_HOST_APP_CASE_FILE_H

#include <memory>
#include <string>

#include "reference_host/cases/case_options.h"

namespace host {

/// A case as a TOML file: which case it is, and the options that differ from its defaults.
///
///     case = "cylinder"
///     [mesh]
///     file = "../meshes/channel_cylinder_overset.geo"  # relative to the case file's directory
///     [parameters]
///     n = 10                                           # value of a variable of the .geo
///     [schemes]
///     transport = "lud"                                # the option schemes.transport
///     [output]
///     directory = "cylinder_results"                   # relative to the working directory
///
/// Every error is one line with file, line and option: `cylinder.toml:12: solver.iterations must be
/// at least 1, not 0`. Of several errors the first one in the file is reported.
class CaseFile {
public:
    /// @throws std::runtime_error  one line: the file cannot be read, or is not valid TOML
    explicit CaseFile(const std::string& path);
    ~CaseFile();
    CaseFile(const CaseFile&) = delete;
    CaseFile& operator=(const CaseFile&) = delete;

    /// The value of the key `case`.
    /// @throws std::runtime_error  one line: it is missing, or not the name of a case
    std::string CaseName() const;

    /// Sets the options that the file gives.
    /// @throws std::runtime_error  one line: unknown table or key, wrong type, value outside its
    ///         limits, mesh file that does not exist
    void Apply(CaseOptions& options) const;

    const std::string path;

private:
    struct Content;
    std::unique_ptr<const Content> content;
};

}  // namespace host

#endif
