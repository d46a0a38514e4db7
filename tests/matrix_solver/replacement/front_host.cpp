/// The smallest host program that uses the solver library: solves 2 x = 3 and prints x.

#include <iostream>

#include "linear_algebra/solver_samg.h"

int main() {
    CKVX_ART_MatSolver_SAMG A(1);
    A.AddIndex(1, 1);
    A.CompressIndex();
    A.AddElementValue(1, 1, 2.0);
    const double b[2] = {0.0, 3.0};
    double x[2] = {0.0, 0.0};
    A.MatSolve(b, x);
    std::cout << "x = " << x[1] << '\n';
    return 0;
}
