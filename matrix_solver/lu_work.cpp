#include "matrix_solver/lu_work.h"

#include <cstddef>
#include <vector>

namespace kvx3d_solver {
namespace {

/// Breadth-first search over the rows that one root reaches.
class LevelSearch {
public:
    explicit LevelSearch(const CsrSystem& system) : A(system), seen(A.n, 0) {}

    bool Seen(int row) const { return seen[row] != 0; }

    /// Searches from `root`, over rows marked with less than `mark`; the level widths in order.
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

/// A row of a level reaches as far as its own level and the next.
double BandedWork(const std::vector<double>& widths) {
    double work = 0.0;
    for (std::size_t l = 0; l < widths.size(); ++l) {
        const double band = widths[l] + (l + 1 < widths.size() ? widths[l + 1] : 0.0);
        work += 2.0 * widths[l] * band * band;
    }
    return work;
}

}  // namespace

double EstimateLuWork(const CsrSystem& A) {
    LevelSearch search(A);
    double work = 0.0;
    for (int row = 0; row < A.n; ++row) {
        if (!search.Seen(row)) {
            search.Run(row, 1);  // only to find the rim
            work += BandedWork(search.Run(search.Last(), 2));
        }
    }
    return work;
}

}  // namespace kvx3d_solver
