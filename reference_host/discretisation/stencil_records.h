#ifndef KVX3D_REFERENCE_HOST_DISCRETISATION_STENCIL_RECORDS_H
#define KVX3D_REFERENCE_HOST_DISCRETISATION_STENCIL_RECORDS_H

#include <vector>

#include "host_link/art_gv.h"
#include "host_link/face_data.h"
#include "reference_host/discretisation/stencil_builder.h"
#include "reference_host/link/host_objects.h"

namespace host {

/// Applies a stencil of a record to a field: the sum of coefs[j] * field[ids[j]], with the number
/// of terms in ids[0].
double Apply(const int* ids, const double* coefs, const std::vector<double>& field);

/// The toolbox's record of the host objects together with one set of stencils; the operators read
/// both.
///
/// Only the sides of active cells have stencils. The donor's side of a hole-boundary face, faces
/// between cut cells, symmetry faces of scalars and of the pressure, and boundary faces of cut
/// cells are linked to one shared empty record: the row of a donor must receive nothing from a face
/// that only reads its value.
///
/// Objects are neither copied nor moved, because operators keep the address of `gv`.
class StencilRecords {
public:
    /// Links `objects` and fills all records. The donors must have been written to Ce23 before.
    /// @throws std::runtime_error  the toolbox could not link the host objects
    StencilRecords(const StencilBuilder& builder, HostObjects& objects, FarPoint farPoint);
    StencilRecords(const StencilRecords&) = delete;
    StencilRecords& operator=(const StencilRecords&) = delete;

    /// Replaces the far-upstream stencils of the inner faces by those of another scheme.
    void SetFarPoint(FarPoint farPoint);
    /// Sets the diffusion coefficient of all inner faces to one value.
    void SetFaceMu(double mu);

    /// The record of an inner face on the side of an active cell; an empty one between cut cells.
    const CMAFVMFaceData& Inner(int face) const;
    /// The record of a boundary face; an empty one where the builder has no stencils.
    const CMAFVMFaceData& AtBoundary(Boundary kind, int face) const;

private:
    void FillInnerFaces(FarPoint farPoint);
    void FillBoundary(Boundary kind, CMAFVMFaceData*& records);

    const StencilBuilder& builder;
    CMAFVMFaceData empty;  // declared before gv, whose records use its arrays

public:
    CKVX_ACMT_GV gv;  ///< owns the face records
};

}  // namespace host

#endif
