#include "tests/linear_algebra/random_systems.h"

#include <algorithm>
#include <set>
#include <utility>

void Generator::Shuffle(std::vector<Entry>& entries) {
    std::shuffle(entries.begin(), entries.end(), random);
}

void Generator::Vectors(System& system, bool ties) {
    system.b.assign(system.n + 1, 0.0);
    system.x.assign(system.n + 1, 0.0);
    const bool zeroStart = Int(0, 1) == 0;
    for (int i = 1; i <= system.n; ++i) {
        system.b[i] = ties ? Tie() : Real();
        system.x[i] = zeroStart ? 0.0 : ties ? Tie() : Real();
    }
}

System Generator::Sparse(int n, double perRow, double diagonal, bool ties) {
    System system;
    system.n = n;
    std::set<std::pair<int, int>> taken;
    for (int i = 1; i <= n; ++i) {
        taken.insert({i, i});
        system.entries.push_back({i, i, ties ? Tie() + diagonal : Real() + diagonal});
    }
    for (int k = 0; k < n * perRow; ++k) {
        const int i = Int(1, n);
        const int j = Int(1, n);
        if (taken.insert({i, j}).second) {
            system.entries.push_back({i, j, ties ? Tie() : Real()});
        }
    }
    Vectors(system, ties);
    return system;
}

System Generator::Box(int nx, int ny, int nz, double diagonal) {
    System system;
    system.n = nx * ny * nz;
    system.declared = true;
    const auto id = [&](int i, int j, int k) { return 1 + i + nx * (j + ny * k); };
    for (int k = 0; k < nz; ++k) {
        for (int j = 0; j < ny; ++j) {
            for (int i = 0; i < nx; ++i) {
                const int row = id(i, j, k);
                system.entries.push_back({row, row, diagonal});
                const auto add = [&](bool inside, int col) {
                    if (inside) {
                        system.entries.push_back({row, col, -1.0 + 0.4 * Real()});
                    }
                };
                add(i > 0, row - 1);
                add(i < nx - 1, row + 1);
                add(j > 0, row - nx);
                add(j < ny - 1, row + nx);
                add(k > 0, row - nx * ny);
                add(k < nz - 1, row + nx * ny);
            }
        }
    }
    Vectors(system, false);
    return system;
}
