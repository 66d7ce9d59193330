// SPDX-License-Identifier: MIT
// Chance for the simulated life: the same numbers for the same seed with every standard library.
#pragma once

#include <cstddef>
#include <cstdint>

struct Random {
    std::uint64_t state = 1; ///< the seed at first
};

/// The next number, all 64 bits of it by chance.
std::uint64_t next_random(Random& random);

/// At least `low` and below `high`.
double random_between(Random& random, double low, double high);

/// From 0 to `count` - 1; `count` is above 0.
std::size_t random_index(Random& random, std::size_t count);
