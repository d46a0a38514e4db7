#include "matrix_solver/solve_chain.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <limits>
#include <memory>
#include <optional>

#include "matrix_solver/dense_lu.h"
#include "matrix_solver/ilu0.h"
#include "matrix_solver/krylov.h"
#include "matrix_solver/lu_cost.h"
#include "matrix_solver/pairwise_multigrid.h"
#include "matrix_solver/reduction.h"
#include "matrix_solver/sparse_lu.h"

namespace kvx3d_solver {
namespace {

// The measurements behind these constants are in docs/matrix_solver.md.
constexpr int alwaysDense = 64;            // rows up to which the dense LU needs no reason
constexpr int denseLimit = 2000;           // rows; 32 MB of factors
constexpr double denseFilling = 0.25;      // of n * n, from where a matrix counts as full
constexpr double promise = 0.1;            // of ILU(0), from where BiCGSTAB alone is the faster one
constexpr double symmetricPromise = 0.15;  // the same where conjugate gradients can follow
constexpr int quickSteps = 30;             // of ILU(0)-BiCGSTAB; what the promises above predict
constexpr int multigridSteps = 200;        // more means that the aggregates do not fit the problem
constexpr int gmresSteps = 500;
constexpr int restarts = 3;            // after the recursive residual drifted from the true one
constexpr double worthRestart = 0.5;   // residual reduction that earns another restart
constexpr int refinements = 3;         // of a solution by factorization
constexpr double quickWork = 2e10;     // of a sparse LU nobody asked for: seconds
constexpr double directWork = 1e12;    // of a sparse LU on demand: minutes
constexpr double mostEntries = 2.5e8;  // estimated in the factors of a sparse LU: 1.6 GB

/// One pass through the methods: the best iterate, its true residual, and the steps left.
class Chain {
public:
    Chain(const CsrSystem& system, const SolveOptions& chosen, const Vector& start)
        : full(system),
          options(chosen),
          target(chosen.tolerance * system.rhsNorm),
          stepsLeft(chosen.maxIterations),
          best(start),
          residualVector(start.size()),
          startResidual(Residual(full, best, residualVector)),
          bestResidual(startResidual) {}

    bool Solved() const { return bestResidual <= target; }
    /// True if every row was trivial, so that no method has anything to do.
    bool IsEmpty() const { return core->n == 0; }
    const Vector& Best() const { return best; }

    /// Replaces a start by zero if it is worse than zero, or not finite.
    void DiscardBadStart() {
        if (!(bestResidual <= full.rhsNorm)) {
            std::fill(best.begin(), best.end(), 0.0);
            bestResidual = full.rhsNorm;
        }
    }

    /// Whether the system that the methods work on is small or full.
    bool IsDense() const {
        const double whole = static_cast<double>(core->n) * core->n;
        const auto entries = static_cast<double>(core->value.size());
        return core->n <= alwaysDense || (core->n <= denseLimit && entries > denseFilling * whole);
    }

    /// Lets the methods work on the reduced system from here on, if there are trivial rows. With
    /// the start vector of the rows that remain, the trivial rows may already complete the
    /// solution.
    void RemoveTrivialRows() {
        reduction.emplace(full);
        if (!reduction->Removes()) {
            reduction.reset();
            return;
        }
        reduced = reduction->ReducedSystem();
        core = &reduced;
        Offer(CoreIterate());
    }

    /// Partial pivoting serves regular systems. If it fails, full pivoting finds a solution of a
    /// consistent singular system, or that there is none.
    void TryDense() {
        for (const auto pivoting : {DenseLu::Pivoting::Partial, DenseLu::Pivoting::Full}) {
            const DenseLu lu(*core, pivoting);
            singular = lu.ZeroPivots() > 0;
            Refine([&lu](const Vector& b, Vector& x) { lu.Solve(b, x); });
            if (Solved()) {
                return;
            }
        }
    }

    /// ILU(0)-BiCGSTAB, if it promises to end before a multigrid hierarchy would pay for its
    /// set-up: convection and time steps do, a large Poisson problem does not.
    void TryIlu() {
        const double least = IsSymmetricCore() ? symmetricPromise : promise;
        if (stepsLeft > 0 && IluPromise(*core, Ilu()) >= least) {
            Iterate(BiCgStab, Ilu(), quickSteps);
        }
    }

    void TryMultigrid() {
        if (stepsLeft == 0) {
            return;
        }
        if (const auto multigrid = MakePairwiseMultigrid(*core)) {
            Iterate(IsSymmetricCore() ? ConjugateGradients : BiCgStab, *multigrid, multigridSteps);
        }
    }

    void TryGmres() {
        if (stepsLeft > 0) {
            Iterate(Gmres, Ilu(), gmresSteps);
        }
    }

    /// Factorizes unless the estimate exceeds `mostWork` multiplications and additions.
    void TrySparseLu(double mostWork) {
        if (!options.useSparseLu || sparseLuTried) {
            return;
        }
        const LuCost cost = EstimateLuCost(*core);
        if (cost.work > mostWork || cost.entries > mostEntries) {
            return;
        }
        sparseLuTried = true;
        const SparseLu lu(*core);
        singular = lu.Result() == SparseLu::State::Singular;
        if (lu.Result() == SparseLu::State::Ready) {
            Refine([&lu](const Vector& b, Vector& x) { lu.Solve(b, x); });
        }
    }

    Outcome Judge() const {
        if (Solved()) {
            return Outcome::Solved;
        }
        const bool improved = bestResidual < startResidual && bestResidual < full.rhsNorm;
        return singular || !improved ? Outcome::Singular : Outcome::ToleranceMissed;
    }

private:
    bool IsSymmetricCore() {
        if (!symmetric) {
            symmetric = IsSymmetric(*core);
        }
        return *symmetric;
    }

    /// The best iterate, its entries in the system that the methods work on.
    Vector CoreIterate() const { return reduction ? reduction->Restrict(best) : best; }

    /// Keeps an iterate of that system if its true residual is the smallest so far.
    void Offer(const Vector& coreX) {
        if (reduction) {
            expanded.resize(best.size());
            reduction->Expand(coreX, expanded);
        }
        const Vector& x = reduction ? expanded : coreX;
        const double residual = Residual(full, x, residualVector);
        if (residual < bestResidual) {
            bestResidual = residual;
            best = x;
        }
    }

    /// Solves for the whole right-hand side, then repeatedly for the residual left.
    void Refine(const std::function<void(const Vector& b, Vector& x)>& solve) {
        const auto n = static_cast<std::size_t>(core->n);
        Vector x(n, 0.0), r = core->rhs, correction(n);
        double before = std::numeric_limits<double>::infinity();
        for (int i = 0; i <= refinements; ++i) {
            solve(r, correction);
            for (std::size_t k = 0; k < n; ++k) {
                x[k] += correction[k];
            }
            const double reached = Residual(*core, x, r);
            if (!(reached < before)) {
                return;
            }
            before = reached;
            Offer(x);
        }
    }

    Ilu0& Ilu() {
        if (!ilu) {
            ilu = std::make_unique<Ilu0>(*core);
        }
        return *ilu;
    }

    using Method = int (*)(const CsrSystem&, Preconditioner&, StopRule, Vector&);

    /// Runs a method from the best iterate, and again as long as the true residual misses the
    /// target and the last run reduced it enough.
    void Iterate(Method method, Preconditioner& M, int steps) {
        for (int run = 0; run <= restarts && steps > 0 && stepsLeft > 0 && !Solved(); ++run) {
            const double before = bestResidual;
            Vector x = CoreIterate();
            const int taken = method(*core, M, {target, std::min(steps, stepsLeft)}, x);
            steps -= taken;
            stepsLeft -= taken;
            Offer(x);
            if (bestResidual > worthRestart * before) {
                return;
            }
        }
    }

    const CsrSystem& full;
    const SolveOptions& options;
    const double target;  ///< norm of the residual to reach
    int stepsLeft;
    std::optional<Reduction> reduction;  ///< empty where the methods work on the full system
    CsrSystem reduced;
    const CsrSystem* core = &full;  ///< the system that the methods work on
    std::optional<bool> symmetric;  ///< of the core, computed when first needed
    std::unique_ptr<Ilu0> ilu;      ///< of the core, made when first needed
    Vector best;
    Vector residualVector, expanded;  ///< work vectors
    double startResidual;
    double bestResidual;
    bool singular = false;  ///< found by the last factorization
    bool sparseLuTried = false;
};

/// The methods for a system that is neither small nor full, in order.
void TrySparseMethods(Chain& chain, bool directFirst) {
    if (directFirst) {
        chain.TrySparseLu(directWork);
    }
    const auto steps = {&Chain::TryIlu, &Chain::TryMultigrid, &Chain::TryGmres};
    for (const auto step : steps) {
        if (!chain.Solved()) {
            (chain.*step)();
        }
    }
    if (!chain.Solved()) {
        chain.TrySparseLu(quickWork);
    }
}

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
    if (!chain.IsDense()) {
        chain.RemoveTrivialRows();
    }
    if (!chain.Solved() && !chain.IsEmpty()) {
        if (chain.IsDense()) {
            chain.TryDense();
        } else {
            TrySparseMethods(chain, options.directFirst);
        }
    }
    const Outcome outcome = chain.Judge();
    if (outcome != Outcome::Singular) {
        x = chain.Best();
    }
    return outcome;
}

}  // namespace kvx3d_solver
