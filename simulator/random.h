// SPDX-License-Identifier: MIT
// Random numbers that are the same for the same seed with every standard library.
#pragma once

#include <cstddef>
#include <cstdint>

struct Random {
    std::uint64_t state = 1; ///< the seed at first
};

/// The next number, with 64 random bits.
inline std::uint64_t next_random(Random& random) {
    // SplitMix64 (Steele, Lea, Flood 2014): a counter and a mix of its bits.
    random.state += 0x9E3779B97F4A7C15U;
    std::uint64_t mixed = random.state;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9U;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
    return mixed ^ (mixed >> 31);
}

/// At least `low` and below `high`.
inline double random_between(Random& random, double low, double high) {
    // 53 bits fill a double's fraction exactly.
    const double fraction = static_cast<double>(next_random(random) >> 11) * 0x1p-53;
    return low + (high - low) * fraction;
}

/// From 0 to `count` - 1; `count` is above 0.
inline std::size_t random_index(Random& random, std::size_t count) {
    return static_cast<std::size_t>(next_random(random) % count);
}
