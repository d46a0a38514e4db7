#include "fvm_operators/mat_operator.h"

#include "host_link/detail/last_stores.h"

namespace KVX_ART_FVM {

CKVX_ART_MatOperator::CKVX_ART_MatOperator(CKVX_ART_SparseMatrix* matrix, CKVX_ACMT_GV* gv) {
    DefaultConstructorProcedure(matrix, gv);
}

CKVX_ART_MatOperator::CKVX_ART_MatOperator(const CKVX_ART_MatOperator& other) = default;

CKVX_ART_MatOperator& CKVX_ART_MatOperator::operator=(const CKVX_ART_MatOperator& other) = default;

CKVX_ART_MatOperator::~CKVX_ART_MatOperator() {
    artGv = nullptr;
    sparseMatrix = nullptr;
    kvx3d::detail::KeepLastStores();
}

void CKVX_ART_MatOperator::DefaultConstructorProcedure(CKVX_ART_SparseMatrix* matrix,
                                                       CKVX_ACMT_GV* gv) {
    artGv = gv;
    sparseMatrix = matrix;
    if (!isARTGv()) {
        // [sic] "valied" in both texts, because hosts compare them.
        throw MatrixOperatorException(
            ">> <ART> MatrixOperatorError: You must put valied Kelvex3D Flow global variable.");
    }
    if (!isARTSMat()) {
        throw MatrixOperatorException(
            ">> <ART> MatrixOperatorError: You must put valied ART sparse matrix.");
    }
}

bool CKVX_ART_MatOperator::isARTGv() {
    return artGv != nullptr;
}

bool CKVX_ART_MatOperator::isARTSMat() {
    return sparseMatrix != nullptr;
}

}  // namespace KVX_ART_FVM
