#include "reference_host/gmsh_session.h"

#include <fmt/format.h>
#include <gmsh.h>

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

namespace host {
namespace {

constexpr char errorMark[] = "Error: ";

/// First error in Gmsh's log, else `thrown`, as one line.
std::string FirstError(std::string thrown) {
    std::vector<std::string> log;
    gmsh::logger::get(log);
    const auto error = std::find_if(log.begin(), log.end(), [](const std::string& line) {
        return line.compare(0, sizeof errorMark - 1, errorMark) == 0;
    });
    std::string text = error == log.end() ? std::move(thrown) : error->substr(sizeof errorMark - 1);
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text.empty() ? "unknown error" : text;
}

}  // namespace

GmshSession::GmshSession(const std::map<std::string, double>& numbers) {
    // The command line is the one way that sets a variable by its name in the file; a ONELAB
    // number goes by the label, which differs from file to file.
    std::vector<std::string> words = {"reference_host"};
    for (const auto& [name, value] : numbers) {
        words.insert(words.end(), {"-setnumber", name, fmt::format("{}", value)});
    }
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    gmsh::initialize(static_cast<int>(arguments.size()), arguments.data(),
                     /*readConfigFiles=*/false);
    gmsh::option::setNumber("General.Terminal", 0);
    gmsh::option::setNumber("General.NumThreads", 1);
    gmsh::logger::start();
}

GmshSession::~GmshSession() {
    try {
        gmsh::finalize();
    } catch (...) {
        // Nothing is left to release, and a destructor has nobody to tell.
    }
}

void GmshSession::Run(const std::function<void()>& calls) {
    try {
        calls();
    } catch (const std::exception& error) {
        throw std::runtime_error(FirstError(error.what()));
    } catch (const std::string& text) {  // Gmsh 4.8
        throw std::runtime_error(FirstError(text));
    } catch (...) {  // older ones throw their error number
        throw std::runtime_error(FirstError("unknown error"));
    }
}

}  // namespace host
