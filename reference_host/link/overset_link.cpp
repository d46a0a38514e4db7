#include "reference_host/link/overset_link.h"

#include <fmt/format.h>

#include <stdexcept>

#include "overset/overset_mesh.h"
#include "reference_host/link/host_contract.h"
#include "reference_host/link/mesh_rules.h"
#include "reference_host/mesh/messages.h"

namespace host {
namespace {

constexpr int maxTries = 20;  // sound meshes need one, tetrahedral components up to four

Donors NothingCut(const Mesh& mesh) {
    Donors donors;
    donors.active.assign(mesh.cellCentre.size(), 1);
    donors.side.assign(mesh.innerFaces.size(), FaceSide::Both);
    donors.inner.assign(mesh.innerFaces.size(), 0);
    donors.tries.assign(mesh.innerFaces.size(), 0);
    donors.wall.assign(mesh.Faces(Boundary::Wall).size(), 0);
    return donors;
}

}  // namespace

OversetLink::OversetLink(const Mesh& mesh, HostObjects& objects) : donors(NothingCut(mesh)) {
    Refuse(ContractFaults(objects.gv, objects.fvm));
    for (const InnerFace& face : mesh.innerFaces) {
        first.push_back(face.owner);
        second.push_back(face.neighbor);
    }
    if (mesh.GridCount() < 2) {
        return;
    }
    Refuse(FaultsBeforeCutting(mesh));
    CutHoles(mesh, objects);
    FindDonors(mesh, donors, maxTries);
    Refuse(FaultsAfterCutting(mesh, donors));
    WriteDonors(mesh, objects);
}

OversetLink::~OversetLink() = default;

bool OversetLink::IsOverset() const {
    return toolbox != nullptr;
}

/// Takes over the toolbox's classification. Before any donor is written: a face with a donor in
/// its pair answers "active".
void OversetLink::CutHoles(const Mesh& mesh, HostObjects& objects) {
    toolbox = std::make_unique<CKVXOversetMesh>();
    toolbox->SetFVM(&objects.gv, &objects.fvm);
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        donors.active[cell] = toolbox->GetOversetCellType(cell) == OversetCell_Active ? 1 : 0;
    }
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        switch (toolbox->GetInnerFaceType(face)) {
            case OversetInnerFace_Active:
                donors.side[face] = FaceSide::Both;
                break;
            case OversetInnerFace_Overset:
                donors.side[face] = IsActive(mesh.innerFaces[face].owner) ? FaceSide::DonorIsSecond
                                                                          : FaceSide::DonorIsFirst;
                break;
            case OversetInnerFace_NonActive:
                donors.side[face] = FaceSide::None;
                break;
            default:
                throw std::runtime_error(
                    fmt::format("inner face {} {} has no overset type: the toolbox could not tell "
                                "the state of its cells",
                                face, At(mesh.innerFaces[face].centre)));
        }
    }
}

/// Lets the toolbox write each donor into the host's Ce23 and takes the pair over.
void OversetLink::WriteDonors(const Mesh& mesh, HostObjects& objects) {
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        if (donors.inner[face] == 0) {
            continue;
        }
        toolbox->ReplaceDonorIdtoNonActCellId(face);
        first[face] = objects.fvm.Ce23[0][face];
        second[face] = objects.fvm.Ce23[1][face];
        const int donor = Side(face) == FaceSide::DonorIsFirst ? first[face] : second[face];
        if (donor != donors.inner[face]) {
            throw std::runtime_error(
                fmt::format("inner face {} {}: the toolbox donates cell {}, the host's own search "
                            "cell {}: one of them is wrong",
                            face, At(mesh.innerFaces[face].centre), donor, donors.inner[face]));
        }
    }
}

}  // namespace host
