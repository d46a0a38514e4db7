#ifndef KVX3D_HOST_LINK_ART_GV_H
#define KVX3D_HOST_LINK_ART_GV_H

#include "host_link/export.h"
#include "host_link/host_interface.h"

class CMAFVMFaceData;
class CMAFVMFaceVariable;

/// The toolbox's view of the host: mesh, fields and quantities derived from them, as one flat
/// record that every part of the toolbox reads directly.
///
/// Calling order: getKvx3dGV() and the setters of the optional links first, then getKvx3dData(),
/// which reads the host in one pass: it copies counts and array pointers, but no array. It may be
/// called again on a filled object, and then replaces all contents.
///
/// Ownership: host arrays are borrowed while kvxGv and kvxFvm are set. Face areas and ghost tables
/// are allocated and released here; stencil records and face variables are stored here by the
/// caller and released here. An object without host links owns all its pointers except
/// FaceType_Partition. Assignment and copies share all pointers: only one of the objects may be
/// destroyed while the owned arrays are set.
///
/// All arrays are 1-based. Lengths, areas and fields are in the host's units; an area vector is
/// the face normal times the face area. No exception leaves the class: failures are negative
/// return values with one line on standard output.
class KVX3D_API CKVX_ACMT_GV {
public:
    /// All pointers null, all counts 0, boundary faces in use.
    CKVX_ACMT_GV();
    CKVX_ACMT_GV(const CKVX_ACMT_GV& other);
    CKVX_ACMT_GV& operator=(const CKVX_ACMT_GV& other);
    ~CKVX_ACMT_GV();

    /// True when both the global variables and the mesh are linked.
    bool isKvxGv();
    /// True when the partition faces are linked.
    bool isKvxPartFace();
    /// True when the gradient operator is linked.
    bool isKvxGradient();
    /// True when the communication object is linked.
    bool isKvxCommunication();

    /// Links the host's two records.
    /// @return 0, or -1 if either is null; then neither is stored
    int getKvx3dGV(CKvx3dGV* gv, CKVX3DFiniteVolumeMesh* fvm);
    /// Links the partition faces of a distributed run. Call it before getKvx3dData(), which reads
    /// them.
    /// @return 0, or -1 if `partFace` is null; then the link stays as it was
    int getKvx3dPartFace(CPartitionFace_DLL* partFace);
    /// Stores the gradient operator. It is never dereferenced.
    /// @return 0, or -1 if `gradient` is null; then the link stays as it was
    int getKvx3dGradientTool(COperatorGradient* gradient);
    /// Stores the communication object. It is never dereferenced.
    /// @return 0, or -1 if `communication` is null; then the link stays as it was
    int getKvx3dCommunication(CCommunication* communication);

    /// Reads the host: counts, positions, normals, face areas, relations, fields, in this order.
    ///
    /// Stops at the first step that fails; members filled before keep their values.
    /// @return 0; -1 without host links; -2 to -7 for the step that failed, in the order above
    int getKvx3dData();

    /// Prints the linked data on standard output, one value or vector per line, always in the
    /// default number format: the format settings of std::cout have no effect.
    /// @return 0
    int debugMode();

    /// Square root of a^2 + b^2 + c^2, with the squares added from left to right.
    static double CalNorm(const double& a, const double& b, const double& c);

    CKvx3dGV* kvxGv = nullptr;                   ///< host global variables
    CKVX3DFiniteVolumeMesh* kvxFvm = nullptr;    ///< host mesh
    CPartitionFace_DLL* kvxPartFace = nullptr;   ///< partition faces, optional
    COperatorGradient* kvxGradient = nullptr;    ///< optional, stored only
    CCommunication* kvxCommunication = nullptr;  ///< optional, stored only

    int NcAll = 0;    ///< cells and ghost cells
    int Nc = 0;       ///< cells
    int Ne = 0;       ///< inner faces
    int NInlet = 0;   ///< inlet faces
    int NOutlet = 0;  ///< outlet faces
    int NWall = 0;    ///< wall faces
    int NSymm = 0;    ///< symmetry faces
    int NPart = 0;    ///< partition-interface faces, 0 without kvxPartFace
    int Nn = 0;       ///< nodes

    int* hostCountTableGv = nullptr;   ///< linked, not read
    int* hostCountTableFvm = nullptr;  ///< linked, not read

    int* Ce23[2] = {nullptr, nullptr};  ///< owner [0] and neighbor [1] of inner faces, 1..Ne
    int* CInlet23 = nullptr;            ///< real cell at each inlet face, 1..NInlet
    int* COutlet23 = nullptr;           ///< real cell at each outlet face, 1..NOutlet
    int* CWall23 = nullptr;             ///< real cell at each wall face, 1..NWall
    int* CSymm23 = nullptr;             ///< real cell at each symmetry face, 1..NSymm
    int* CPart23 = nullptr;             ///< real cell at each partition face, 1..NPart
    int* idInlet = nullptr;             ///< ghost cell of each inlet face
    int* idOutlet = nullptr;            ///< ghost cell of each outlet face
    int* idWall = nullptr;              ///< ghost cell of each wall face
    int* idSymm = nullptr;              ///< ghost cell of each symmetry face
    int* idPart = nullptr;              ///< ghost cell of each partition face
    int* cavityId = nullptr;            ///< cavity of each cell, 1..Nc
    int** cellTableA = nullptr;         ///< linked, not read
    int* pProcessId = nullptr;          ///< slot 0: number of this process
    int** innerFaceTable = nullptr;     ///< this and the next six: linked, not read
    int** inletFaceTable = nullptr;
    int** outletFaceTable = nullptr;
    int** wallFaceTable = nullptr;
    int** symmFaceTable = nullptr;
    int** cellTableB = nullptr;
    int** cellTableC = nullptr;
    int** cellNodes = nullptr;          ///< Nc rows; slot 0 the node count, then the node ids
    int* nonmatchingFace = nullptr;     ///< non-zero on a non-matching inner face, 1..Ne
    int* FaceType_Partition = nullptr;  ///< kind of each partition face, 1..NPart
    /// True where a partition face is invalid for the non-matching treatment, 1..NPart.
    bool* IfPartitionFace_InvalidForNonMatching = nullptr;

    double* xc = nullptr;  ///< cell centers, 1..Nc
    double* yc = nullptr;
    double* zc = nullptr;
    double* volume = nullptr;  ///< cell volumes, 1..Nc
    double* xe = nullptr;      ///< inner-face centers, 1..Ne
    double* ye = nullptr;
    double* ze = nullptr;
    double* xn = nullptr;  ///< node coordinates, 1..Nn
    double* yn = nullptr;
    double* zn = nullptr;
    double* xInlet = nullptr;  ///< inlet face centers, 1..NInlet
    double* yInlet = nullptr;
    double* zInlet = nullptr;
    double* xOutlet = nullptr;  ///< outlet face centers, 1..NOutlet
    double* yOutlet = nullptr;
    double* zOutlet = nullptr;
    double* xWall = nullptr;  ///< wall face centers, 1..NWall
    double* yWall = nullptr;
    double* zWall = nullptr;
    double* xSymm = nullptr;  ///< symmetry face centers, 1..NSymm
    double* ySymm = nullptr;
    double* zSymm = nullptr;
    double* xPart = nullptr;  ///< partition face centers, 1..NPart
    double* yPart = nullptr;
    double* zPart = nullptr;

    double* nxe = nullptr;  ///< inner-face area vectors from owner to neighbor, 1..Ne
    double* nye = nullptr;
    double* nze = nullptr;
    double* nxInlet = nullptr;  ///< inlet area vectors, out of the domain, 1..NInlet
    double* nyInlet = nullptr;
    double* nzInlet = nullptr;
    double* nxOutlet = nullptr;  ///< outlet area vectors, out of the domain, 1..NOutlet
    double* nyOutlet = nullptr;
    double* nzOutlet = nullptr;
    double* nxWall = nullptr;  ///< wall area vectors, out of the domain, 1..NWall
    double* nyWall = nullptr;
    double* nzWall = nullptr;
    double* nxSymm = nullptr;  ///< symmetry area vectors, out of the domain, 1..NSymm
    double* nySymm = nullptr;
    double* nzSymm = nullptr;
    double* nxPart = nullptr;  ///< partition area vectors, 1..NPart
    double* nyPart = nullptr;
    double* nzPart = nullptr;

    double* u = nullptr;           ///< velocity x, 1..NcAll
    double* v = nullptr;           ///< velocity y, 1..NcAll
    double* w = nullptr;           ///< velocity z, 1..NcAll
    double* p = nullptr;           ///< pressure, 1..NcAll
    double* linkedVar5 = nullptr;  ///< this and the next seven: linked, not read
    double* linkedVar6 = nullptr;
    double* linkedVar7 = nullptr;
    double* linkedVar8 = nullptr;
    double* linkedVar9 = nullptr;
    double* linkedVar10 = nullptr;
    double* linkedVar11 = nullptr;
    double* linkedVar12 = nullptr;  ///< linked only if there are partition faces
    double* mu = nullptr;           ///< diffusion coefficient, 1..NcAll, read at ghost cells
    double* cp = nullptr;           ///< heat-capacity factor, 1..NcAll, read at ghost cells

    /// Stencil records: arrays from the array form of new, owned; record 0 is unused. Left and
    /// right are the Ne inner faces seen from owner and neighbor, the others the boundary faces by
    /// kind.
    CMAFVMFaceData* faceDataLeft = nullptr;
    CMAFVMFaceData* faceDataRight = nullptr;
    CMAFVMFaceData* faceDataInlet = nullptr;
    CMAFVMFaceData* faceDataOutlet = nullptr;
    CMAFVMFaceData* faceDataWall = nullptr;
    CMAFVMFaceData* faceDataSymm = nullptr;
    CMAFVMFaceData* faceDataExtra1 = nullptr;  ///< released here, not read
    CMAFVMFaceData* faceDataExtra2 = nullptr;  ///< released here, not read

    double* areaE = nullptr;       ///< inner-face areas, 1..Ne, slot 0 holds Ne; owned
    double* areaInlet = nullptr;   ///< inlet face areas, 1..NInlet; owned
    double* areaOutlet = nullptr;  ///< outlet face areas, 1..NOutlet; owned
    double* areaWall = nullptr;    ///< wall face areas, 1..NWall; owned
    double* areaSymm = nullptr;    ///< symmetry face areas, 1..NSymm; owned
    double* areaPart = nullptr;    ///< partition face areas, 1..NPart; owned, null if NPart is 0

    // Face variables, created by the caller, owned.
    CMAFVMFaceVariable* faceRho = nullptr;  ///< density at faces
    CMAFVMFaceVariable* faceMu = nullptr;   ///< diffusion coefficient at faces
    CMAFVMFaceVariable* faceK = nullptr;    ///< conductivity at faces
    CMAFVMFaceVariable* faceCp = nullptr;   ///< heat-capacity factor at faces

    /// 1, 2, 3, 4 for the ghost cell of an inlet, outlet, wall, symmetry face; 0 for a real cell
    /// and for any other id, which includes the ghost cells of partition faces. Entries 1..NcAll,
    /// owned.
    int* ghostBCType = nullptr;
    /// For the ghost cell of a boundary face the number of that face, for a real cell its own id,
    /// for any other id 0. Entries 1..NcAll, owned.
    int* ghostBCIndex = nullptr;

    /// A caller sets this to false to exclude the boundary faces from the operators.
    bool useBoundaryFaces = true;

private:
    bool getMeshNumber();
    bool getMeshPosition();
    bool getMeshNormal();
    bool getFaceArea();
    bool getMeshRelation();
    bool getPhysicalVar();

    void debugDataCheck();
};

#endif
