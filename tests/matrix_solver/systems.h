#ifndef KVX3D_TESTS_MATRIX_SOLVER_SYSTEMS_H
#define KVX3D_TESTS_MATRIX_SOLVER_SYSTEMS_H

#include "matrix_solver/csr_system.h"
#include "matrix_solver/preconditioner.h"
#include "plain/samples/problems.h"

/// The problem as the methods of the library see it. Throws if it is no valid system.
kvx3d_solver::CsrSystem Read(const Problem& problem);

/// The exact solution in the scale of the system.
kvx3d_solver::Vector Scaled(const Problem& problem, const kvx3d_solver::CsrSystem& system);

/// A tridiagonal problem; its solution is random.
Problem Tridiagonal(int n, double below, double diagonal, double above);

/// M = 1, which makes the steps of a Krylov method those of the textbook.
struct Identity : kvx3d_solver::Preconditioner {
    void Apply(const kvx3d_solver::Vector& r, kvx3d_solver::Vector& z) override { z = r; }
};

#endif
