#include "reference_host/discretisation/equation.h"

#include <cmath>

#include "reference_host/discretisation/norm.h"

namespace host {

Equation::Equation(const StencilBuilder& builder_, StencilRecords& records, Reach reach,
                   MatrixSolver matrixSolver)
    : solver(records.gv.NcAll, matrixSolver),
      matrix(solver.Matrix()),
      gv(records.gv),
      builder(builder_),
      mirrored(records.gv.NWall + 1),
      ghostScale(records.gv.NcAll - records.gv.Nc + 1, 1.0) {
    for (int face = 1; face <= gv.NWall; ++face) {
        const BoundaryFace& wall = builder.mesh.Faces(Boundary::Wall)[face];
        if (wall.oversetGroup > 0 && builder.link.IsActive(wall.cell)) {
            mirrored[face] = builder.Mirrored(face);
        }
    }
    DeclarePattern(reach);
}

void Equation::DeclarePair(int row, const int* ids) {
    for (int j = 1; j <= ids[0]; ++j) {
        matrix.AddIndex(row, ids[j]);
    }
}

void Equation::DeclareSide(int row, int first, int second, const CMAFVMFaceData& record,
                           Reach reach) {
    DeclarePair(row, record.idNormal);
    if (reach == Reach::Normal) {
        return;
    }
    matrix.AddIndex(row, first);
    matrix.AddIndex(row, second);
    DeclarePair(row, record.idFace);
    DeclarePair(row, record.idLeft);
    DeclarePair(row, record.idRight);
    if (reach == Reach::Far) {
        DeclarePair(row, record.idFarLeft);
        DeclarePair(row, record.idFarRight);
    }
}

void Equation::DeclareBoundary(Boundary kind, const CMAFVMFaceData* records, Reach reach) {
    for (int face = 1; face <= builder.mesh.FaceCount(kind); ++face) {
        const int cell = builder.mesh.Faces(kind)[face].cell;
        const int ghost = builder.objects.Ghost(kind, face);
        matrix.AddIndex(ghost, cell);
        matrix.AddIndex(ghost, ghost);
        DeclarePair(cell, records[face].idNormal);
        if (reach == Reach::Normal) {
            continue;
        }
        // Convection adds a zero at (cell, ghost) on faces without flux, which includes symmetry
        // faces and faces of cut cells.
        matrix.AddIndex(cell, ghost);
        DeclarePair(cell, records[face].idLeft);
        if (reach == Reach::Far) {
            DeclarePair(cell, records[face].idFarLeft);
        }
    }
}

void Equation::DeclarePattern(Reach reach) {
    for (int cell = 1; cell <= gv.Nc; ++cell) {
        matrix.AddIndex(cell, cell);
    }
    for (int face = 1; face <= gv.Ne; ++face) {
        const FaceSide side = builder.link.Side(face);
        const int first = builder.link.First(face);
        const int second = builder.link.Second(face);
        if (side == FaceSide::Both || side == FaceSide::DonorIsSecond) {
            DeclareSide(first, first, second, gv.faceDataLeft[face], reach);
        }
        if (side == FaceSide::Both || side == FaceSide::DonorIsFirst) {
            DeclareSide(second, first, second, gv.faceDataRight[face], reach);
        }
    }
    DeclareBoundary(Boundary::Inlet, gv.faceDataInlet, reach);
    DeclareBoundary(Boundary::Outlet, gv.faceDataOutlet, reach);
    DeclareBoundary(Boundary::Wall, gv.faceDataWall, reach);
    DeclareBoundary(Boundary::Symmetry, gv.faceDataSymm, reach);
    for (int face = 1; face <= gv.NWall; ++face) {
        for (const Stencil::Term& term : mirrored[face].Terms()) {
            matrix.AddIndex(builder.objects.Ghost(Boundary::Wall, face), term.column);
        }
    }
    matrix.CompressIndex();
}

void Equation::AddGhostRow(int ghost, int cell, const GhostCondition& condition,
                           const Stencil& mirror) {
    const double scale = ghostScale[ghost - gv.Nc];
    matrix.AddElementValue(ghost, ghost, scale);
    if (condition.kind == GhostCondition::Kind::ZeroGradient) {
        matrix.AddElementValue(ghost, cell, -scale);
    } else if (condition.kind == GhostCondition::Kind::Mirror) {
        matrix.AddElementValue(ghost, cell, -0.5 * scale);
        for (const Stencil::Term& term : mirror.Terms()) {
            matrix.AddElementValue(ghost, term.column, -0.5 * scale * term.weight);
        }
    }
}

void Equation::CloseRows(const BoundaryConditions& conditions,
                         const std::vector<double>& cellScale) {
    for (int cell = 1; cell <= gv.Nc; ++cell) {
        if (!builder.link.IsActive(cell)) {
            matrix.SetDiagonalValue(cell, 1.0);
        }
    }
    static const Stencil none;
    for (const Boundary kind : allBoundaries) {
        for (int face = 1; face <= builder.mesh.FaceCount(kind); ++face) {
            const int cell = builder.mesh.Faces(kind)[face].cell;
            const int ghost = builder.objects.Ghost(kind, face);
            const double scale =
                cellScale.empty() ? std::abs(matrix.GetDiagonalValue(cell)) : cellScale[cell];
            ghostScale[ghost - gv.Nc] = scale > 0.0 ? scale : 1.0;
            AddGhostRow(ghost, cell, conditions.At(kind, face),
                        kind == Boundary::Wall ? mirrored[face] : none);
        }
    }
}

void Equation::FillGhostRows(const BoundaryConditions& conditions, std::vector<double>& rhs) const {
    for (const Boundary kind : allBoundaries) {
        for (int face = 1; face <= builder.mesh.FaceCount(kind); ++face) {
            const int ghost = builder.objects.Ghost(kind, face);
            const GhostCondition& condition = conditions.At(kind, face);
            rhs[ghost] = condition.kind == GhostCondition::Kind::Value
                             ? ghostScale[ghost - gv.Nc] * condition.value
                             : 0.0;
        }
    }
}

void Equation::FillGhosts(const BoundaryConditions& conditions, std::vector<double>& phi) const {
    for (const Boundary kind : allBoundaries) {
        for (int face = 1; face <= builder.mesh.FaceCount(kind); ++face) {
            const GhostCondition& condition = conditions.At(kind, face);
            const double inside = phi[builder.mesh.Faces(kind)[face].cell];
            double& ghost = phi[builder.objects.Ghost(kind, face)];
            switch (condition.kind) {
                case GhostCondition::Kind::Value:
                    ghost = condition.value;
                    break;
                case GhostCondition::Kind::ZeroGradient:
                    ghost = inside;
                    break;
                case GhostCondition::Kind::Mirror:
                    ghost = 0.5 * (inside + mirrored[face].Apply(phi));
            }
        }
    }
}

double Equation::Residual(const std::vector<double>& rhs, std::vector<double>& phi) {
    return solver.Residual(rhs, phi);
}

SolveReport Equation::Solve(const std::vector<double>& rhs, std::vector<double>& phi,
                            double reduction, int maxCalls) {
    SolveReport report;
    report.target = reduction * Norm(rhs);
    report.initialResidual = Residual(rhs, phi);
    report.finalResidual = report.initialResidual;
    while (!report.Converged() && report.calls < maxCalls) {
        const LinearSolve call = solver.Solve(rhs, phi, report.target);
        report.iterations += call.iterations;
        ++report.calls;
        report.finalResidual = call.residual;
    }
    return report;
}

}  // namespace host
