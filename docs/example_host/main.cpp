// The smallest host: the temperature in a bar of n cells between a cold end (0) and a hot end (1).
// All toolbox arrays are 1-based: entry 0 is not data.

#include <iostream>
#include <vector>

#include "linear_algebra/solver_bicgstab.h"

int main() {
    const int n = 8;
    CKVX_ART_MatSolver_BiCGSTAB bar(n);
    for (int cell = 1; cell <= n; ++cell) {  // declare the pattern first: it is compressed once
        bar.AddIndex(cell, cell);
        if (cell < n) {
            bar.AddIndex(cell, cell + 1);
            bar.AddIndex(cell + 1, cell);
        }
    }
    for (int cell = 1; cell <= n; ++cell) {  // half-cell distance to the ends doubles the weight
        bar.AddElementValue(cell, cell, cell == 1 || cell == n ? 3.0 : 2.0);
        if (cell < n) {
            bar.AddElementValue(cell, cell + 1, -1.0);
            bar.AddElementValue(cell + 1, cell, -1.0);
        }
    }
    std::vector<double> heat(n + 1, 0.0), temperature(n + 1, 0.0);
    heat[n] = 2.0;

    bar.MatSolve(heat.data(), temperature.data());

    for (int cell = 1; cell <= n; ++cell) {
        std::cout << "cell " << cell << ": " << temperature[cell] << '\n';
    }
}
