// Point sets for the tests, the fuzz target and the benchmark of the triangulation.
#pragma once

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace points {

using Coordinates = std::vector<float>; // x, y of each point
using Random = std::mt19937;

// From 0 to below 1, the same on every machine.
inline float unit(Random& random) {
    return static_cast<float>(random() >> 8) * (1.0f / 16777216.0f);
}

inline Coordinates uniform(std::size_t count, Random& random, float width, float height) {
    Coordinates c;
    for (std::size_t i = 0; i < count; ++i) {
        c.push_back(unit(random) * width);
        c.push_back(unit(random) * height);
    }
    return c;
}

// Rows and columns one `step` apart.
inline Coordinates grid(std::size_t count, float step) {
    const auto side = static_cast<std::size_t>(std::sqrt(static_cast<double>(count)));
    Coordinates c;
    for (std::size_t i = 0; i < side * side; ++i) {
        c.push_back(static_cast<float>(i / side) * step);
        c.push_back(static_cast<float>(i % side) * step);
    }
    return c;
}

// A bell around 0, near enough: sums of twelve.
inline Coordinates gaussian(std::size_t count, Random& random, float deviation) {
    Coordinates c;
    for (std::size_t i = 0; i < 2 * count; ++i) {
        float sum = -6;
        for (int n = 0; n < 12; ++n)
            sum += unit(random);
        c.push_back(sum * deviation);
    }
    return c;
}

inline Coordinates circle(std::size_t count, Random& random, float radius) {
    Coordinates c;
    for (std::size_t i = 0; i < count; ++i) {
        const float angle = unit(random) * 6.2831853f;
        c.push_back(radius * std::cos(angle));
        c.push_back(radius * std::sin(angle));
    }
    return c;
}

inline Coordinates clusters(std::size_t count, Random& random, float spread) {
    Coordinates centres = uniform(1 + count / 40, random, 1000, 1000), c;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t at = random() % (centres.size() / 2);
        c.push_back(centres[2 * at] + unit(random) * spread);
        c.push_back(centres[2 * at + 1] + unit(random) * spread);
    }
    return c;
}

// On a line, whose steps are whole so that many points are exactly on it.
inline Coordinates line(std::size_t count, Random& random, float dx, float dy) {
    Coordinates c;
    for (std::size_t i = 0; i < count; ++i) {
        const auto at = static_cast<float>(random() % (2 * count + 1));
        c.push_back(at * dx);
        c.push_back(at * dy);
    }
    return c;
}

// Few values, many duplicates, zeros of both signs.
inline Coordinates lattice(std::size_t count, Random& random, int values) {
    Coordinates c;
    for (std::size_t i = 0; i < 2 * count; ++i) {
        const auto value =
            static_cast<float>(static_cast<int>(random() % static_cast<unsigned>(values)) - values / 2);
        c.push_back(value == 0 && random() % 2 ? -0.0f : value);
    }
    return c;
}

// So large against their distances, of a few last digits, that the margins around them are rounded away.
inline Coordinates last_digits(std::size_t count, Random& random) {
    const float signs = random() % 2 ? -1.0f : 1.0f;
    const int exponents[2] = {20 + static_cast<int>(random() % 50), 20 + static_cast<int>(random() % 50)};
    Coordinates c;
    for (std::size_t i = 0; i < 2 * count; ++i) {
        const auto digits = static_cast<float>((1 << 24) - 3 + static_cast<int>(random() % 6));
        c.push_back(std::ldexp(signs * digits, exponents[i % 2]));
    }
    return c;
}

inline Coordinates changed(Coordinates c, float factor, float shift_x, float shift_y) {
    for (std::size_t i = 0; i < c.size(); ++i)
        c[i] = c[i] * factor + (i % 2 ? shift_y : shift_x);
    return c;
}

} // namespace points
