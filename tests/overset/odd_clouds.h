#ifndef KVX3D_TESTS_OVERSET_ODD_CLOUDS_H
#define KVX3D_TESTS_OVERSET_ODD_CLOUDS_H

#include <random>
#include <vector>

#include "plain/samples/clouds.h"

/// Each coordinate c becomes c * scale + shift.
Cloud Scaled(Cloud cloud, double scale, double shift);

/// Clouds of at least 256 points that are hard to search: ties, duplicates, clusters, coordinates
/// whose squares overflow or vanish.
std::vector<NamedCloud> OddClouds();

/// Queries far away, on the splitting planes of a cloud, and with coordinates that are infinite or
/// NaN.
std::vector<Query> OddQueries(const Cloud& cloud);

/// At least 256 points of a small lattice with its own step along each axis; some are left out,
/// some repeated. In mesh order or shuffled.
Cloud RandomLattice(std::mt19937& random);

/// 3 n queries on points and midway between two points: on a lattice, most are equally near to
/// several points.
std::vector<Query> TieQueries(const Cloud& cloud, std::mt19937& random, int n);

#endif
