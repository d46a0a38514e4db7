#ifndef KVX3D_BENCHMARKS_OVERSET_SHAPES_H
#define KVX3D_BENCHMARKS_OVERSET_SHAPES_H

#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

#include "plain/samples/cylinder_host.h"

/// The mesh of a row, by the name of its component. It has about 240 m^3 cells.
inline std::unique_ptr<SetupHost> MakeHost(const std::string& shape, int m) {
    if (shape == "Cylinder") {
        return std::make_unique<CylinderHost>(m);
    }
    if (shape == "Square") {
        return std::make_unique<TurnedSquareHost>(m, 60.0);
    }
    if (shape == "SquareRing") {
        return std::make_unique<SquareRingHost>(m, 30.0);
    }
    if (shape == "SphereShell") {
        return std::make_unique<SphereShellHost>(m);
    }
    throw std::invalid_argument("no component of the shape '" + shape + "'");
}

/// Suppresses the lines of the set-up steps, so that they do not appear in the table.
class QuietOutput {
public:
    QuietOutput() : kept(std::cout.rdbuf(nullptr)) {}
    ~QuietOutput() {
        std::cout.rdbuf(kept);
        std::cout.clear();
    }
    QuietOutput(const QuietOutput&) = delete;
    QuietOutput& operator=(const QuietOutput&) = delete;

private:
    std::streambuf* kept;
};

#endif
