// Data layout: plain vectors of n doubles, all allocated before the first step (GMRES: one basis
// vector for each step of a cycle, kept for the next).

#include "matrix_solver/krylov.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

namespace kvx3d_solver {
namespace {

constexpr int restart = 40;          // GMRES basis vectors
constexpr double stagnation = 0.99;  // a cycle that leaves more of the residual has stalled

/// y += factor * x.
void AddScaled(double factor, const Vector& x, Vector& y) {
    for (std::size_t i = 0; i < y.size(); ++i) {
        y[i] += factor * x[i];
    }
}

/// One GMRES cycle: the Arnoldi basis and the least-squares problem, whose matrix Givens rotations
/// keep triangular.
class GmresCycle {
public:
    GmresCycle(const CsrSystem& matrix, Preconditioner& preconditioner)
        : A(matrix), M(preconditioner), z(A.n) {}

    /// Starts from r, of norm `norm`.
    void Begin(const Vector& r, double norm) {
        size = 0;
        target.fill(0.0);
        target[0] = norm;
        SetBasis(0, r, norm);
    }

    /// Takes one step. Returns the residual norm of the least-squares problem, which may be NaN.
    double Step() {
        const int k = size++;
        Vector& w = Basis(k + 1);
        M.Apply(basis[k], z);
        Multiply(A, z, w);
        Column& h = hessenberg[k];
        for (int i = 0; i <= k; ++i) {
            h[i] = Dot(w, basis[i]);
            AddScaled(-h[i], basis[i], w);
        }
        const double next = Norm(w);
        if (next > 0.0) {
            SetBasis(k + 1, w, next);
        }
        Rotate(k, next);
        return std::fabs(target[size]);
    }

    /// x += M^-1 V y, where y solves the least-squares problem of the steps taken.
    void Correct(Vector& x) {
        std::array<double, restart> y{};
        for (int i = size - 1; i >= 0; --i) {
            double sum = target[i];
            for (int j = i + 1; j < size; ++j) {
                sum -= hessenberg[j][i] * y[j];
            }
            y[i] = hessenberg[i][i] == 0.0 ? 0.0 : sum / hessenberg[i][i];
        }
        Vector sum(x.size(), 0.0);
        for (int i = 0; i < size; ++i) {
            AddScaled(y[i], basis[i], sum);
        }
        M.Apply(sum, z);
        AddScaled(1.0, z, x);
    }

private:
    using Column = std::array<double, restart + 1>;

    /// Basis vector i. The storage grows with the steps taken and is reused by the next cycle.
    Vector& Basis(int i) {
        if (static_cast<int>(basis.size()) <= i) {
            basis.emplace_back(A.n);
        }
        return basis[i];
    }

    void SetBasis(int i, const Vector& v, double norm) {
        Vector& b = Basis(i);
        std::transform(v.begin(), v.end(), b.begin(), [norm](double e) { return e / norm; });
    }

    /// Applies the rotations so far to column k, and a new one that eliminates `below`, the entry
    /// below the diagonal.
    void Rotate(int k, double below) {
        Column& h = hessenberg[k];
        for (int i = 0; i < k; ++i) {
            const double upper = cosine[i] * h[i] + sine[i] * h[i + 1];
            h[i + 1] = cosine[i] * h[i + 1] - sine[i] * h[i];
            h[i] = upper;
        }
        const double length = std::hypot(h[k], below);
        cosine[k] = length == 0.0 ? 1.0 : h[k] / length;
        sine[k] = length == 0.0 ? 0.0 : below / length;
        h[k] = length;
        target[k + 1] = -sine[k] * target[k];
        target[k] *= cosine[k];
    }

    const CsrSystem& A;
    Preconditioner& M;
    Vector z;
    std::vector<Vector> basis;
    std::array<Column, restart> hessenberg{};  // column k holds rows 0..k of the triangle
    std::array<double, restart> cosine{}, sine{};
    std::array<double, restart + 1> target{};  // right-hand side of the least-squares problem
    int size = 0;                              // steps taken
};

}  // namespace

int BiCgStab(const CsrSystem& A, Preconditioner& M, StopRule stop, Vector& x) {
    const auto n = static_cast<std::size_t>(A.n);
    Vector r(n), p(n, 0.0), v(n, 0.0), pHat(n), sHat(n), t(n);
    double bestNorm = Residual(A, x, r);
    const Vector rShadow = r;
    Vector iterate = x;
    double rho = 1.0, alpha = 1.0, omega = 1.0;
    const auto keepIfBetter = [&](double norm) {
        if (norm < bestNorm) {
            bestNorm = norm;
            x = iterate;
        }
    };

    for (int step = 1; step <= stop.steps; ++step) {
        const double rhoOld = rho;
        rho = Dot(rShadow, r);
        const double beta = (rho / rhoOld) * (alpha / omega);
        if (rho == 0.0 || !std::isfinite(beta)) {
            return step - 1;
        }
        for (std::size_t i = 0; i < n; ++i) {
            p[i] = r[i] + beta * (p[i] - omega * v[i]);
        }
        M.Apply(p, pHat);
        Multiply(A, pHat, v);
        alpha = rho / Dot(rShadow, v);
        if (!std::isfinite(alpha)) {
            return step;
        }
        AddScaled(-alpha, v, r);  // until the omega update r is the vector s of the source
        AddScaled(alpha, pHat, iterate);
        const double sNorm = Norm(r);
        if (sNorm <= stop.residual) {
            keepIfBetter(sNorm);
            return step;
        }
        M.Apply(r, sHat);
        Multiply(A, sHat, t);
        omega = Dot(t, r) / Dot(t, t);
        if (omega == 0.0 || !std::isfinite(omega)) {
            keepIfBetter(sNorm);
            return step;
        }
        AddScaled(-omega, t, r);
        AddScaled(omega, sHat, iterate);
        const double norm = Norm(r);
        if (!std::isfinite(norm)) {
            return step;
        }
        keepIfBetter(norm);
        if (norm <= stop.residual) {
            return step;
        }
    }
    return stop.steps;
}

int ConjugateGradients(const CsrSystem& A, Preconditioner& M, StopRule stop, Vector& x) {
    const auto n = static_cast<std::size_t>(A.n);
    Vector r(n), z(n), p(n, 0.0), q(n);
    double norm = Residual(A, x, r);
    double rho = 1.0;
    for (int step = 1; step <= stop.steps; ++step) {
        if (norm <= stop.residual) {
            return step - 1;
        }
        const double rhoOld = rho;
        M.Apply(r, z);
        rho = Dot(r, z);
        const double beta = step == 1 ? 0.0 : rho / rhoOld;
        for (std::size_t i = 0; i < n; ++i) {
            p[i] = z[i] + beta * p[i];
        }
        Multiply(A, p, q);
        const double curvature = Dot(p, q);
        const double alpha = rho / curvature;
        if (!(rho > 0.0 && curvature > 0.0 && std::isfinite(alpha))) {
            return step;
        }
        double sum = 0.0;
        for (std::size_t i = 0; i < n; ++i) {
            x[i] += alpha * p[i];
            r[i] -= alpha * q[i];
            sum += r[i] * r[i];
        }
        norm = std::sqrt(sum);
    }
    return stop.steps;
}

int Gmres(const CsrSystem& A, Preconditioner& M, StopRule stop, Vector& x) {
    Vector r(static_cast<std::size_t>(A.n));
    GmresCycle cycle(A, M);
    Vector previous;
    double norm = Residual(A, x, r);
    int steps = 0;
    while (norm > stop.residual && std::isfinite(norm) && steps < stop.steps) {
        cycle.Begin(r, norm);
        for (int k = 0; k < restart && steps < stop.steps; ++k) {
            ++steps;
            if (!(cycle.Step() > stop.residual)) {
                break;
            }
        }
        previous = x;
        cycle.Correct(x);
        const double reached = Residual(A, x, r);
        if (!(reached < norm)) {
            x = previous;
            return steps;
        }
        if (reached > stagnation * norm) {
            return steps;
        }
        norm = reached;
    }
    return steps;
}

}  // namespace kvx3d_solver
