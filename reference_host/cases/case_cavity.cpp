#include "reference_host/cases/case_cavity.h"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "reference_host/cases/benchmark_cavity.h"
#include "reference_host/run/comparison.h"

namespace host {

namespace {

using benchmarkcavity::Extremes;
using benchmarkcavity::Profile;
using benchmarkcavity::ProfilePoint;
using benchmarkcavity::Profiles;

constexpr int profileIntervals = 1000;  // much smaller than a cell

void WriteProfile(const Profile& profile, const std::string& directory, const char* name,
                  const char* head) {
    const std::string path = (std::filesystem::path(directory) / name).string();
    std::ofstream file(path);
    file << head << '\n';
    for (const auto& [at, velocity] : profile) {
        file << fmt::format("{:.4f},{:.8g}\n", at, velocity);
    }
    if (!file.flush()) {
        throw std::runtime_error(path + ": cannot be written");
    }
}

class Cavity : public FlowProblem {
public:
    explicit Cavity(const CavityCase& run_)
        : run(run_), published(benchmarkcavity::PublishedAt(run_.reynolds)) {}

    std::string Body() const override { return "cavity"; }
    bool NeedsBody() const override { return false; }

    void Require(const Mesh& mesh) override {
        side = benchmarkcavity::SideOf(mesh, run.meshFile);
        isEmpty = benchmarkcavity::IsEmpty(mesh, side);
    }

    void RequireLimits(const Mesh& mesh) override {
        const int n = benchmarkcavity::CellsPerSide(mesh);
        limits = benchmarkcavity::LimitsOf(run.scheme, run.reynolds, n);
        if (!isEmpty || !limits) {
            throw std::runtime_error(fmt::format(
                "check: there are limits for {} without a body, but not for {} at n = {} and "
                "Reynolds number {:g}{}",
                benchmarkcavity::checkable, Name(run.scheme), n, run.reynolds,
                isEmpty ? "" : " with a body"));
        }
    }

    FlowSettings Flow(const Mesh&) const override {
        FlowSettings settings;
        settings.inlet = [](const Vec3&) { return Vec3(Vec3::Zero()); };
        settings.walls = [length = side](WallRole, const Vec3& at) {
            return benchmarkcavity::WallVelocityAt(at, length);
        };
        settings.mu = side / run.reynolds;
        return settings;
    }

    double ConvergedChange() const override { return 1e-7; }

    double ForceUnit(const Mesh& mesh) const override { return 0.5 * side * mesh.Depth(); }

    void Report(const FlowRun& flowRun, const Mesh& mesh) override {
        const Profiles profiles =
            benchmarkcavity::MeasureProfiles(flowRun.Flow(), side, profileIntervals);
        WriteProfile(profiles.u, run.outputDir, "profile_u.csv", "y,u");
        WriteProfile(profiles.v, run.outputDir, "profile_v.csv", "x,v");
        std::cout << fmt::format("Cavity at Reynolds number {:g}, {}, {} cells:\n", run.reynolds,
                                 Name(run.scheme), mesh.CellCount());
        if (isEmpty) {
            PrintProfiles(profiles);
        } else {
            const ForceCoefficients force = Coefficients(flowRun.Flow());
            PrintComparison("Cd", force.cd, std::nullopt);
            PrintComparison("Cl", force.cl, std::nullopt);
        }
        PrintInterface(flowRun.Flow(), mesh);
    }

    std::vector<std::string> Misses() const override {
        return benchmarkcavity::Misses(extremes, published->extremes, *limits);
    }

private:
    void PrintProfiles(const Profiles& profiles) {
        extremes = benchmarkcavity::ExtremesOf(profiles);
        if (published) {
            PrintComparisonHead();
        } else {
            std::cout << "  there are no published values to compare with\n";
        }
        const auto print = [this](const char* name, const char* place,
                                  ProfilePoint Extremes::*member) {
            const auto value = [&](double ProfilePoint::*figure) {
                return published ? std::optional<double>(published->extremes.*member.*figure)
                                 : std::nullopt;
            };
            PrintComparison(name, (extremes.*member).velocity, value(&ProfilePoint::velocity));
            PrintComparison(place, (extremes.*member).at, value(&ProfilePoint::at));
        };
        print("lowest u", "  at y", &Extremes::lowestU);
        print("lowest v", "  at x", &Extremes::lowestV);
        print("highest v", "  at x", &Extremes::highestV);
        if (published) {
            std::cout << fmt::format(
                "  Extremes by {}; largest difference from the points of Ghia et al.: u {:.5f}, "
                "v {:.5f}\n",
                published->source,
                benchmarkcavity::LargestDifference(profiles.u, published->points.u),
                benchmarkcavity::LargestDifference(profiles.v, published->points.v));
        }
    }

    /// The net flux through the hole boundary, relative to the flux that the lid drives, and the
    /// corrections that HoleBalance applies there, in the same unit and in that of the force.
    void PrintInterface(const FlowSolver& flow, const Mesh& mesh) const {
        const HoleBalance& hole = flow.Hole();
        if (hole.Faces().empty()) {
            return;
        }
        const Vec3 force = hole.Force() / ForceUnit(mesh);
        std::cout << fmt::format("  {:<20} {:15.2e}\n", "net hole flux",
                                 hole.NetFlux(flow.Flux()) / flow.MassScale())
                  << fmt::format("  {:<20} {:15.2e}\n", "flux correction",
                                 hole.Flux() / flow.MassScale())
                  << fmt::format("  {:<20} {:15.2e}  along x, {:.2e} along y\n", "force correction",
                                 force.x(), force.y());
    }

    const CavityCase& run;
    const std::optional<benchmarkcavity::Published> published;
    double side = 1.0;
    bool isEmpty = true;
    std::optional<benchmarkcavity::Limits> limits;  // only if they are to be checked
    Extremes extremes;
};

}  // namespace

CavityCase::CavityCase() {
    meshFile = ShippedMesh("cavity.geo");
    outputDir = "cavity_results";
}

CaseOptions OptionsOf(CavityCase& run) {
    std::vector<Option> list = FlowOptions(run);
    list.push_back(NumberOption({"physics.reynolds", "--reynolds",
                                 "Reynolds number; the published values are for 100 and 1000"},
                                run.reynolds, Range::AboveZero()));
    return {run.meshFile, run.parameters, std::move(list)};
}

int RunCavity(const CavityCase& run) {
    Cavity cavity(run);
    return RunFlow(run, cavity);
}

}  // namespace host
