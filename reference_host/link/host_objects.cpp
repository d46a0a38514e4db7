#include "reference_host/link/host_objects.h"

#include <algorithm>

namespace host {

void HostObjects::Vectors::Resize(int n) {
    x.assign(n + 1, 0.0);
    y.assign(n + 1, 0.0);
    z.assign(n + 1, 0.0);
}

void HostObjects::Vectors::Set(int i, const Vec3& value) {
    x[i] = value.x();
    y[i] = value.y();
    z[i] = value.z();
}

HostObjects::HostObjects(const Mesh& mesh, const std::string& resultDir) : rootDir(resultDir) {
    fvm.Nn = mesh.NodeCount();
    fvm.Nc = mesh.CellCount();
    fvm.Ne = mesh.InnerFaceCount();
    fvm.NInlet = mesh.FaceCount(Boundary::Inlet);
    fvm.NOutlet = mesh.FaceCount(Boundary::Outlet);
    fvm.NWall = mesh.FaceCount(Boundary::Wall);
    fvm.NSymm = mesh.FaceCount(Boundary::Symmetry);
    fvm.NcAll = fvm.Nc + fvm.NInlet + fvm.NOutlet + fvm.NWall + fvm.NSymm;

    FillCells(mesh);
    FillInnerFaces(mesh);
    FillBoundaryFaces(mesh);
    FillOversetGroups(mesh);
    LinkBoundaryFaces();
    LinkFields();
    processId.assign(1, 0);
    gv.pProcessId = processId.data();
    gv.rootDir = rootDir.data();
}

int HostObjects::Ghost(Boundary kind, int face) const {
    return boundary[static_cast<int>(kind)].ghost[face];
}

void HostObjects::FillCells(const Mesh& mesh) {
    nodes.Resize(fvm.Nn);
    for (int node = 1; node <= fvm.Nn; ++node) {
        nodes.Set(node, mesh.nodes[node]);
    }
    cellCentres.Resize(fvm.NcAll);
    volume.assign(fvm.NcAll + 1, 0.0);
    cavity.assign(fvm.Nc + 1, 0);
    std::vector<std::size_t> rowStart(fvm.Nc + 1, 0);
    for (int cell = 1; cell <= fvm.Nc; ++cell) {
        cellCentres.Set(cell, mesh.cellCentre[cell]);
        volume[cell] = mesh.volume[cell];
        cavity[cell] = mesh.cavity[cell];
        const std::vector<int>& row = mesh.cellNodes[cell];
        rowStart[cell] = cellNodeLists.size();
        cellNodeLists.push_back(static_cast<int>(row.size()));
        cellNodeLists.insert(cellNodeLists.end(), row.begin(), row.end());
    }
    cellNodeRows.assign(fvm.Nc + 1, nullptr);
    for (int cell = 1; cell <= fvm.Nc; ++cell) {
        cellNodeRows[cell] = cellNodeLists.data() + rowStart[cell];
    }

    fvm.xn = nodes.x.data();
    fvm.yn = nodes.y.data();
    fvm.zn = nodes.z.data();
    fvm.xc = cellCentres.x.data();
    fvm.yc = cellCentres.y.data();
    fvm.zc = cellCentres.z.data();
    fvm.volume = volume.data();
    fvm.cellNodes = cellNodeRows.data();
    gv.cavityId = cavity.data();
}

void HostObjects::FillInnerFaces(const Mesh& mesh) {
    innerCentres.Resize(fvm.Ne);
    innerAreas.Resize(fvm.Ne);
    owner.assign(fvm.Ne + 1, 0);
    neighbor.assign(fvm.Ne + 1, 0);
    nonmatching.assign(fvm.Ne + 1, 0);
    for (int i = 1; i <= fvm.Ne; ++i) {
        const InnerFace& face = mesh.innerFaces[i];
        innerCentres.Set(i, face.centre);
        innerAreas.Set(i, face.area);
        owner[i] = face.owner;
        neighbor[i] = face.neighbor;
        nonmatching[i] = face.nonmatching ? 1 : 0;
    }

    fvm.xe = innerCentres.x.data();
    fvm.ye = innerCentres.y.data();
    fvm.ze = innerCentres.z.data();
    fvm.nxe = innerAreas.x.data();
    fvm.nye = innerAreas.y.data();
    fvm.nze = innerAreas.z.data();
    fvm.Ce23[0] = owner.data();
    fvm.Ce23[1] = neighbor.data();
    fvm.nonmatchingFace = nonmatching.data();
}

void HostObjects::FillBoundaryFaces(const Mesh& mesh) {
    int ghost = fvm.Nc;
    for (Boundary kind : allBoundaries) {
        BoundaryArrays& arrays = boundary[static_cast<int>(kind)];
        const int nFaces = mesh.FaceCount(kind);
        arrays.centre.Resize(nFaces);
        arrays.area.Resize(nFaces);
        arrays.cell.assign(nFaces + 1, 0);
        arrays.ghost.assign(nFaces + 1, 0);
        for (int i = 1; i <= nFaces; ++i) {
            const BoundaryFace& face = mesh.Faces(kind)[i];
            arrays.centre.Set(i, face.centre);
            arrays.area.Set(i, face.area);
            arrays.cell[i] = face.cell;
            arrays.ghost[i] = ++ghost;
            cellCentres.Set(ghost, face.centre);
        }
    }
}

void HostObjects::FillOversetGroups(const Mesh& mesh) {
    groupFaces.assign(std::max(mesh.GridCount(), 1), std::vector<int>(1, 0));
    for (int i = 1; i <= fvm.NWall; ++i) {
        const int group = mesh.Faces(Boundary::Wall)[i].oversetGroup;
        if (group > 0) {
            groupFaces.at(group).push_back(i);
        }
    }
    const int nGroups = static_cast<int>(groupFaces.size()) - 1;
    groupCount.assign(1, nGroups);
    groupSizes.assign(nGroups + 1, 0);
    groupRows.assign(nGroups + 1, nullptr);
    for (int group = 1; group <= nGroups; ++group) {
        groupSizes[group] = static_cast<int>(groupFaces[group].size()) - 1;
        groupRows[group] = groupFaces[group].data();
    }
    gv.NOversetBCGroup = groupCount.data();
    gv.oversetBCFaceCount = groupSizes.data();
    gv.oversetBCWallFace = groupRows.data();
}

void HostObjects::LinkBoundaryFaces() {
    const auto link = [](BoundaryArrays& from, double*& x, double*& y, double*& z, double*& nx,
                         double*& ny, double*& nz, int*& cell, int*& ghost) {
        x = from.centre.x.data();
        y = from.centre.y.data();
        z = from.centre.z.data();
        nx = from.area.x.data();
        ny = from.area.y.data();
        nz = from.area.z.data();
        cell = from.cell.data();
        ghost = from.ghost.data();
    };
    link(boundary[0], fvm.xInlet, fvm.yInlet, fvm.zInlet, fvm.nxInlet, fvm.nyInlet, fvm.nzInlet,
         fvm.CInlet23, fvm.idInlet);
    link(boundary[1], fvm.xOutlet, fvm.yOutlet, fvm.zOutlet, fvm.nxOutlet, fvm.nyOutlet,
         fvm.nzOutlet, fvm.COutlet23, fvm.idOutlet);
    link(boundary[2], fvm.xWall, fvm.yWall, fvm.zWall, fvm.nxWall, fvm.nyWall, fvm.nzWall,
         fvm.CWall23, fvm.idWall);
    link(boundary[3], fvm.xSymm, fvm.ySymm, fvm.zSymm, fvm.nxSymm, fvm.nySymm, fvm.nzSymm,
         fvm.CSymm23, fvm.idSymm);
}

void HostObjects::LinkFields() {
    for (std::vector<double>* field : {&pressure, &u, &v, &w}) {
        field->assign(fvm.NcAll + 1, 0.0);
    }
    for (std::vector<double>* field : {&mu, &cp, &cellRho, &cellK}) {
        field->assign(fvm.NcAll + 1, 1.0);
    }
    gv.flowVariables[0] = pressure.data();
    gv.flowVariables[1] = u.data();
    gv.flowVariables[2] = v.data();
    gv.flowVariables[3] = w.data();
    gv.mu = mu.data();
    gv.cp = cp.data();
    gv.cellRho = cellRho.data();
    gv.cellK = cellK.data();
}

}  // namespace host
