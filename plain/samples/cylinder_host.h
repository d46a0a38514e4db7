#ifndef KVX3D_PLAIN_SAMPLES_CYLINDER_HOST_H
#define KVX3D_PLAIN_SAMPLES_CYLINDER_HOST_H

#include "plain/samples/setup_host.h"

// Hosts for the overset set-up, one for each shape of component. The number m refines a mesh to
// about 240 m^3 cells.

/// A channel with an O-grid around a cylinder. The inner side of the grid, with radius 0.5, is a
/// wall; the outer side, with radius 1.5, is overset group 1.
class CylinderHost : public SetupHost {
public:
    explicit CylinderHost(int m);
};

/// A channel with a square without a body: 5m x 5m x 2m cells with sides of 3, all four in overset
/// group 1.
class TurnedSquareHost : public SetupHost {
public:
    /// @param angle  by which the square is turned [degrees]
    TurnedSquareHost(int m, double angle);
};

/// A channel with an O-grid between a cylinder of radius 0.5, a wall, and a square with sides of
/// 2.4, overset group 1.
class SquareRingHost : public SetupHost {
public:
    /// @param angle  by which the square is turned [degrees]
    SquareRingHost(int m, double angle);
};

/// A cube with sides of 6 around a spherical shell. The background has (6m)^3 cells, the inlet at
/// x = -3, the outlet at x = 3 and walls on the other sides. The shell has six patches of
/// 2m x 2m x m cells between a wall of radius 0.5 and overset group 1, of radius 1.5.
class SphereShellHost : public SetupHost {
public:
    explicit SphereShellHost(int m);
};

#endif
