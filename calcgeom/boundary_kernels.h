// The edges around a cavity of few triangles, by AVX2 or AVX-512.
#pragma once

#include "calcgeom/cavity.h"
#include "calcgeom/circle_kernels.h"

#include <cstddef>

// Edges that one of up to so many triangles has, in no order; how many. Up to eight more, whose vertices are
// vertices of the sweep, are written behind them. 0 also if an edge belongs to more than two triangles.
constexpr std::size_t most_for_boundary_avx2 = 20;
std::size_t boundary_avx2(const Corners* triangles, std::size_t count, Edge* boundary);

// The same of one to so many hits, behind which others or zeros can be read up to so many. 0 also if the
// circle of one of them ends before x.
constexpr std::size_t most_for_boundary_avx512 = 16;
std::size_t boundary_avx512(const Hits& hits, float x, Edge* boundary);
