#ifndef KVX3D_LINEAR_ALGEBRA_SPARSE_MATRIX_H
#define KVX3D_LINEAR_ALGEBRA_SPARSE_MATRIX_H

#include "host_link/export.h"

#include <set>
#include <stdexcept>
#include <vector>

/// A row or column number outside the matrix.
class KVX3D_API InvalidDimensionsException : public std::out_of_range {
public:
    using std::out_of_range::out_of_range;
};

/// A matrix that the solvers cannot solve.
class KVX3D_API LinearSolverException : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The sparse matrix into which the operators assemble and from which the iterative solvers derive.
///
/// It has two phases. In the index phase AddIndex() collects the non-zero positions in one ordered
/// set per row. CompressIndex() turns the sets into compressed sparse rows (CSR) with an array of
/// values; the sets remain as the master copy of the pattern. AddElementValue() compresses the
/// matrix if necessary. It also stores positions that were not declared, but copies both arrays for
/// each of them:
///
///     CKVX_ART_SparseMatrix A(n);
///     A.AddIndex(row, col);                // the pattern, in any order, duplicates allowed
///     A.AddElementValue(row, col, value);  // the values, any number of times per position
///
/// Everything is 1-based: rows 1..rowsN, columns 1..colsN, and entry 0 of every array is a dummy.
/// Row i occupies positions Ia[i] .. Ia[i + 1] - 1 of Ja and Aa. Columns ascend after a
/// compression, but an inserted entry goes to the end of its row and MakeDiagFrontCSR() moves
/// diagonals, so entries are found by linear scans. A row holds one finite-volume stencil, so the
/// scans are short.
///
/// Only AddIndex(), AddElementValue() and the adding path of SetDiagonalValue() check their
/// arguments. Any other operation called with a row outside 1..rowsN reads or writes out of
/// bounds. A failed allocation throws std::bad_alloc. Only one thread at a time may use an object.
/// Row starts are ints, so a matrix stores fewer than 2^31 entries.
///
/// A copy shares all four blocks with its source, and there is no reference count: only one of
/// the two may be destroyed.
class KVX3D_API CKVX_ART_SparseMatrix {
public:
    /// A square matrix of n rows and columns without entries.
    explicit CKVX_ART_SparseMatrix(int n);

    /// A rectangular matrix without entries. Operators that write ghost-cell columns need more
    /// columns than rows.
    CKVX_ART_SparseMatrix(int rows, int cols);

    CKVX_ART_SparseMatrix(const CKVX_ART_SparseMatrix&) = default;
    CKVX_ART_SparseMatrix& operator=(const CKVX_ART_SparseMatrix&) = default;
    virtual ~CKVX_ART_SparseMatrix();

    int GetRowsN() const { return rowsN; }
    int GetColsN() const { return colsN; }

    /// Declares position (row, col). A repeated declaration does not change the number of entries.
    /// In either case the next AddElementValue() or solve compresses the matrix, which sets every
    /// stored value to zero.
    ///
    /// @throws InvalidDimensionsException  the position lies outside the matrix
    void AddIndex(int row, int col);

    /// Builds Ia, Ja and Aa from the declared positions, all values 0.0, columns ascending.
    ///
    /// @return true
    bool CompressIndex();

    /// Adds `value` at (row, col). A matrix that is not compressed is compressed first, which sets
    /// every stored value to zero. A position missing from the pattern is inserted at the end of
    /// its row, which costs a copy of all of Ja and Aa.
    ///
    /// Inline, because assembly consists mostly of this call.
    ///
    /// @return true
    /// @throws InvalidDimensionsException  the position lies outside the matrix; nothing changed
    bool AddElementValue(const int& row, const int& col, const double& value);

    /// Sets every stored value to 0.0 and keeps the pattern.
    void Clear();

    /// Removes pattern and values: the matrix is as after construction, with the same dimensions.
    void Reset();

    /// Sets the stored values of one row to 0.0; the entries stay.
    void SetRowZero(int row);

    /// Sets the stored values of one column to 0.0; scans the whole matrix.
    void SetColZero(int col);

    /// The diagonal value of `row`, or 0.0 if it is not stored. Does not compress the matrix.
    double GetDiagonalValue(int row);

    /// Overwrites the stored diagonal of `row` without checks and without compression. A diagonal
    /// that is not stored is added by AddElementValue(row, row, value).
    ///
    /// @throws InvalidDimensionsException  on the second path, as AddElementValue()
    void SetDiagonalValue(int row, double value);

    /// factor * sum of x[Ja[k]] * Aa[k] over the off-diagonal entries of `row`, in storage order.
    ///
    /// @param x  an entry for every stored column number, 1-based
    double GetOffDiagonalValueTimesVectorSum(int row, double factor, double* x);

    /// Row times vector: the sum of x[Ja[k]] * Aa[k] in storage order, 0.0 for an empty row.
    ///
    /// @param x  an entry for every stored column number, 1-based
    double DotProduct(int row, double* x);

    /// Prints Ia, Ja and Aa on standard output, one item per line, always in the default number
    /// format: the format settings of std::cout have no effect.
    void DebugRun();

    int rowsN;        ///< number of rows, fixed at construction
    int colsN;        ///< number of columns, fixed at construction
    int* Ia;          ///< rowsN + 2 row starts, Ia[0] == 0, Ia[1] == 1, owned
    int* Ja;          ///< Ia[rowsN + 1] column numbers, Ja[0] == 0, owned; null until compressed
    double* Aa;       ///< Ia[rowsN + 1] values, Aa[0] == 0.0, owned; null until compressed
    bool compressed;  ///< Ia, Ja, Aa reflect all of indexSets
    std::vector<std::set<int>>* indexSets;  ///< rowsN + 1 sets of columns, set 0 empty, owned

protected:
    /// Swaps the diagonal entry of each row to the row's first position; the other entries keep
    /// their places. A second run changes nothing.
    ///
    /// @return true
    /// @throws LinearSolverException  a row stores no diagonal; the rows before it stay swapped
    bool MakeDiagFrontCSR();

private:
    void DefaultConstructorProcedure(int rows, int cols);

    /// @throws InvalidDimensionsException  the position lies outside the matrix
    void CheckDimensions(const int& row, const int& col);

    /// Not inline, so that the check adds only four comparisons to an assembly loop.
    [[noreturn]] void ThrowBadPosition(int row, int col);

    /// Adds `value` to the first stored entry of (row, col).
    /// @return false if there is none
    bool FindIndexAddValueCSR(const int& row, const int& col, const double& value);

    /// Stores a new entry, in the set of `row` and at the end of the row in the arrays, which are
    /// reallocated with one entry more.
    void InsertIndexAndValue2CSR(const int& row, const int& col, const double& value);
};

inline void CKVX_ART_SparseMatrix::CheckDimensions(const int& row, const int& col) {
    if (row < 1 || col < 1 || row > rowsN || col > colsN) {
        ThrowBadPosition(row, col);
    }
}

inline bool CKVX_ART_SparseMatrix::FindIndexAddValueCSR(const int& row, const int& col,
                                                        const double& value) {
    const int end = Ia[row + 1];
    for (int k = Ia[row]; k < end; ++k) {
        if (Ja[k] == col) {
            Aa[k] += value;
            return true;
        }
    }
    return false;
}

inline bool CKVX_ART_SparseMatrix::AddElementValue(const int& row, const int& col,
                                                   const double& value) {
    // Copies, because the arguments may refer to entries of Ja or Aa, which a compression releases.
    const int i = row;
    const int j = col;
    const double a = value;
    CheckDimensions(i, j);
    if (!compressed) {
        CompressIndex();
    }
    if (!FindIndexAddValueCSR(i, j, a)) {
        InsertIndexAndValue2CSR(i, j, a);
    }
    return true;
}

#endif
