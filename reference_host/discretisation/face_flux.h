#ifndef KVX3D_REFERENCE_HOST_DISCRETISATION_FACE_FLUX_H
#define KVX3D_REFERENCE_HOST_DISCRETISATION_FACE_FLUX_H

#include <vector>

#include "host_link/face_data.h"
#include "reference_host/discretisation/stencil_builder.h"
#include "reference_host/link/overset_link.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// The fluxes through the boundary faces of one kind, entries 1..count, positive out of the domain.
double* BoundaryFlux(CMAFVMFaceVariableAll& flux, Boundary kind);
const double* BoundaryFlux(const CMAFVMFaceVariableAll& flux, Boundary kind);

/// Stores the flux through an inner face on the sides of active cells and zero on the others: the
/// row of a donor must receive nothing from a face that only reads its value.
///
/// @param flux     with separate arrays for the two sides
/// @param through  volume flux from the first to the second cell
void SetInnerFlux(CMAFVMFaceVariableAll& flux, int face, FaceSide side, double through);

/// Computes the flux of a constant velocity through every face. It is zero on symmetry faces,
/// between cut cells and on the donor's side of a hole-boundary face.
void FillConstantFlux(const StencilBuilder& builder, const Vec3& velocity,
                      CMAFVMFaceVariableAll& flux);

/// Net flux out of each cell, entries 1..Nc. It is 0 for cut cells, because their faces have no
/// flux.
std::vector<double> NetOutflow(const Mesh& mesh, const OversetLink& link,
                               const CMAFVMFaceVariableAll& flux);

}  // namespace host

#endif
