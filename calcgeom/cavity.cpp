#include "calcgeom/cavity.h"

#include "calcgeom/boundary_kernels.h"

#include <algorithm>
#include <bit>
#include <set>
#include <span>
#include <tuple>
#include <utility>

namespace {

// The smaller first. Arithmetic, as compilers make a branch of a comparison, and nobody can guess it.
Edge ordered(std::uint32_t p, std::uint32_t q) {
    const std::uint32_t change = (p ^ q) & (0u - static_cast<std::uint32_t>(q < p));
    return {p ^ change, q ^ change};
}

// The first of the edges that is the wanted one, or the end, behind which three more can be read.
Edge* find_edge(Edge* edges, Edge* end, const Edge& wanted) {
    const __m128i both = _mm_set1_epi64x(std::bit_cast<long long>(wanted));
    const auto equal_words = [&](const Edge* two) {
        const __m128i words = _mm_loadu_si128(reinterpret_cast<const __m128i*>(two));
        return mask_of(_mm_castsi128_ps(_mm_cmpeq_epi32(words, both)));
    };
    for (; edges < end; edges += 4) {
        const unsigned words = equal_words(edges) | equal_words(edges + 2) << 4;
        if (const unsigned first_words = words & words >> 1 & 0x55)
            return std::min(edges + std::countr_zero(first_words) / 2, end);
    }
    return end;
}

// For so many edges, and a block that may be read behind them.
void make_room_for_boundary(std::vector<Edge>& boundary, std::size_t edges) {
    constexpr std::size_t behind = 16;
    if (boundary.size() < edges + behind) boundary.resize(2 * edges + behind);
}

} // namespace

bool Cavity::find_boundary_of_few(const Hits& hits, float x) {
    if (m_level < CpuLevel::avx512 || hits.count == 0 || hits.count > most_for_boundary_avx512 ||
        m_sweep.corners_coincide)
        return false;
    make_room_for_boundary(m_former_boundary, 3 * hits.count);
    m_boundary_size = boundary_avx512(hits, x, m_former_boundary.data());
    if (m_boundary_size == 0) return false;
    m_boundary.swap(m_former_boundary);
    return true;
}

void Cavity::find_boundary() {
    m_boundary.swap(m_former_boundary);
    constexpr std::size_t few_others = 8;
    if (m_fan && m_count <= few_others && !m_sweep.corners_coincide) {
        m_boundary.swap(m_fan->taken);
        make_room_for_boundary(m_boundary, 3 * (m_fan->taken_count + m_count));
        m_boundary_size = find_boundary_of_fan();
        return;
    }
    const std::size_t of_fan = m_fan ? m_fan->taken_count : 0;
    Corners* const corners = room_for(of_fan);
    for (std::size_t i = 0; i < of_fan; ++i)
        corners[i] = {m_fan->taken[i].first, m_fan->taken[i].second, m_fan->third, 0};
    m_count += of_fan;
    make_room_for_boundary(m_boundary, 3 * m_count);
    m_boundary_size = find_boundary_of_triangles();
}

std::size_t Cavity::find_boundary_of_triangles() {
    if (m_sweep.corners_coincide) return find_boundary_by_coordinates();
    if (m_level >= CpuLevel::avx2 && m_count <= most_for_boundary_avx2)
        if (const std::size_t count = boundary_avx2(m_triangles.data(), m_count, m_boundary.data()))
            return count;
    return m_count <= most_for(1)   ? find_boundary_in_rows<1>()
           : m_count <= most_for(2) ? find_boundary_in_rows<2>()
           : m_count <= most_for(8) ? find_boundary_in_rows<8>()
                                    : find_large_boundary();
}

// The edges from the fan's point that an odd number of its triangles in the cavity have. The whole fan was
// made with a boundary, of which every vertex has an even number of edges: hence the fan's other triangles
// have the same edges an odd number of times, and the fewer are looked at.
std::size_t Cavity::find_spokes(Edge* spokes) {
    if (m_is_end.empty()) m_is_end.resize(m_sweep.vertices.size());
    const bool fewer_others = m_fan->other_count < m_fan->taken_count;
    const std::span fan(fewer_others ? m_fan->other_edges.data() : m_boundary.data(),
                        fewer_others ? m_fan->other_count : m_fan->taken_count);
    std::uint8_t* const is_end = m_is_end.data();
    for (const auto& [first, second] : fan) {
        is_end[first] ^= 1;
        is_end[second] ^= 1;
    }
    std::size_t count = 0;
    for (const auto& [first, second] : fan) {
        spokes[count].first = first;
        count += std::exchange(is_end[first], std::uint8_t{0});
        spokes[count].first = second;
        count += std::exchange(is_end[second], std::uint8_t{0});
    }
    for (Edge& spoke : std::span(spokes, count))
        spoke = ordered(spoke.first, m_fan->third);
    return count;
}

// Few triangles besides those of the fan: none of them has the fan's point, which is newer than they are, so
// spokes concern the fan alone, and its other edges are boundary unless one of the few has them, too.
std::size_t Cavity::find_boundary_of_fan() {
    Edge* const boundary = m_boundary.data();
    std::size_t count = m_fan->taken_count + find_spokes(boundary + m_fan->taken_count);
    const auto toggle = [&](Place p, Place q) {
        const Edge edge = ordered(p, q);
        Edge* const same = find_edge(boundary, boundary + count, edge);
        if (same == boundary + count) {
            boundary[count++] = edge;
        } else {
            *same = boundary[--count];
        }
    };
    for (const auto& [v1, v2, v3, right] : std::span(m_triangles.data(), m_count)) {
        toggle(v1, v2);
        toggle(v2, v3);
        toggle(v3, v1);
    }
    return count;
}

// With edges as the bits of a triangular matrix over the cavity's vertices, in rows of so many words.
template <unsigned words>
std::size_t Cavity::find_boundary_in_rows() {
    if (m_numbers.empty()) m_numbers.resize(m_sweep.vertices.size());
    std::uint8_t* const numbers = m_numbers.data();
    Place* const vertices = m_vertices.data();
    std::uint32_t* const rows = m_rows.data();
    unsigned numbered = 0;
    const auto number_of = [&](Place vertex) {
        // Without a branch: whether a vertex is new cannot be guessed either.
        const unsigned noted = numbers[vertex];
        const bool is_new = (noted >= numbered) | (vertices[noted] != vertex);
        const unsigned number = is_new ? numbered : noted;
        numbers[vertex] = static_cast<std::uint8_t>(number);
        vertices[numbered] = vertex;
        for (unsigned w = 0; w < words; ++w)
            rows[numbered * words + w] = 0;
        numbered += is_new;
        return number;
    };
    const auto toggle = [&](unsigned p, unsigned q) {
        const auto [low, high] = ordered(p, q);
        rows[high * words + low / word_bits] ^= 1u << low % word_bits;
    };
    for (std::size_t i = 0; i < m_count; ++i) {
        if (numbered + 3 > words * word_bits) return find_large_boundary();
        const auto [v1, v2, v3, right] = m_triangles[i];
        const unsigned n1 = number_of(v1), n2 = number_of(v2), n3 = number_of(v3);
        toggle(n1, n2);
        toggle(n2, n3);
        toggle(n3, n1);
    }
    std::size_t kept = 0;
    Edge* const boundary = m_boundary.data();
    for (unsigned i = 0; i < numbered; ++i)
        for (unsigned w = 0; w < words; ++w) {
            // Hardly ever more than two bits: two are written, whether set or not, as the next edge
            // overwrites.
            std::uint32_t word = rows[i * words + w];
            do {
                for (int n = 0; n < 2; ++n) {
                    const auto bit = static_cast<unsigned>(std::countr_zero(word | 1u << (word_bits - 1)));
                    boundary[kept] = ordered(vertices[i], vertices[w * word_bits + bit]);
                    kept += word != 0;
                    word &= word - 1;
                }
            } while (word);
        }
    return kept;
}

// A cavity of hundreds of triangles, as circles of many points have: sorted, equal edges are neighbours.
std::size_t Cavity::find_large_boundary() {
    auto end = m_boundary.begin();
    for (std::size_t i = 0; i < m_count; ++i) {
        const auto [v1, v2, v3, right] = m_triangles[i];
        for (const Edge& edge : {ordered(v1, v2), ordered(v2, v3), ordered(v3, v1)})
            *end++ = edge;
    }
    std::sort(m_boundary.begin(), end, [](const Edge& a, const Edge& b) {
        return std::tie(a.first, a.second) < std::tie(b.first, b.second);
    });
    auto kept = m_boundary.begin();
    for (auto run = m_boundary.begin(); run != end;) {
        const auto next = std::find_if_not(run, end, [edge = *run](const Edge& e) { return e == edge; });
        if ((next - run) % 2 == 1) *kept++ = *run;
        run = next;
    }
    return static_cast<std::size_t>(kept - m_boundary.begin());
}

// With corners of the super triangle on points, equal edges may have different vertices: then it matters
// which triangle brings its edge first, and triangles are taken by centre, then creation.
std::size_t Cavity::find_boundary_by_coordinates() {
    struct Ranked {
        float cx, cy;
        Corners corners;
    };
    const auto place = [&](Place v) { return m_sweep.first_equal(v); };
    std::vector<Ranked> ranked;
    for (std::size_t i = 0; i < m_count; ++i) {
        const Corners& t = m_triangles[i];
        const Circles circle = circumcircles(splat(m_sweep.vertices[t.v1]), splat(m_sweep.vertices[t.v2]),
                                             splat(m_sweep.vertices[t.v3]));
        ranked.push_back({_mm_cvtss_f32(circle.cx), _mm_cvtss_f32(circle.cy), t});
    }
    const auto key = [&](const Ranked& t) {
        return std::tuple(t.cx, t.cy, t.corners.v3, place(t.corners.v1), place(t.corners.v2));
    };
    std::sort(ranked.begin(), ranked.end(),
              [&](const Ranked& s, const Ranked& t) { return key(s) < key(t); });
    const auto before = [&](const Edge& e, const Edge& f) {
        return std::tuple(place(e.first), place(e.second)) < std::tuple(place(f.first), place(f.second));
    };
    std::set<Edge, decltype(before)> edges(before);
    const auto toggle_by_coordinates = [&](Place p, Place q) {
        const auto [same, added] = edges.insert(place(q) < place(p) ? Edge{q, p} : Edge{p, q});
        if (!added) edges.erase(same);
    };
    for (const Ranked& t : ranked) {
        toggle_by_coordinates(t.corners.v1, t.corners.v2);
        toggle_by_coordinates(t.corners.v2, t.corners.v3);
        toggle_by_coordinates(t.corners.v3, t.corners.v1);
    }
    std::copy(edges.begin(), edges.end(), m_boundary.begin());
    return edges.size();
}
