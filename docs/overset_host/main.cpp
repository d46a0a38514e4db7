// A host with an overset mesh: heat conduction on a box of cells under a turned box of cells.
//
//     overset_host [--output DIRECTORY] [--n 10] [--fault 7]
//
// --n sets the cells per unit length; --fault makes a mistake (see faults.h) that the checks find.
//
// The plate [0, 4] x [0, 4] obeys dT/dt = Laplace T, with T = sin(pi x / 4) on the side y = 4 and
// T = 0 on the others. The time steps double until nothing changes, and each one is published. At
// the end the temperature is compared with the formula of the steady state.
//
// How you can experiment here: double --n, which divides the error by 4; turn the box by another
// angle or move it toward a wall (Shape in blocks.h), and read what the checks say.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "blocks.h"
#include "faults.h"
#include "fvm_operators/mat_operator.h"
#include "host_checks/donor_search.h"
#include "host_checks/host_checks.h"
#include "host_checks/inspection.h"
#include "host_checks/safe_solve.h"

namespace checks = kvx3d::checks;
using checks::Point;

namespace {

double SteadyState(const Point& at) {
    const double pi = std::acos(-1.0);
    return std::sin(pi * at.x / 4.0) * std::sinh(pi * at.y / 4.0) / std::sinh(pi);
}

using Options = std::map<std::string, std::string>;

Options ReadOptions(int argc, char** argv) {
    Options options{{"--output", "overset_host_results"}, {"--n", "10"}, {"--fault", "0"}};
    for (int i = 1; i < argc; i += 2) {
        const bool isKnown = i + 1 < argc && options.count(argv[i]) == 1;
        if (!isKnown || (argv[i] != std::string("--output") && std::atoi(argv[i + 1]) <= 0)) {
            throw std::runtime_error(
                "usage: overset_host [--output DIRECTORY] [--n 10] [--fault 7]");
        }
        options[argv[i]] = argv[i + 1];
    }
    return options;
}

/// The implicit equation (T - T_old) V / dt = sum of gradients, with a row for each cell and ghost.
class HeatEquation {
public:
    /// Lets the toolbox write the donors into Ce23; each face must have one: see Assess().
    HeatEquation(Blocks& twoBlocks, CKVXOversetMesh& overset)
        : blocks(twoBlocks),
          mesh(blocks.gv, blocks.fvm),
          search(mesh, overset),
          boundaryValues(blocks.fvm.NcAll + 1, 0.0),
          matrix(blocks.fvm.NcAll) {
        gv.getKvx3dGV(&blocks.gv, &blocks.fvm);
        gv.getKvx3dData();
        for (int row = 1; row <= gv.NcAll; ++row) {
            matrix.AddIndex(row, row);
        }
        FillInnerFaces(overset);
        FillBoundaryFaces();
    }

    /// One step of implicit Euler.
    checks::SolveReport Step(double dt) {
        std::vector<double> rhs(gv.NcAll + 1);
        matrix.Clear();
        KVX_ART_FVM::CKVX_ART_MatOperator(&matrix, &gv).PureLaplaceOperator(-1.0);
        for (int row = 1; row <= gv.NcAll; ++row) {
            const bool isSolved = row <= gv.Nc && search.IsActive(row);
            const double diagonal = isSolved ? blocks.fvm.volume[row] / dt : 1.0;
            matrix.AddElementValue(row, row, diagonal);
            rhs[row] = isSolved ? diagonal * blocks.temperature[row] : boundaryValues[row];
        }
        return checks::SafeSolve(matrix, rhs.data(), blocks.temperature.data(), 1e-10);
    }

    double LargestError() const {
        double largest = 0.0;
        for (int cell = 1; cell <= gv.Nc; ++cell) {
            const double error = blocks.temperature[cell] - SteadyState(mesh.CellCenter(cell));
            largest = search.IsActive(cell) ? std::max(largest, std::abs(error)) : largest;
        }
        return largest;
    }

private:
    using Stencil = std::vector<std::pair<int, double>>;  // cells and their weights

    /// grad T . S for a face with center P and area vector S. The cells are square, so it is
    /// (T2 - T1) S.S / (S.d) between two points with the distance vector d.
    /// @param cell     at the face and active
    /// @param other    beyond it: a cell, or a ghost cell, which has the value at P
    /// @param isDonor  `other` is a cell of the other grid. The mirrored point of `cell` takes its
    ///                 place, with the biquadratic interpolant on 3 x 3 cells around the donor. All
    ///                 of them are active: the hole begins two cells inside the component.
    Stencil Gradient(int cell, const Point& P, const Point& S, int other, bool isDonor) const {
        const Point d = 2.0 * (P - mesh.CellCenter(cell));
        const double factor = (other > gv.Nc ? 2.0 : 1.0) * Dot(S, S) / Dot(S, d);
        if (!isDonor) {
            return {{cell, -factor}, {other, factor}};
        }
        const int row = blocks.CellsPerRow(other);
        const Point center = mesh.CellCenter(other), to = mesh.CellCenter(cell) + d - center;
        const Point alongI = mesh.CellCenter(other + 1) - center;
        const Point alongJ = mesh.CellCenter(other + row) - center;
        const auto weights = [&](const Point& along) {
            const double s = Dot(to, along) / Dot(along, along);
            return std::array<double, 3>{0.5 * s * (s - 1.0), 1.0 - s * s, 0.5 * s * (s + 1.0)};
        };
        Stencil stencil{{cell, -factor}};
        for (const int j : {-1, 0, 1}) {
            for (const int i : {-1, 0, 1}) {
                const double weight = weights(alongI)[i + 1] * weights(alongJ)[j + 1];
                stencil.emplace_back(other + i + row * j, factor * weight);
            }
        }
        return stencil;
    }

    /// Fills a record, which owns its arrays, and declares its positions in the matrix. A value at
    /// a position that was not declared costs a copy of the whole matrix.
    void Put(CMAFVMFaceData& record, int row, const Stencil& stencil) {
        const int count = static_cast<int>(stencil.size());
        record.idNormal = new int[count + 1]{count};
        record.coefNormal = new double[count + 1];
        for (int k = 1; k <= count; ++k) {
            std::tie(record.idNormal[k], record.coefNormal[k]) = stencil[k - 1];
            matrix.AddIndex(row, record.idNormal[k]);
        }
    }

    /// Fills the active sides of the inner faces. The side of a cut cell adds nothing.
    void FillInnerFaces(CKVXOversetMesh& overset) {
        gv.faceDataLeft = new CMAFVMFaceData[gv.Ne + 1];  // released with gv, as all records
        gv.faceDataRight = new CMAFVMFaceData[gv.Ne + 1];
        for (int face = 1; face <= gv.Ne; ++face) {
            const int cells[] = {gv.Ce23[0][face], gv.Ce23[1][face]};
            const bool isHole = search.IsActive(cells[0]) != search.IsActive(cells[1]);
            if (isHole) {
                overset.ReplaceDonorIdtoNonActCellId(face);
            }
            for (const int side : {0, 1}) {
                const int cell = cells[side], other = gv.Ce23[1 - side][face];
                const Point P = mesh.InnerFaceCenter(face), S = mesh.InnerFaceArea(face);
                Put((side == 0 ? gv.faceDataLeft : gv.faceDataRight)[face], cell,
                    search.IsActive(cell) ? Gradient(cell, P, S, other, isHole) : Stencil());
            }
        }
    }

    void FillBoundaryFaces() {
        // Inlets, outlets, walls and symmetry planes, across which there is no gradient.
        CMAFVMFaceData** const records[] = {&gv.faceDataInlet, &gv.faceDataOutlet, &gv.faceDataWall,
                                            &gv.faceDataSymm};
        for (const int kind : {0, 1, 2, 3}) {
            const checks::BoundaryFaces faces = checks::BoundaryKinds(blocks.fvm)[kind];
            *records[kind] = new CMAFVMFaceData[faces.count + 1];
            for (int face = 1; face <= faces.count; ++face) {
                const int cell = faces.cell[face], ghost = faces.ghost[face];
                const int donor = kind == 2 ? search.NearestWallDonor(face).donor : 0;
                const Point P = faces.Center(face), S = faces.Area(face);
                Put((*records[kind])[face], cell,
                    kind == 3 ? Stencil()
                              : Gradient(cell, P, S, donor > 0 ? donor : ghost, donor > 0));
                boundaryValues[ghost] = SteadyState(P);
            }
        }
    }

    Blocks& blocks;
    const checks::MeshView mesh;
    const checks::BoundedDonorSearch search;
    std::vector<double> boundaryValues;  // by ghost cell
    CKVX_ACMT_GV gv;
    CKVX_ART_MatSolver_BiCGSTAB matrix;
};

}  // namespace

int main(int argc, char** argv) try {
    const Options options = ReadOptions(argc, argv);
    const std::string& output = options.at("--output");
    const int fault = std::stoi(options.at("--fault"));

    // Step 1: fill the host objects.
    Shape shape;
    shape.n = std::stoi(options.at("--n"));
    PlantInShape(fault, shape);
    Blocks blocks(shape, output);
    PlantInArrays(fault, blocks);

    // Step 2: check whether the toolbox may set them up: wrong ids lead to reads out of range.
    const checks::Verdict verdict = checks::MaySetUp(blocks.gv, blocks.fvm);
    std::cout << Report(verdict);
    if (!verdict) {
        return 1;
    }

    // Step 3: let the toolbox cut the hole, and assess the result before any donor is searched: the
    // search of the toolbox never ends if there is no donor.
    CKVXOversetMesh overset;
    overset.SetFVM(&blocks.gv, &blocks.fvm);
    const checks::Soundness soundness = checks::Assess(blocks.gv, blocks.fvm, overset);
    std::cout << Report(soundness);
    checks::WriteInspection(output, blocks.gv, blocks.fvm, overset);  // for ParaView
    if (!soundness) {
        return 1;
    }

    // Step 4: let the toolbox write the donors, and compute the stencils from the geometry.
    HeatEquation equation(blocks, overset);
    overset.InitializeVTKTool();

    // Step 5: assemble, solve and publish.
    double time = 0.0, dt = 0.01;
    for (int step = 1; step <= 12; ++step, dt *= 2.0) {
        const checks::SolveReport report = equation.Step(dt);
        time += dt;
        std::cout << "step " << step << ", t = " << time << ": " << Text(report) << '\n';
        if (!report.reached) {
            return 1;
        }
        overset.OutputVTKDataInEachTimeStep(time, step);
    }
    overset.PostRunVTKDataSMP();

    // Step 6: compare with the formula.
    std::cout << "largest error of the temperature: " << equation.LargestError() << '\n';
    return 0;
} catch (const std::exception& error) {
    std::cerr << "overset_host: " << error.what() << '\n';
    return 1;
}
