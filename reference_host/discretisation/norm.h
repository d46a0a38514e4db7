#ifndef KVX3D_REFERENCE_HOST_DISCRETISATION_NORM_H
#define KVX3D_REFERENCE_HOST_DISCRETISATION_NORM_H

#include <vector>

namespace host {

/// 2-norm of entries 1..n of a vector of n + 1 entries. It is summed in blocks that are scaled by
/// their largest entry, so that no square overflows or vanishes: a residual of 1e-200 has a norm
/// above zero. Infinity or NaN if an entry is infinity or NaN.
///
/// Source: J. L. Blue, ACM Trans. Math. Softw. 4 (1978) 15-23, doi:10.1145/355769.355771; the sum
/// is that of Eigen's stableNorm().
double Norm(const std::vector<double>& vector);

}  // namespace host

#endif
