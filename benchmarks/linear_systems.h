#ifndef KVX3D_BENCHMARKS_LINEAR_SYSTEMS_H
#define KVX3D_BENCHMARKS_LINEAR_SYSTEMS_H

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <random>
#include <utility>
#include <vector>

#include "linear_algebra/sparse_matrix.h"

/// The systems of the linear-algebra benchmarks. Seeds are fixed.

struct Coefficient {
    int row;
    int col;
    double value;
};

/// Convection and diffusion with upwind differences, 7 points, on a box of m^3 cells, x fastest.
inline std::vector<Coefficient> BoxCoefficients(int m) {
    std::vector<Coefficient> entries;
    const auto id = [m](int i, int j, int k) { return 1 + i + m * (j + m * k); };
    for (int k = 0; k < m; ++k) {
        for (int j = 0; j < m; ++j) {
            for (int i = 0; i < m; ++i) {
                const int row = id(i, j, k);
                const auto add = [&](bool inside, int col, double value) {
                    if (inside) {
                        entries.push_back({row, col, value});
                    }
                };
                add(true, row, 6.05);
                add(i > 0, row - 1, -1.3);
                add(i < m - 1, row + 1, -0.7);
                add(j > 0, row - m, -1.1);
                add(j < m - 1, row + m, -0.9);
                add(k > 0, row - m * m, -1.0);
                add(k < m - 1, row + m * m, -1.0);
            }
        }
    }
    return entries;
}

/// An irregular mesh of m^3 cells: about 16 entries per row, cells numbered at random within slabs
/// of 256 cells, rows diagonally dominant by one percent.
inline std::vector<Coefficient> IrregularCoefficients(int m) {
    std::mt19937 random(3);
    std::vector<int> number(m * m * m);
    std::iota(number.begin(), number.end(), 1);
    for (std::size_t slab = 0; slab < number.size(); slab += 256) {
        const auto begin = number.begin() + static_cast<std::ptrdiff_t>(slab);
        std::shuffle(begin, begin + std::min<std::ptrdiff_t>(256, number.end() - begin), random);
    }
    const auto id = [&](int i, int j, int k) { return number[i + m * (j + m * k)]; };
    const auto inside = [m](int i) { return i >= 0 && i < m; };
    std::uniform_real_distribution<double> weight(0.5, 1.5);
    std::vector<Coefficient> entries;
    const auto couple = [&](int cell, int other) {
        const double forth = weight(random);
        const double back = weight(random);
        entries.push_back({cell, other, -forth});
        entries.push_back({cell, cell, 1.01 * forth});
        entries.push_back({other, cell, -back});
        entries.push_back({other, other, 1.01 * back});
    };
    for (int place = 0; place < m * m * m; ++place) {
        const int i = place % m;
        const int j = place / m % m;
        const int k = place / (m * m);
        for (int step = 14; step < 27; ++step) {  // those 13 of the 26 neighbors that come later
            const int di = step % 3 - 1;
            const int dj = step / 3 % 3 - 1;
            const int dk = step / 9 - 1;
            const bool face = std::abs(di) + std::abs(dj) + std::abs(dk) == 1;
            if (inside(i + di) && inside(j + dj) && inside(k + dk) && (face || random() % 2 == 0)) {
                couple(id(i, j, k), id(i + di, j + dj, k + dk));
            }
        }
    }
    return entries;
}

/// Declares the pattern, then adds the values.
inline void Assemble(const std::vector<Coefficient>& entries, CKVX_ART_SparseMatrix& A) {
    for (const Coefficient& e : entries) {
        A.AddIndex(e.row, e.col);
    }
    for (const Coefficient& e : entries) {
        A.AddElementValue(e.row, e.col, e.value);
    }
}

/// Puts the entries of each row in random order, as after insertions.
inline void ShuffleRows(CKVX_ART_SparseMatrix& A) {
    std::mt19937 random(4);
    for (int i = 1; i <= A.GetRowsN(); ++i) {
        for (int k = A.Ia[i + 1] - 1; k > A.Ia[i]; --k) {
            const int other = A.Ia[i] + static_cast<int>(random() % (k - A.Ia[i] + 1));
            std::swap(A.Ja[k], A.Ja[other]);
            std::swap(A.Aa[k], A.Aa[other]);
        }
    }
}

#endif
