#include "tests/support/temp_directory.h"

#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <system_error>

TempDirectory::TempDirectory() {
    std::random_device entropy;
    do {
        path = std::filesystem::temp_directory_path() /
               ("kvx3d_test_" + std::to_string(entropy()) + "_" + std::to_string(entropy()));
    } while (!std::filesystem::create_directory(path));
}

TempDirectory::~TempDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

std::string ReadFile(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        throw std::runtime_error("cannot open " + file.string());
    }
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void WriteFile(const std::filesystem::path& file, const std::string& bytes) {
    std::ofstream out(file, std::ios::binary);
    out << bytes;
    if (!out.flush()) {
        throw std::runtime_error("cannot write " + file.string());
    }
}
