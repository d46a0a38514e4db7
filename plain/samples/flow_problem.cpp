#include "plain/samples/flow_problem.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double cylinderRadius = 0.125;  // of the side of the background; its center is the middle
constexpr double ringRadius = 0.3;
constexpr double holeRadius = 0.2;
constexpr double peclet = 10.0;  // of a background cell
constexpr double relaxation = 0.9;

/// The two grids and the rows assembled so far; cell numbers from 0, the background first.
class Assembly {
public:
    Assembly(int side, FlowEquation chosen)
        : m(side), equation(chosen), rows(static_cast<std::size_t>(CellCount())) {}

    Problem Assemble() {
        for (int cell = 0; cell < m * m; ++cell) {
            AddBackgroundCell(cell % m, cell / m);
        }
        for (int cell = 0; cell < RingRows() * m; ++cell) {
            AddRingCell(cell % m, cell / m);
        }
        Relax();
        AddPlaneGhosts();
        return Finished();
    }

private:
    int RingRows() const { return m / 2; }
    int CellCount() const { return m * m + RingRows() * m; }
    int Background(int i, int j) const { return i + m * j; }
    int Ring(int t, int r) const { return m * m + (t + m) % m + m * r; }

    bool IsBlanked(int i, int j) const {
        return std::hypot((i + 0.5) / m - 0.5, (j + 0.5) / m - 0.5) < holeRadius;
    }

    void Add(int row, int column, double value) { rows[row][column] += value; }

    /// One side of a face: `conductance` of diffusion, `flux` out of the cell.
    void AddFace(int row, double conductance, double flux, const std::map<int, double>& beyond) {
        const double inflow =
            equation == FlowEquation::Momentum ? peclet * std::max(0.0, -flux) : 0.0;
        const double a = conductance + inflow;
        Add(row, row, a);
        for (const auto& [column, weight] : beyond) {
            Add(row, column, -a * weight);
        }
    }

    /// A new ghost row: its own value given, or that of `cell`.
    int AddGhost(bool given, int cell) {
        const int ghost = static_cast<int>(rows.size());
        rows.emplace_back();
        Add(ghost, ghost, 1.0);
        if (!given) {
            Add(ghost, cell, -1.0);
        }
        return ghost;
    }

    void AddBackgroundCell(int i, int j) {
        const int row = Background(i, j);
        if (IsBlanked(i, j)) {
            Add(row, row, 1.0);
            return;
        }
        const int direction[4][2] = {{-1, 0}, {1, 0}, {0, -1}, {0, 1}};
        for (const auto& [di, dj] : direction) {
            const int ni = i + di, nj = j + dj;
            const double flux = di + 0.5 * dj;  // a uniform stream along (1, 0.5)
            if (ni < 0 || ni == m || nj < 0 || nj == m) {
                const bool given = equation == FlowEquation::Momentum ? ni != m : ni == m;
                const int ghost = AddGhost(given, row);
                AddFace(row, given ? 2.0 : 0.0, given ? flux : 0.0, {{ghost, 1.0}});
            } else if (IsBlanked(ni, nj)) {
                AddFace(row, 1.0, flux, RingDonors((ni + 0.5) / m - 0.5, (nj + 0.5) / m - 0.5));
            } else {
                AddFace(row, 1.0, flux, {{Background(ni, nj), 1.0}});
            }
        }
    }

    void AddRingCell(int t, int r) {
        const int row = Ring(t, r);
        const double dr = (ringRadius - cylinderRadius) / RingRows();
        const double radius = cylinderRadius + (r + 0.5) * dr;
        const double angle = 2.0 * pi / m;
        AddFace(row, dr / (radius * angle), 0.3, {{Ring(t + 1, r), 1.0}});
        AddFace(row, dr / (radius * angle), -0.3, {{Ring(t - 1, r), 1.0}});
        const double inner = (radius - 0.5 * dr) * angle / dr;
        const double outer = (radius + 0.5 * dr) * angle / dr;
        if (r == 0) {
            const bool given = equation == FlowEquation::Momentum;
            const int ghost = AddGhost(given, row);
            AddFace(row, given ? 2.0 * inner : 0.0, 0.0, {{ghost, 1.0}});
        } else {
            AddFace(row, inner, 0.0, {{Ring(t, r - 1), 1.0}});
        }
        if (r + 1 < RingRows()) {
            AddFace(row, outer, 0.0, {{Ring(t, r + 1), 1.0}});
        } else {
            const double beyond = radius + dr;
            const double theta = (t + 0.5) * angle;
            AddFace(row, outer, 0.0,
                    BackgroundDonors(beyond * std::cos(theta), beyond * std::sin(theta)));
        }
    }

    /// Nine cells around the one at (ci, cj), weighted by their distance; `number` gives their ids.
    template <typename Number>
    static std::map<int, double> Donors(int ci, int cj, const Number& number) {
        std::map<int, double> donors;
        for (int dj = -1; dj <= 1; ++dj) {
            for (int di = -1; di <= 1; ++di) {
                const double weight = (di == 0 ? 0.5 : 0.25) * (dj == 0 ? 0.5 : 0.25);
                donors[number(ci + di, cj + dj)] += weight;
            }
        }
        return donors;
    }

    /// Donors for a point relative to the center of the cylinder.
    std::map<int, double> RingDonors(double x, double y) const {
        const double fraction = (std::hypot(x, y) - cylinderRadius) / (ringRadius - cylinderRadius);
        const int r = std::clamp(static_cast<int>(fraction * RingRows()), 1, RingRows() - 2);
        const int t = static_cast<int>(std::floor(std::atan2(y, x) / (2.0 * pi) * m));
        return Donors(t, r, [this](int i, int j) { return Ring(i, j); });
    }

    std::map<int, double> BackgroundDonors(double x, double y) const {
        return Donors(static_cast<int>((x + 0.5) * m), static_cast<int>((y + 0.5) * m),
                      [this](int i, int j) { return Background(i, j); });
    }

    void Relax() {
        if (equation == FlowEquation::Pressure) {
            return;
        }
        for (int cell = 0; cell < CellCount(); ++cell) {
            rows[cell][cell] /= relaxation;
        }
    }

    /// Front and back planes: a ghost for each cell and plane, which no other row refers to.
    void AddPlaneGhosts() {
        for (int ghost = 0; ghost < 2 * CellCount(); ++ghost) {
            AddGhost(false, ghost % CellCount());
        }
    }

    Problem Finished() const {
        Problem problem;
        for (std::size_t row = 0; row < rows.size(); ++row) {
            std::vector<Problem::Neighbor> neighbors;
            for (const auto& [column, value] : rows[row]) {
                if (column != static_cast<int>(row)) {
                    neighbors.push_back({column + 1, value});
                }
            }
            problem.AddRow(rows[row].at(static_cast<int>(row)), neighbors);
        }
        problem.ChooseSolution(/*seed=*/9);
        return problem;
    }

    const int m;
    const FlowEquation equation;
    std::vector<std::map<int, double>> rows;
};

}  // namespace

Problem FlowProblem(int m, FlowEquation equation) {
    return Assembly(m, equation).Assemble();
}
