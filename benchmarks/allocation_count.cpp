#include "benchmarks/allocation_count.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

bool counting = false;
std::ptrdiff_t bytes = 0;
std::ptrdiff_t peak = 0;

std::ptrdiff_t SizeOf(void* block) {
    return static_cast<std::ptrdiff_t>(malloc_usable_size(block) + sizeof(std::size_t));
}

}  // namespace

AllocationCount::AllocationCount() {
    bytes = peak = 0;
    counting = true;
}

AllocationCount::~AllocationCount() {
    counting = false;
}

std::ptrdiff_t AllocationCount::Bytes() const {
    return bytes;
}

std::ptrdiff_t AllocationCount::PeakBytes() const {
    return peak;
}

// The array forms call these functions too.

void* operator new(std::size_t size) {
    void* block = std::malloc(size != 0 ? size : 1);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    if (counting) {
        bytes += SizeOf(block);
        peak = std::max(peak, bytes);
    }
    return block;
}

void operator delete(void* block) noexcept {
    if (counting && block != nullptr) {
        bytes -= SizeOf(block);
    }
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept {
    operator delete(block);
}
