#ifndef KVX3D_HOST_LINK_FACE_DATA_H
#define KVX3D_HOST_LINK_FACE_DATA_H

#include "host_link/export.h"

class CKVX_ACMT_GV;

/// The nine stencils of one face, seen from one side.
///
/// A stencil is an int array paired with the double array of the same name. Slot 0 of the ids is
/// the number n of terms; ids 1..n are cell numbers, ghost cells included, and are used directly as
/// matrix columns; coefficients 1..n are the weights. Slot 0 of the coefficients is not read. A
/// quantity at the face is the weighted sum over the cells.
///
/// Left is the value on the side of the first cell of the face, Right the value on the side of the
/// second. If the flux is positive (from the first cell to the second), Left is the upstream value
/// and FarLeft the value one step further upstream; if it is negative, Right and FarRight are.
///
/// The creator of a record fills it. Each array comes from the array form of new and is owned by
/// the record unless `linked` is set.
class KVX3D_API CMAFVMFaceData {
public:
    /// All pointers null, not linked.
    CMAFVMFaceData();
    /// Member by member, `linked` included: a copy of an owning record is a second owner.
    CMAFVMFaceData(const CMAFVMFaceData& other);
    CMAFVMFaceData& operator=(const CMAFVMFaceData& other);
    /// Releases the 18 stencil arrays unless linked. The `vec` pointers are never released.
    ~CMAFVMFaceData();

    /// Borrows all arrays of `other`, which must outlive this record. The previous pointers of this
    /// record are overwritten without being released.
    /// @return 0
    int LinkedDataForAll(const CMAFVMFaceData& other);

    int* idFace = nullptr;    ///< face value
    int* idNormal = nullptr;  ///< normal derivative
    int* idAux1 = nullptr;    ///< this and the next two: for the host, not read
    int* idAux2 = nullptr;
    int* idAux3 = nullptr;
    int* idLeft = nullptr;      ///< upstream with positive flux
    int* idRight = nullptr;     ///< upstream with negative flux
    int* idFarLeft = nullptr;   ///< far upstream with positive flux
    int* idFarRight = nullptr;  ///< far upstream with negative flux

    double* coefFace = nullptr;
    double* coefNormal = nullptr;
    double* coefAux1 = nullptr;
    double* coefAux2 = nullptr;
    double* coefAux3 = nullptr;
    double* coefLeft = nullptr;
    double* coefRight = nullptr;
    double* coefFarLeft = nullptr;
    double* coefFarRight = nullptr;

    bool linked = false;  ///< the 18 arrays belong to another record

    /// For the host: copied, but neither read nor released.
    double* vecA[3] = {nullptr, nullptr, nullptr};
    double* vecB[3] = {nullptr, nullptr, nullptr};
    double* vecC[3] = {nullptr, nullptr, nullptr};
    double* vecD[3] = {nullptr, nullptr, nullptr};
};

/// One double per inner face and side, for example a flux or a viscosity. All arrays are 1-based
/// with the count in slot 0.
///
/// Copies and assignment share the arrays: a copy is a view, and only one of the two may be
/// destroyed.
class KVX3D_API CMAFVMFaceVariable {
public:
    /// No arrays, not shared.
    CMAFVMFaceVariable();
    /// Arrays of gv->Ne entries; no arrays if `gv` is null.
    /// @param shared  true for one array that serves both sides
    CMAFVMFaceVariable(CKVX_ACMT_GV* gv, bool shared);
    CMAFVMFaceVariable(const CMAFVMFaceVariable& other);
    CMAFVMFaceVariable& operator=(const CMAFVMFaceVariable& other);
    virtual ~CMAFVMFaceVariable();

    /// Replaces the arrays by zero-filled ones for the faces of `gv`: one if `sharedInner` is true,
    /// otherwise two.
    /// @return false, with nothing changed, if `gv` is null
    virtual bool NewMemory(CKVX_ACMT_GV* gv);

    /// Makes an object with two arrays use the left one for both sides and releases the right one.
    ///
    /// Call it at most once, and only on an object with two arrays: a second call releases the
    /// array to which `left` still points.
    /// @return true
    bool LinkInner();

    double* left = nullptr;    ///< value for the owner cell Ce23[0], 1..Ne
    double* right = nullptr;   ///< value for the neighbor cell Ce23[1], 1..Ne
    bool sharedInner = false;  ///< `right` is `left`, owned once
};

/// A face variable with values at all four kinds of boundary faces: the type of every flux
/// argument.
class KVX3D_API CMAFVMFaceVariableAll : public CMAFVMFaceVariable {
public:
    /// No arrays, not shared.
    CMAFVMFaceVariableAll();
    /// Arrays for all faces of `gv`, which must not be null.
    CMAFVMFaceVariableAll(CKVX_ACMT_GV* gv, bool shared);
    CMAFVMFaceVariableAll(const CMAFVMFaceVariableAll& other);
    CMAFVMFaceVariableAll& operator=(const CMAFVMFaceVariableAll& other);
    ~CMAFVMFaceVariableAll() override;

    /// Replaces all arrays by zero-filled ones. `gv` must not be null.
    /// @return true
    bool NewMemory(CKVX_ACMT_GV* gv) override;

    double* inlet = nullptr;   ///< 1..NInlet, owned
    double* outlet = nullptr;  ///< 1..NOutlet, owned
    double* wall = nullptr;    ///< 1..NWall, owned
    double* symm = nullptr;    ///< 1..NSymm, owned
};

/// A face variable with values also at wall faces, which include the overset boundaries. It is
/// provided for the host; no operator uses it.
class KVX3D_API CMAFVMFaceVariableOverset : public CMAFVMFaceVariable {
public:
    /// No arrays, not shared.
    CMAFVMFaceVariableOverset();
    /// Arrays for inner and wall faces of `gv`, which must not be null.
    CMAFVMFaceVariableOverset(CKVX_ACMT_GV* gv, bool shared);
    CMAFVMFaceVariableOverset(const CMAFVMFaceVariableOverset& other);
    CMAFVMFaceVariableOverset& operator=(const CMAFVMFaceVariableOverset& other);
    ~CMAFVMFaceVariableOverset() override;

    /// Replaces all arrays by zero-filled ones. `gv` must not be null.
    /// @return true
    bool NewMemory(CKVX_ACMT_GV* gv) override;

    double* wall = nullptr;  ///< 1..NWall, owned
};

/// A row of doubles and a type number for each boundary face. It is provided for the host, which
/// defines the meaning of the entries; no operator reads it.
///
/// The last row of each value array is not released (see freeDouble2D()).
class KVX3D_API CMAFVMBoundaryCondition {
public:
    /// No arrays.
    CMAFVMBoundaryCondition();
    /// Arrays for the boundary faces of `gv`; no arrays if `gv` is null.
    CMAFVMBoundaryCondition(CKVX_ACMT_GV* gv, int components);
    /// Member by member: copies share the arrays, and only one of them may be destroyed.
    CMAFVMBoundaryCondition(const CMAFVMBoundaryCondition& other);
    CMAFVMBoundaryCondition& operator=(const CMAFVMBoundaryCondition& other);
    ~CMAFVMBoundaryCondition();

    /// Replaces all arrays by zero-filled ones with `components` doubles per face.
    /// @return false, with nothing changed, if `gv` is null
    bool NewMemory(CKVX_ACMT_GV* gv, int components);

    double** valueInlet = nullptr;   ///< rows 1..NInlet of `components` entries, owned
    double** valueOutlet = nullptr;  ///< rows 1..NOutlet, owned
    double** valueWall = nullptr;    ///< rows 1..NWall, owned
    double** valueSymm = nullptr;    ///< rows 1..NSymm, owned

    int* typeInlet = nullptr;   ///< 1..NInlet, owned
    int* typeOutlet = nullptr;  ///< 1..NOutlet, owned
    int* typeWall = nullptr;    ///< 1..NWall, owned
    int* typeSymm = nullptr;    ///< 1..NSymm, owned
};

#endif
