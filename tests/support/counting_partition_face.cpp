#include "tests/support/counting_partition_face.h"

#include <numeric>

void CountingPartitionFace::Resize(int n) {
    const std::size_t slots = static_cast<std::size_t>(n) + 1;
    count = n;
    cell.assign(slots, 0);
    ghost.assign(slots, 0);
    kind.assign(slots, 0);
    for (int d = 0; d < 3; ++d) {
        area[d].assign(slots, 0.0);
        centre[d].assign(slots, 0.0);
    }
    invalid = std::make_unique<bool[]>(slots);
}

int CountingPartitionFace::CallsOfOthers() const {
    return std::accumulate(calls.begin() + 1, calls.end(), 0);
}

void CountingPartitionFace::Count(PartAccessor accessor) {
    if (failing == accessor && Calls(accessor) >= failingAfter) {
        throw 1;
    }
    ++calls[static_cast<std::size_t>(accessor)];
}

int CountingPartitionFace::NParInterFace() {
    Count(PartAccessor::NParInterFace);
    return count;
}

int* CountingPartitionFace::ijParCV() {
    Count(PartAccessor::ijParCV);
    return cell.data();
}

int* CountingPartitionFace::ijPar() {
    Count(PartAccessor::ijPar);
    return ghost.data();
}

double* CountingPartitionFace::ijParSx() {
    Count(PartAccessor::ijParSx);
    return area[0].data();
}

double* CountingPartitionFace::ijParSy() {
    Count(PartAccessor::ijParSy);
    return area[1].data();
}

double* CountingPartitionFace::ijParSz() {
    Count(PartAccessor::ijParSz);
    return area[2].data();
}

double* CountingPartitionFace::ijParxc() {
    Count(PartAccessor::ijParxc);
    return centre[0].data();
}

double* CountingPartitionFace::ijParyc() {
    Count(PartAccessor::ijParyc);
    return centre[1].data();
}

double* CountingPartitionFace::ijParzc() {
    Count(PartAccessor::ijParzc);
    return centre[2].data();
}

int* CountingPartitionFace::FaceType_Partition() {
    Count(PartAccessor::FaceType_Partition);
    return kind.data();
}

bool* CountingPartitionFace::IfPartitionFace_InvalidForNonMatching() {
    Count(PartAccessor::IfPartitionFace_InvalidForNonMatching);
    return invalid.get();
}
