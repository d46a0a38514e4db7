// A host with an overset mesh: heat conduction from a hot cylinder in a square, on two grids.
//
//     overset_host                      solves and writes overset_host_results/
//     overset_host --output DIRECTORY   writes elsewhere
//     overset_host --fault 7            makes a mistake on purpose (1 to 10, see faults.h), which
//                                       the host checks report; exit code 1
//
// The temperature obeys dT/dt = Laplace T with T = 1 on the cylinder. The sides of the square have
// the values of T = ln(4 / r) / ln 8, which is therefore the steady solution. The time steps double
// until nothing changes, and each one is published. At the end the temperature is compared with
// the formula (largest error 0.0019), and the heat that leaves the cylinder with 2 pi / ln 8.
//
// How you can experiment here: refine both grids (twice n, around and across in two_grids.h divide
// the error by 4), move the ring toward a wall or make it thinner, and read what the checks say.

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "faults.h"
#include "fvm_operators/mat_operator.h"
#include "host_checks/host_checks.h"
#include "host_checks/inspection.h"
#include "host_checks/safe_solve.h"
#include "stencils.h"
#include "two_grids.h"

namespace checks = kvx3d::checks;

namespace {

constexpr double farRadius = 4.0;    // where the formula is zero
constexpr double reduction = 1e-10;  // of the residual, in each time step

/// The steady solution.
double Exact(const Shape& shape, double x, double y) {
    const double r = std::hypot(x - shape.x, y - shape.y);
    return std::log(farRadius / r) / std::log(farRadius / shape.inner);
}

struct Options {
    std::string output = "overset_host_results";
    int fault = 0;  // none
};

Options ReadOptions(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; i += 2) {
        const std::string name = argv[i];
        if (i + 1 == argc || (name != "--output" && name != "--fault")) {
            throw std::runtime_error("usage: overset_host [--output DIRECTORY] [--fault 1..10]");
        }
        if (name == "--output") {
            options.output = argv[i + 1];
        } else {
            options.fault = std::atoi(argv[i + 1]);
            if (options.fault < 1 || options.fault > faultCount) {
                throw std::runtime_error("--fault takes a number from 1 to 10");
            }
        }
    }
    return options;
}

/// The implicit equation (T - T_old) V / dt = sum of gradients, with a row for each cell and ghost.
class HeatEquation {
public:
    HeatEquation(TwoGrids& hostGrids, const CutMesh& cutMesh, FaceStencils& faceStencils)
        : grids(hostGrids), cut(cutMesh), stencils(faceStencils), matrix(grids.fvm.NcAll) {
        DeclarePattern();
    }

    /// One step of implicit Euler from grids.temperature.
    /// @param boundaryValues  by ghost cell, 1..NcAll
    checks::SolveReport Step(double dt, const std::vector<double>& boundaryValues) {
        const CKVX3DFiniteVolumeMesh& fvm = grids.fvm;
        std::vector<double> rhs = boundaryValues;
        matrix.Clear();
        KVX_ART_FVM::CKVX_ART_MatOperator(&matrix, &stencils.gv).PureLaplaceOperator(-1.0);
        for (int row = 1; row <= fvm.NcAll; ++row) {
            const bool isSolved = row <= fvm.Nc && cut.isActive[row];
            const double diagonal = isSolved ? fvm.volume[row] / dt : 1.0;
            matrix.AddElementValue(row, row, diagonal);
            if (isSolved) {
                rhs[row] = diagonal * grids.temperature[row];
            }
        }
        return checks::SafeSolve(matrix, rhs.data(), grids.temperature.data(), reduction);
    }

private:
    /// Declares all positions before the first value is added: a value at a position that was not
    /// declared would cost a copy of the whole matrix.
    void DeclarePattern() {
        const CKVX_ACMT_GV& gv = stencils.gv;
        const auto declare = [&](int row, const CMAFVMFaceData& record) {
            for (int k = 1; k <= record.idNormal[0]; ++k) {
                matrix.AddIndex(row, record.idNormal[k]);
            }
        };
        for (int row = 1; row <= gv.NcAll; ++row) {
            matrix.AddIndex(row, row);
        }
        for (int face = 1; face <= gv.Ne; ++face) {
            declare(gv.Ce23[0][face], gv.faceDataLeft[face]);
            declare(gv.Ce23[1][face], gv.faceDataRight[face]);
        }
        const CMAFVMFaceData* const records[] = {gv.faceDataInlet, gv.faceDataOutlet,
                                                 gv.faceDataWall};
        for (int kind = 0; kind < 3; ++kind) {
            const checks::BoundaryFaces faces = checks::BoundaryKinds(grids.fvm)[kind];
            for (int face = 1; face <= faces.count; ++face) {
                declare(faces.cell[face], records[kind][face]);
            }
        }
    }

    TwoGrids& grids;
    const CutMesh& cut;
    FaceStencils& stencils;
    CKVX_ART_MatSolver_BiCGSTAB matrix;
};

/// Values of the formula at all boundary faces, by ghost cell. On the cylinder the value is 1.
std::vector<double> BoundaryValues(const Shape& shape, const CKVX3DFiniteVolumeMesh& fvm) {
    std::vector<double> values(fvm.NcAll + 1, 0.0);
    for (const checks::BoundaryFaces& faces : checks::BoundaryKinds(fvm)) {
        for (int face = 1; face <= faces.count; ++face) {
            values[faces.ghost[face]] = Exact(shape, faces.x[face], faces.y[face]);
        }
    }
    return values;
}

/// Prints the largest error of the temperature and the heat from the cylinder.
void Compare(const Shape& shape, const TwoGrids& grids, const CutMesh& cut,
             const CKVX_ACMT_GV& gv) {
    double largest = 0.0;
    for (int cell = 1; cell <= grids.fvm.Nc; ++cell) {
        if (cut.isActive[cell]) {
            const double exact = Exact(shape, grids.fvm.xc[cell], grids.fvm.yc[cell]);
            largest = std::max(largest, std::abs(grids.temperature[cell] - exact));
        }
    }
    double heat = 0.0;
    for (int face = 1; face <= grids.fvm.NWall; ++face) {
        if (cut.outerDonor[face] == 0 && cut.mesh.Grid(grids.fvm.CWall23[face]) == 2) {
            const CMAFVMFaceData& record = gv.faceDataWall[face];
            for (int k = 1; k <= record.idNormal[0]; ++k) {
                heat += record.coefNormal[k] * grids.temperature[record.idNormal[k]];
            }
        }
    }
    std::cout << "largest error of the temperature: " << largest << '\n'
              << "heat per depth: " << heat * shape.n << ", by the formula "
              << 2.0 * std::acos(-1.0) / std::log(farRadius / shape.inner) << '\n';
}

}  // namespace

int main(int argc, char** argv) try {
    const Options options = ReadOptions(argc, argv);
    std::filesystem::create_directories(options.output);

    // Step 1: fill the host objects.
    Shape shape;
    PlantInShape(options.fault, shape);
    TwoGrids grids(shape, options.output);
    PlantInArrays(options.fault, grids);

    // Step 2: check whether the toolbox may set them up. The toolbox itself does not check them: a
    // wrong id would lead to reads out of range.
    const checks::Verdict verdict = checks::MaySetUp(grids.gv, grids.fvm);
    std::cout << Report(verdict);
    if (!verdict) {
        return 1;
    }

    // Step 3: let the toolbox cut the holes, and assess the result before any donor is searched:
    // the search of the toolbox never ends if there is no donor.
    CKVXOversetMesh overset;
    overset.SetFVM(&grids.gv, &grids.fvm);
    const checks::Soundness soundness = checks::Assess(grids.gv, grids.fvm, overset);
    std::cout << Report(soundness);
    checks::WriteInspection(options.output, grids.gv, grids.fvm, overset);  // for ParaView
    if (!soundness) {
        return 1;
    }

    // Step 4: store the decisions in tables of the host, and let the toolbox write the donors.
    const checks::MeshView view(grids.gv, grids.fvm);
    const CutMesh cut(view, overset);

    // Step 5: turn geometry into stencils.
    FaceStencils stencils(grids, cut);

    // Step 6: assemble, solve and publish.
    HeatEquation equation(grids, cut, stencils);
    const std::vector<double> boundaryValues = BoundaryValues(shape, grids.fvm);
    overset.InitializeVTKTool();
    double time = 0.0;
    double dt = 0.01;
    for (int step = 1; step <= 12; ++step, dt *= 2.0) {
        const checks::SolveReport report = equation.Step(dt, boundaryValues);
        time += dt;
        std::cout << "step " << step << ", t = " << time << ": " << Text(report) << '\n';
        if (!report.reached) {
            return 1;
        }
        overset.OutputVTKDataInEachTimeStep(time, step);
    }
    overset.PostRunVTKDataSMP();

    // Step 7: compare with the formula.
    Compare(shape, grids, cut, stencils.gv);
    return 0;
} catch (const std::exception& error) {
    std::cerr << "overset_host: " << error.what() << '\n';
    return 1;
}
