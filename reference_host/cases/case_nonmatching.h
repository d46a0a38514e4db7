#ifndef KVX3D_REFERENCE_HOST_CASES_CASE_NONMATCHING_H
#define KVX3D_REFERENCE_HOST_CASES_CASE_NONMATCHING_H

#include <array>
#include <string>
#include <vector>

#include "reference_host/cases/case_mms.h"
#include "reference_host/link/nonmatching_interface.h"

namespace host {

/// Order study across an interface whose faces do not match: what `reference_host nonmatching` was
/// asked for.
///
/// Two blocks, block0 with n and block1 with m cells per unit length, each cut along the faces of
/// the other. The toolbox draws the interface, makes the redundant side ineffective and draws it
/// again; then the manufactured solution of the mms case is carried across.
///
///     reference_host nonmatching --n 8,16 --m 12,24 --check
///
/// Expected: order 2 in both norms, and errors between those of two matching meshes with n and
/// with m.
struct NonmatchingCase {
    std::string meshFile;
    MeshParameters parameters;  ///< further numbers for the .geo
    std::vector<int> n = {8, 16};
    std::vector<int> m = {12, 24};  ///< as many as n, in a fixed ratio to it
    WholeFaces whole = WholeFaces::None;
    std::vector<Scheme> schemes = {Scheme::Diffusion};
    MatrixSolver matrixSolver = MatrixSolver::Bicgstab;
    bool check = false;  ///< compare with the limits of the mms case
    std::string outputDir = "nonmatching_results";
};

/// A mesh of two blocks with its host objects. Neither copied nor moved.
class BlockPair {
public:
    /// @param resultDir  for the pictures of the interface; made before
    BlockPair(const std::string& meshFile, const MeshParameters& parameters, WholeFaces whole,
              const std::string& resultDir);
    BlockPair(const BlockPair&) = delete;
    BlockPair& operator=(const BlockPair&) = delete;

    /// Lets the toolbox draw the interface, settle it and draw it again, and takes the area
    /// vectors over. Before this the mesh cannot be solved on.
    void Settle();

    Mesh mesh;
    std::array<int, 2> sideCounts;  ///< flagged faces that each block owned
    HostObjects objects;
    OversetLink link;  ///< of a single grid: all cells active

private:
    BlockPair(Mesh&& read, WholeFaces whole, const std::string& resultDir);
};

/// Runs the study and prints its table.
/// @return 0; 1 if a checked limit is missed
/// @throws std::runtime_error  one line: bad mesh, n and m of different length, output directory
///         not writable, run not converged
int RunNonmatching(const NonmatchingCase& run);

}  // namespace host

#endif
