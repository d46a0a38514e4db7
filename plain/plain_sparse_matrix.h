#ifndef KVX3D_PLAIN_PLAIN_SPARSE_MATRIX_H
#define KVX3D_PLAIN_PLAIN_SPARSE_MATRIX_H

#include <cstddef>
#include <set>
#include <vector>

namespace plain {

/// The pattern phase of the sparse matrix in its simplest form: one ordered set per row, copied
/// into compressed rows, 1-based and without checks.
///
/// The benchmark of the sparse matrix measures the ratio of the times. So keep this simple and do
/// not optimize it.
class Pattern {
public:
    explicit Pattern(int n) : rows(n + 1), Ia(n + 2) {}

    void AddIndex(int row, int col) { rows[row].insert(col); }

    void CompressIndex() {
        Ia[1] = 1;
        for (std::size_t i = 1; i < rows.size(); ++i) {
            Ia[i + 1] = Ia[i] + static_cast<int>(rows[i].size());
        }
        Ja.assign(Ia.back(), 0);
        Aa.assign(Ia.back(), 0.0);
        for (std::size_t i = 1; i < rows.size(); ++i) {
            int k = Ia[i];
            for (int col : rows[i]) {
                Ja[k++] = col;
            }
        }
    }

    std::vector<std::set<int>> rows;
    std::vector<int> Ia;
    std::vector<int> Ja;
    std::vector<double> Aa;
};

}  // namespace plain

#endif
