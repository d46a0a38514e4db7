#include "reference_host/link/donor_table.h"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace host {

namespace {

std::string Columns(const Vec3& point) {
    return fmt::format(",{:.9g},{:.9g},{:.9g}", point[0], point[1], point[2]);
}

}  // namespace

std::string WriteDonorTable(const Mesh& mesh, const OversetLink& link,
                            const std::string& directory) {
    if (!link.IsOverset()) {
        return {};
    }
    const std::string path = (std::filesystem::path(directory) / "donors.csv").string();
    std::ofstream file(path);
    file << "boundary,face_x,face_y,face_z,cell_x,cell_y,cell_z,donor_x,donor_y,donor_z\n";
    const auto add = [&](const char* boundary, const Vec3& face, int cell, int donor) {
        file << boundary << Columns(face) << Columns(mesh.cellCentre[cell])
             << Columns(mesh.cellCentre[donor]) << '\n';
    };
    const Donors& donors = link.Tables();
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        if (donors.inner[face] != 0) {
            add("hole", mesh.innerFaces[face].centre, ActiveCell(mesh, donors, face),
                donors.inner[face]);
        }
    }
    const auto& walls = mesh.Faces(Boundary::Wall);
    for (int face = 1; face <= mesh.FaceCount(Boundary::Wall); ++face) {
        if (donors.wall[face] != 0) {
            add("overset", walls[face].centre, walls[face].cell, donors.wall[face]);
        }
    }
    if (!file.flush()) {
        throw std::runtime_error(path + ": cannot be written");
    }
    return path;
}

}  // namespace host
