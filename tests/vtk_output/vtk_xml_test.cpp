#include "vtk_output/vtk_xml.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

TEST(XmlNode, WritesTabsNameAndAttributesInOrder) {
    VTK_XmlNode node("VTKFile", 2);
    node.addAttribute("type", std::string("UnstructuredGrid"));
    node.addAttribute("version", 0.1);
    node.addAttribute("count", 12);

    EXPECT_EQ(node.openTag(),
              "\t\t<VTKFile type=\"UnstructuredGrid\" version=\"0.1\" count=\"12\">");
    EXPECT_EQ(node.closeTag(), "\t\t</VTKFile>");
}

TEST(XmlNode, HasNoEmptyElementForm) {
    VTK_XmlNode node("Points", 0);

    EXPECT_EQ(node.openTag(), "<Points>");
    EXPECT_EQ(node.closeTag(), "</Points>");
}

TEST(XmlNode, WritesItsIndentationAlone) {
    VTK_XmlNode node("Points", 3);
    std::ostringstream out;

    node.writeIndent(out);

    EXPECT_EQ(out.str(), "\t\t\t");
}

TEST(XmlNode, AddsAnAttributeWithAnEqualKeyAgain) {
    VTK_XmlNode node("a", 0);
    node.addAttribute("k", 1);
    node.addAttribute("k", 2);

    EXPECT_EQ(node.openTag(), "<a k=\"1\" k=\"2\">");
}

TEST(XmlNode, SettingKeepsThePlaceOfTheAttribute) {
    VTK_XmlNode node("a", 0);
    node.addAttribute("first", 1);
    node.addAttribute("second", 2);

    node.setAttribute("first", std::string("new"));

    EXPECT_EQ(node.openTag(), "<a first=\"new\" second=\"2\">");
}

TEST(XmlNode, SettingReplacesTheFirstOfEqualKeys) {
    VTK_XmlNode node("a", 0);
    node.addAttribute("k", 1);
    node.addAttribute("k", 2);

    node.setAttribute("k", 9);

    EXPECT_EQ(node.openTag(), "<a k=\"9\" k=\"2\">");
}

TEST(XmlNode, SettingAnUnknownKeyAppends) {
    VTK_XmlNode node("a", 0);
    node.addAttribute("key", 1);

    node.setAttribute("ke", 2);
    node.setAttribute("Key", 3);
    node.setAttribute("keys", std::string("4"));

    EXPECT_EQ(node.openTag(), "<a key=\"1\" ke=\"2\" Key=\"3\" keys=\"4\">");
}

TEST(XmlNode, EscapesNothing) {
    VTK_XmlNode node("a", 0);
    node.addAttribute("k", std::string("x<y&\"z\""));

    EXPECT_EQ(node.openTag(), "<a k=\"x<y&\"z\"\">");
}

TEST(XmlNode, CopiesAreIndependent) {
    VTK_XmlNode node("a", 1);
    node.addAttribute("k", 1);

    VTK_XmlNode copy(node);
    copy.setAttribute("k", 2);

    EXPECT_EQ(node.openTag(), "\t<a k=\"1\">");
    EXPECT_EQ(copy.openTag(), "\t<a k=\"2\">");
}

TEST(XmlNode, ConvertsNumbersLikeAStreamWithDefaultFormat) {
    VTK_XmlNode node("a", 0);
    node.addAttribute("real", 1234567.0);
    node.addAttribute("whole", -1234567);

    EXPECT_EQ(node.attributes[0].key, "real");
    EXPECT_EQ(node.attributes[0].value, "1.23457e+06");
    EXPECT_EQ(node.attributes[1].value, "-1234567");
}

TEST(FileExtension, ExistsForTheUnstructuredGridOnly) {
    EXPECT_EQ(fileExtension(0), ".vtu");
    EXPECT_EQ(fileExtension(1), "");
    EXPECT_EQ(fileExtension(-1), "");
}

}  // namespace
