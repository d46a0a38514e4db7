#ifndef KVX3D_TESTS_REFERENCE_HOST_APP_READ_COMMAND_H
#define KVX3D_TESTS_REFERENCE_HOST_APP_READ_COMMAND_H

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "reference_host/app/command_line.h"

/// Reads a command line without the program's name.
inline host::Command Read(const std::vector<std::string>& words) {
    std::vector<const char*> argv = {"reference_host"};
    for (const std::string& word : words) {
        argv.push_back(word.c_str());
    }
    return host::ReadCommand(static_cast<int>(argv.size()), argv.data());
}

/// The settings of the case that a command line chose; throws std::bad_cast if it is another case.
template <class Settings>
Settings SettingsOf(const host::Command& command) {
    return dynamic_cast<const host::CaseOf<Settings>&>(*command.chosen).settings;
}

/// The settings of the case that the words choose.
template <class Settings>
Settings ReadAs(const std::vector<std::string>& words) {
    return SettingsOf<Settings>(Read(words));
}

/// The error message for a command line; "accepted" if there is no error.
inline std::string MessageOf(const std::vector<std::string>& words) {
    try {
        Read(words);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "accepted";
}

#endif
