#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "reference_host/mesh/mesh_reader.h"
#include "tests/reference_host/mesh/mesh_files.h"

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::string MshError(const MshText& msh) {
    return ErrorOf([&] { msh.Read(); });
}

std::string GeoError(const std::string& text) {
    return ErrorOf([&] { ReadText(text); });
}

/// Two boxes in a row with all boundary faces in groups.
MshText TwoBoxes() {
    MshText msh;
    msh.Box("background", 0);
    msh.Box("background", 1);
    msh.BoxSide("inlet", 0, '-');
    msh.BoxSide("outlet", 1, '+');
    msh.BoxSide("wall", 0, 'd');
    msh.BoxSide("wall", 1, 'd');
    return msh;
}

/// One box as a grid with all sides in one group.
void AddGrid(MshText& msh, const std::string& volume, const std::string& surface, double x) {
    msh.Box(volume, x);
    for (char side : {'-', '+', 'd'}) {
        msh.BoxSide(surface, x, side);
    }
}

/// A cube of tetrahedra with the physical groups that the caller gives.
const std::string cube =
    "SetFactory(\"OpenCASCADE\");\nBox(1) = {0, 0, 0, 1, 1, 1};\nMesh.CharacteristicLengthMin = "
    "1;\n";

TEST(MeshReaderFaults, MissingFileIsReported) {
    EXPECT_EQ(ErrorOf([] { host::ReadMesh("nowhere/mesh.msh"); }),
              "nowhere/mesh.msh: no such file: give the path of a .msh or .geo file");
}

TEST(MeshReaderFaults, FileNameMustEndInMshOrGeo) {
    EXPECT_THAT(ErrorOf([] { ReadText("", "mesh.stl"); }), EndsWith("must end in .msh or .geo"));
}

TEST(MeshReaderFaults, UnknownParameterIsReported) {
    EXPECT_THAT(ErrorOf([] {
                    ReadShipped(boxGeo, {{"m", 5}});
                }),
                HasSubstr("there is no parameter \"m\": see its DefineConstant"));
}

TEST(MeshReaderFaults, VariableWithoutANameIsNoParameter) {
    // A variable without a Name, the end and the beginning of a parameter, no identifier, no text.
    for (const char* variable : {"dz", "ind", "kin", "n|x", ""}) {
        EXPECT_THAT(ErrorOf([&] {
                        ReadShipped(boxGeo, {{variable, 5}});
                    }),
                    HasSubstr("there is no parameter \"" + std::string(variable) + "\""));
    }
}

TEST(MeshReaderFaults, MeshFileHasNoParameters) {
    const std::string file = std::string(KVX3D_TEST_DATA_DIR) + "/four_shapes.msh";

    EXPECT_THAT(ErrorOf([&] {
                    host::ReadMesh(file, {{"n", 5}});
                }),
                AllOf(StartsWith(file), HasSubstr("has no parameters, \"n\" was given")));
}

TEST(MeshReaderFaults, ErrorOfGmshIsQuotedInOneLine) {
    const std::string error = GeoError("Volume(4) = {2};\n");

    EXPECT_THAT(error, AllOf(HasSubstr("mesh.geo: Gmsh reports \""), HasSubstr("surface loop 2"),
                             Not(HasSubstr("\n"))));
}

TEST(MeshReaderFaults, SyntaxErrorNamesItsLine) {
    EXPECT_THAT(GeoError("\n\nfoo bar;\n"), AllOf(HasSubstr("Gmsh reports"), HasSubstr("line 3")));
}

TEST(MeshReaderFaults, TextThatIsNoMeshIsReported) {
    EXPECT_THAT(ErrorOf([] { ReadText("junk\n", "mesh.msh"); }),
                HasSubstr("mesh.msh: Gmsh reports \""));
}

TEST(MeshReaderFaults, ModelWithoutVolumeIsRefused) {
    EXPECT_THAT(GeoError("Point(1) = {0, 0, 0};\n"), HasSubstr("the file has no volume"));
}

TEST(MeshReaderFaults, VolumeGroupOfUnknownNameIsRefused) {
    EXPECT_THAT(GeoError(cube + "Physical Volume(\"fluid\", 7) = {1};"),
                HasSubstr("physical volume group 7 is named \"fluid\": rename it to one of "
                          "background, component1, component2"));
}

TEST(MeshReaderFaults, SurfaceGroupOfUnknownNameIsRefused) {
    MshText msh = TwoBoxes();
    msh.BoxSide("lid", 0, '-');

    EXPECT_THAT(MshError(msh), HasSubstr("physical surface group 17 is named \"lid\": rename it"));
}

TEST(MeshReaderFaults, GroupWithoutANameIsRefused) {
    EXPECT_THAT(GeoError(cube + "Physical Volume(7) = {1};"),
                HasSubstr("physical volume group 7 is named \"\""));
}

TEST(MeshReaderFaults, VolumeInNoGroupIsRefused) {
    MshText msh = TwoBoxes();
    msh.Box("", 5);

    EXPECT_THAT(MshError(msh),
                HasSubstr("volume 99 with its cell at (5.5, 0.5, 0.5) is in no physical group"));
}

TEST(MeshReaderFaults, VolumeInTwoGroupsIsRefused) {
    EXPECT_THAT(GeoError(cube + "Physical Volume(\"background\", 1) = {1};\n"
                                "Physical Volume(\"component1\", 2) = {1};"),
                HasSubstr("volume 1 is in two physical groups, \"background\" and \"component1\""));
}

TEST(MeshReaderFaults, SurfaceInTwoGroupsIsRefused) {
    EXPECT_THAT(GeoError(cube + "Physical Volume(\"background\", 1) = {1};\n"
                                "Physical Surface(\"inlet\", 11) = {1};\n"
                                "Physical Surface(\"wall\", 13) = {1:6};"),
                HasSubstr("surface 1 is in two physical groups, \"inlet\" and \"wall\""));
}

TEST(MeshReaderFaults, MissingBackgroundIsReported) {
    MshText msh;
    AddGrid(msh, "component1", "overset1", 0);

    EXPECT_THAT(MshError(msh), HasSubstr("physical volume group \"background\" is missing"));
}

TEST(MeshReaderFaults, OnlyComponentMustBeTheFirst) {
    MshText msh = TwoBoxes();
    AddGrid(msh, "component2", "overset2", 5);

    EXPECT_THAT(MshError(msh), HasSubstr("physical volume group \"component1\" is missing"));
}

TEST(MeshReaderFaults, ComponentWithoutOversetFacesIsRefused) {
    MshText msh = TwoBoxes();
    AddGrid(msh, "component1", "wall", 5);

    EXPECT_THAT(MshError(msh), HasSubstr("physical surface group \"overset1\" is missing: put the "
                                         "outer boundary of component1 into it"));
}

TEST(MeshReaderFaults, OversetFacesWithoutAComponentAreRefused) {
    MshText msh;
    AddGrid(msh, "background", "overset1", 0);

    EXPECT_THAT(MshError(msh), HasSubstr("group \"overset1\" but no volume group \"component1\""));
}

TEST(MeshReaderFaults, OversetFaceBesideTheBackgroundIsRefused) {
    MshText msh;
    AddGrid(msh, "background", "overset1", 0);
    AddGrid(msh, "component1", "overset1", 5);

    EXPECT_THAT(MshError(msh),
                HasSubstr("the \"overset1\" face at (0, 0.5, 0.5) lies beside background (cell 1): "
                          "overset1 is the outer boundary of component1"));
}

TEST(MeshReaderFaults, SecondOversetGroupBesideTheFirstComponentIsRefused) {
    MshText msh = TwoBoxes();
    AddGrid(msh, "component1", "overset2", 5);
    AddGrid(msh, "component2", "overset1", 8);

    EXPECT_THAT(MshError(msh), AllOf(HasSubstr("lies beside component"),
                                     HasSubstr("is the outer boundary of component")));
}

TEST(MeshReaderFaults, BoundaryFacesWithoutANameAreRefused) {
    MshText msh;
    msh.Box("background", 0);
    msh.BoxSide("wall", 0, 'd');

    EXPECT_THAT(MshError(msh), HasSubstr("boundary faces without a name: 2, the first at (1, 0.5, "
                                         "0.5) beside cell 1 of background"));
}

TEST(MeshReaderFaults, NamedFaceInsideTheGridIsRefused) {
    MshText msh = TwoBoxes();
    msh.BoxSide("wall", 0, '+');

    EXPECT_THAT(MshError(msh),
                HasSubstr("the \"wall\" face at (1, 0.5, 0.5) lies inside a grid, between cells 1 "
                          "and 2"));
}

TEST(MeshReaderFaults, NamedFaceOutsideTheMeshIsRefused) {
    MshText msh = TwoBoxes();
    msh.BoxSide("wall", 7, '-');

    EXPECT_THAT(MshError(msh), HasSubstr("the \"wall\" face at (7, 0.5, 0.5) bounds no cell"));
}

TEST(MeshReaderFaults, FaceNamedTwiceIsRefused) {
    MshText msh = TwoBoxes();
    msh.BoxSide("wall", 0, '-');

    EXPECT_THAT(MshError(msh), HasSubstr("the \"wall\" face at (0, 0.5, 0.5) beside cell 1 is in "
                                         "\"inlet\" already"));
}

TEST(MeshReaderFaults, FaceOfThreeCellsIsRefused) {
    MshText msh = TwoBoxes();
    msh.Box("background", 1);

    EXPECT_THAT(MshError(msh),
                HasSubstr("the face at (1, 0.5, 0.5) belongs to three cells (1, 2 and 3)"));
}

TEST(MeshReaderFaults, NodeOfTwoCavitiesIsRefused) {
    MshText msh;
    msh.Box("background", 0);
    msh.Box("component1", 1);
    msh.BoxSide("wall", 0, 'd');
    msh.BoxSide("overset1", 1, 'd');

    EXPECT_THAT(MshError(msh), AllOf(HasSubstr("at (1, 0, 0) belongs to background (cell 1) and to "
                                               "component1 (cell 2)"),
                                     HasSubstr("merge nothing")));
}

TEST(MeshReaderFaults, HigherOrderCellsAreRefused) {
    EXPECT_THAT(GeoError(cube + "Physical Volume(\"background\", 1) = {1};\n"
                                "Physical Surface(\"wall\", 13) = {1:6};\nMesh.ElementOrder = 2;"),
                AllOf(HasSubstr("volume 1 has elements \"Tetrahedron 10\", the first at ("),
                      EndsWith("the host reads linear elements, set Mesh.ElementOrder = 1")));
}

TEST(MeshReaderFaults, CellsOfAnotherShapeAreRefused) {
    constexpr int trihedron = 140;
    MshText msh = TwoBoxes();
    msh.Element(trihedron, "background", {1, 2, 3, 4});

    // Gmsh 4.8 refuses the shape itself, later versions accept it.
    EXPECT_THAT(MshError(msh), HasSubstr("tetrahedra, hexahedra, prisms and pyramids"));
}

TEST(MeshReaderFaults, ElementWithAnUnknownNodeIsRefused) {
    MshText msh = TwoBoxes();
    msh.Element(4, "background", {1, 2, 3, 99});

    EXPECT_THAT(MshError(msh), AllOf(HasSubstr("Gmsh reports"), HasSubstr("99")));
}

TEST(MeshReaderFaults, NodeWithANaNCoordinateIsRefused) {
    MshText msh = TwoBoxes();
    std::string text = msh.Text();
    text.replace(text.find("1 0 0 0\n"), 8, "1 nan 0 0\n");

    EXPECT_THAT(ErrorOf([&] { ReadText(text, "mesh.msh"); }),
                testing::AnyOf(HasSubstr("has volume nan"), HasSubstr("Gmsh reports")));
}

TEST(MeshReaderFaults, CollapsedCellIsRefused) {
    MshText msh = TwoBoxes();
    msh.Element(5, "background", {1, 2, 3, 4, 1, 2, 3, 4});

    EXPECT_THAT(MshError(msh), HasSubstr("cell 3 at (0.5, 0.5, 0) has a node twice"));
}

TEST(MeshReaderFaults, InvertedCellIsRefused) {
    MshText msh;
    const int n[] = {msh.Node(0, 0, 0), msh.Node(1, 0, 0), msh.Node(0, 1, 0), msh.Node(0, 0, 1)};
    msh.Element(4, "background", {n[1], n[0], n[2], n[3]});
    msh.Element(2, "wall", {n[0], n[1], n[2]});
    msh.Element(2, "wall", {n[0], n[1], n[3]});
    msh.Element(2, "wall", {n[0], n[2], n[3]});
    msh.Element(2, "wall", {n[1], n[2], n[3]});

    EXPECT_THAT(MshError(msh), HasSubstr("cell 1 at (0.25, 0.25, 0.25) has volume -0.167: give its "
                                         "nodes the other orientation"));
}

TEST(MeshReaderFaults, EveryMessageIsOneLineThatBeginsWithTheFileName) {
    MshText msh = TwoBoxes();
    msh.BoxSide("wall", 0, '-');

    EXPECT_THAT(MshError(msh), testing::MatchesRegex("/[^\n]*/mesh.msh: [^\n]*"));
}

}  // namespace
