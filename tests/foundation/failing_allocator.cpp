#include "failing_allocator.h"

#include <cstdlib>
#include <new>

namespace {

thread_local int allocationsToFailure = 0; // 0: none, negative: it has failed

void* allocate(std::size_t size) noexcept {
    if (allocationsToFailure > 0 && --allocationsToFailure == 0) {
        allocationsToFailure = -1;
        return nullptr;
    }
    return std::malloc(size > 0 ? size : 1);
}

} // namespace

void* operator new(std::size_t size) {
    if (void* memory = allocate(size))
        return memory;
    throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}

namespace zelmora::test {

FailingAllocation::FailingAllocation(int number) {
    allocationsToFailure = number;
}

FailingAllocation::~FailingAllocation() {
    allocationsToFailure = 0;
}

bool FailingAllocation::hasFailed() const {
    return allocationsToFailure < 0;
}

} // namespace zelmora::test
