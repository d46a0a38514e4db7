#include "reference_host/cases/study_mesh.h"

#include <fmt/format.h>

#include <cmath>
#include <iostream>

namespace host {

namespace {

constexpr char rowFormat[] = "{:<12} {:>4} {:>4} {:>7}  {:<10}";

}  // namespace

int StudyMesh::ActiveCells() const {
    int count = 0;
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        count += link.IsActive(cell) ? 1 : 0;
    }
    return count;
}

std::vector<int> StudyMesh::Grids() const {
    std::vector<int> grids;
    for (int cavity = 1; link.IsOverset() && cavity <= mesh.GridCount(); ++cavity) {
        grids.push_back(cavity);
    }
    return grids;
}

double Order(double coarseError, double fineError, int coarseSize, int fineSize) {
    return std::log(coarseError / fineError) / std::log(static_cast<double>(fineSize) / coarseSize);
}

void CheckOrder(const std::string& figure, double order, double limit,
                std::vector<std::string>& misses) {
    if (!(order >= limit)) {  // the negation makes NaN a miss
        misses.push_back(
            fmt::format("{}: order {:.2f}, the limit is {:.2f}", figure, order, limit));
    }
}

void PrintRowHeading() {
    std::cout << fmt::format(rowFormat, "scheme", "kind", "n", "cells", "grid");
}

void PrintRowBeginning(Scheme scheme, std::optional<int> kind, int size, int activeCells,
                       const char* grid) {
    std::cout << fmt::format(rowFormat, Name(scheme), KindText(kind), size, activeCells, grid);
}

const char* GridName(std::size_t grid) {
    static const char* const names[] = {"background", "component1", "component2"};
    return names[grid];
}

std::string KindText(std::optional<int> kind) {
    return kind ? std::to_string(*kind) : "-";
}

}  // namespace host
