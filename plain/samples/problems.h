#ifndef KVX3D_PLAIN_SAMPLES_PROBLEMS_H
#define KVX3D_PLAIN_SAMPLES_PROBLEMS_H

#include <vector>

/// A system in the form that solveMatrix() takes, with its known solution: arrays addressed from 0,
/// row and column numbers from 1, the diagonal first in each row, rhs = A times exact.
struct Problem {
    int n = 0;
    std::vector<int> Ia, Ja;
    std::vector<double> Aa, rhs, exact;

    int NonZeros() const { return static_cast<int>(Ja.size()); }

    /// Appends a row: the diagonal value, then pairs of column (from 1) and value.
    struct Neighbor {
        int column;
        double value;
    };
    void AddRow(double diagonal, const std::vector<Neighbor>& neighbors);

    /// Chooses `exact` at random in [-1, 1] and computes the right-hand side from it.
    void ChooseSolution(unsigned seed);
};

/// |rhs - A x| / |rhs| in extended precision.
double RelativeResidual(const Problem& problem, const std::vector<double>& x);

/// Largest |x - exact|.
double LargestError(const Problem& problem, const std::vector<double>& x);

// Grid problems: m * m * m cells of unit size, x fastest, value 0 on the walls.

/// Seven-point diffusion with one coefficient per direction.
Problem Diffusion(int m, double ax, double ay, double az);
/// Diffusion plus first-order upwind convection along (1, 0.5, 0.25); `peclet` is that of a cell.
Problem ConvectionDiffusion(int m, double peclet);
/// Diffusion with a coefficient of 1 in the lower half in z and `jump` above.
Problem JumpingDiffusion(int m, double jump);
/// Diffusion with closed walls, the first cell fixed by an identity row.
Problem NeumannWithOneFixedCell(int m);
/// Diffusion with closed walls and no fixed cell: singular, with a consistent right-hand side.
Problem PureNeumann(int m);

// Changes that make a problem harder. All of them keep `exact`.

/// Negates about half of the rows and their right-hand sides.
void NegateHalfOfTheRows(Problem& problem, unsigned seed);
/// Turns about 30 % of the rows into identity rows, as for blanked cells. Their other entries stay
/// stored with the value 0.
void BlankCells(Problem& problem, unsigned seed);
/// Multiplies each row and its right-hand side by 10^u, u uniform in [-6, 6].
void ScaleRows(Problem& problem, unsigned seed);

/// `perRow` random neighbors in each row with values in [-1, 1]; the diagonal is about half the sum
/// of their magnitudes.
Problem RandomSparse(int n, int perRow, unsigned seed);
/// A full matrix. The diagonal of a row is `dominance` times the sum of its magnitudes.
Problem Dense(int n, double dominance, unsigned seed);

#endif
