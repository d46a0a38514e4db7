#ifndef KVX3D_BENCHMARKS_ALLOCATION_COUNT_H
#define KVX3D_BENCHMARKS_ALLOCATION_COUNT_H

#include <cstddef>

/// Counts the bytes allocated by operator new during the lifetime of the object. There may be one
/// such object at a time.
///
/// A block counts with the size that the allocator (glibc) uses for it, including its header.
class AllocationCount {
public:
    AllocationCount();
    ~AllocationCount();
    AllocationCount(const AllocationCount&) = delete;
    AllocationCount& operator=(const AllocationCount&) = delete;

    std::ptrdiff_t Bytes() const;      ///< now, minus the start
    std::ptrdiff_t PeakBytes() const;  ///< largest so far, minus the start
};

#endif
