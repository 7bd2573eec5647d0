// The finished triangles, written in their order while the sweep goes on.
#pragma once

#include "calcgeom/finished_order.h"

#include <cstddef>
#include <limits>
#include <memory>
#include <span>
#include <vector>

// Coordinates of triangles.
struct TriangleArray {
    static constexpr std::size_t floats = 6; // of each

    std::unique_ptr<float[]> coordinates;
    std::size_t count = 0;
};

// Where triangles can be written. None, if there is no memory for so many.
struct TriangleRoom {
    TriangleRoom() = default;
    explicit TriangleRoom(std::size_t count);

    std::unique_ptr<float[]> array;
    std::size_t triangles = 0;
};

// Most centres lie near the sweep. Hence the leftmost triangles are written whenever enough of them wait,
// while they are still in the caches, and need no memory but that of the result. The few that belong before
// them all the same, most of them along the hull, come late and are merged in at the end.
class ResultOrder {
  public:
    // At least `window` triangles, not 0, wait before some are written, to `room` as long as that is enough.
    ResultOrder(const SweepVertices& sweep, TriangleRoom room, std::size_t window);

    void add(const FinishedTriangle& triangle) {
        (triangle.cx <= m_written_to ? m_late : m_waiting).push_back(triangle);
    }
    // Writes what need not wait, when the sweep has come to x, with so many circles live.
    void write_some(float x, std::size_t live);
    // Writes all that is left; the end.
    TriangleArray finish();

  private:
    void make_room(std::size_t more);
    void move_to(TriangleRoom room);
    void write(const FinishedTriangle& triangle, float* to) const;
    void append(std::span<const FinishedOrder::Ranked> order);
    void merge_late();

    const SweepVertices& m_sweep;
    FinishedOrder m_order;
    const std::size_t m_window;
    std::size_t m_next_write, m_patience = 12; // triangles that wait for each circle
    std::vector<FinishedTriangle> m_waiting, m_late, m_rest;
    float m_written_to = std::numeric_limits<float>::quiet_NaN(); // all centres up to here
    TriangleRoom m_room;
    std::size_t m_count = 0;
};
