#include "matrix_solver/lu_cost.h"

#include <cstddef>
#include <vector>

namespace kvx3d_solver {
namespace {

/// Breadth-first search over the rows that can be reached from one root.
class LevelSearch {
public:
    explicit LevelSearch(const CsrSystem& system)
        : A(system), seen(static_cast<std::size_t>(A.n), 0) {}

    bool Seen(int row) const { return seen[row] != 0; }

    /// Searches from `root` over the rows whose mark is below `mark`, and marks them. Returns the
    /// number of rows in each level, in order.
    std::vector<double> Run(int root, char mark) {
        std::vector<double> widths;
        std::vector<int> level{root}, next;
        seen[root] = mark;
        while (!level.empty()) {
            widths.push_back(static_cast<double>(level.size()));
            last = level.back();
            next.clear();
            for (const int row : level) {
                Visit(row, mark, next);
            }
            level.swap(next);
        }
        return widths;
    }

    /// A row of the last level of the last search.
    int Last() const { return last; }

private:
    void Visit(int row, char mark, std::vector<int>& next) {
        for (int k = A.rowStart[row]; k < A.rowStart[row + 1]; ++k) {
            const int column = A.column[k];
            if (seen[column] < mark) {
                seen[column] = mark;
                next.push_back(column);
            }
        }
    }

    const CsrSystem& A;
    std::vector<char> seen;
    int last = 0;
};

/// The cost of a banded elimination. A row of a level is coupled to its own level and the next.
void AddBandedCost(const std::vector<double>& widths, LuCost& cost) {
    for (std::size_t l = 0; l < widths.size(); ++l) {
        const double band = widths[l] + (l + 1 < widths.size() ? widths[l + 1] : 0.0);
        cost.work += 2.0 * widths[l] * band * band;
        cost.entries += 2.0 * widths[l] * band;
    }
}

}  // namespace

LuCost EstimateLuCost(const CsrSystem& A) {
    LevelSearch search(A);
    LuCost cost;
    for (int row = 0; row < A.n; ++row) {
        if (!search.Seen(row)) {
            search.Run(row, 1);  // ends at a row on the rim
            AddBandedCost(search.Run(search.Last(), 2), cost);
        }
    }
    return cost;
}

}  // namespace kvx3d_solver
