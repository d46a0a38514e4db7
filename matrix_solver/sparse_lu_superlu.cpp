#include "matrix_solver/sparse_lu.h"

#include <vector>

#include <slu_ddefs.h>

namespace kvx3d_solver {
namespace {

/// Releases the frame of a matrix whose arrays belong to someone else.
struct BorrowedMatrix : SuperMatrix {
    ~BorrowedMatrix() { Destroy_SuperMatrix_Store(this); }
};

/// L and U, which exist only if the factorisation got through.
struct Factors {
    SuperMatrix L{}, U{};
    bool exist = false;
    ~Factors() {
        if (exist) {
            Destroy_SuperNode_Matrix(&L);
            Destroy_CompCol_Matrix(&U);
        }
    }
};

struct Statistics : SuperLUStat_t {
    Statistics() { StatInit(this); }
    ~Statistics() { StatFree(this); }
};

}  // namespace

bool HasSparseLu() {
    return true;
}

SparseLuResult SolveBySparseLu(const CsrSystem& A, Vector& x) {
    // Equilibration scales these in place.
    Vector values = A.value, b = A.rhs, solution(x.size());
    std::vector<int> columns = A.column, starts = A.rowStart;
    std::vector<int> columnOrder(A.n), rowOrder(A.n), tree(A.n);
    Vector rowScale(A.n), columnScale(A.n);
    BorrowedMatrix matrix, rightSide, unknowns;
    dCreate_CompRow_Matrix(&matrix, A.n, A.n, static_cast<int>(values.size()), values.data(),
                           columns.data(), starts.data(), SLU_NR, SLU_D, SLU_GE);
    dCreate_Dense_Matrix(&rightSide, A.n, 1, b.data(), A.n, SLU_DN, SLU_D, SLU_GE);
    dCreate_Dense_Matrix(&unknowns, A.n, 1, solution.data(), A.n, SLU_DN, SLU_D, SLU_GE);
    superlu_options_t options;
    set_default_options(&options);
    options.PrintStat = NO;
    options.IterRefine = SLU_DOUBLE;

    Factors factors;
    Statistics statistics;
    GlobalLU_t workspace;
    mem_usage_t memory;
    char equilibrated = 'N';
    double growth = 0.0, condition = 0.0, forwardError = 0.0, backwardError = 0.0;
    int info = 0;
    dgssvx(&options, &matrix, columnOrder.data(), rowOrder.data(), tree.data(), &equilibrated,
           rowScale.data(), columnScale.data(), &factors.L, &factors.U, nullptr, 0, &rightSide,
           &unknowns, &growth, &condition, &forwardError, &backwardError, &workspace, &memory,
           &statistics, &info);

    // info: 0 success, 1..n the zero pivot, n + 1 ill conditioned, above that bytes that were
    // not to be had.
    factors.exist = info >= 0 && info <= A.n + 1;
    if (info > 0 && info <= A.n) {
        return SparseLuResult::Singular;
    }
    if (!factors.exist) {
        return SparseLuResult::Unavailable;
    }
    x = solution;
    return SparseLuResult::Solved;
}

}  // namespace kvx3d_solver
