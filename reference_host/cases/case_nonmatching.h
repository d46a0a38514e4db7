#ifndef KVX3D_REFERENCE_HOST_CASES_CASE_NONMATCHING_H
#define KVX3D_REFERENCE_HOST_CASES_CASE_NONMATCHING_H

#include <array>
#include <string>
#include <vector>

#include "reference_host/cases/common_options.h"
#include "reference_host/link/host_objects.h"
#include "reference_host/link/nonmatching_interface.h"
#include "reference_host/link/overset_link.h"

namespace host {

/// Order study (see order_study.h) across an interface whose faces do not match.
///
/// There are two blocks: block0 with n and block1 with m cells per unit length. The faces of each
/// are cut along the faces of the other. The toolbox writes a picture of the interface, makes the
/// redundant faces ineffective and writes the picture again; then the problem is solved across the
/// interface.
///
///     reference_host nonmatching study.n=8,16 study.m=12,24 check=true
///
/// Expected: order 2 in both norms, and errors between those on two matching meshes with n and
/// with m cells.
struct NonmatchingCase {
    std::string meshFile = ShippedMesh("nonmatching_blocks.geo");
    MeshParameters parameters;      ///< further variables of the .geo
    std::vector<int> n = {8, 16};   ///< ascending
    std::vector<int> m = {12, 24};  ///< one for each n, in a fixed ratio to it
    WholeFaces whole = WholeFaces::None;
    std::vector<Scheme> schemes = {Scheme::Diffusion};
    MatrixSolver matrixSolver = MatrixSolver::Bicgstab;
    bool check = false;  ///< compare the figures with the limits of an order study
    std::string outputDir = "nonmatching_results";
};

CaseOptions OptionsOf(NonmatchingCase& run);

/// A mesh of two blocks with its host objects. Neither copied nor moved.
class BlockPair {
public:
    /// @param resultDir  existing directory for the pictures of the interface
    BlockPair(const std::string& meshFile, const MeshParameters& parameters, WholeFaces whole,
              const std::string& resultDir);
    BlockPair(const BlockPair&) = delete;
    BlockPair& operator=(const BlockPair&) = delete;

    /// Lets the toolbox preprocess the interface, with a picture before and after, and copies the
    /// changed area vectors into the mesh. No problem can be solved on the mesh before this.
    void Settle();

    Mesh mesh;
    std::array<int, 2> sideCounts;  ///< interface faces that each block owned in the beginning
    HostObjects objects;
    OversetLink link;  ///< of a single grid: all cells are active

private:
    BlockPair(Mesh&& read, WholeFaces whole, const std::string& resultDir);
};

/// Runs the study and prints its table.
/// @return 0; 1 if a checked figure is outside its limits
/// @throws std::runtime_error  one line: bad mesh, n and m of different length, n not ascending,
///         no limits to check against, output directory not writable, not converged
int RunNonmatching(const NonmatchingCase& run);

}  // namespace host

#endif
