#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>
#include <utility>
#include <vector>

#include "host_link/art_gv.h"
#include "host_link/containers.h"
#include "host_link/face_data.h"

namespace {

/// The position of a member in its class.
struct Member {
    const char* name;
    std::size_t offset;
    std::size_t size;
    std::size_t alignment;
};

std::size_t AlignUp(std::size_t offset, std::size_t alignment) {
    return (offset + alignment - 1) / alignment * alignment;
}

/// Checks that the members follow each other from `start`, with nothing between or after them.
void ExpectCompact(std::size_t start, const std::vector<Member>& members, std::size_t size) {
    std::size_t end = start;
    for (const Member& member : members) {
        EXPECT_EQ(member.offset, AlignUp(end, member.alignment)) << member.name;
        end = member.offset + member.size;
    }
    EXPECT_EQ(size, AlignUp(end, alignof(void*)));
}

template <typename Class, typename T>
Member MemberAt(const char* name, const Class& object, const T& member) {
    return {name,
            static_cast<std::size_t>(reinterpret_cast<const char*>(&member) -
                                     reinterpret_cast<const char*>(&object)),
            sizeof(T), alignof(T)};
}

#define AT(member) MemberAt(#member, object, object.member)

TEST(Layout, HostRecordHasItsFieldsInOrderAndNoOthers) {
    static_assert(std::is_standard_layout_v<CKVX_ACMT_GV>);
    const CKVX_ACMT_GV object;

    ExpectCompact(0,
                  {AT(kvxGv),
                   AT(kvxFvm),
                   AT(kvxPartFace),
                   AT(kvxGradient),
                   AT(kvxCommunication),
                   AT(NcAll),
                   AT(Nc),
                   AT(Ne),
                   AT(NInlet),
                   AT(NOutlet),
                   AT(NWall),
                   AT(NSymm),
                   AT(NPart),
                   AT(Nn),
                   AT(hostCountTableGv),
                   AT(hostCountTableFvm),
                   AT(Ce23),
                   AT(CInlet23),
                   AT(COutlet23),
                   AT(CWall23),
                   AT(CSymm23),
                   AT(CPart23),
                   AT(idInlet),
                   AT(idOutlet),
                   AT(idWall),
                   AT(idSymm),
                   AT(idPart),
                   AT(cavityId),
                   AT(cellTableA),
                   AT(pProcessId),
                   AT(innerFaceTable),
                   AT(inletFaceTable),
                   AT(outletFaceTable),
                   AT(wallFaceTable),
                   AT(symmFaceTable),
                   AT(cellTableB),
                   AT(cellTableC),
                   AT(cellNodes),
                   AT(nonmatchingFace),
                   AT(FaceType_Partition),
                   AT(IfPartitionFace_InvalidForNonMatching),
                   AT(xc),
                   AT(yc),
                   AT(zc),
                   AT(volume),
                   AT(xe),
                   AT(ye),
                   AT(ze),
                   AT(xn),
                   AT(yn),
                   AT(zn),
                   AT(xInlet),
                   AT(yInlet),
                   AT(zInlet),
                   AT(xOutlet),
                   AT(yOutlet),
                   AT(zOutlet),
                   AT(xWall),
                   AT(yWall),
                   AT(zWall),
                   AT(xSymm),
                   AT(ySymm),
                   AT(zSymm),
                   AT(xPart),
                   AT(yPart),
                   AT(zPart),
                   AT(nxe),
                   AT(nye),
                   AT(nze),
                   AT(nxInlet),
                   AT(nyInlet),
                   AT(nzInlet),
                   AT(nxOutlet),
                   AT(nyOutlet),
                   AT(nzOutlet),
                   AT(nxWall),
                   AT(nyWall),
                   AT(nzWall),
                   AT(nxSymm),
                   AT(nySymm),
                   AT(nzSymm),
                   AT(nxPart),
                   AT(nyPart),
                   AT(nzPart),
                   AT(u),
                   AT(v),
                   AT(w),
                   AT(p),
                   AT(linkedVar5),
                   AT(linkedVar6),
                   AT(linkedVar7),
                   AT(linkedVar8),
                   AT(linkedVar9),
                   AT(linkedVar10),
                   AT(linkedVar11),
                   AT(linkedVar12),
                   AT(mu),
                   AT(cp),
                   AT(faceDataLeft),
                   AT(faceDataRight),
                   AT(faceDataInlet),
                   AT(faceDataOutlet),
                   AT(faceDataWall),
                   AT(faceDataSymm),
                   AT(faceDataExtra1),
                   AT(faceDataExtra2),
                   AT(areaE),
                   AT(areaInlet),
                   AT(areaOutlet),
                   AT(areaWall),
                   AT(areaSymm),
                   AT(areaPart),
                   AT(faceRho),
                   AT(faceMu),
                   AT(faceK),
                   AT(faceCp),
                   AT(ghostBCType),
                   AT(ghostBCIndex),
                   AT(useBoundaryFaces)},
                  sizeof(object));
}

TEST(Layout, FaceDataHasItsFieldsInOrderAndNoOthers) {
    static_assert(std::is_standard_layout_v<CMAFVMFaceData>);
    const CMAFVMFaceData object;

    ExpectCompact(0,
                  {AT(idFace),     AT(idNormal),    AT(idAux1),       AT(idAux2),     AT(idAux3),
                   AT(idLeft),     AT(idRight),     AT(idFarLeft),    AT(idFarRight), AT(coefFace),
                   AT(coefNormal), AT(coefAux1),    AT(coefAux2),     AT(coefAux3),   AT(coefLeft),
                   AT(coefRight),  AT(coefFarLeft), AT(coefFarRight), AT(linked),     AT(vecA),
                   AT(vecB),       AT(vecC),        AT(vecD)},
                  sizeof(object));
}

TEST(Layout, FaceVariablesHaveOneVirtualTablePointerThenTheirFields) {
    static_assert(std::has_virtual_destructor_v<CMAFVMFaceVariable>);
    const CMAFVMFaceVariable object;

    ExpectCompact(sizeof(void*), {AT(left), AT(right), AT(sharedInner)}, sizeof(object));
}

TEST(Layout, FaceVariableAllAddsTheFourKinds) {
    const CMAFVMFaceVariableAll object;

    ExpectCompact(sizeof(CMAFVMFaceVariable), {AT(inlet), AT(outlet), AT(wall), AT(symm)},
                  sizeof(object));
}

TEST(Layout, FaceVariableOversetAddsTheWalls) {
    const CMAFVMFaceVariableOverset object;

    ExpectCompact(sizeof(CMAFVMFaceVariable), {AT(wall)}, sizeof(object));
}

TEST(Layout, BoundaryConditionHasItsFieldsInOrderAndNoOthers) {
    static_assert(std::is_standard_layout_v<CMAFVMBoundaryCondition>);
    const CMAFVMBoundaryCondition object;

    ExpectCompact(0,
                  {AT(valueInlet), AT(valueOutlet), AT(valueWall), AT(valueSymm), AT(typeInlet),
                   AT(typeOutlet), AT(typeWall), AT(typeSymm)},
                  sizeof(object));
}

TEST(Layout, ContainerHasItsVirtualTablePointerThenShapeAndFlag) {
    const KVX3DART::Container object;

    ExpectCompact(sizeof(void*), {AT(shape), AT(flag)}, sizeof(object));
}

#undef AT

TEST(Signatures, PublicFunctionsHaveTheTypesThatHostsUse) {
    using GV = CKVX_ACMT_GV;
    static_assert(
        std::is_same_v<decltype(&GV::getKvx3dGV), int (GV::*)(CKvx3dGV*, CKVX3DFiniteVolumeMesh*)>);
    static_assert(
        std::is_same_v<decltype(&GV::getKvx3dPartFace), int (GV::*)(CPartitionFace_DLL*)>);
    static_assert(
        std::is_same_v<decltype(&GV::getKvx3dGradientTool), int (GV::*)(COperatorGradient*)>);
    static_assert(
        std::is_same_v<decltype(&GV::getKvx3dCommunication), int (GV::*)(CCommunication*)>);
    static_assert(std::is_same_v<decltype(&GV::getKvx3dData), int (GV::*)()>);
    static_assert(std::is_same_v<decltype(&GV::debugMode), int (GV::*)()>);
    static_assert(std::is_same_v<decltype(&GV::isKvxGv), bool (GV::*)()>);
    static_assert(std::is_same_v<decltype(&GV::CalNorm),
                                 double (*)(const double&, const double&, const double&)>);
    static_assert(std::is_same_v<decltype(std::declval<GV&>() = std::declval<const GV&>()), GV&>);
    static_assert(std::is_same_v<decltype(&CMAFVMFaceData::LinkedDataForAll),
                                 int (CMAFVMFaceData::*)(const CMAFVMFaceData&)>);
    static_assert(
        std::is_same_v<decltype(&CMAFVMFaceVariable::LinkInner), bool (CMAFVMFaceVariable::*)()>);
    SUCCEED();
}

}  // namespace
