// Data layout: one n x n block by columns, which Eigen factorizes in place, for n <= 2000 (32 MB).

#include "matrix_solver/dense_lu.h"

#include <optional>

#include <Eigen/LU>

namespace kvx3d_solver {
struct DenseLu::Factors {
    std::optional<Eigen::PartialPivLU<Eigen::MatrixXd>> partial;
    std::optional<Eigen::FullPivLU<Eigen::MatrixXd>> full;
};

DenseLu::DenseLu(const CsrSystem& A, Pivoting pivoting)
    : factors(std::make_unique<Factors>()), rowScale(RowScales(A)) {
    Eigen::MatrixXd matrix = Eigen::MatrixXd::Zero(A.n, A.n);
    for (int i = 0; i < A.n; ++i) {
        for (int k = A.rowStart[i]; k < A.rowStart[i + 1]; ++k) {
            matrix(i, A.column[k]) = A.value[k] * rowScale[i];
        }
    }
    if (pivoting == Pivoting::Partial) {
        factors->partial.emplace(std::move(matrix));
        zeroPivots =
            static_cast<int>((factors->partial->matrixLU().diagonal().array() == 0.0).count());
    } else {
        factors->full.emplace(std::move(matrix));
        zeroPivots = static_cast<int>(A.n - factors->full->rank());
    }
}

DenseLu::~DenseLu() = default;

void DenseLu::Solve(const Vector& b, Vector& x) const {
    const auto n = static_cast<Eigen::Index>(rowScale.size());
    const Eigen::Map<const Eigen::ArrayXd> scale(rowScale.data(), n);
    const Eigen::VectorXd scaled = Eigen::Map<const Eigen::ArrayXd>(b.data(), n) * scale;
    Eigen::Map<Eigen::VectorXd> result(x.data(), n);
    if (factors->partial) {
        result = factors->partial->solve(scaled);
    } else {
        result = factors->full->solve(scaled);
    }
}

}  // namespace kvx3d_solver
