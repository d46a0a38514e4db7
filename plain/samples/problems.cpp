#include "plain/samples/problems.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <set>

namespace {

/// Coefficient of the face between a cell (i, j, k) and its neighbor in a direction 0..5, which
/// are -x, +x, -y, +y, -z, +z.
using FaceCoefficient = std::function<double(int k, int direction)>;

/// Each face couples two cells; `wall` says whether a wall face contributes to the diagonal too.
Problem GridProblem(int m, bool wall, const FaceCoefficient& coefficient) {
    Problem problem;
    const int step[3] = {1, m, m * m};
    for (int cell = 0; cell < m * m * m; ++cell) {
        const int place[3] = {cell % m, cell / m % m, cell / (m * m)};
        double diagonal = 0.0;
        std::vector<Problem::Neighbor> neighbors;
        for (int direction = 0; direction < 6; ++direction) {
            const int axis = direction / 2;
            const int side = direction % 2 ? 1 : -1;
            const bool inside = place[axis] + side >= 0 && place[axis] + side < m;
            const double a = coefficient(place[2], direction);
            if (inside) {
                neighbors.push_back({cell + side * step[axis] + 1, -a});
            }
            if (inside || wall) {
                diagonal += a;
            }
        }
        problem.AddRow(diagonal, neighbors);
    }
    problem.ChooseSolution(/*seed=*/1);
    return problem;
}

void SetRow(Problem& problem, int row, const std::function<double(int k, double value)>& change) {
    for (int k = problem.Ia[row] - 1; k < problem.Ia[row + 1] - 1; ++k) {
        problem.Aa[k] = change(k, problem.Aa[k]);
    }
}

}  // namespace

void Problem::AddRow(double diagonal, const std::vector<Neighbor>& neighbors) {
    if (Ia.empty()) {
        Ia.push_back(1);
    }
    Ja.push_back(++n);
    Aa.push_back(diagonal);
    for (const Neighbor& neighbor : neighbors) {
        Ja.push_back(neighbor.column);
        Aa.push_back(neighbor.value);
    }
    Ia.push_back(static_cast<int>(Ja.size()) + 1);
}

void Problem::ChooseSolution(unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    exact.resize(n);
    for (double& e : exact) {
        e = uniform(random);
    }
    rhs.assign(n, 0.0);
    for (int i = 0; i < n; ++i) {
        for (int k = Ia[i] - 1; k < Ia[i + 1] - 1; ++k) {
            rhs[i] += Aa[k] * exact[Ja[k] - 1];
        }
    }
}

double RelativeResidual(const Problem& problem, const std::vector<double>& x) {
    long double residual = 0.0L, size = 0.0L;
    for (int i = 0; i < problem.n; ++i) {
        long double r = problem.rhs[i];
        for (int k = problem.Ia[i] - 1; k < problem.Ia[i + 1] - 1; ++k) {
            r -= static_cast<long double>(problem.Aa[k]) * x[problem.Ja[k] - 1];
        }
        residual += r * r;
        size += static_cast<long double>(problem.rhs[i]) * problem.rhs[i];
    }
    return static_cast<double>(std::sqrt(residual / size));
}

double LargestError(const Problem& problem, const std::vector<double>& x) {
    double largest = 0.0;
    for (int i = 0; i < problem.n; ++i) {
        const double error = std::fabs(x[i] - problem.exact[i]);
        largest = error <= largest ? largest : error;  // a NaN is kept
    }
    return largest;
}

Problem Diffusion(int m, double ax, double ay, double az) {
    const double a[3] = {ax, ay, az};
    return GridProblem(m, true, [a](int, int direction) { return a[direction / 2]; });
}

Problem ConvectionDiffusion(int m, double peclet) {
    const double flux[3] = {peclet, 0.5 * peclet, 0.25 * peclet};
    return GridProblem(m, true, [flux](int, int direction) {
        const bool upwind = direction % 2 == 0;
        return 1.0 + (upwind ? flux[direction / 2] : 0.0);
    });
}

Problem JumpingDiffusion(int m, double jump) {
    return GridProblem(m, true, [m, jump](int k, int direction) {
        const int below = direction == 4 ? k - 1 : k;
        const int above = direction == 5 ? k + 1 : k;
        const double a = 2 * below < m ? 1.0 : jump;
        const double b = 2 * above < m ? 1.0 : jump;
        return 2.0 * a * b / (a + b);
    });
}

Problem PureNeumann(int m) {
    return GridProblem(m, false, [](int, int) { return 1.0; });
}

Problem NeumannWithOneFixedCell(int m) {
    Problem problem = PureNeumann(m);
    SetRow(problem, 0, [](int k, double) { return k == 0 ? 1.0 : 0.0; });
    problem.ChooseSolution(/*seed=*/2);
    return problem;
}

void NegateHalfOfTheRows(Problem& problem, unsigned seed) {
    std::mt19937 random(seed);
    for (int i = 0; i < problem.n; ++i) {
        if (random() % 2) {
            SetRow(problem, i, [](int, double value) { return -value; });
            problem.rhs[i] = -problem.rhs[i];
        }
    }
}

void BlankCells(Problem& problem, unsigned seed) {
    std::mt19937 random(seed);
    for (int i = 0; i < problem.n; ++i) {
        if (random() % 10 < 3) {
            const int first = problem.Ia[i] - 1;
            SetRow(problem, i, [first](int k, double) { return k == first ? 1.0 : 0.0; });
            problem.rhs[i] = problem.exact[i];
        }
    }
}

void ScaleRows(Problem& problem, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> exponent(-6.0, 6.0);
    for (int i = 0; i < problem.n; ++i) {
        const double scale = std::pow(10.0, exponent(random));
        SetRow(problem, i, [scale](int, double value) { return scale * value; });
        problem.rhs[i] *= scale;
    }
}

Problem RandomSparse(int n, int perRow, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    Problem problem;
    for (int row = 1; row <= n; ++row) {
        std::set<int> columns;
        while (static_cast<int>(columns.size()) < std::min(perRow, n - 1)) {
            const int column = 1 + static_cast<int>(random() % static_cast<unsigned>(n));
            if (column != row) {
                columns.insert(column);
            }
        }
        double sum = 0.0;
        std::vector<Problem::Neighbor> neighbors;
        for (const int column : columns) {
            neighbors.push_back({column, uniform(random)});
            sum += std::fabs(neighbors.back().value);
        }
        problem.AddRow(0.5 * sum + 0.1, neighbors);
    }
    problem.ChooseSolution(seed + 1);
    return problem;
}

Problem Dense(int n, double dominance, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    Problem problem;
    for (int row = 1; row <= n; ++row) {
        double sum = 1.0;
        std::vector<Problem::Neighbor> neighbors;
        for (int column = 1; column <= n; ++column) {
            if (column != row) {
                neighbors.push_back({column, uniform(random)});
                sum += std::fabs(neighbors.back().value);
            }
        }
        problem.AddRow(dominance * sum, neighbors);
    }
    problem.ChooseSolution(seed + 1);
    return problem;
}
