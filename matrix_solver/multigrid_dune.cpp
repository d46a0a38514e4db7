// The only unit that includes DUNE: its templates take most of the library's compile time.

#include "matrix_solver/multigrid.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <dune/common/fmatrix.hh>
#include <dune/common/fvector.hh>
#include <dune/common/mallocallocator.hh>
#include <dune/istl/bcrsmatrix.hh>
#include <dune/istl/bvector.hh>
#include <dune/istl/operators.hh>
#include <dune/istl/paamg/amg.hh>
#include <dune/istl/preconditioners.hh>
#include <dune/istl/solver.hh>

#include "matrix_solver/sparse_lu.h"

namespace kvx3d_solver {
namespace {

using Block = Dune::FieldMatrix<double, 1, 1>;
// DUNE 2.9 returns the rows of coarse matrices with a length of 1 whatever they were allocated
// with. free() does not care; the sized operator delete behind std::allocator may.
using Matrix = Dune::BCRSMatrix<Block, Dune::MallocAllocator<Block>>;
using VectorBlock = Dune::FieldVector<double, 1>;
using BlockVector = Dune::BlockVector<VectorBlock, Dune::MallocAllocator<VectorBlock>>;
using Operator = Dune::MatrixAdapter<Matrix, BlockVector, BlockVector>;
using Smoother = Dune::SeqILU<Matrix, BlockVector, BlockVector>;
using Amg = Dune::Amg::AMG<Operator, BlockVector, Smoother>;
using Criterion =
    Dune::Amg::CoarsenCriterion<Dune::Amg::SymmetricCriterion<Matrix, Dune::Amg::FirstDiagonal>>;

constexpr int coarsestRows = 1000;      // coarsening stops here
constexpr int largestCoarsest = 4000;   // rows a direct solver may still get; more is a stall
constexpr double coarsestShift = 1e-9;  // of the diagonal: far below any grid's smallest mode
constexpr int slowestCoarsening = 4;    // rows per aggregate that the level bound counts on

struct NoCoarseSolver : std::runtime_error {
    NoCoarseSolver() : std::runtime_error("coarsest level too large or singular") {}
};

/// The sparse LU in the form the hierarchy asks for.
class CoarseSolver : public Dune::InverseOperator<BlockVector, BlockVector> {
public:
    /// Factorises a level. Closed boundaries everywhere leave a constant undetermined; without a
    /// small shift of the diagonal it grows from cycle to cycle, to 1e8 on 32 x 32 x 32 cells.
    explicit CoarseSolver(const Matrix& level) {
        std::vector<int> rowStart{0}, column;
        Vector value;
        for (auto row = level.begin(); row != level.end(); ++row) {
            for (auto entry = row->begin(); entry != row->end(); ++entry) {
                const bool onDiagonal = entry.index() == row.index();
                column.push_back(static_cast<int>(entry.index()));
                value.push_back((*entry)[0][0] * (onDiagonal ? 1.0 + coarsestShift : 1.0));
            }
            rowStart.push_back(static_cast<int>(column.size()));
        }
        lu = std::make_unique<SparseLu>(std::move(rowStart), std::move(column), std::move(value));
        if (lu->Result() != SparseLu::State::Ready) {
            throw NoCoarseSolver();
        }
    }

    void apply(BlockVector& x, BlockVector& b, Dune::InverseOperatorResult& result) override {
        x = b;
        lu->Solve(&x[0][0]);
        result.iterations = 1;
        result.converged = true;
    }

    void apply(BlockVector& x, BlockVector& b, double, Dune::InverseOperatorResult& r) override {
        apply(x, b, r);
    }

    Dune::SolverCategory::Category category() const override {
        return Dune::SolverCategory::sequential;
    }

private:
    std::unique_ptr<SparseLu> lu;
};

}  // namespace
}  // namespace kvx3d_solver

namespace Dune::Amg {

/// The direct solver of the coarsest level. The general form factorises whatever level the
/// coarsening ended on; on a stall that is the whole system with the fill of several Galerkin
/// products.
template <>
class DirectSolverSelector<kvx3d_solver::Matrix, kvx3d_solver::BlockVector> {
public:
    static constexpr bool isDirectSolver = true;

    static std::string name() { return "SparseLu"; }

    static kvx3d_solver::CoarseSolver* create(const kvx3d_solver::Matrix& level, bool, bool) {
        if (level.N() > kvx3d_solver::largestCoarsest) {
            throw kvx3d_solver::NoCoarseSolver();
        }
        return new kvx3d_solver::CoarseSolver(level);
    }
};

}  // namespace Dune::Amg

namespace kvx3d_solver {
namespace {

Matrix ToDune(const CsrSystem& A) {
    Matrix matrix;
    const auto n = static_cast<std::size_t>(A.n);
    matrix.setBuildMode(Matrix::random);
    matrix.setSize(n, n, A.column.size());
    for (int i = 0; i < A.n; ++i) {
        matrix.setrowsize(i, static_cast<std::size_t>(A.rowStart[i + 1] - A.rowStart[i]));
    }
    matrix.endrowsizes();
    for (int i = 0; i < A.n; ++i) {
        matrix.setIndices(i, A.column.begin() + A.rowStart[i],
                          A.column.begin() + A.rowStart[i + 1]);
    }
    matrix.endindices();
    auto value = A.value.begin();
    for (auto& row : matrix) {
        for (auto& entry : row) {
            entry = *value++;
        }
    }
    return matrix;
}

/// False for a diagonal matrix: DUNE 2.9 would find no aggregate and say so on standard error.
bool CouplesAnyRows(const CsrSystem& A) {
    for (int i = 0; i < A.n; ++i) {
        for (int k = A.rowStart[i]; k < A.rowStart[i + 1]; ++k) {
            if (A.column[k] != i && A.value[k] != 0.0) {
                return true;
            }
        }
    }
    return false;
}

/// Measured best on diffusion and on convection alike: the symmetric criterion, default damping.
Criterion MakeCriterion(int rows) {
    int levels = 2;
    for (double left = rows; left > coarsestRows; left /= slowestCoarsening) {
        ++levels;
    }
    Criterion criterion(levels, coarsestRows);
    criterion.setDefaultValuesIsotropic(3);
    criterion.setNoPreSmoothSteps(1);
    criterion.setNoPostSmoothSteps(1);
    criterion.setDebugLevel(0);
    // Below this rate DUNE 2.9 stops coarsening and says so on standard error, whatever the debug
    // level. The bound on the levels ends a stall instead.
    criterion.setMinCoarsenRate(0.0);
    return criterion;
}

class DuneMultigrid : public Preconditioner {
public:
    explicit DuneMultigrid(const CsrSystem& A)
        : matrix(ToDune(A)),
          fineOperator(matrix),
          amg(fineOperator, MakeCriterion(A.n), SmootherArguments()),
          defect(matrix.N()),
          update(matrix.N()) {
        // Sets up the level vectors. What it writes to rows without neighbours does not matter:
        // both vectors are filled before each cycle.
        defect = 0.0;
        update = 0.0;
        amg.pre(update, defect);
    }

    ~DuneMultigrid() override { amg.post(update); }

    void Apply(const Vector& r, Vector& z) override {
        std::copy(r.begin(), r.end(), defect.begin());
        update = 0.0;
        amg.apply(update, defect);
        std::copy(update.begin(), update.end(), z.begin());
    }

private:
    static Amg::SmootherArgs SmootherArguments() {
        Amg::SmootherArgs arguments;
        arguments.iterations = 1;
        arguments.relaxationFactor = 1.0;
        return arguments;
    }

    Matrix matrix;
    Operator fineOperator;
    Amg amg;
    BlockVector defect, update;
};

}  // namespace

bool HasMultigrid() {
    return true;
}

std::unique_ptr<Preconditioner> MakeMultigrid(const CsrSystem& A) {
    if (!CouplesAnyRows(A)) {
        return nullptr;
    }
    try {
        return std::make_unique<DuneMultigrid>(A);
    } catch (const NoCoarseSolver&) {
        return nullptr;
    }
}

}  // namespace kvx3d_solver
