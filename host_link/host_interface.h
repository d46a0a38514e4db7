#ifndef KVX3D_HOST_LINK_HOST_INTERFACE_H
#define KVX3D_HOST_LINK_HOST_INTERFACE_H

#include "host_link/export.h"

/// The objects that a host flow solver passes to the toolbox.
///
/// Rules for every member below:
/// - Arrays are 1-based: an array of n entries has n + 1 slots, and slot 0 is never read as data.
///   The rows of a pointer table are 1-based too.
/// - Ids of cells, faces and nodes are 1-based. Cell ids 1..Nc are real cells, Nc + 1..NcAll the
///   ghost cells of boundary faces.
/// - Area vectors are the face normal times the face area. Inner faces point from owner to
///   neighbor, boundary faces out of the domain.
/// - The host owns everything. Counts are copied when the objects are linked, arrays are not: they
///   must keep their addresses as long as a toolbox object that linked them exists. Changed values
///   take effect at once.
/// - Lengths, volumes and fields are in the host's units. The donor search and the convection
///   operators compare with absolute thresholds (1e-8), so a host should scale its lengths to about
///   1.

/// Stored by the toolbox but never dereferenced: any non-null value is accepted.
class COperatorGradient;

/// Stored by the toolbox but never dereferenced: any non-null value is accepted.
class CCommunication;

/// The host's finite-volume mesh, read as a plain record.
class CKVX3DFiniteVolumeMesh {
public:
    int NcAll = 0;    ///< cells and ghost cells; every boundary face has one ghost cell
    int Nc = 0;       ///< real cells
    int Ne = 0;       ///< inner faces
    int NInlet = 0;   ///< inlet faces
    int NOutlet = 0;  ///< outlet faces
    int NWall = 0;    ///< wall faces, overset boundary faces included
    int NSymm = 0;    ///< symmetry faces
    int Nn = 0;       ///< nodes

    double* xn = nullptr;  ///< node coordinates, 1..Nn
    double* yn = nullptr;
    double* zn = nullptr;

    double* xc = nullptr;  ///< cell centers, 1..Nc
    double* yc = nullptr;
    double* zc = nullptr;
    double* volume = nullptr;   ///< cell volumes, 1..Nc
    int** cellNodes = nullptr;  ///< Nc rows; slot 0 the node count, then node ids in VTK's order

    double* xe = nullptr;  ///< inner-face centers, 1..Ne
    double* ye = nullptr;
    double* ze = nullptr;
    double* nxe = nullptr;  ///< inner-face area vectors, 1..Ne; the toolbox may write (see below)
    double* nye = nullptr;
    double* nze = nullptr;
    /// Owner ([0]) and neighbor ([1]) cell of each inner face, 1..Ne.
    /// Changed by the donor replacement and, together with nxe, nye, nze, by the face reversal.
    int* Ce23[2] = {nullptr, nullptr};
    /// 1 on a face of a non-matching interface, 0 on any other, 1..Ne.
    /// Cleared by the non-matching preprocess, which also shrinks area vectors.
    int* nonmatchingFace = nullptr;

    double* xInlet = nullptr;  ///< inlet face centers, 1..NInlet
    double* yInlet = nullptr;
    double* zInlet = nullptr;
    double* nxInlet = nullptr;  ///< inlet area vectors, 1..NInlet
    double* nyInlet = nullptr;
    double* nzInlet = nullptr;
    int* CInlet23 = nullptr;  ///< real cell at the face
    int* idInlet = nullptr;   ///< ghost cell of the face

    double* xOutlet = nullptr;  ///< outlet face centers, 1..NOutlet
    double* yOutlet = nullptr;
    double* zOutlet = nullptr;
    double* nxOutlet = nullptr;  ///< outlet area vectors, 1..NOutlet
    double* nyOutlet = nullptr;
    double* nzOutlet = nullptr;
    int* COutlet23 = nullptr;  ///< real cell at the face
    int* idOutlet = nullptr;   ///< ghost cell of the face

    double* xWall = nullptr;  ///< wall face centers, 1..NWall
    double* yWall = nullptr;
    double* zWall = nullptr;
    double* nxWall = nullptr;  ///< wall area vectors, 1..NWall
    double* nyWall = nullptr;
    double* nzWall = nullptr;
    int* CWall23 = nullptr;  ///< real cell at the face
    int* idWall = nullptr;   ///< ghost cell of the face

    double* xSymm = nullptr;  ///< symmetry face centers, 1..NSymm
    double* ySymm = nullptr;
    double* zSymm = nullptr;
    double* nxSymm = nullptr;  ///< symmetry area vectors, 1..NSymm
    double* nySymm = nullptr;
    double* nzSymm = nullptr;
    int* CSymm23 = nullptr;  ///< real cell at the face
    int* idSymm = nullptr;   ///< ghost cell of the face

    // Linked but never read: a host that does not use them leaves them null.
    int** cellTableA = nullptr;
    int** cellTableB = nullptr;
    int** cellTableC = nullptr;
    int** innerFaceTable = nullptr;
    int** inletFaceTable = nullptr;
    int** outletFaceTable = nullptr;
    int** wallFaceTable = nullptr;
    int** symmFaceTable = nullptr;
    int* hostCountTableFvm = nullptr;
};

/// The host's global variables, read as a plain record.
class CKvx3dGV {
public:
    /// Pressure, velocity x, y, z; entries 1..NcAll. The result output sets magnitudes below 1e-10
    /// to zero in place.
    double* flowVariables[4] = {nullptr, nullptr, nullptr, nullptr};

    double* mu = nullptr;       ///< diffusion coefficient, 1..NcAll; read at ghost cells
    double* cp = nullptr;       ///< heat-capacity factor, 1..NcAll; read at ghost cells
    double* cellRho = nullptr;  ///< heat-capacity factor, 1..NcAll; read when an operator runs
    double* cellK = nullptr;    ///< conductivity, 1..NcAll; read when an operator runs

    // Linked but never read, so they may stay null. linkedVar12 is linked only if there are
    // partition faces.
    double* linkedVar5 = nullptr;
    double* linkedVar6 = nullptr;
    double* linkedVar7 = nullptr;
    double* linkedVar8 = nullptr;
    double* linkedVar9 = nullptr;
    double* linkedVar10 = nullptr;
    double* linkedVar11 = nullptr;
    double* linkedVar12 = nullptr;
    int* hostCountTableGv = nullptr;

    char* rootDir = nullptr;    ///< directory under which result files go
    int* pProcessId = nullptr;  ///< slot 0: number of this process, part of file names
    /// Cavity of each cell, 1..Nc. Ids lie between 1 and the number of distinct ids: they index a
    /// table of that size.
    int* cavityId = nullptr;

    int* NOversetBCGroup = nullptr;     ///< slot 0: number of overset boundary groups
    int* oversetBCFaceCount = nullptr;  ///< wall faces in each group, 1-based by group
    /// Wall-face numbers of each group, 1-based rows by group. A wall face is in at most one group;
    /// the cell at the first face of group g lies in component grid g.
    int** oversetBCWallFace = nullptr;
};

/// Partition-interface faces of a distributed run. A host derives from this class, and the toolbox
/// calls only these functions. Arrays are 1-based with NParInterFace() entries, owned by the
/// object.
class KVX3D_API CPartitionFace_DLL {
public:
    virtual ~CPartitionFace_DLL();

    virtual int NParInterFace() = 0;  ///< number of partition-interface faces
    virtual int* ijParCV() = 0;       ///< real cell at the face
    virtual int* ijPar() = 0;         ///< ghost cell of the face
    virtual double* ijParSx() = 0;    ///< area vectors
    virtual double* ijParSy() = 0;
    virtual double* ijParSz() = 0;
    virtual double* ijParxc() = 0;  ///< face centers
    virtual double* ijParyc() = 0;
    virtual double* ijParzc() = 0;
    virtual int* FaceType_Partition() = 0;  ///< kind of each face
    /// True where the face is invalid for the non-matching treatment.
    virtual bool* IfPartitionFace_InvalidForNonMatching() = 0;
};

#endif
