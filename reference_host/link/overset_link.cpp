#include "reference_host/link/overset_link.h"

#include <fmt/format.h>

#include <stdexcept>

#include "host_checks/cut_rules.h"
#include "host_checks/host_rules.h"
#include "host_checks/mesh_rules.h"
#include "overset/overset_mesh.h"
#include "reference_host/mesh/messages.h"

namespace host {
namespace {

namespace checks = kvx3d::checks;

Donors NothingCut(const Mesh& mesh) {
    Donors donors;
    donors.active.assign(mesh.cellCentre.size(), 1);
    donors.side.assign(mesh.innerFaces.size(), FaceSide::Both);
    donors.inner.assign(mesh.innerFaces.size(), 0);
    donors.tries.assign(mesh.innerFaces.size(), 0);
    donors.wall.assign(mesh.Faces(Boundary::Wall).size(), 0);
    return donors;
}

/// The toolbox numbers the grids by inlet and overset groups, this host by the names of the
/// volumes. Both must agree because this host finds the background and the body by cavity ids.
void RequireNamedGrids(const Mesh& mesh, const checks::MeshView& view) {
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        if (view.Grid(cell) != mesh.cavity[cell]) {
            throw std::runtime_error(fmt::format(
                "{} of {} belongs to grid {} by the inlet and the overset groups: put the inlet "
                "beside the background, overset1 around component1 and overset2 around component2",
                CellAt(mesh, cell), CavityName(mesh.cavity[cell]), view.Grid(cell)));
        }
    }
}

}  // namespace

OversetLink::OversetLink(const Mesh& mesh, HostObjects& objects) : donors(NothingCut(mesh)) {
    Refuse(checks::HostFaults(objects.gv, objects.fvm));
    for (const InnerFace& face : mesh.innerFaces) {
        first.push_back(face.owner);
        second.push_back(face.neighbor);
    }
    if (mesh.GridCount() < 2) {
        return;
    }
    const checks::MeshView view(objects.gv, objects.fvm);
    RequireNamedGrids(mesh, view);
    Refuse(checks::MeshFaults(view));
    CutHoles(mesh, objects);
    FindDonors(view);
    WriteDonors(mesh, objects);
}

OversetLink::~OversetLink() = default;

bool OversetLink::IsOverset() const {
    return toolbox != nullptr;
}

/// Takes over the classification of the toolbox. This must come before any donor is written: a
/// face with a donor in its pair is classified as active.
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
                    fmt::format("inner face {} {} has no overset type: the toolbox could not "
                                "determine the state of its cells",
                                face, At(mesh.innerFaces[face].centre)));
        }
    }
}

/// Searches all donors with a bound on the tries and refuses a cut that breaks a rule.
void OversetLink::FindDonors(const checks::MeshView& view) {
    const checks::BoundedDonorSearch search(view, *toolbox);
    const checks::CutMesh cut = checks::FindDonors(view, search);
    Refuse(checks::CutFaults(view, cut));
    for (const checks::FaceDonor& hole : cut.hole) {
        donors.inner[hole.face] = hole.search.donor;
        donors.tries[hole.face] = hole.search.tries;
    }
    for (const checks::FaceDonor& outer : cut.outers) {
        donors.wall[outer.face] = outer.search.donor;
    }
}

/// Lets the toolbox write each donor into the Ce23 of the host and takes the pair over.
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
                fmt::format("inner face {} {}: the toolbox found donor {} and the bounded search "
                            "donor {}: one of them is wrong",
                            face, At(mesh.innerFaces[face].centre), donor, donors.inner[face]));
        }
    }
}

}  // namespace host
