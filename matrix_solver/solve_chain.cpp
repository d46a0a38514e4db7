#include "matrix_solver/solve_chain.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <exception>
#include <functional>
#include <limits>
#include <memory>
#include <optional>

#include "matrix_solver/dense_lu.h"
#include "matrix_solver/ilu0.h"
#include "matrix_solver/krylov.h"
#include "matrix_solver/lu_work.h"
#include "matrix_solver/multigrid.h"
#include "matrix_solver/pairwise_multigrid.h"
#include "matrix_solver/sparse_lu.h"

namespace kvx3d_solver {
namespace {

constexpr int alwaysDense = 64;            // rows up to which dense LU beats any set-up
constexpr int denseLimit = 2000;           // rows; 32 MB of factors
constexpr double denseFilling = 0.25;      // of n * n, from where a matrix counts as full
constexpr double promise = 0.05;           // of ILU(0), from where a trial is worth while
constexpr double symmetricPromise = 0.15;  // where conjugate gradients, which are quicker, follow
constexpr int trialSteps = 10;
constexpr double trialProgress = 0.5;  // of the way to the tolerance, in orders of magnitude
constexpr int quickSteps = 30;         // cost about as much as setting up a hierarchy
constexpr int bicgstabSteps = 200;     // more means that the hierarchy does not fit the problem
constexpr int aloneSteps = 1000;       // of ILU(0)-BiCGSTAB in a build without multigrid
constexpr int gmresSteps = 500;
constexpr int restarts = 3;              // from the true residual, after the recursive one drifted
constexpr double worthRestart = 0.5;     // residual reduction that earns another restart
constexpr int refinements = 3;           // of a factorisation's solution
constexpr double lastResortWork = 2e10;  // sparse LU nobody asked for: seconds
constexpr double directWork = 1e12;      // sparse LU on demand: minutes beyond

/// One pass through the methods: the best iterate, its true residual, and what is left to spend.
class Chain {
public:
    Chain(const CsrSystem& system, const SolveOptions& chosen, const Vector& start)
        : A(system),
          options(chosen),
          target(chosen.tolerance * system.rhsNorm),
          stepsLeft(chosen.maxIterations),
          best(start),
          work(start.size()) {
        startResidual = bestResidual = Residual(A, best, work);
    }

    bool Solved() const { return bestResidual <= target; }
    const Vector& Best() const { return best; }

    /// Zero takes the place of a start that is worse than zero, or not finite.
    void DiscardBadStart() {
        if (!(bestResidual <= A.rhsNorm)) {
            std::fill(best.begin(), best.end(), 0.0);
            bestResidual = A.rhsNorm;
        }
    }

    bool IsDense() const {
        const double full = static_cast<double>(A.n) * A.n;
        return A.n <= alwaysDense ||
               (A.n <= denseLimit && static_cast<double>(A.value.size()) > denseFilling * full);
    }

    /// Exact zero pivots first; if that fails, pivots of the size of rounding count as zero too,
    /// which finds a solution of a consistent singular system.
    void TryDense() {
        const double rounding = A.n * std::numeric_limits<double>::epsilon();
        for (const double zeroPivot : {0.0, rounding}) {
            const DenseLu lu(A, zeroPivot);
            Refine([&lu](const Vector& b, Vector& x) { lu.Solve(b, x); });
            if (Solved()) {
                return;
            }
            singular = lu.ZeroPivots() > 0;
        }
    }

    /// ILU(0)-BiCGSTAB. Where multigrid could follow, only as long as it promises to end before
    /// a hierarchy would be set up: convection and time steps do, a large Poisson problem does not.
    void TryIlu() {
        const bool duneFollows = options.useMultigrid && HasMultigrid();
        if (duneFollows || Symmetric()) {
            if (IluPromise() < (Symmetric() ? symmetricPromise : promise)) {
                return;
            }
            const double trialResidual =
                std::pow(bestResidual, 1.0 - trialProgress) * std::pow(target, trialProgress);
            Iterate(BiCgStab, Ilu(), {target, quickSteps, trialSteps, trialResidual});
        } else {
            Iterate(BiCgStab, Ilu(), {target, aloneSteps});
        }
    }

    /// Conjugate gradients with the lean multigrid, about twice as fast as what follows.
    void TrySymmetric() {
        if (!Symmetric() || stepsLeft == 0) {
            return;
        }
        if (const auto multigrid = MakePairwiseMultigrid(A)) {
            Iterate(ConjugateGradients, *multigrid, {target, bicgstabSteps});
        }
    }

    void TryMultigrid() {
        if (!options.useMultigrid || stepsLeft == 0) {
            return;
        }
        try {
            if (const auto multigrid = MakeMultigrid(A)) {
                Iterate(BiCgStab, *multigrid, {target, bicgstabSteps});
            }
        } catch (const std::exception&) {
            // A hierarchy that cannot be built or applied leaves the field to the next method.
        }
    }

    void TryGmres() { Iterate(Gmres, Ilu(), {target, gmresSteps}); }

    void TrySparseLu(double mostWork) {
        if (!options.useSparseLu || sparseLuTried || !HasSparseLu() ||
            EstimateLuWork(A) > mostWork) {
            return;
        }
        sparseLuTried = true;
        SparseLu lu(A.rowStart, A.column, A.value);
        singular = lu.Result() == SparseLu::State::Singular;
        if (lu.Result() == SparseLu::State::Ready) {
            Refine([&lu](const Vector& b, Vector& x) {
                x = b;
                lu.Solve(x.data());
            });
        }
    }

    Outcome Judge() const {
        if (Solved()) {
            return Outcome::Solved;
        }
        const bool improved = bestResidual < startResidual && bestResidual < A.rhsNorm;
        return singular || !improved ? Outcome::Singular : Outcome::ToleranceMissed;
    }

private:
    bool Symmetric() {
        if (!symmetric) {
            symmetric = IsSymmetric(A);
        }
        return *symmetric;
    }

    /// How much of a constant vector ILU(0) gives back after the matrix took it, 0 to 1: near 1 the
    /// factors carry information as far as the inverse does. The steps to expect are about 3 over
    /// this; a Poisson problem of m cells a side has 4 / m.
    double IluPromise() {
        const Vector ones(best.size(), 1.0);
        Vector back(best.size());
        Multiply(A, ones, work);
        Ilu().Apply(work, back);
        double sum = 0.0;
        for (const double v : back) {
            sum += std::min(1.0, std::fabs(v));
        }
        return sum / A.n;
    }

    /// Keeps x if its true residual is the smallest so far.
    void Offer(const Vector& x) {
        const double residual = Residual(A, x, work);
        if (residual < bestResidual) {
            bestResidual = residual;
            best = x;
        }
    }

    /// Solves for the whole right-hand side, then for what the residual still holds.
    void Refine(const std::function<void(const Vector& b, Vector& x)>& solve) {
        Vector x(best.size()), correction(best.size());
        solve(A.rhs, x);
        double residual = Residual(A, x, work);
        Offer(x);
        for (int i = 0; i < refinements; ++i) {
            Residual(A, x, work);
            solve(work, correction);
            for (std::size_t k = 0; k < x.size(); ++k) {
                x[k] += correction[k];
            }
            const double reached = Residual(A, x, work);
            if (!(reached < residual)) {
                return;
            }
            residual = reached;
            Offer(x);
        }
    }

    using Method = int (*)(const CsrSystem&, Preconditioner&, StopRule, Vector&);

    Preconditioner& Ilu() {
        if (!ilu) {
            ilu = std::make_unique<Ilu0>(A);
        }
        return *ilu;
    }

    /// Runs a method from the best iterate, again while the true residual says it is not done and
    /// the last run was worth it.
    void Iterate(Method method, Preconditioner& M, StopRule stop) {
        for (int run = 0; run <= restarts && stop.steps > 0 && stepsLeft > 0 && !Solved(); ++run) {
            const double before = bestResidual;
            Vector x = best;
            stop.steps = std::min(stop.steps, stepsLeft);
            const int taken = method(A, M, stop, x);
            const bool tooSlow = taken == stop.trialSteps;
            stop.steps -= taken;
            stepsLeft -= taken;
            Offer(x);
            if (tooSlow || bestResidual > worthRestart * before) {
                return;
            }
        }
    }

    const CsrSystem& A;
    const SolveOptions& options;
    double target;  ///< norm of the residual to reach
    int stepsLeft;
    std::optional<bool> symmetric;  ///< looked up when first asked for
    Vector best;
    Vector work;
    std::unique_ptr<Preconditioner> ilu;  ///< made when first asked for
    double startResidual = 0.0;
    double bestResidual = 0.0;
    bool singular = false;  ///< said by the last factorisation
    bool sparseLuTried = false;
};

}  // namespace

Outcome SolveChain(const CsrSystem& A, const SolveOptions& options, Vector& x) {
    if (A.rhsNorm == 0.0) {
        std::fill(x.begin(), x.end(), 0.0);
        return Outcome::Solved;
    }
    Chain chain(A, options, x);
    if (chain.Solved()) {
        return Outcome::Solved;
    }
    chain.DiscardBadStart();
    if (chain.IsDense()) {
        chain.TryDense();
    } else {
        if (options.directFirst) {
            chain.TrySparseLu(directWork);
        }
        if (!chain.Solved()) {
            chain.TryIlu();
        }
        if (!chain.Solved()) {
            chain.TrySymmetric();
        }
        if (!chain.Solved()) {
            chain.TryMultigrid();
        }
        if (!chain.Solved()) {
            chain.TryGmres();
        }
        if (!chain.Solved()) {
            chain.TrySparseLu(lastResortWork);
        }
    }
    const Outcome outcome = chain.Judge();
    if (outcome != Outcome::Singular) {
        x = chain.Best();
    }
    return outcome;
}

}  // namespace kvx3d_solver
