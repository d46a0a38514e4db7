#ifndef KVX3D_BENCHMARKS_ALLOCATION_COUNT_H
#define KVX3D_BENCHMARKS_ALLOCATION_COUNT_H

#include <cstddef>

/// Counts the bytes that are allocated through operator new while the object lives. One at a time.
///
/// A block counts with what the allocator really took for it, its own word included (glibc).
class AllocationCount {
public:
    AllocationCount();
    ~AllocationCount();
    AllocationCount(const AllocationCount&) = delete;
    AllocationCount& operator=(const AllocationCount&) = delete;

    std::ptrdiff_t Bytes() const;      ///< now, above the start
    std::ptrdiff_t PeakBytes() const;  ///< largest so far, above the start
};

#endif
