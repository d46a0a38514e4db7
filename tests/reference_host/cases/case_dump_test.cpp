#include "reference_host/cases/case_dump.h"

#include <gmsh.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <sstream>

#include "tests/reference_host/discretisation/mesh_case.h"
#include "tests/support/output_capture.h"
#include "tests/support/temp_directory.h"

namespace {

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// The numbers of a line; none if the line contains anything else.
std::optional<std::vector<double>> NumbersOf(const std::string& line) {
    std::istringstream words(line);
    std::vector<double> numbers;
    for (double number = 0.0; words >> number;) {
        numbers.push_back(number);
    }
    return words.eof() ? std::optional(numbers) : std::nullopt;
}

/// True if the words are equal and the numbers agree in five of the six printed digits. Numbers
/// that would be zero without rounding differ between compilers and their flags.
bool AreAlike(const std::string& a, const std::string& b) {
    if (a == b) {
        return true;
    }
    const std::optional<std::vector<double>> x = NumbersOf(a);
    const std::optional<std::vector<double>> y = NumbersOf(b);
    return x && y && std::equal(x->begin(), x->end(), y->begin(), y->end(), [](double p, double q) {
               return std::abs(p - q) <= 1e-12 + 1.1e-5 * std::abs(p);
           });
}

std::string Dump(const host::MeshParameters& parameters) {
    OutputCapture capture;
    EXPECT_EQ(host::RunDump({ShippedMesh(boxFile), parameters}), 0);
    return capture.Out();
}

TEST(LineComparison, DetectsDifferentWordsAndDigitsButNotRounding) {
    EXPECT_TRUE(AreAlike("0.04 -1.2e-14 0", "0.04 3.1e-15 0"));
    EXPECT_TRUE(AreAlike("1.23456", "1.23457"));
    EXPECT_FALSE(AreAlike("1.23456", "1.23459"));
    EXPECT_FALSE(AreAlike("1 2", "1 3"));
    EXPECT_FALSE(AreAlike("1 2", "1 2 3"));
    EXPECT_FALSE(AreAlike("1 2 3", "1 2"));
    EXPECT_FALSE(AreAlike("Nc = 1", "Nc = 2"));
    EXPECT_FALSE(AreAlike("1 ", "x"));
}

TEST(Dump, OfTheSmallestOversetPairMatchesTheStoredFile) {
    if (std::string(GMSH_API_VERSION).rfind("4.8", 0) != 0) {
        GTEST_SKIP() << "other versions of Gmsh number nodes and cells differently";
    }
    const std::vector<std::string> stored =
        LinesOf(ReadFile(std::string(KVX3D_TEST_DATA_DIR) + "/box_annulus_n5_dump.txt"));

    const std::vector<std::string> dumped = LinesOf(Dump({{"n", 5}, {"kind", 0}}));

    for (std::size_t i = 0; i < std::min(stored.size(), dumped.size()); ++i) {
        ASSERT_TRUE(AreAlike(stored[i], dumped[i]))
            << "line " << i + 1 << ": stored \"" << stored[i] << "\", now \"" << dumped[i] << '"';
    }
    EXPECT_EQ(stored.size(), dumped.size());
}

TEST(Dump, OfASingleGridHasNoOversetReport) {
    const std::string text = Dump({{"n", 2}, {"kind", 1}});

    EXPECT_EQ(text.rfind("Nc = 64\n", 0), 0u);
    EXPECT_EQ(text.find("Overset"), std::string::npos);
}

}  // namespace
