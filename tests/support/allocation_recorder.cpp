#include "tests/support/allocation_recorder.h"

#include <algorithm>
#include <new>

namespace {

AllocationRecorder* current = nullptr;

}  // namespace

AllocationRecorder::AllocationRecorder() {
    current = this;
}

AllocationRecorder::~AllocationRecorder() {
    current = nullptr;
}

std::vector<std::size_t> AllocationRecorder::Sizes() const {
    std::vector<std::size_t> sizes;
    for (const Block& block : blocks) {
        sizes.push_back(block.bytes);
    }
    return sizes;
}

std::size_t AllocationRecorder::SizeOf(const void* block) const {
    for (const Block& known : blocks) {
        if (known.live && known.address == block) {
            return known.bytes;
        }
    }
    return npos;
}

int AllocationRecorder::LiveBlocks() const {
    return static_cast<int>(
        std::count_if(blocks.begin(), blocks.end(), [](const Block& b) { return b.live; }));
}

void AllocationRecorder::OnNew(const void* block, std::size_t bytes) {
    blocks.push_back({block, bytes, true});
}

void AllocationRecorder::OnDelete(const void* block) {
    released.push_back(block);
    for (Block& known : blocks) {
        if (known.address == block) {
            known.live = false;
        }
    }
}

bool AllocationRecorder::NextFails() {
    if (failAfter < 0) {
        return false;
    }
    return failAfter-- == 0;
}

// The non-array form allocates, so that the sanitizers still detect leaks and overruns.
void* operator new[](std::size_t bytes) {
    if (current != nullptr && current->NextFails()) {
        throw std::bad_alloc();
    }
    void* block = ::operator new(bytes);
    if (current != nullptr) {
        current->OnNew(block, bytes);
    }
    return block;
}

void operator delete[](void* block) noexcept {
    if (current != nullptr && block != nullptr) {
        current->OnDelete(block);
    }
    ::operator delete(block);
}

void operator delete[](void* block, std::size_t) noexcept {
    ::operator delete[](block);
}
