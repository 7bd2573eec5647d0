// The edges around a cavity of few triangles, by AVX2.
#pragma once

#include "calcgeom/cavity.h"

#include <cstddef>

constexpr std::size_t most_for_boundary_avx2 = 20;

// Edges that one of up to `most_for_boundary_avx2` triangles has, in no order; how many. Up to four more,
// whose vertices are vertices of the sweep, are written behind them. 0 if an edge belongs to more than two
// triangles.
std::size_t boundary_avx2(const Corners* triangles, std::size_t count, Edge* boundary);
