#ifndef KVX3D_REFERENCE_HOST_CASES_STUDY_MESH_H
#define KVX3D_REFERENCE_HOST_CASES_STUDY_MESH_H

#include <optional>
#include <string>
#include <vector>

#include "reference_host/discretisation/scheme.h"
#include "reference_host/link/host_objects.h"
#include "reference_host/link/overset_link.h"
#include "reference_host/run/result_series.h"

namespace host {

// What the order studies of a scalar (order_study.h) and of a flow (flow_study.h) have in common.

/// One mesh of an order study. Borrows what it refers to.
struct StudyMesh {
    const Mesh& mesh;
    HostObjects& objects;
    const OversetLink& link;
    int size;              ///< cells per unit length
    std::string place;     ///< for messages: file and size of the mesh
    ResultSeries* series;  ///< receives one step per scheme; may be null

    int ActiveCells() const;
    /// Numbers of the grids, from 1; none on a single grid, whose errors are those of all cells.
    std::vector<int> Grids() const;
};

/// Order of an error between a coarse and a fine level.
double Order(double coarseError, double fineError, int coarseSize, int fineSize);

/// Adds a sentence to `misses` if an order is below its limit. NaN is below every limit.
/// @param figure  what has the order, and on which mesh
void CheckOrder(const std::string& figure, double order, double limit,
                std::vector<std::string>& misses);

/// Prints the headings of the columns with which the rows of a table begin, without a line end.
void PrintRowHeading();
/// Prints these columns.
void PrintRowBeginning(Scheme scheme, std::optional<int> kind, int size, int activeCells,
                       const char* grid);

/// Name of the grid of cavity `grid` + 1, as in the mesh files.
const char* GridName(std::size_t grid);

/// The kind in tables and messages: its number, or "-".
std::string KindText(std::optional<int> kind);

}  // namespace host

#endif
