// Data layout: Eigen factorizes a copy of the matrix by columns; its factors are blocks of columns
// with common row patterns (supernodes), stored as small dense matrices.

#include "matrix_solver/sparse_lu.h"

#include <new>
#include <string>

#include <Eigen/SparseCore>
#include <Eigen/SparseLU>

namespace kvx3d_solver {
namespace {

/// The vector as an array of Eigen.
Eigen::Map<const Eigen::ArrayXd> AsArray(const Vector& v) {
    return {v.data(), static_cast<Eigen::Index>(v.size())};
}

}  // namespace

struct SparseLu::Factors {
    Eigen::SparseLU<Eigen::SparseMatrix<double>, Eigen::COLAMDOrdering<int>> lu;
};

SparseLu::SparseLu(const CsrSystem& A)
    : factors(std::make_unique<Factors>()), rowScale(RowScales(A)) {
    using ByRows = Eigen::SparseMatrix<double, Eigen::RowMajor>;
    const auto entries = static_cast<Eigen::Index>(A.value.size());
    auto& lu = factors->lu;
    try {
        const Eigen::SparseMatrix<double> byColumns =
            AsArray(rowScale).matrix().asDiagonal() *
            Eigen::Map<const ByRows>(A.n, A.n, entries, A.rowStart.data(), A.column.data(),
                                     A.value.data());
        lu.compute(byColumns);
    } catch (const std::bad_alloc&) {
        state = State::OutOfMemory;
        return;
    }
    // Eigen 3.4 reports a missing pivot and most failed allocations by the same code, and some
    // failed allocations by no code at all. Only the text distinguishes them.
    const std::string error = lu.lastErrorMessage();
    if (error.empty()) {
        state = State::Ready;
    } else if (error.find("SINGULAR") != std::string::npos) {
        state = State::Singular;
    } else {
        state = State::OutOfMemory;
    }
}

SparseLu::~SparseLu() = default;

void SparseLu::Solve(const Vector& b, Vector& x) const {
    const Eigen::VectorXd scaled = AsArray(b) * AsArray(rowScale);
    Eigen::Map<Eigen::VectorXd>(x.data(), scaled.size()) = factors->lu.solve(scaled);
}

}  // namespace kvx3d_solver
