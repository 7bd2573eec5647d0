// Siblings in order, in an array with a gap: elements come and go in constant time where the last one did,
// and at the end.
#pragma once

#include "env/element.h"

#include <cstddef>
#include <vector>

namespace env {

class GapList {
  public:
    std::size_t size() const { return m_items.size() - m_gap_size; }
    bool empty() const { return size() == 0; }
    Element* at(std::size_t i) const { return m_items[i < m_gap ? i : i + m_gap_size]; }

    // Where an element is, which must be there. It is found at once at the end and next to the one found or
    // asked for last.
    std::size_t find(const Element* element) const;
    bool is_near(const Element* element) const { return find_near(element) < size(); }
    // The element at a position becomes the one asked for last.
    void ask_for(std::size_t i) const { m_asked_for = i; }

    // These throw std::bad_alloc and leave the list as it was.
    void reserve(std::size_t count) { m_items.reserve(count); }
    void append(Element* element) { m_items.push_back(element); }
    void insert(std::size_t i, Element* element);
    void erase(std::size_t i);
    void clear();

  private:
    std::size_t find_near(const Element* element) const; // size() when it is not there
    void move_gap(std::size_t to);

    std::vector<Element*> m_items;
    std::size_t m_gap = 0;
    std::size_t m_gap_size = 0;
    mutable std::size_t m_asked_for = 0;
    mutable std::size_t m_found = 0;
};

} // namespace env
