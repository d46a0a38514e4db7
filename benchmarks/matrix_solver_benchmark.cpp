/// Set-up and solution of one system to a relative residual of 1e-8, in rows per second.
///
/// Each row names a problem; its argument is the number of cells per side. BM_Library calls the
/// solver as a host does, BM_LibraryFront goes through the matrix class that hands over to it. The
/// yardsticks are:
/// - Toolbox: the toolbox's own BiCGSTAB with DILU on the same matrix, its tolerance chosen so that
///   it stops at the same true residual.
/// - Eigen: its BiCGSTAB with ILUT, fill factor 2 and drop tolerance 1e-3. The default fill factor
/// of
///   10 spends seconds on the set-up alone.
///
/// The first three box problems have a solution without high frequencies, as those of a host do.
/// The others have a random solution. The flow problems are those of an overset pair, with rows of
/// ghost and blanked cells (flow_problem.h).

#include <benchmark/benchmark.h>

#include <Eigen/IterativeLinearSolvers>
#include <Eigen/SparseCore>

#include <cmath>
#include <cstddef>
#include <vector>

#include "linear_algebra/solver_bicgstab.h"
#include "linear_algebra/solver_samg.h"
#include "matrix_solver/matrix_solver.h"
#include "plain/samples/flow_problem.h"
#include "plain/samples/problems.h"

namespace {

constexpr double tolerance = 1e-8;

/// Replaces the random solution by a product of half sine waves.
Problem Smooth(Problem problem, int m) {
    constexpr double pi = 3.14159265358979323846;
    const auto wave = [m, pi](int i) { return std::sin(pi * (i + 0.5) / m); };
    for (int cell = 0; cell < problem.n; ++cell) {
        problem.exact[cell] = wave(cell % m) * wave(cell / m % m) * wave(cell / (m * m));
    }
    for (int row = 0; row < problem.n; ++row) {
        problem.rhs[row] = 0.0;
        for (int k = problem.Ia[row] - 1; k < problem.Ia[row + 1] - 1; ++k) {
            problem.rhs[row] += problem.Aa[k] * problem.exact[problem.Ja[k] - 1];
        }
    }
    return problem;
}

Problem Poisson(int m) {
    return Smooth(Diffusion(m, 1.0, 1.0, 1.0), m);
}

Problem Convection(int m) {
    return Smooth(ConvectionDiffusion(m, 10.0), m);
}

Problem Anisotropic(int m) {
    return Smooth(Diffusion(m, 1.0, 1.0, 100.0), m);
}

/// Diffusion with so little convection that only the symmetry is lost.
Problem WeakConvection(int m) {
    return ConvectionDiffusion(m, 0.1);
}

Problem Pressure(int m) {
    return FlowProblem(m, FlowEquation::Pressure);
}

Problem Momentum(int m) {
    return FlowProblem(m, FlowEquation::Momentum);
}

using Make = Problem (*)(int m);

/// Declares and fills the matrix of a toolbox class, and compresses it.
void Fill(const Problem& p, CKVX_ART_SparseMatrix& A) {
    const auto eachEntry = [&p](auto&& call) {
        for (int row = 0; row < p.n; ++row) {
            for (int k = p.Ia[row] - 1; k < p.Ia[row + 1] - 1; ++k) {
                call(row + 1, p.Ja[k], p.Aa[k]);
            }
        }
    };
    eachEntry([&A](int row, int column, double) { A.AddIndex(row, column); });
    eachEntry([&A](int row, int column, double value) { A.AddElementValue(row, column, value); });
}

/// Checks the last solution and reports the rate and the number of rows.
void Conclude(benchmark::State& state, const Problem& problem, const std::vector<double>& x) {
    // The negated comparison also catches NaN; the one per cent is for the order of the sums.
    if (!(RelativeResidual(problem, x) <= 1.01 * tolerance)) {
        state.SkipWithError("tolerance missed: the time means nothing");
    }
    state.SetItemsProcessed(state.iterations() * problem.n);
    state.counters["size"] = problem.n;
}

void BM_Library(benchmark::State& state, Make make) {
    Problem p = make(static_cast<int>(state.range(0)));
    std::vector<double> x;
    for (auto _ : state) {
        x.assign(static_cast<std::size_t>(p.n), 0.0);
        CKVXMatrixSolver solver("");
        solver.solveMatrix(p.n, p.NonZeros(), p.Ia.data(), p.Ja.data(), p.Aa.data(), p.rhs.data(),
                           x.data(), tolerance, 1000, 1);
    }
    Conclude(state, p, x);
}

void BM_LibraryFront(benchmark::State& state, Make make) {
    const Problem p = make(static_cast<int>(state.range(0)));
    CKVX_ART_MatSolver_SAMG A(p.n);
    Fill(p, A);
    A.SetTolerance(tolerance);
    std::vector<double> x;
    for (auto _ : state) {
        x.assign(static_cast<std::size_t>(p.n), 0.0);
        A.MatSolve(p.rhs.data() - 1, x.data() - 1);
    }
    Conclude(state, p, x);
}

void BM_LibraryToolbox(benchmark::State& state, Make make) {
    const Problem p = make(static_cast<int>(state.range(0)));
    CKVX_ART_MatSolver_BiCGSTAB A(p.n);
    Fill(p, A);
    std::vector<double> x(static_cast<std::size_t>(p.n), 0.0);
    // Its tolerance is relative to the norm after the first step, so one step is taken to get it.
    A.SetTimes(1);
    A.MatSolve(p.rhs.data() - 1, x.data() - 1);
    const Eigen::Map<const Eigen::VectorXd> b(p.rhs.data(), p.n);
    A.SetTolerance(tolerance * b.norm() / A.GetRnorm());
    A.SetTimes(10000);
    for (auto _ : state) {
        x.assign(static_cast<std::size_t>(p.n), 0.0);
        A.MatSolve(p.rhs.data() - 1, x.data() - 1);
    }
    state.counters["steps"] = A.GetIterTimes();
    Conclude(state, p, x);
}

void BM_LibraryEigen(benchmark::State& state, Make make) {
    using Matrix = Eigen::SparseMatrix<double, Eigen::RowMajor>;
    const Problem p = make(static_cast<int>(state.range(0)));
    std::vector<Eigen::Triplet<double>> entries;
    for (int row = 0; row < p.n; ++row) {
        for (int k = p.Ia[row] - 1; k < p.Ia[row + 1] - 1; ++k) {
            entries.emplace_back(row, p.Ja[k] - 1, p.Aa[k]);
        }
    }
    Matrix A(p.n, p.n);
    A.setFromTriplets(entries.begin(), entries.end());
    const Eigen::Map<const Eigen::VectorXd> b(p.rhs.data(), p.n);
    Eigen::VectorXd x;
    for (auto _ : state) {
        Eigen::BiCGSTAB<Matrix, Eigen::IncompleteLUT<double>> solver;
        solver.preconditioner().setFillfactor(2);
        solver.preconditioner().setDroptol(1e-3);
        solver.setTolerance(tolerance);
        solver.setMaxIterations(1000);
        solver.compute(A);
        x = solver.solve(b);
    }
    Conclude(state, p, {x.data(), x.data() + x.size()});
}

#define KVX3D_SOLVER_ROW(method, problem) \
    BENCHMARK_CAPTURE(method, problem, problem)->Unit(benchmark::kMillisecond)

KVX3D_SOLVER_ROW(BM_Library, Poisson)->Arg(32)->Arg(46)->Arg(68)->Arg(100);
KVX3D_SOLVER_ROW(BM_LibraryToolbox, Poisson)->Arg(32)->Arg(46)->Arg(68)->Arg(100);
KVX3D_SOLVER_ROW(BM_LibraryFront, Poisson)->Arg(100);
KVX3D_SOLVER_ROW(BM_Library, Convection)->Arg(46);
KVX3D_SOLVER_ROW(BM_LibraryToolbox, Convection)->Arg(46);
KVX3D_SOLVER_ROW(BM_LibraryEigen, Convection)->Arg(46);
KVX3D_SOLVER_ROW(BM_Library, Anisotropic)->Arg(46);
KVX3D_SOLVER_ROW(BM_LibraryToolbox, Anisotropic)->Arg(46);
KVX3D_SOLVER_ROW(BM_LibraryEigen, Anisotropic)->Arg(46);
KVX3D_SOLVER_ROW(BM_Library, WeakConvection)->Arg(64);
KVX3D_SOLVER_ROW(BM_LibraryToolbox, WeakConvection)->Arg(64);
KVX3D_SOLVER_ROW(BM_Library, Pressure)->Arg(64)->Arg(128);
KVX3D_SOLVER_ROW(BM_LibraryToolbox, Pressure)->Arg(64)->Arg(128);
KVX3D_SOLVER_ROW(BM_Library, Momentum)->Arg(128);
KVX3D_SOLVER_ROW(BM_LibraryToolbox, Momentum)->Arg(128);

}  // namespace
