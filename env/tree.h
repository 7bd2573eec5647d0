// One environment's tree and everything that stands on its elements.
#pragma once

#include "env/element.h"
#include "env/list_index.h"
#include "env/pool.h"

#include <string_view>
#include <utility>

namespace env {

// Stands on an element and learns when it goes: sub-environments and walks hold one.
class Pin {
  public:
    Pin() = default;
    ~Pin() { leave(); }
    Pin(const Pin&) = delete;
    Pin& operator=(const Pin&) = delete;

    // Null once the element was deleted, and before stand_on().
    Element* element() const { return m_element; }
    void stand_on(class Tree& tree, Element* element);
    void leave();

  private:
    friend class StoreCheck; // of the tests
    friend class Tree;
    Element* m_element = nullptr;
    class Tree* m_tree = nullptr;
    Pin* m_next = nullptr;
    Pin* m_previous = nullptr;
};

// Creating throws std::bad_alloc when memory runs out and then changes nothing.
class Tree {
  public:
    Tree() = default;
    ~Tree() { clear(); }
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;

    ElementList& top() { return m_top; }
    const ElementList& top() const { return m_top; }
    // Deletes all sections.
    void clear();

    // New elements stand in no list: an empty block, an external, or data.
    Element* create_block(std::string_view name);
    Element* create_external(std::string_view name, std::int32_t value);
    Element* create_data(std::string_view name, std::string_view text);

    // Puts an element of no list last into one, or in front of another.
    void append(ElementList& list, Element* element);
    void insert_before(Element* sibling, Element* element);
    // The same at the end of a block's children; the list is made on demand. Anything else becomes a block
    // first. The element is deleted when this throws.
    void append_child(Element* parent, Element* element);
    // Anything but a block becomes one that has the children of another, which then has none.
    void move_children(Element* from, Element* to);

    // Deletes an element, in a list or not, with all below it.
    void remove(Element* element);

    // Replace what an element holds. The text may be one of this tree's own.
    void set_data(Element* element, std::string_view text);
    void set_external(Element* element, std::int32_t value);
    void make_block(Element* element);

    // The index of a long list, made when it is missing; null for a short one and when memory runs out.
    ListIndex* index_of(const ElementList& list) {
        return list.index || list.count < ListIndex::shortest_list ? list.index : make_index(list);
    }

  private:
    friend class Pin;
    friend class StoreCheck; // of the tests

    ListIndex* make_index(const ElementList& list);
    Element* create(std::string_view name, Kind kind, std::size_t text_size);
    void release_content(Element* element);
    void release_children(Element* block);
    void release(Element* element);
    void release_list(ElementList* list);
    void unlink(Element* element);
    void set_kind(Element* element, Kind kind);
    void drop_index(ElementList& list);
    void drop_all_indexes();
    void lose_pins_on(const Element* element);

    Pool m_pool;
    ElementList m_top;
    ListIndex* m_indexes = nullptr;
    Pin* m_pins = nullptr;
};

// An element under construction, in no list: deleted, with all below it, unless it is kept.
class Draft {
  public:
    Draft(Tree& tree, Element* element) : m_tree(tree), m_element(element) {}
    ~Draft() {
        if (m_element) m_tree.remove(m_element);
    }
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    Element* get() const { return m_element; }
    Element* keep() { return std::exchange(m_element, nullptr); }

  private:
    Tree& m_tree;
    Element* m_element;
};

} // namespace env
