// Data layout: one flag and one expression (16 bytes and a row number) for each row of the full
// system; the reduced system is a matrix of its own, written row by row in one pass.

#include "matrix_solver/reduction.h"

#include <cmath>
#include <cstddef>

namespace kvx3d_solver {
namespace {

// Relative to the largest entry of the matrix, which CsrSystem brings to 1. A smaller diagonal may
// give an unknown that overflows; its row is left to the factorizations.
constexpr double smallestPivot = 1e-100;

}  // namespace

Reduction::Reduction(const CsrSystem& A) : full(A), reducedRow(static_cast<std::size_t>(A.n), 0) {
    for (int row = 0; row < full.n; ++row) {
        Tie found;
        if (MakeTie(row, found)) {
            tie.resize(static_cast<std::size_t>(full.n));
            tie[row] = found;
            reducedRow[row] = none;
        }
    }
    if (!tie.empty()) {
        ResolveChains();
    }
    NumberRows();
}

/// False if the row is not trivial.
bool Reduction::MakeTie(int row, Tie& found) const {
    const int diagonal = full.diagonal[row];
    const double pivot = full.value[diagonal];
    int other = none;
    for (int k = full.rowStart[row]; k < full.rowStart[row + 1]; ++k) {
        if (k == diagonal || full.value[k] == 0.0) {
            continue;
        }
        if (other != none) {
            return false;
        }
        other = k;
    }
    if (!(pivot >= smallestPivot) || (other != none && std::fabs(full.value[other]) > pivot)) {
        return false;
    }
    found.offset = full.rhs[row] / pivot;
    if (other != none) {
        found.root = full.column[other];
        found.factor = -full.value[other] / pivot;
    }
    return true;
}

/// Replaces every root that is trivial itself by what its own row gives.
void Reduction::ResolveChains() {
    std::vector<int> chain;
    std::vector<char> resolved(static_cast<std::size_t>(full.n), 0);
    for (int row = 0; row < full.n; ++row) {
        ResolveChain(row, chain, resolved);
    }
}

/// Follows the roots from a row and resolves the rows passed, the last one first. Rows that are
/// tied to each other in a ring would have no root: the one that closes the ring stays in the
/// system.
void Reduction::ResolveChain(int row, std::vector<int>& chain, std::vector<char>& resolved) {
    constexpr char onTheWay = 1, done = 2;
    chain.clear();
    int at = row;
    while (at != none && IsTrivial(at) && resolved[at] == 0) {
        resolved[at] = onTheWay;
        chain.push_back(at);
        at = tie[at].root;
    }
    if (at != none && IsTrivial(at) && resolved[at] == onTheWay) {
        reducedRow[at] = 0;
    }
    for (; !chain.empty(); chain.pop_back()) {
        Tie& t = tie[chain.back()];
        resolved[chain.back()] = done;
        if (IsTrivial(chain.back()) && t.root != none && IsTrivial(t.root)) {
            const Tie& next = tie[t.root];
            t.offset += t.factor * next.offset;
            t.factor *= next.factor;
            t.root = next.root;
        }
    }
}

void Reduction::NumberRows() {
    for (int& number : reducedRow) {
        if (number != none) {
            number = reducedRows++;
        }
    }
}

CsrSystem Reduction::ReducedSystem() const {
    CsrSystem reduced;
    SetRowCount(reduced, reducedRows);
    reduced.column.reserve(full.column.size());
    reduced.value.reserve(full.value.size());
    // Position of each column in the row being written, or one before that row.
    std::vector<int> place(static_cast<std::size_t>(reducedRows), none);
    for (int row = 0; row < full.n; ++row) {
        if (!IsTrivial(row)) {
            AppendRow(row, place, reduced);
        }
    }
    reduced.rhsNorm = Norm(reduced.rhs);
    reduced.solutionExponent = full.solutionExponent;
    return reduced;
}

/// Writes one row with all expressions substituted.
void Reduction::AppendRow(int row, std::vector<int>& place, CsrSystem& reduced) const {
    const int to = reducedRow[row];
    const int begin = reduced.rowStart[to];
    double rhs = full.rhs[row];
    for (int k = full.rowStart[row]; k < full.rowStart[row + 1]; ++k) {
        int column = full.column[k];
        double value = full.value[k];
        if (value == 0.0 && column != row) {
            continue;
        }
        if (IsTrivial(column)) {
            const Tie& t = tie[column];
            rhs -= value * t.offset;
            value *= t.factor;
            column = t.root;
        }
        if (column == none) {
            continue;
        }
        int& at = place[reducedRow[column]];
        if (at < begin) {
            at = static_cast<int>(reduced.column.size());
            reduced.column.push_back(reducedRow[column]);
            reduced.value.push_back(value);
        } else {
            reduced.value[at] += value;
        }
    }
    reduced.rhs[to] = rhs;
    FinishRow(reduced, to, begin, static_cast<int>(reduced.column.size()));
}

Vector Reduction::Restrict(const Vector& x) const {
    Vector restricted;
    restricted.reserve(static_cast<std::size_t>(reducedRows));
    for (int row = 0; row < full.n; ++row) {
        if (!IsTrivial(row)) {
            restricted.push_back(x[row]);
        }
    }
    return restricted;
}

void Reduction::Expand(const Vector& reduced, Vector& x) const {
    for (int row = 0; row < full.n; ++row) {
        if (!IsTrivial(row)) {
            x[row] = reduced[reducedRow[row]];
            continue;
        }
        const Tie& t = tie[row];
        x[row] = t.offset;
        if (t.root != none) {
            x[row] += t.factor * reduced[reducedRow[t.root]];
        }
    }
}

}  // namespace kvx3d_solver
