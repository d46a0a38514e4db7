#ifndef KVX3D_REFERENCE_HOST_DISCRETISATION_FACE_FLUX_H
#define KVX3D_REFERENCE_HOST_DISCRETISATION_FACE_FLUX_H

#include <vector>

#include "host_link/face_data.h"
#include "reference_host/discretisation/stencil_builder.h"
#include "reference_host/link/overset_link.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// The fluxes through the faces of one boundary kind, entries 1..count.
double* BoundaryFlux(CMAFVMFaceVariableAll& flux, Boundary kind);
const double* BoundaryFlux(const CMAFVMFaceVariableAll& flux, Boundary kind);

/// Stores the flux through an inner face on its live sides and zero on the others: a donor's row
/// must get nothing from the face that borrows its value. `flux` must not share its sides.
void SetInnerFlux(CMAFVMFaceVariableAll& flux, int face, FaceSide side, double through);

/// The flux of a constant velocity through every live face: zero on symmetry faces, between cut
/// cells and on the donor's side of a hole-boundary face.
void FillConstantFlux(const StencilBuilder& builder, const Vec3& velocity,
                      CMAFVMFaceVariableAll& flux);

/// Net flux out of each cell, entries 1..Nc; 0 for cut cells, whose faces carry none.
std::vector<double> NetOutflow(const Mesh& mesh, const OversetLink& link,
                               const CMAFVMFaceVariableAll& flux);

}  // namespace host

#endif
