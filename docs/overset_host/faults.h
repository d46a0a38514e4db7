#ifndef OVERSET_HOST_FAULTS_H
#define OVERSET_HOST_FAULTS_H

#include "blocks.h"

/// Ten mistakes that hosts make, to be planted on purpose: the toolbox notices none of them, the
/// host checks report all of them.
///
///  1  the area vector of an inner face points from the neighbor to the owner
///  2  two wall faces share a ghost cell
///  3  an inner face names a cell that does not exist
///  4  the background has no inlet
///  5  the cavities are numbered from 2
///  6  the component is too near to a wall of the background, which breaks two rules
///  7  the cells of the component are too large
///  8  the overset group lists a wall of the background
///  9  a cell has no volume
/// 10  a cell lists a node that does not exist
constexpr int faultCount = 10;

/// Plants faults that lie in the geometry: 4, 6 and 7. Fault 0 stands for none.
/// @throws std::runtime_error  there is no such fault
void PlantInShape(int fault, Shape& shape);

/// Plants faults that lie in the filled arrays: the others.
void PlantInArrays(int fault, Blocks& blocks);

#endif
