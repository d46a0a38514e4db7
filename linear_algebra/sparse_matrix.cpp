#include "linear_algebra/sparse_matrix.h"

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <memory>
#include <utility>

#include "host_link/detail/classic_format.h"
#include "linear_algebra/detail/csr_rows.h"

// Data layout, all of it 1-based:
//
//     indexSets[row]    ordered set of the columns of a row: the master copy of the pattern
//            |
//            | CompressIndex()
//            v
//     Ia  row starts; Ja  column numbers and Aa  values, row after row (detail/csr_rows.h)
//
// A new column is added to the set and, in a compressed matrix, also at the end of its row in Ja
// and Aa. plain/plain_sparse_matrix.h is the transcription of the pattern phase.

CKVX_ART_SparseMatrix::CKVX_ART_SparseMatrix(int n) {
    DefaultConstructorProcedure(n, n);
}

CKVX_ART_SparseMatrix::CKVX_ART_SparseMatrix(int rows, int cols) {
    DefaultConstructorProcedure(rows, cols);
}

void CKVX_ART_SparseMatrix::DefaultConstructorProcedure(int rows, int cols) {
    rowsN = rows;
    colsN = cols;
    auto sets = std::make_unique<std::vector<std::set<int>>>(rows + 1);
    compressed = false;
    Ja = nullptr;
    Aa = nullptr;
    // With ones everywhere each row is empty, so row-wise reads are harmless before the first
    // compression although Ja and Aa are null.
    Ia = new int[rows + 2];
    Ia[0] = 0;
    std::fill(Ia + 1, Ia + rows + 2, 1);
    indexSets = sets.release();
}

CKVX_ART_SparseMatrix::~CKVX_ART_SparseMatrix() {
    delete indexSets;
    delete[] Ia;
    delete[] Ja;
    delete[] Aa;
}

void CKVX_ART_SparseMatrix::AddIndex(int row, int col) {
    CheckDimensions(row, col);
    // Faces come in mesh order, so a new column is usually the first or the last of its row. The
    // hint avoids the search for its place, which saves 5 percent of the time to declare a
    // pattern.
    std::set<int>& columns = (*indexSets)[row];
    const bool isFirst = !columns.empty() && col < *columns.begin();
    columns.insert(isFirst ? columns.begin() : columns.end(), col);
    // Also if the position was there already: a declaration announces a new assembly, which starts
    // from zeros.
    compressed = false;
}

void CKVX_ART_SparseMatrix::ThrowBadPosition(int row, int col) {
    if (row < 1 || col < 1) {
        throw InvalidDimensionsException(
            ">> <ART> SparseMatrixError: Matrix dimensions cannot be zero or negative.");
    }
    throw InvalidDimensionsException(">> <ART> SparseMatrixError: Add index out of matrix range.");
}

bool CKVX_ART_SparseMatrix::CompressIndex() {
    delete[] Ja;
    delete[] Aa;
    Ja = nullptr;
    Aa = nullptr;
    Ia[1] = 1;
    for (int i = 1; i <= rowsN; ++i) {
        Ia[i + 1] = Ia[i] + static_cast<int>((*indexSets)[i].size());
    }
    const int m = Ia[rowsN + 1];
    Ja = new int[m];
    Aa = new double[m];
    Ja[0] = 0;
    for (int i = 1; i <= rowsN; ++i) {
        std::copy((*indexSets)[i].begin(), (*indexSets)[i].end(), Ja + Ia[i]);
    }
    std::fill(Aa, Aa + m, 0.0);
    compressed = true;
    return true;
}

bool CKVX_ART_SparseMatrix::MakeDiagFrontCSR() {
    if (rowsN < 1) {
        return true;
    }
    const int endOfEntries = Ia[rowsN + 1];
    for (int i = 1; i <= rowsN; ++i) {
        const int front = Ia[i];
        // This test includes empty rows: they are compared with the first entry of the next stored
        // row and pass if that entry has column i. Nothing is stored after the last entry, so an
        // empty row at the end has no diagonal and must not be compared with memory past the array.
        if (front < endOfEntries && Ja[front] == i) {
            continue;
        }
        int k = front + 1;
        while (k < Ia[i + 1] && Ja[k] != i) {
            ++k;
        }
        if (k >= Ia[i + 1]) {
            throw LinearSolverException(
                ">> <ART> LinearSolverError: The matrix diagonal must have value.");
        }
        std::swap(Ja[front], Ja[k]);
        std::swap(Aa[front], Aa[k]);
    }
    return true;
}

void CKVX_ART_SparseMatrix::InsertIndexAndValue2CSR(const int& row, const int& col,
                                                    const double& value) {
    (*indexSets)[row].insert(col);
    const int m = Ia[rowsN + 1];
    const int end = Ia[row + 1];
    // Exactly one entry more and no spare capacity: Ia[rowsN + 1] is the length of both arrays, and
    // the SAMG front allocates its copy with that length. A host that needs speed declares its
    // pattern beforehand.
    std::unique_ptr<int[]> newJa(new int[m + 1]);
    std::unique_ptr<double[]> newAa(new double[m + 1]);
    newJa[0] = 0;
    newAa[0] = 0.0;
    std::copy(Ja + 1, Ja + end, newJa.get() + 1);
    std::copy(Aa + 1, Aa + end, newAa.get() + 1);
    newJa[end] = col;
    newAa[end] = value;
    std::copy(Ja + end, Ja + m, newJa.get() + end + 1);
    std::copy(Aa + end, Aa + m, newAa.get() + end + 1);
    for (int i = row + 1; i <= rowsN + 1; ++i) {
        ++Ia[i];
    }
    delete[] Ja;
    delete[] Aa;
    Ja = newJa.release();
    Aa = newAa.release();
}

void CKVX_ART_SparseMatrix::Clear() {
    const int end = Ia[rowsN + 1];
    if (end < 2) {
        return;
    }
    std::fill(Aa + 1, Aa + end, 0.0);
}

void CKVX_ART_SparseMatrix::Reset() {
    for (std::set<int>& columns : *indexSets) {
        columns.clear();
    }
    compressed = false;
    std::fill(Ia + 1, Ia + rowsN + 2, 1);
    delete[] Ja;
    delete[] Aa;
    Ja = nullptr;
    Aa = nullptr;
}

void CKVX_ART_SparseMatrix::SetRowZero(int row) {
    for (int k = Ia[row]; k < Ia[row + 1]; ++k) {
        Aa[k] = 0.0;
    }
}

void CKVX_ART_SparseMatrix::SetColZero(int col) {
    for (int k = Ia[1]; k < Ia[rowsN + 1]; ++k) {
        if (Ja[k] == col) {
            Aa[k] = 0.0;
        }
    }
}

double CKVX_ART_SparseMatrix::GetDiagonalValue(int row) {
    for (int k = Ia[row]; k < Ia[row + 1]; ++k) {
        if (Ja[k] == row) {
            return Aa[k];
        }
    }
    return 0.0;
}

void CKVX_ART_SparseMatrix::SetDiagonalValue(int row, double value) {
    for (int k = Ia[row]; k < Ia[row + 1]; ++k) {
        if (Ja[k] == row) {
            // A stale matrix is not compressed here: that would zero the other values of the row.
            Aa[k] = value;
            return;
        }
    }
    AddElementValue(row, row, value);
}

double CKVX_ART_SparseMatrix::GetOffDiagonalValueTimesVectorSum(int row, double factor, double* x) {
    double sum = 0.0;
    for (int k = Ia[row]; k < Ia[row + 1]; ++k) {
        if (Ja[k] != row) {
            sum += x[Ja[k]] * Aa[k];
        }
    }
    return sum * factor;
}

double CKVX_ART_SparseMatrix::DotProduct(int row, double* x) {
    // Hosts process the rows in order, but the prefetcher of the processor loses track of that
    // between two calls. Prefetching about 500 entries ahead reduces the time for large matrices by
    // a third.
    const std::uintptr_t entry = static_cast<std::uintptr_t>(Ia[row]) + 512;
    kvx3d::detail::Prefetch(Ja, entry * sizeof(int));
    kvx3d::detail::Prefetch(Aa, entry * sizeof(double));
    return kvx3d::detail::RowProduct({rowsN, Ia, Ja, Aa}, row, x);
}

void CKVX_ART_SparseMatrix::DebugRun() {
    const kvx3d::detail::ClassicFormat format(std::cout);
    std::cout << "Ia:\n";
    for (int i = 1; i <= rowsN + 1; ++i) {
        std::cout << Ia[i] << '\n';
    }
    std::cout << "Ja:\n";
    for (int k = Ia[1]; k < Ia[rowsN + 1]; ++k) {
        std::cout << Ja[k] << '\n';
    }
    std::cout << "Aa:\n";
    for (int k = Ia[1]; k < Ia[rowsN + 1]; ++k) {
        std::cout << Aa[k] << '\n';
    }
}
