#include "reference_host/discretisation/stencil.h"

#include <algorithm>

namespace host {

namespace {

/// The term of a column, or null. The search is linear, as a stencil has a few dozen terms at most.
template <class Term>
Term* FindTerm(std::vector<Term>& terms, int column) {
    const auto at = std::find_if(terms.begin(), terms.end(),
                                 [column](const Term& term) { return term.column == column; });
    return at == terms.end() ? nullptr : &*at;
}

}  // namespace

void Stencil::Add(int column, double weight) {
    if (Term* term = FindTerm(terms, column)) {
        term->weight += weight;
        return;
    }
    terms.push_back({column, weight});
}

void Stencil::Add(const Stencil& other, double factor) {
    for (const Term& term : other.terms) {
        Add(term.column, factor * term.weight);
    }
}

double Stencil::Weight(int column) const {
    for (const Term& term : terms) {
        if (term.column == column) {
            return term.weight;
        }
    }
    return 0.0;
}

double Stencil::Sum() const {
    double sum = 0.0;
    for (const Term& term : terms) {
        sum += term.weight;
    }
    return sum;
}

double Stencil::Apply(const std::vector<double>& field) const {
    double sum = 0.0;
    for (const Term& term : terms) {
        sum += term.weight * field[term.column];
    }
    return sum;
}

void GradientStencil::Add(int column, const Vec3& weight) {
    if (Term* term = FindTerm(terms, column)) {
        term->weight += weight;
        return;
    }
    terms.push_back({column, weight});
}

Stencil GradientStencil::Along(const Vec3& direction) const {
    Stencil sum;
    for (const Term& term : terms) {
        const double weight = direction.dot(term.weight);
        if (weight != 0.0) {
            sum.Add(term.column, weight);
        }
    }
    return sum;
}

Vec3 GradientStencil::Apply(const std::vector<double>& field) const {
    Vec3 sum = Vec3::Zero();
    for (const Term& term : terms) {
        sum += field[term.column] * term.weight;
    }
    return sum;
}

}  // namespace host
