#ifndef KVX3D_FVM_OPERATORS_MAT_OPERATOR_H
#define KVX3D_FVM_OPERATORS_MAT_OPERATOR_H

#include "host_link/art_gv.h"
#include "host_link/export.h"
#include "host_link/face_data.h"
#include "linear_algebra/sparse_matrix.h"

#include <stdexcept>

/// Thrown if an operator is constructed without a matrix or a mesh. Carries only the message.
class KVX3D_API MatrixOperatorException : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

namespace KVX_ART_FVM {

using ::MatrixOperatorException;  // may be caught under either name

/// Adds the diffusive and convective terms of a transport equation to a sparse matrix.
///
/// Calling order: the caller fills the stencil records, face variables and fluxes, declares the
/// pattern of the matrix if possible (an undeclared position costs an insertion), constructs an
/// operator on both and calls the terms it needs. Operators only add, so calls accumulate and the
/// caller clears the matrix between assemblies. All schemes are fully implicit; no field value is
/// read and no right-hand side is produced.
///
/// Rows hold net outflow. Inner face i lies between L = Ce23[0][i], whose row uses
/// faceDataLeft[i], and R = Ce23[1][i], whose row uses faceDataRight[i] with every value negated.
/// Fluxes `left` and `right` are both positive from L to R; boundary fluxes are positive out of
/// the domain. Inner faces are processed in ascending order, first side before second, then the
/// inlet, outlet, wall and symmetry faces unless `useBoundaryFaces` is false. A matrix with
/// boundary terms needs NcAll columns, since ghost cells are columns. Partition faces add nothing.
///
/// Flux tolerance: a flux above 1e-8 is positive, one below -1e-8 negative, and one in between
/// (both limits and NaN included) near zero. The limits are absolute, and the flux is compared with
/// them before it is multiplied by the weight. An inner face with a near-zero flux uses the Face
/// stencil in every scheme that depends on the flux. On a boundary face whose flux is not positive,
/// the face value is the unknown of the ghost cell.
///
/// Every operator returns true. An id outside the matrix makes it throw
/// InvalidDimensionsException, and what was added before remains added. Null records, null
/// stencils and a null flux are not detected. Only one thread at a time may use an object.
class KVX3D_API CKVX_ART_MatOperator {
public:
    /// Links an operator to a matrix and a mesh. Both are borrowed and must outlive it.
    ///
    /// @param matrix  receives the coefficients; row and column numbers are cell ids
    /// @param gv      linked mesh with the stencil records and face variables in place
    /// @throws MatrixOperatorException  `gv` (tested first) or `matrix` is null
    CKVX_ART_MatOperator(CKVX_ART_SparseMatrix* matrix, CKVX_ACMT_GV* gv);

    /// A copy works on the same matrix and mesh.
    CKVX_ART_MatOperator(const CKVX_ART_MatOperator& other);
    CKVX_ART_MatOperator& operator=(const CKVX_ART_MatOperator& other);

    /// Sets both links to null and releases nothing.
    virtual ~CKVX_ART_MatOperator();

    /// Variable-coefficient diffusion: weight * mu times the Normal stencil.
    /// Reads faceMu on inner faces and the ghost cell's mu on boundary faces.
    ///
    /// @param weight  the caller's factor for the whole term, as in every operator below
    bool DiffusionOperator(double weight);

    /// Laplacian: weight times the Normal stencil.
    /// On a non-matching face (nonmatchingFace[i] != 0) nothing is added to the row of the second
    /// cell.
    bool PureLaplaceOperator(double weight);

    /// Thermal diffusion: weight * k / (cp * rho) times the Normal stencil.
    /// Reads faceK, faceCp and faceRho on inner faces, and at ghost cells `cp` and the current
    /// cellK and cellRho of the host. Wall and symmetry faces use weight * k alone.
    bool ThermalDiffusionOperator(double weight);

    /// First-order convection by the unknown of the upstream cell, without an upwind stencil
    /// (`upwind` true); with `upwind` false the same as ConvectionOperatorCD().
    ///
    /// @param upwind  selects the scheme
    /// @param weight  the caller's factor for the whole term
    /// @param flux    flux through every inner and boundary face, with the signs given above
    bool ConvectionOperator(bool upwind, double weight, CMAFVMFaceVariableAll* flux);

    /// Central convection: the Face stencil for every flux, and the ghost cell on every boundary
    /// face, outflow included.
    bool ConvectionOperatorCD(double weight, CMAFVMFaceVariableAll* flux);

    /// Linear upwind: 1.5 upstream - 0.5 far upstream, also for outflow at a boundary. There is no
    /// limiter; where the far-upstream stencil is empty, the face value is 1.5 times upstream.
    ///
    /// Source: R. F. Warming, R. M. Beam, AIAA J. 14 (1976) 1241-1249, doi:10.2514/3.61457.
    bool ConvectionOperatorLUD(double weight, CMAFVMFaceVariableAll* flux);

    /// First-order upwind by stencils: Left for a positive flux, Right for a negative one, and the
    /// Left stencil of the boundary record for outflow at a boundary.
    bool ConvectionOperatorFU(double weight, CMAFVMFaceVariableAll* flux);

    /// Quadratic upstream interpolation: 0.75 upstream - 0.125 far upstream + 0.375 downstream.
    /// The weights are those of a uniform grid; outflow at a boundary uses the linear upwind.
    ///
    /// Source: B. P. Leonard, Comput. Methods Appl. Mech. Eng. 19 (1979) 59-98,
    /// doi:10.1016/0045-7825(79)90034-3.
    bool ConvectionOperatorQUICK(double weight, CMAFVMFaceVariableAll* flux);

    /// Values of the first-order upwind in the pattern of the linear upwind: the far-upstream
    /// stencil is added with weight zero, which creates its entries. Outflow at a boundary uses the
    /// unknown of the interior cell. No Peclet number is involved.
    bool ConvectionOperatorHybrid(double weight, CMAFVMFaceVariableAll* flux);

    /// Convection minus diffusion in one pass: upstream cell values and faceMu times the Normal
    /// stencil, each with factor 1. Here a flux of exactly 1e-8 counts as positive, and a near-zero
    /// flux adds no convection. On a non-matching face nothing is added to the row of the second
    /// cell. Only inner faces are treated, whatever the value of useBoundaryFaces.
    bool ConvectionFU_Diffusion_Operator(CMAFVMFaceVariableAll* flux);

    CKVX_ACMT_GV* artGv;                  ///< mesh, stencils and properties, not owned
    CKVX_ART_SparseMatrix* sparseMatrix;  ///< receives the coefficients, not owned

protected:
    bool isARTGv();
    bool isARTSMat();

private:
    void DefaultConstructorProcedure(CKVX_ART_SparseMatrix* matrix, CKVX_ACMT_GV* gv);
};

}  // namespace KVX_ART_FVM

#endif
