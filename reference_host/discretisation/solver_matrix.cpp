#include "reference_host/discretisation/solver_matrix.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "reference_host/discretisation/norm.h"
#include "reference_host/discretisation/row_scaling.h"

namespace host {

namespace {

// Largest magnitude of the binary exponent of a residual of ordinary size, 6e-14 to 2e13: its
// square is above the threshold 1e-30 of BiCGSTAB, with room for a reduction by more than ten.
constexpr int ordinaryExponent = 44;

/// The power of two by which the system is multiplied so that its largest residual is between 1 and
/// 2. It is smaller where x would overflow. It is 0 if the residual is of ordinary size or not
/// finite.
int ResidualShift(const RowScaling& rows, const std::vector<double>& defect,
                  const std::vector<double>& x) {
    int exponent = std::numeric_limits<int>::min();
    double largest = 0.0;
    for (int row = 1; row < static_cast<int>(defect.size()); ++row) {
        if (!std::isfinite(defect[row])) {
            return 0;
        }
        if (defect[row] != 0.0) {
            exponent = std::max(exponent, std::ilogb(defect[row]) + rows.Exponent(row));
        }
        largest = std::max(largest, std::abs(x[row]));
    }
    if (std::abs(exponent) <= ordinaryExponent) {
        return 0;
    }
    constexpr int largestExponent = 1000;  // of x afterward; that of a double is 1023
    return largest > 0.0 ? std::min(-exponent, largestExponent - std::ilogb(largest)) : -exponent;
}

/// The vector multiplied by 2^shift and by the powers of two of the rows.
std::vector<double> Scaled(const RowScaling& rows, int shift, const std::vector<double>& vector) {
    std::vector<double> scaled(vector.size(), 0.0);
    for (int row = 1; row < static_cast<int>(vector.size()); ++row) {
        scaled[row] = std::ldexp(vector[row], shift + rows.Exponent(row));
    }
    return scaled;
}

}  // namespace

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

LinearSolve SolverMatrix::Solve(const std::vector<double>& b, std::vector<double>& x,
                                double target) {
    const std::vector<double> defect = Defect(b, x);
    LinearSolve report;
    report.firstResidual = Norm(defect);
    if (report.firstResidual == 0.0) {
        return report;
    }
    Call(b, defect, x, target, report);
    report.residual = Residual(b, x);
    if (!(report.residual < report.firstResidual)) {
        report.rounding = RoundingLevel(b, x);
    }
    return report;
}

void SolverMatrix::Call(const std::vector<double>& b, const std::vector<double>& defect,
                        std::vector<double>& x, double target, LinearSolve& report) {
    const RowScaling rows(*matrix);
    const int shift = ResidualShift(rows, defect, x);
    std::vector<double> start(x.size(), 0.0);  // of the unknown that the solver works on
    if (!samg) {
        std::transform(x.begin(), x.end(), start.begin(),
                       [shift](double value) { return std::ldexp(value, shift); });
    }
    std::vector<double> found = start;
    if (samg) {
        samg->SetTolerance(std::max(samgTolerance, 0.5 * target / report.firstResidual));
        samg->MatSolve(Scaled(rows, shift, defect).data(), found.data());
    } else {
        // A call that stops before its first iteration keeps the count of the call before it.
        bicgstab->iterTimes = 0;
        bicgstab->MatSolve(Scaled(rows, shift, b).data(), found.data());
        report.iterations = bicgstab->iterTimes;
    }
    for (int row = 1; row <= matrix->GetRowsN(); ++row) {
        if (found[row] == start[row]) {
            continue;
        }
        report.changed = true;
        const double value = std::ldexp(found[row], -shift);
        x[row] = samg ? x[row] + value : value;
    }
}

std::vector<double> SolverMatrix::Defect(const std::vector<double>& b, std::vector<double>& x) {
    if (!matrix->compressed) {
        matrix->CompressIndex();
    }
    std::vector<double> defect(matrix->GetRowsN() + 1, 0.0);
    for (int row = 1; row <= matrix->GetRowsN(); ++row) {
        defect[row] = b[row] - matrix->DotProduct(row, x.data());
    }
    return defect;
}

double SolverMatrix::Residual(const std::vector<double>& b, std::vector<double>& x) {
    return Norm(Defect(b, x));
}

double SolverMatrix::RoundingLevel(const std::vector<double>& b,
                                   const std::vector<double>& x) const {
    std::vector<double> level(matrix->GetRowsN() + 1, 0.0);
    for (int row = 1; row <= matrix->GetRowsN(); ++row) {
        double size = std::abs(b[row]);
        for (int k = matrix->Ia[row]; k < matrix->Ia[row + 1]; ++k) {
            size += std::abs(matrix->Aa[k] * x[matrix->Ja[k]]);
        }
        const int nTerms = matrix->Ia[row + 1] - matrix->Ia[row] + 1;
        level[row] = nTerms * std::numeric_limits<double>::epsilon() * size;
    }
    return Norm(level);
}

}  // namespace host
