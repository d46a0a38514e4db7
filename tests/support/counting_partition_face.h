#ifndef KVX3D_TESTS_SUPPORT_COUNTING_PARTITION_FACE_H
#define KVX3D_TESTS_SUPPORT_COUNTING_PARTITION_FACE_H

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "host_link/host_interface.h"

/// The accessors of CPartitionFace_DLL in the order of their declarations.
enum class PartAccessor : std::size_t {
    NParInterFace,
    ijParCV,
    ijPar,
    ijParSx,
    ijParSy,
    ijParSz,
    ijParxc,
    ijParyc,
    ijParzc,
    FaceType_Partition,
    IfPartitionFace_InvalidForNonMatching
};

/// Partition faces that count the calls of each accessor, and of which one can be made to fail.
///
/// The vectors are 1-based (slot 0 is not data) and may be filled by a test; Resize() allocates
/// them.
class CountingPartitionFace : public CPartitionFace_DLL {
public:
    static constexpr std::size_t nAccessors = 11;

    /// Allocates all arrays for n faces: ids 0, vectors and centers 0, flags false.
    void Resize(int n);

    /// Number of calls of one accessor so far.
    int Calls(PartAccessor accessor) const { return calls[static_cast<std::size_t>(accessor)]; }
    /// Number of calls of all accessors except NParInterFace() so far.
    int CallsOfOthers() const;
    void ResetCalls() { calls.fill(0); }

    int NParInterFace() override;
    int* ijParCV() override;
    int* ijPar() override;
    double* ijParSx() override;
    double* ijParSy() override;
    double* ijParSz() override;
    double* ijParxc() override;
    double* ijParyc() override;
    double* ijParzc() override;
    int* FaceType_Partition() override;
    bool* IfPartitionFace_InvalidForNonMatching() override;

    int count = 0;                    ///< the result of NParInterFace()
    std::vector<int> cell;            ///< ijParCV
    std::vector<int> ghost;           ///< ijPar
    std::vector<double> area[3];      ///< ijParSx, ijParSy, ijParSz
    std::vector<double> centre[3];    ///< ijParxc, ijParyc, ijParzc
    std::vector<int> kind;            ///< FaceType_Partition
    std::unique_ptr<bool[]> invalid;  ///< IfPartitionFace_InvalidForNonMatching

    std::optional<PartAccessor> failing;  ///< this accessor throws an int ...
    int failingAfter = 0;                 ///< ... after this number of successful calls

private:
    void Count(PartAccessor accessor);

    std::array<int, nAccessors> calls{};
};

#endif
