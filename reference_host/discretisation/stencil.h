#ifndef KVX3D_REFERENCE_HOST_DISCRETISATION_STENCIL_H
#define KVX3D_REFERENCE_HOST_DISCRETISATION_STENCIL_H

#include <vector>

#include "reference_host/mesh/mesh.h"

namespace host {

/// A weighted sum of unknowns, sum of weight * phi[column] over its terms. A column is the id of a
/// cell or a ghost cell and occurs at most once.
class Stencil {
public:
    struct Term {
        int column = 0;
        double weight = 0.0;
    };

    Stencil() = default;
    explicit Stencil(int column, double weight = 1.0) { Add(column, weight); }

    /// Adds weight * phi[column]. A column that has a term already keeps its position.
    void Add(int column, double weight);
    /// Adds factor times another stencil.
    void Add(const Stencil& other, double factor = 1.0);

    const std::vector<Term>& Terms() const { return terms; }
    /// Weight of a column; 0 without a term.
    double Weight(int column) const;
    /// Sum of the weights, which is 1 for a value and 0 for a derivative.
    double Sum() const;
    /// The weighted sum of a field with one entry for each cell id.
    double Apply(const std::vector<double>& field) const;

private:
    std::vector<Term> terms;
};

/// A gradient as a weighted sum of unknowns, sum of weight * phi[column] over its terms. The
/// weights are vectors [1 / length].
class GradientStencil {
public:
    struct Term {
        int column = 0;
        Vec3 weight = Vec3::Zero();
    };

    void Add(int column, const Vec3& weight);

    const std::vector<Term>& Terms() const { return terms; }
    /// The stencil of direction . gradient, without terms of weight zero.
    Stencil Along(const Vec3& direction) const;
    /// The gradient of a field with one entry for each cell id.
    Vec3 Apply(const std::vector<double>& field) const;

private:
    std::vector<Term> terms;
};

}  // namespace host

#endif
