// What finds siblings in a long list without walking it: by name and occurrence, and by position. It stands
// beside the list, is built when a long list is first asked, and may be dropped at any time.
#pragma once

#include "env/element.h"

#include <cstddef>
#include <cstdint>
#include <memory>
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
    // The element at a position, from 0, which must exist.
    Element* at(const ElementList& list, std::uint32_t position);

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

    // All elements of one name; the first alone is held in the slot.
    struct SameNamed {
        std::vector<Element*> members;
        std::size_t removed_in_front = 0; // taking away the first is frequent: no shifting then
        mutable std::size_t hint = 0;     // where the last element asked for was

        std::size_t size() const { return members.size() - removed_in_front; }
        Element* at(std::size_t i) const { return members[removed_in_front + i]; }
        std::size_t find(const Element* element) const;
        void erase(std::size_t i);
    };
    struct Slot {
        std::uint32_t hash = 0;
        Element* first = nullptr;       // null: the slot is free
        std::unique_ptr<SameNamed> all; // null while there is one element of the name

        std::size_t size() const { return all ? all->size() : 1; }
    };

    Slot* find_slot(std::string_view name, std::uint32_t hash) const;
    Slot& slot_for(std::string_view name, std::uint32_t hash);
    void free_slot(Slot& slot);
    void grow();
    std::size_t rank_of(const Slot& slot, const Element* element) const;
    void join(Slot& slot, std::size_t rank, Element* element);

    mutable std::vector<Slot> m_slots; // linear probing, a power of two
    std::uint32_t m_used = 0;
    std::vector<Element*> m_positions; // in order; empty until at() is asked, and after a change inside
};

} // namespace env
