// What finds siblings in a long list without walking it: by name and occurrence, and by position. It stands
// beside the list, is built when a long list is first asked, and may be dropped at any time.
#pragma once

#include "env/element.h"
#include "env/gap_list.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace env {

class ListIndex {
  public:
    // Shorter lists are walked.
    static constexpr std::uint32_t shortest_list = 32;

    explicit ListIndex(const ElementList& list);
    ~ListIndex();
    ListIndex(const ListIndex&) = delete;
    ListIndex& operator=(const ListIndex&) = delete;

    // The occurrence-th element of this name, from 1; null when there are fewer.
    Element* find(std::string_view name, std::uint32_t hash, long occurrence) const;
    std::uint32_t count(std::string_view name, std::uint32_t hash) const;
    // The occurrence number of an element of the list.
    long occurrence_of(const Element* element) const;
    // Whether elements are found by position, which is prepared for when it is first asked: not when memory
    // runs out.
    bool has_positions(const ElementList& list);
    // The element at a position, from 0, which must exist.
    Element* at(std::uint32_t position);

    // Each keeps the index true to a change of the list, after it is made (remove: before). They throw
    // std::bad_alloc and leave the index unusable then.
    void append(Element* element);
    void insert(Element* element);
    void remove(const Element* element);

    // The environment's chain of indexes, so that all can be dropped without walking the tree.
    ListIndex* next_index = nullptr;
    ListIndex* previous_index = nullptr;
    ElementList* owner_list = nullptr;

  private:
    friend class StoreCheck; // of the tests

    // All elements of one name. Small: a long list's slots should stay in the processor's cache.
    class Slot {
      public:
        bool is_free() const { return !m_only; }
        Element* first() const { return is_list() ? m_all->at(0) : m_only; }
        std::size_t size() const { return is_list() ? m_all->size() : 1; }
        Element* at(std::size_t rank) const;
        std::size_t find(const Element* element) const { return is_list() ? m_all->find(element) : 0; }
        bool has(std::uint32_t hash) const { return (m_hash | list_mark) == (hash | list_mark); }
        std::size_t home(std::size_t mask) const { return m_hash >> 1 & mask; }

        void start(std::uint32_t hash, Element* element);
        // The element joins its namesakes in front of the one with this rank.
        void join(std::size_t rank, Element* element);
        // Not the only one.
        void leave(const Element* element);
        void dispose();

      private:
        static constexpr std::uint32_t list_mark = 1;
        bool is_list() const { return m_hash & list_mark; }

        std::uint32_t m_hash = 0; // the lowest bit gives way to the mark
        union {
            Element* m_only = nullptr; // null: the slot is free
            GapList* m_all;
        };
    };

    explicit ListIndex(std::size_t slots) : m_slots(slots) {}
    static std::size_t table_for(std::uint32_t count);
    // The slot of a name; a free one, where the name belongs, when it has none.
    Slot& slot_of(std::string_view name, std::uint32_t hash) const;
    void start(std::uint32_t hash, Element* element, Slot& slot);
    void free_slot(Slot& slot);
    void grow();
    std::size_t rank_of(const Slot& slot, const Element* element) const;
    // Whether the positions, if there are any, shall follow a change at an element.
    bool positions_follow(const Element* element);

    mutable std::vector<Slot> m_slots; // linear probing, a power of two
    std::uint32_t m_used = 0;
    GapList m_positions;            // empty until has_positions() is asked
    bool m_positions_asked = false; // since the last change somewhere else
};

} // namespace env
