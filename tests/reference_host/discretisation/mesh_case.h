#ifndef KVX3D_TESTS_REFERENCE_HOST_DISCRETISATION_MESH_CASE_H
#define KVX3D_TESTS_REFERENCE_HOST_DISCRETISATION_MESH_CASE_H

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "reference_host/discretisation/stencil_builder.h"
#include "reference_host/link/host_objects.h"
#include "reference_host/link/overset_link.h"
#include "reference_host/mesh/mesh_reader.h"
#include "reference_host/physics/manufactured.h"

/// A mesh of the reference host, with a name that can be part of a test name.
struct MeshChoice {
    const char* name;
    const char* file;
    host::MeshParameters parameters;

    friend std::ostream& operator<<(std::ostream& out, const MeshChoice& choice) {
        return out << choice.name;
    }
};

inline std::string ShippedMesh(const std::string& file) {
    return std::string(KVX3D_TEST_MESH_DIR) + "/" + file;
}

/// A mesh with its host objects and donors, set up as every case does it.
struct MeshCase {
    explicit MeshCase(const MeshChoice& choice)
        : mesh(host::ReadMesh(ShippedMesh(choice.file), choice.parameters)),
          objects(mesh, "."),
          link(mesh, objects) {}

    /// A linear field whose gradient is parallel to the symmetry faces of the mesh.
    host::AnalyticField Linear() const {
        const bool hasSymmetry = mesh.FaceCount(host::Boundary::Symmetry) > 0;
        return host::LinearField({1.3, -0.7, hasSymmetry ? 0.0 : 0.9}, 0.4);
    }

    /// Values of a field at the centers of all cells and, for ghosts, of their boundary faces.
    std::vector<double> Sample(const host::AnalyticField& field) const {
        std::vector<double> values(objects.CellAndGhostCount() + 1, 0.0);
        for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
            values[cell] = field.value(mesh.cellCentre[cell]);
        }
        for (const host::Boundary kind : host::allBoundaries) {
            for (int face = 1; face <= mesh.FaceCount(kind); ++face) {
                values[objects.Ghost(kind, face)] = field.value(mesh.Faces(kind)[face].centre);
            }
        }
        return values;
    }

    host::Mesh mesh;
    host::HostObjects objects;
    host::OversetLink link;
};

constexpr const char* boxFile = "box_annulus_overset.geo";

inline const MeshChoice boxHexahedra = {"BoxHexahedra", boxFile, {{"n", 5}, {"kind", 1}}};
inline const MeshChoice boxPrisms = {"BoxPrisms", boxFile, {{"n", 5}, {"kind", 2}}};
inline const MeshChoice annulus = {"Annulus", boxFile, {{"n", 5}, {"kind", 3}}};
inline const MeshChoice oversetPair = {"OversetPair", boxFile, {{"n", 10}, {"kind", 0}}};
inline const MeshChoice oversetPrisms = {"OversetPrisms", boxFile, {{"n", 10}, {"kind", 4}}};
inline const MeshChoice oversetLayers = {
    "OversetLayers", boxFile, {{"n", 5}, {"kind", 0}, {"nz", 4}}};
inline const MeshChoice oversetTetrahedra = {
    "OversetTetrahedra", "box_sphere_overset.geo", {{"n", 5}}};

inline std::vector<MeshChoice> AllMeshes() {
    return {boxHexahedra,  boxPrisms,     annulus,          oversetPair,
            oversetPrisms, oversetLayers, oversetTetrahedra};
}

inline std::string MeshName(const testing::TestParamInfo<MeshChoice>& info) {
    return info.param.name;
}

#endif
