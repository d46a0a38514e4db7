#include "matrix_solver/sparse_lu.h"

#include <slu_ddefs.h>

namespace kvx3d_solver {
namespace {

/// Releases the frame of a matrix whose arrays belong to someone else.
struct BorrowedMatrix : SuperMatrix {
    BorrowedMatrix() = default;
    BorrowedMatrix(const BorrowedMatrix&) = delete;
    BorrowedMatrix& operator=(const BorrowedMatrix&) = delete;
    ~BorrowedMatrix() { Destroy_SuperMatrix_Store(this); }
};

struct Statistics : SuperLUStat_t {
    Statistics() { StatInit(this); }
    Statistics(const Statistics&) = delete;
    Statistics& operator=(const Statistics&) = delete;
    ~Statistics() { StatFree(this); }
};

}  // namespace

/// The factors are those of the transposed matrix: our rows are SuperLU's columns.
struct SparseLu::Factors {
    explicit Factors(int size) : n(size), columnOrder(size), rowOrder(size) {}
    Factors(const Factors&) = delete;
    Factors& operator=(const Factors&) = delete;
    ~Factors() {
        if (exist) {
            Destroy_SuperNode_Matrix(&L);
            Destroy_CompCol_Matrix(&U);
        }
    }

    int n;
    std::vector<int> columnOrder, rowOrder;
    SuperMatrix L{}, U{};
    bool exist = false;
};

bool HasSparseLu() {
    return true;
}

// The steps of SuperLU's own driver, which in 5.3 leaks its work when the matrix is singular.
SparseLu::SparseLu(std::vector<int> rowStart, std::vector<int> column, Vector value)
    : factors(std::make_unique<Factors>(static_cast<int>(rowStart.size()) - 1)) {
    Factors& f = *factors;
    std::vector<int> tree(f.n);
    BorrowedMatrix matrix;
    dCreate_CompCol_Matrix(&matrix, f.n, f.n, static_cast<int>(value.size()), value.data(),
                           column.data(), rowStart.data(), SLU_NC, SLU_D, SLU_GE);
    superlu_options_t options;
    set_default_options(&options);
    Statistics statistics;
    SuperMatrix permuted;
    get_perm_c(options.ColPerm, &matrix, f.columnOrder.data());
    sp_preorder(&options, &matrix, f.columnOrder.data(), tree.data(), &permuted);

    GlobalLU_t workspace;
    int info = 0;
    dgstrf(&options, &permuted, sp_ienv(2), sp_ienv(1), tree.data(), nullptr, 0,
           f.columnOrder.data(), f.rowOrder.data(), &f.L, &f.U, &workspace, &statistics, &info);
    Destroy_CompCol_Permuted(&permuted);

    // info: 0 success, 1..n the column of the zero pivot, above n bytes that were not to be had.
    f.exist = info >= 0 && info <= f.n;
    if (f.exist) {
        state = info == 0 ? State::Ready : State::Singular;
    }
}

SparseLu::~SparseLu() = default;

void SparseLu::Solve(double* b) {
    Factors& f = *factors;
    BorrowedMatrix rightSide;
    dCreate_Dense_Matrix(&rightSide, f.n, 1, b, f.n, SLU_DN, SLU_D, SLU_GE);
    Statistics statistics;
    int info = 0;
    dgstrs(TRANS, &f.L, &f.U, f.columnOrder.data(), f.rowOrder.data(), &rightSide, &statistics,
           &info);
}

}  // namespace kvx3d_solver
