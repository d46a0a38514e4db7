#ifndef KVX3D_REFERENCE_HOST_DISCRETISATION_LINEAR_SOLVE_H
#define KVX3D_REFERENCE_HOST_DISCRETISATION_LINEAR_SOLVE_H

namespace host {

/// What one call of a linear solver achieved, measured by the 2-norm of the true residual b - A x.
struct LinearSolve {
    double firstResidual = 0.0;  ///< of the first guess
    double residual = 0.0;       ///< of the x that was returned
    /// Largest residual that the rounding errors of its own evaluation can produce, at the x that
    /// was returned: below it a residual cannot be told from zero. Only computed if the residual
    /// did not fall, else 0.
    double rounding = 0.0;
    int iterations = 0;    ///< 0 with SAMG, which reports no count
    bool changed = false;  ///< whether any entry of x changed

    /// Whether the residual fell or is at the level of rounding errors. False for NaN.
    bool MadeProgress() const { return residual < firstResidual || residual <= rounding; }
    /// Whether x was returned unchanged although its residual is above the level of rounding
    /// errors. The tolerance of the solver plays no part: a solver that stops at the first guess
    /// solves nothing, whatever tolerance allowed it to stop there.
    bool IsIdle() const { return !changed && !MadeProgress(); }
    /// Residual relative to that of the first guess; 0 at the level of rounding errors.
    double Reduction() const { return residual <= rounding ? 0.0 : residual / firstResidual; }
};

}  // namespace host

#endif
