#ifndef KVX3D_PLAIN_PLAIN_SPARSE_MATRIX_H
#define KVX3D_PLAIN_PLAIN_SPARSE_MATRIX_H

#include <cstddef>
#include <set>
#include <vector>

/// A pattern collected in one ordered set a row and copied out, 1-based, without any checks.
///
/// The yardstick of the sparse matrix: its benchmark asks for the ratio of the times. Keep it
/// plain.
class PlainPattern {
public:
    explicit PlainPattern(int n) : rows(n + 1), Ia(n + 2) {}

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

#endif
