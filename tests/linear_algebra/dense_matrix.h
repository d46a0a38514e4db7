#ifndef KVX3D_TESTS_LINEAR_ALGEBRA_DENSE_MATRIX_H
#define KVX3D_TESTS_LINEAR_ALGEBRA_DENSE_MATRIX_H

#include <algorithm>
#include <cstddef>
#include <random>
#include <vector>

/// A 1-based matrix with the table of rows that the solver reads.
class Matrix {
public:
    Matrix(int rows, int cols) : cells(rows + 1, std::vector<double>(cols + 1, 0.0)) {
        for (std::vector<double>& row : cells) {
            table.push_back(row.data());
        }
    }
    explicit Matrix(const std::vector<std::vector<double>>& rows)
        : Matrix(static_cast<int>(rows.size()), static_cast<int>(rows[0].size())) {
        for (std::size_t i = 0; i < rows.size(); ++i) {
            std::copy(rows[i].begin(), rows[i].end(), cells[i + 1].begin() + 1);
        }
    }
    Matrix(const Matrix&) = delete;
    Matrix& operator=(const Matrix&) = delete;

    operator double**() { return table.data(); }
    std::vector<double> Row(int i) const { return {cells[i].begin() + 1, cells[i].end()}; }

private:
    std::vector<std::vector<double>> cells;
    std::vector<double*> table;
};

/// Fills A with fixed random entries, diagonally dominant, so that no pivoting is needed.
inline void FillDominant(Matrix& A, int n, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> number(-1.0, 1.0);
    for (int i = 1; i <= n; ++i) {
        for (int j = 1; j <= n; ++j) {
            A[i][j] = number(random) + (i == j ? n : 0.0);
        }
    }
}

#endif
