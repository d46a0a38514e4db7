#ifndef KVX3D_TESTS_SUPPORT_ALLOCATION_RECORDER_H
#define KVX3D_TESTS_SUPPORT_ALLOCATION_RECORDER_H

#include <cstddef>
#include <vector>

/// Records the array form of new and delete during its lifetime, and can make an allocation fail.
///
/// Only programs that link the target kvx3d_allocation_recorder get the replaced operators. There
/// may be one recorder at a time, in one thread. The non-array form of new, which the standard
/// containers use, is not recorded.
class AllocationRecorder {
public:
    AllocationRecorder();
    ~AllocationRecorder();
    AllocationRecorder(const AllocationRecorder&) = delete;
    AllocationRecorder& operator=(const AllocationRecorder&) = delete;

    /// The next n allocations succeed, the one after them throws std::bad_alloc, and later ones
    /// succeed again.
    void FailAfter(int n) { failAfter = n; }

    /// Sizes in bytes of all blocks allocated so far, in order, including released ones.
    std::vector<std::size_t> Sizes() const;
    /// Size in bytes of a block of the array form that is not released, or npos for anything else.
    std::size_t SizeOf(const void* block) const;
    /// True for a block that was allocated during the lifetime of this recorder and not released.
    bool IsLive(const void* block) const { return SizeOf(block) != npos; }
    /// Number of blocks that are not released.
    int LiveBlocks() const;
    /// Blocks released during the lifetime of this recorder, in order. They include blocks that
    /// were allocated before, but not null.
    const std::vector<const void*>& Released() const { return released; }

    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    // Called by the replaced operators.
    void OnNew(const void* block, std::size_t bytes);
    void OnDelete(const void* block);
    bool NextFails();

private:
    struct Block {
        const void* address;
        std::size_t bytes;
        bool live;
    };
    std::vector<Block> blocks;
    std::vector<const void*> released;
    int failAfter = -1;
};

#endif
