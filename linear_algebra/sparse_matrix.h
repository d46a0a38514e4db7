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

/// A matrix that the solvers cannot work on.
class KVX3D_API LinearSolverException : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The sparse matrix that the operators assemble into and the iterative solvers derive from.
///
/// It lives in two phases. In the index phase AddIndex() collects the non-zero positions in one
/// ordered set a row. CompressIndex() turns the sets into compressed sparse rows with a value
/// array; the sets stay as the master copy of the pattern. AddElementValue() compresses by itself
/// when it has to, and stores positions nobody declared, at the price of copying both arrays:
///
///     CKVX_ART_SparseMatrix A(n);
///     A.AddIndex(row, col);                // the pattern, in any order, duplicates welcome
///     A.AddElementValue(row, col, value);  // the values, any number of times a position
///
/// Everything is 1-based: rows 1..rowsN, columns 1..colsN, and entry 0 of every array is a dummy.
/// Row i occupies positions Ia[i] .. Ia[i + 1] - 1 of Ja and Aa. Columns ascend after a
/// compression, but an inserted entry stands at the end of its row and MakeDiagFrontCSR() moves
/// diagonals, so look-ups are linear scans: a row holds one finite-volume stencil.
///
/// Of all operations only AddIndex(), AddElementValue() and the adding path of SetDiagonalValue()
/// check their arguments; a row outside 1..rowsN given to any other is the caller's mistake.
/// A failed allocation passes out as std::bad_alloc. One thread at a time per object. Row starts
/// are ints, so a matrix stores fewer than 2^31 entries.
///
/// A copy shares all four blocks with its source, and there is no reference count: only one of
/// the two may be destroyed.
class KVX3D_API CKVX_ART_SparseMatrix {
public:
    /// A square matrix of n rows and columns without entries.
    explicit CKVX_ART_SparseMatrix(int n);

    /// A rectangular matrix without entries. More columns than rows serve the operators that
    /// write ghost-cell columns.
    CKVX_ART_SparseMatrix(int rows, int cols);

    CKVX_ART_SparseMatrix(const CKVX_ART_SparseMatrix&) = default;
    CKVX_ART_SparseMatrix& operator=(const CKVX_ART_SparseMatrix&) = default;
    virtual ~CKVX_ART_SparseMatrix();

    int GetRowsN() const { return rowsN; }
    int GetColsN() const { return colsN; }

    /// Declares position (row, col); a repeated declaration keeps the count of entries. Either
    /// way the next AddElementValue() or solve compresses, which zeroes every stored value.
    ///
    /// @throws InvalidDimensionsException  the position lies outside the matrix
    void AddIndex(int row, int col);

    /// Builds Ia, Ja and Aa from the declared positions, all values 0.0, columns ascending.
    ///
    /// @return true
    bool CompressIndex();

    /// Adds `value` at (row, col). Compresses first if the matrix is not compressed, which zeroes
    /// what was stored. A position missing from the pattern is inserted at the end of its row;
    /// that costs a copy of the whole of Ja and Aa.
    ///
    /// Inline, because assembly is little else than this call.
    ///
    /// @return true
    /// @throws InvalidDimensionsException  the position lies outside the matrix; nothing changed
    bool AddElementValue(const int& row, const int& col, const double& value);

    /// Sets every stored value to 0.0 and keeps the pattern.
    void Clear();

    /// Drops pattern and values: the matrix is as freshly constructed, with its dimensions.
    void Reset();

    /// Sets the stored values of one row to 0.0; the entries stay.
    void SetRowZero(int row);

    /// Sets the stored values of one column to 0.0 by a scan of the whole matrix.
    void SetColZero(int col);

    /// The diagonal value of `row`, 0.0 if it is not stored. Never compresses.
    double GetDiagonalValue(int row);

    /// Overwrites the stored diagonal of `row` without checks and without compression. A diagonal
    /// that is not stored goes through AddElementValue(row, row, value).
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

    /// Prints Ia, Ja and Aa on standard output, one item a line.
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

    /// Kept out of line, so that the check costs an assembly loop four comparisons and no more.
    [[noreturn]] void ThrowBadPosition(int row, int col);

    /// Adds `value` to the first stored entry of (row, col); false if there is none.
    bool FindIndexAddValueCSR(const int& row, const int& col, const double& value);

    /// Stores a new entry at the end of `row`, in the set and in the arrays, which are reallocated
    /// with one entry more.
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
    // Copies: the arguments may refer into Ja or Aa, which a compression frees.
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
