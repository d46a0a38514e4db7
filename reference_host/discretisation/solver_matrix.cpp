#include "reference_host/discretisation/solver_matrix.h"

#include <algorithm>
#include <cmath>

namespace host {

const char* Name(MatrixSolver solver) {
    return solver == MatrixSolver::Samg ? "samg" : "bicgstab";
}

std::optional<MatrixSolver> MatrixSolverNamed(const std::string& name) {
    for (const MatrixSolver solver : {MatrixSolver::Bicgstab, MatrixSolver::Samg}) {
        if (name == Name(solver)) {
            return solver;
        }
    }
    return std::nullopt;
}

SolverMatrix::SolverMatrix(int rows, MatrixSolver solver) {
    if (solver == MatrixSolver::Samg) {
        auto made = std::make_unique<CKVX_ART_MatSolver_SAMG>(rows);
        samg = made.get();
        samgTolerance = samg->GetTolerance();
        matrix = std::move(made);
    } else {
        auto made = std::make_unique<CKVX_ART_MatSolver_BiCGSTAB>(rows);
        bicgstab = made.get();
        matrix = std::move(made);
    }
}

void SolverMatrix::SetTolerance(double tolerance) {
    if (samg) {
        samgTolerance = tolerance;
    } else {
        bicgstab->SetTolerance(tolerance);
    }
}

void SolverMatrix::SetTimes(int times) {
    samg ? samg->SetTimes(times) : bicgstab->SetTimes(times);
}

int SolverMatrix::Solve(const std::vector<double>& b, std::vector<double>& x, double target) {
    if (samg) {
        SolveCorrection(b, x, target);
        return 0;
    }
    // A call that stops before its first iteration keeps the count of the call before it.
    bicgstab->iterTimes = 0;
    bicgstab->MatSolve(b.data(), x.data());
    return bicgstab->iterTimes;
}

void SolverMatrix::SolveCorrection(const std::vector<double>& b, std::vector<double>& x,
                                   double target) {
    std::vector<double> defect(x.size(), 0.0);
    double squares = 0.0;
    for (int row = 1; row <= matrix->GetRowsN(); ++row) {
        defect[row] = b[row] - matrix->DotProduct(row, x.data());
        squares += defect[row] * defect[row];
    }
    if (squares == 0.0) {
        return;
    }
    samg->SetTolerance(std::max(samgTolerance, 0.5 * target / std::sqrt(squares)));
    std::vector<double> correction(x.size(), 0.0);
    samg->MatSolve(defect.data(), correction.data());
    for (int row = 1; row <= matrix->GetRowsN(); ++row) {
        x[row] += correction[row];
    }
}

}  // namespace host
