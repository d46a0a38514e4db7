#ifndef KVX3D_TESTS_SUPPORT_ALLOCATION_RECORDER_H
#define KVX3D_TESTS_SUPPORT_ALLOCATION_RECORDER_H

#include <cstddef>
#include <vector>

/// Watches the array form of new and delete while it lives, and can make an allocation fail.
///
/// Only programs that link the target kvx3d_allocation_recorder get the replaced operators. One
/// recorder at a time, one thread. Plain new, and so the standard containers, are not watched.
class AllocationRecorder {
public:
    AllocationRecorder();
    ~AllocationRecorder();
    AllocationRecorder(const AllocationRecorder&) = delete;
    AllocationRecorder& operator=(const AllocationRecorder&) = delete;

    /// Lets n more allocations succeed; the next one throws std::bad_alloc, later ones succeed.
    void FailAfter(int n) { failAfter = n; }

    /// Bytes of every block allocated so far, in order, released ones included.
    std::vector<std::size_t> Sizes() const;
    /// Bytes of a live block of the array form, or npos for anything else.
    std::size_t SizeOf(const void* block) const;
    /// True for a block allocated under this recorder and not yet released.
    bool IsLive(const void* block) const { return SizeOf(block) != npos; }
    /// Number of live blocks.
    int LiveBlocks() const;
    /// Blocks released under this recorder, in order; those from before it included, null not.
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
