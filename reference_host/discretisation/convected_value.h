#ifndef KVX3D_REFERENCE_HOST_DISCRETISATION_CONVECTED_VALUE_H
#define KVX3D_REFERENCE_HOST_DISCRETISATION_CONVECTED_VALUE_H

#include <vector>

#include "host_link/face_data.h"
#include "reference_host/discretisation/scheme.h"

namespace host {

// The value at a face that the convection operator of a scheme multiplies with the flux. With it, a
// flux through a surface can be computed from a solution exactly as the matrix contains it.

/// The value at an inner face.
///
/// @param record  of a side of the face that has stencils
/// @param first   first cell of the face, the donor if that cell is cut
/// @param second  second cell of the face, the donor if that cell is cut
/// @param flux    from the first cell to the second, on that side
/// @param phi     entries 1..NcAll
/// @return 0 for schemes without convection
double ConvectedValue(Scheme scheme, const CMAFVMFaceData& record, int first, int second,
                      double flux, const std::vector<double>& phi);

/// The value at a boundary face that is not silent.
///
/// @param cell   beside the face
/// @param ghost  of the face
/// @param flux   out of the domain
/// @param phi    entries 1..NcAll
/// @return 0 for schemes without convection
double ConvectedBoundaryValue(Scheme scheme, const CMAFVMFaceData& record, int cell, int ghost,
                              double flux, const std::vector<double>& phi);

}  // namespace host

#endif
