// SPDX-License-Identifier: MIT
#include "support/scarce_memory.h"

#include <cstdlib>
#include <new>

thread_local bool memory_is_scarce = false;

namespace {

constexpr std::size_t large = 30'000;

} // namespace

void* operator new(std::size_t size) {
    void* room = memory_is_scarce && size >= large ? nullptr : std::malloc(size);
    if (!room)
        throw std::bad_alloc{};
    return room;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size);
}

void operator delete(void* room) noexcept {
    std::free(room);
}

void operator delete(void* room, std::size_t) noexcept {
    std::free(room);
}

void operator delete(void* room, const std::nothrow_t&) noexcept {
    std::free(room);
}
