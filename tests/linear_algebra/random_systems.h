#ifndef KVX3D_TESTS_LINEAR_ALGEBRA_RANDOM_SYSTEMS_H
#define KVX3D_TESTS_LINEAR_ALGEBRA_RANDOM_SYSTEMS_H

#include <random>
#include <string>
#include <vector>

/// One entry of a sparse matrix, 1-based.
struct Entry {
    int row;
    int col;
    double value;
};

/// A linear system, with its entries in the order in which they are to be stored.
struct System {
    std::string name;
    int n = 0;
    std::vector<Entry> entries;
    bool declared = false;  ///< true: AddIndex() first, so the columns of each row ascend
    std::vector<double> b;  ///< right-hand side, 1-based
    std::vector<double> x;  ///< first guess, 1-based
    int times = 30;
    double tolerance = 1.1e-08;
};

/// Makes random systems from a fixed seed.
class Generator {
public:
    explicit Generator(unsigned seed) : random(seed) {}

    int Int(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }
    double Real() { return std::uniform_real_distribution<double>(-1.0, 1.0)(random); }
    /// A small integer. Sums of these are exact, so that ties and breakdowns occur.
    double Tie() { return Int(-2, 2); }

    void Shuffle(std::vector<Entry>& entries);

    /// Fills the right-hand side and the first guess.
    void Vectors(System& system, bool ties);

    /// About `perRow` entries per row at random places, and every diagonal.
    System Sparse(int n, double perRow, double diagonal, bool ties);

    /// The 7-point stencil of convection and diffusion on a box.
    System Box(int nx, int ny, int nz, double diagonal);

private:
    std::mt19937 random;
};

#endif
