#include "env/gap_list.h"

#include <algorithm>

namespace env {

std::size_t GapList::find_near(const Element* element) const {
    // Walks find one element after the other, whatever is asked for meanwhile; a deletion the one asked for.
    for (const std::size_t near : {m_found, m_asked_for}) {
        const std::size_t end = std::min(near + 2, size());
        for (std::size_t i = near - (near > 0); i < end; ++i)
            if (at(i) == element) return i;
    }
    return !empty() && at(size() - 1) == element ? size() - 1 : size();
}

std::size_t GapList::find(const Element* element) const {
    std::size_t i = find_near(element);
    if (i == size()) {
        const auto begin = m_items.begin(), gap = begin + static_cast<std::ptrdiff_t>(m_gap);
        auto found = std::find(begin, gap, element);
        if (found == gap)
            found = std::find(gap + static_cast<std::ptrdiff_t>(m_gap_size), m_items.end(), element);
        i = static_cast<std::size_t>(found - begin) - (found < gap ? 0 : m_gap_size);
    }
    m_found = i;
    return i;
}

void GapList::insert(std::size_t i, Element* element) {
    if (i == size()) return append(element);
    if (m_gap_size == 0) {
        const std::size_t room = 8 + m_items.size() / 8;
        m_items.insert(m_items.begin() + static_cast<std::ptrdiff_t>(i), room, nullptr);
        m_gap = i;
        m_gap_size = room;
    }
    move_gap(i);
    m_items[m_gap++] = element;
    --m_gap_size;
}

void GapList::erase(std::size_t i) {
    if (m_gap + m_gap_size < m_items.size() && i + 1 == size()) return m_items.pop_back();
    move_gap(i);
    ++m_gap_size;
    if (m_gap_size <= m_items.size() / 2) return;
    const auto gap = m_items.begin() + static_cast<std::ptrdiff_t>(m_gap);
    m_items.erase(gap, gap + static_cast<std::ptrdiff_t>(m_gap_size));
    m_gap_size = 0;
}

void GapList::clear() {
    m_items.clear();
    m_gap = m_gap_size = 0;
}

void GapList::move_gap(std::size_t to) {
    const auto at = [&](std::size_t i) { return m_items.begin() + static_cast<std::ptrdiff_t>(i); };
    if (to < m_gap)
        std::move_backward(at(to), at(m_gap), at(m_gap + m_gap_size));
    else
        std::move(at(m_gap + m_gap_size), at(to + m_gap_size), at(m_gap));
    m_gap = to;
}

} // namespace env
