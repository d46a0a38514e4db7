#include "reference_host/mesh/gmsh_session.h"

#include <gmsh.h>

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

namespace host {
namespace {

constexpr char errorMark[] = "Error: ";

/// First error in Gmsh's log, or `thrown` if there is none, as one line.
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

GmshSession::GmshSession() {
    gmsh::initialize(0, nullptr, /*readConfigFiles=*/false);
    gmsh::option::setNumber("General.Terminal", 0);
    gmsh::option::setNumber("General.NumThreads", 1);
    gmsh::onelab::clear();
    gmsh::logger::start();
}

GmshSession::~GmshSession() {
    try {
        gmsh::logger::stop();
        gmsh::finalize();
    } catch (...) {
        // A destructor cannot report an error, and nothing is left to release.
    }
}

void GmshSession::Run(const std::function<void()>& calls) {
    try {
        calls();
    } catch (const std::exception& error) {
        throw std::runtime_error(FirstError(error.what()));
    } catch (const std::string& text) {  // Gmsh 4.8
        throw std::runtime_error(FirstError(text));
    } catch (...) {  // older versions throw their error number
        throw std::runtime_error(FirstError("unknown error"));
    }
}

}  // namespace host
