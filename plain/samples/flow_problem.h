#ifndef KVX3D_PLAIN_SAMPLES_FLOW_PROBLEM_H
#define KVX3D_PLAIN_SAMPLES_FLOW_PROBLEM_H

#include "plain/samples/problems.h"

/// The equations of a flow solver on an overset pair.
enum class FlowEquation {
    Pressure,  ///< diffusion, closed walls except for the outlet
    Momentum   ///< diffusion, upwind convection at a cell Peclet number of 10, relaxation by 0.9
};

/// An equation as a flow solver assembles it for two-dimensional flow around a cylinder: a
/// background of m * m square cells with a hole, and a ring of m / 2 by m cells around the
/// cylinder.
///
/// Besides the rows of active cells there are rows of blanked cells in the hole (identity), of
/// ghost cells with a given value (identity) and of ghost cells that follow the cell inside (two
/// entries); most ghosts, those of the front and back planes, are in no other row. Faces at the
/// edge of the hole and at the outer edge of the ring take the value beyond the face from nine
/// cells of the other grid, so the matrix is not symmetric.
///
/// @param m  cells along a side of the background, at least 16 and even
Problem FlowProblem(int m, FlowEquation equation);

#endif
