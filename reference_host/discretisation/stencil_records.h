#ifndef KVX3D_REFERENCE_HOST_DISCRETISATION_STENCIL_RECORDS_H
#define KVX3D_REFERENCE_HOST_DISCRETISATION_STENCIL_RECORDS_H

#include <vector>

#include "host_link/art_gv.h"
#include "host_link/face_data.h"
#include "reference_host/discretisation/stencil_builder.h"
#include "reference_host/link/host_objects.h"

namespace host {

/// One stencil of a record on a field: the sum of coefs[j] * field[ids[j]].
double Apply(const int* ids, const double* coefs, const std::vector<double>& field);

/// The toolbox's view of the host with one set of stencils in it: what the operators walk.
///
/// Only live sides carry stencils. The donor's side of a hole-boundary face, faces between cut
/// cells, symmetry faces and boundary faces of cut cells are linked to one shared empty record:
/// a donor's row must get nothing from the face that borrows its value.
///
/// Neither copied nor moved: operators keep the address of `gv`.
class StencilRecords {
public:
    /// Links `objects` and fills all records. The donors must stand in Ce23 by now.
    /// @throws std::runtime_error  the toolbox could not link the host objects
    StencilRecords(const StencilBuilder& builder, HostObjects& objects, FarPoint farPoint);
    StencilRecords(const StencilRecords&) = delete;
    StencilRecords& operator=(const StencilRecords&) = delete;

    /// Refills the far-upstream stencils of the inner faces for another scheme.
    void SetFarPoint(FarPoint farPoint);
    /// Sets the diffusion coefficient of the inner faces, one value for all.
    void SetFaceMu(double mu);

    /// The record of a face's live side; of a face between cut cells an empty one.
    const CMAFVMFaceData& Inner(int face) const;
    const CMAFVMFaceData& AtBoundary(Boundary kind, int face) const;

private:
    void FillInnerFaces(FarPoint farPoint);
    void FillBoundary(Boundary kind, CMAFVMFaceData*& records);

    const StencilBuilder& builder;
    CMAFVMFaceData empty;  // before gv: the records in gv borrow its arrays

public:
    CKVX_ACMT_GV gv;
};

}  // namespace host

#endif
