// Data layout: each level is a matrix in compressed rows of its own, single precision (8 bytes an
// entry), with the position of each diagonal, the inverse diagonal and two work vectors. Transfers
// are one integer a row, the aggregate that it belongs to.

#include "matrix_solver/pairwise_multigrid.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "matrix_solver/dense_lu.h"

namespace kvx3d_solver {
namespace {

// docs/matrix_solver.md has the measurements that led to these constants.
constexpr int matchings = 3;            // per level: up to 2^3 rows in an aggregate
constexpr int coarsestRows = 300;       // coarsening stops here
constexpr int largestCoarsest = 1000;   // rows that the dense LU may still get; more is a stall
constexpr double slowestRate = 0.7;     // of the rows of a level; a larger share left is a stall
constexpr double coarsestShift = 1e-6;  // of the diagonal, above the rounding of float sums
constexpr float strong = 0.25F;         // of the strongest coupling of a row
constexpr float dominant = 5.0F;        // times the couplings: sweeps alone solve such a row
constexpr float overcorrection =
    1.6F;  // the corrections are constant on an aggregate, so too small
constexpr int noAggregate = -1;
constexpr int undecided = -2;

/// A square matrix by rows, columns ascending, and the work vectors of its level.
struct Level {
    int n = 0;
    std::vector<int> rowStart;  ///< n + 1 positions
    std::vector<int> column;
    std::vector<int> diagonal;  ///< n positions
    std::vector<float> value;

    std::vector<int> aggregate;  ///< n rows of the next level, or noAggregate
    std::vector<float> inverseDiagonal, r, z;
};

/// What a row couples to: its strongest neighbor, and the strongest that is still undecided.
struct Couplings {
    float sum = 0.0F;
    float strongest = 0.0F;
    float strongestFree = 0.0F;
    int neighbor = -1;
    int freeNeighbor = -1;
};

Couplings CouplingsOf(const Level& A, int row, const std::vector<int>& aggregate) {
    Couplings found;
    for (int k = A.rowStart[row]; k < A.rowStart[row + 1]; ++k) {
        if (k == A.diagonal[row]) {
            continue;
        }
        const float coupling = -A.value[k];
        found.sum += std::fabs(coupling);
        if (coupling > found.strongest) {
            found.strongest = coupling;
            found.neighbor = A.column[k];
        }
        if (coupling > found.strongestFree && aggregate[A.column[k]] == undecided) {
            found.strongestFree = coupling;
            found.freeNeighbor = A.column[k];
        }
    }
    return found;
}

/// Matches each row with its strongest undecided neighbor. A row without one joins the aggregate of
/// its strongest neighbor; a dominant row joins none. Returns the number of aggregates.
int MatchRows(const Level& A, std::vector<int>& aggregate) {
    aggregate.assign(static_cast<std::size_t>(A.n), undecided);
    int count = 0;
    for (int row = 0; row < A.n; ++row) {
        if (aggregate[row] != undecided) {
            continue;
        }
        const Couplings found = CouplingsOf(A, row, aggregate);
        if (A.value[A.diagonal[row]] > dominant * found.sum) {
            aggregate[row] = noAggregate;
        } else if (found.freeNeighbor >= 0 && found.strongestFree >= strong * found.strongest) {
            aggregate[row] = aggregate[found.freeNeighbor] = count++;
        } else if (found.neighbor >= 0 && aggregate[found.neighbor] >= 0) {
            aggregate[row] = aggregate[found.neighbor];
        } else {
            aggregate[row] = count++;
        }
    }
    return count;
}

/// The rows sorted by aggregate, and the position where each aggregate begins.
std::pair<std::vector<int>, std::vector<int>> RowsByAggregate(const std::vector<int>& aggregate,
                                                              int count) {
    std::vector<int> start(static_cast<std::size_t>(count) + 2, 0);
    for (const int a : aggregate) {
        if (a >= 0) {
            ++start[a + 2];
        }
    }
    for (int a = 0; a < count; ++a) {
        start[a + 2] += start[a + 1];
    }
    std::vector<int> rows(static_cast<std::size_t>(start[count + 1]));
    for (std::size_t row = 0; row < aggregate.size(); ++row) {
        if (aggregate[row] >= 0) {
            rows[start[aggregate[row] + 1]++] = static_cast<int>(row);
        }
    }
    return {std::move(rows), std::move(start)};
}

/// Sorts the entries of the last row of A by column and notes where its diagonal is.
void CloseRow(Level& A, int row) {
    const int begin = A.rowStart[row];
    const int end = static_cast<int>(A.column.size());
    SortRow(A.column, A.value, begin, end);
    const auto found = std::find(A.column.begin() + begin, A.column.end(), row);
    A.diagonal.push_back(static_cast<int>(found - A.column.begin()));
    A.rowStart.push_back(end);
}

/// The Galerkin product with transfer operators that are 1 on an aggregate: the entries of its rows
/// are added up.
Level Merge(const Level& A, const std::vector<int>& aggregate, int count) {
    const auto [rows, start] = RowsByAggregate(aggregate, count);
    Level coarse;
    coarse.n = count;
    coarse.rowStart.push_back(0);
    coarse.column.reserve(A.column.size() / 2);
    coarse.value.reserve(A.value.size() / 2);
    std::vector<int> place(static_cast<std::size_t>(count), -1);  // of each column
    for (int row = 0; row < count; ++row) {
        const int begin = coarse.rowStart[row];
        for (int member = start[row]; member < start[row + 1]; ++member) {
            const int fine = rows[member];
            for (int k = A.rowStart[fine]; k < A.rowStart[fine + 1]; ++k) {
                const int column = aggregate[A.column[k]];
                if (column < 0) {
                    continue;
                }
                if (place[column] < begin) {
                    place[column] = static_cast<int>(coarse.column.size());
                    coarse.column.push_back(column);
                    coarse.value.push_back(A.value[k]);
                } else {
                    coarse.value[place[column]] += A.value[k];
                }
            }
        }
        CloseRow(coarse, row);
    }
    return coarse;
}

/// Computes the next level, and the aggregate of each row of A.
Level Coarsen(Level& A) {
    Level coarse = Merge(A, A.aggregate, MatchRows(A, A.aggregate));
    std::vector<int> aggregate;
    for (int i = 1; i < matchings && coarse.n > 0; ++i) {
        const int count = MatchRows(coarse, aggregate);
        for (int& a : A.aggregate) {
            a = a < 0 ? noAggregate : aggregate[a];
        }
        coarse = Merge(coarse, aggregate, count);
    }
    return coarse;
}

class PairwiseMultigrid : public Preconditioner {
public:
    explicit PairwiseMultigrid(const CsrSystem& A) {
        Level finest;
        finest.n = A.n;
        finest.rowStart = A.rowStart;
        finest.column = A.column;
        finest.diagonal = A.diagonal;
        finest.value.assign(A.value.begin(), A.value.end());
        levels.push_back(std::move(finest));
        while (levels.back().n > coarsestRows) {
            Level next = Coarsen(levels.back());
            if (next.n > slowestRate * levels.back().n) {
                break;
            }
            levels.push_back(std::move(next));
        }
        usable = PrepareSweeps() && FactorCoarsest();
    }

    bool Usable() const { return usable; }

    /// Scales the residual to a norm of 1, because single precision ends at 1e-38.
    void Apply(const Vector& r, Vector& z) override {
        const double norm = Norm(r);
        const double scale = norm > 0.0 ? 1.0 / norm : 1.0;
        Level& finest = levels.front();
        for (int i = 0; i < finest.n; ++i) {
            finest.r[i] = static_cast<float>(r[i] * scale);
        }
        Cycle(0);
        for (int i = 0; i < finest.n; ++i) {
            z[i] = norm * finest.z[i];
        }
    }

private:
    /// Inverts the diagonals; false if one is not positive.
    bool PrepareSweeps() {
        for (Level& level : levels) {
            const auto n = static_cast<std::size_t>(level.n);
            level.inverseDiagonal.resize(n);
            level.r.resize(n);
            level.z.resize(n);
            for (int i = 0; i < level.n; ++i) {
                const float diagonal = level.value[level.diagonal[i]];
                if (!(diagonal > 0.0F)) {
                    return false;
                }
                level.inverseDiagonal[i] = 1.0F / diagonal;
            }
        }
        return true;
    }

    /// False if the coarsest level is too large or singular. Where all walls are closed a constant
    /// is undetermined; without the shift of the diagonal it would grow from cycle to cycle.
    bool FactorCoarsest() {
        const Level& level = levels.back();
        if (level.n > largestCoarsest) {
            return false;
        }
        CsrSystem coarsest;
        coarsest.n = level.n;
        coarsest.rowStart = level.rowStart;
        coarsest.column = level.column;
        coarsest.diagonal = level.diagonal;
        coarsest.value.assign(level.value.begin(), level.value.end());
        for (const int k : coarsest.diagonal) {
            coarsest.value[k] *= 1.0 + coarsestShift;
        }
        coarsestLu.emplace(coarsest, DenseLu::Pivoting::Partial);
        coarsestR.resize(static_cast<std::size_t>(level.n));
        coarsestZ.resize(static_cast<std::size_t>(level.n));
        return coarsestLu->ZeroPivots() == 0;
    }

    /// One V-cycle from level l down: computes z of the level from its r.
    void Cycle(std::size_t l) {
        Level& level = levels[l];
        if (l + 1 == levels.size()) {
            std::copy(level.r.begin(), level.r.end(), coarsestR.begin());
            coarsestLu->Solve(coarsestR, coarsestZ);
            std::transform(coarsestZ.begin(), coarsestZ.end(), level.z.begin(),
                           [](double v) { return static_cast<float>(v); });
            return;
        }
        Level& coarse = levels[l + 1];
        SweepForth(level);
        Restrict(level, coarse.r);
        Cycle(l + 1);
        for (int i = 0; i < level.n; ++i) {
            if (level.aggregate[i] >= 0) {
                level.z[i] += overcorrection * coarse.z[level.aggregate[i]];
            }
        }
        SweepBack(level);
    }

    /// A Gauss-Seidel sweep in ascending order from z = 0, so that entries above the diagonal do
    /// not contribute.
    static void SweepForth(Level& level) {
        for (int i = 0; i < level.n; ++i) {
            float sum = level.r[i];
            for (int k = level.rowStart[i]; k < level.diagonal[i]; ++k) {
                sum -= level.value[k] * level.z[level.column[k]];
            }
            level.z[i] = sum * level.inverseDiagonal[i];
        }
    }

    /// Sums the residual over the aggregates. After an ascending sweep from zero it consists of the
    /// entries above the diagonal alone, so half a product is enough.
    static void Restrict(const Level& level, std::vector<float>& coarse) {
        std::fill(coarse.begin(), coarse.end(), 0.0F);
        for (int i = 0; i < level.n; ++i) {
            if (level.aggregate[i] < 0) {
                continue;
            }
            float sum = 0.0F;
            for (int k = level.diagonal[i] + 1; k < level.rowStart[i + 1]; ++k) {
                sum += level.value[k] * level.z[level.column[k]];
            }
            coarse[level.aggregate[i]] -= sum;
        }
    }

    /// A Gauss-Seidel sweep in descending order.
    static void SweepBack(Level& level) {
        for (int i = level.n - 1; i >= 0; --i) {
            float sum = level.r[i];
            for (int k = level.rowStart[i]; k < level.diagonal[i]; ++k) {
                sum -= level.value[k] * level.z[level.column[k]];
            }
            for (int k = level.diagonal[i] + 1; k < level.rowStart[i + 1]; ++k) {
                sum -= level.value[k] * level.z[level.column[k]];
            }
            level.z[i] = sum * level.inverseDiagonal[i];
        }
    }

    std::vector<Level> levels;  ///< from the system's own to the coarsest
    std::optional<DenseLu> coarsestLu;
    Vector coarsestR, coarsestZ;
    bool usable;
};

}  // namespace

std::unique_ptr<Preconditioner> MakePairwiseMultigrid(const CsrSystem& A) {
    auto multigrid = std::make_unique<PairwiseMultigrid>(A);
    if (!multigrid->Usable()) {
        return nullptr;
    }
    return multigrid;
}

}  // namespace kvx3d_solver
