#ifndef KVX3D_TESTS_REFERENCE_HOST_APP_CASE_FILE_TEXT_H
#define KVX3D_TESTS_REFERENCE_HOST_APP_CASE_FILE_TEXT_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/reference_host/app/read_command.h"
#include "tests/support/temp_directory.h"

/// A case file a.toml written by the test, beside a mesh file box.geo that has the parameters n and
/// ro but no mesh.
class CaseFileText : public testing::Test {
protected:
    CaseFileText() {
        WriteFile(directory.Path() / "box.geo",
                  "DefineConstant[ n = {1, Name \"n\"}, ro = {1, Name \"ro\"} ];\n");
    }

    /// Writes the case file.
    /// @return its path
    std::string Write(const std::string& text) const {
        const std::filesystem::path file = directory.Path() / "a.toml";
        WriteFile(file, text);
        return file.string();
    }

    /// The settings that a case file gives, with further words of the command line.
    template <class Settings>
    Settings ReadTextAs(const std::string& text, std::vector<std::string> options = {}) const {
        options.insert(options.begin(), Write(text));
        return ReadAs<Settings>(options);
    }

    /// The error message without the directory: "a.toml:2: ...".
    std::string FileMessageOf(const std::string& text) const {
        const std::string message = MessageOf({Write(text)});
        EXPECT_EQ(message.find('\n'), std::string::npos) << message;
        const std::string prefix = directory.Text() + "/";
        return message.rfind(prefix, 0) == 0 ? message.substr(prefix.size()) : message;
    }

    TempDirectory directory;
};

#endif
