#ifndef KVX3D_MATRIX_SOLVER_MATRIX_SOLVER_H
#define KVX3D_MATRIX_SOLVER_MATRIX_SOLVER_H

#if defined(_WIN32) && defined(KVX3DMatrixSolver_EXPORTS)
#define KVX3D_SOLVER_API __declspec(dllexport)
#elif defined(_WIN32)
#define KVX3D_SOLVER_API
#else
#define KVX3D_SOLVER_API __attribute__((visibility("default")))
#endif

class KVX3D_SOLVER_API CKVXMatrixSolver {
public:
    explicit CKVXMatrixSolver(const char* name);
    virtual ~CKVXMatrixSolver();
    void SetAsDirect(int flag);
    int solveMatrix(int n, int nonZeroN, int* Ia, int* Ja, double* Aa, double* rhs, double* x,
                    double tolerance, int maxIterations, int mode);
};

#endif
