#include "env/tree.h"

#include "env/short_text.h"
#include "module/memory_reserve.h"

#include <cstring>
#include <limits>
#include <new>

namespace env {

namespace {

// Texts of data elements, as they are allocated when they are not inside their element.
std::size_t text_bytes(std::string_view text) {
    return text.size() + 1;
}

void copy_text(char* to, std::string_view text) {
    std::memmove(to, text.data(), text.size());
    to[text.size()] = '\0';
}

void copy_fresh(char* to, std::string_view text) {
    copy_apart(to, text);
    to[text.size()] = '\0';
}

} // namespace

void Pin::stand_on(Tree& tree, Element* element) {
    leave();
    if (!element) return;
    m_tree = &tree;
    m_element = element;
    element->pinned = true;
    m_next = tree.m_pins;
    if (m_next) m_next->m_previous = this;
    tree.m_pins = this;
}

void Pin::leave() {
    if (!m_tree) return;
    if (m_next) m_next->m_previous = m_previous;
    (m_previous ? m_previous->m_next : m_tree->m_pins) = m_next;
    m_element = nullptr;
    m_tree = nullptr;
    m_next = m_previous = nullptr;
}

void Tree::lose_pins_on(const Element* element) {
    for (Pin* pin = m_pins; pin; pin = pin->m_next)
        if (pin->m_element == element) pin->m_element = nullptr;
}

void Tree::clear() {
    for (Pin* pin = m_pins; pin; pin = pin->m_next)
        pin->m_element = nullptr;
    drop_all_indexes();
    m_pool.clear();
    m_top = ElementList{};
}

Element* Tree::create(std::string_view name, Kind kind, std::size_t text_size) {
    if (name.size() > std::numeric_limits<std::size_t>::max() / 4 || text_size > name.max_size() / 4)
        throw std::bad_alloc();
    const std::size_t size = Pool::rounded(sizeof(Element) + name.size() + 1 + text_size);
    const std::size_t units = size / sizeof(void*);
    auto* element = new (m_pool.allocate(size)) Element{};
    element->units =
        units <= std::numeric_limits<std::uint16_t>::max() ? static_cast<std::uint16_t>(units) : 0;
    element->hash = static_cast<std::uint8_t>(name_hash(name));
    element->kind = kind;
    copy_fresh(element->name(), name);
    return element;
}

Element* Tree::create_block(std::string_view name) {
    return create(name, Kind::block, 0);
}

Element* Tree::create_external(std::string_view name, std::int32_t value) {
    Element* element = create(name, Kind::external, 0);
    element->value = value;
    return element;
}

Element* Tree::create_data(std::string_view name, std::string_view text) {
    Element* element = create(name, Kind::data, text_bytes(text));
    element->text_inside = true;
    element->text = element->name() + name.size() + 1;
    copy_fresh(element->text, text);
    return element;
}

void Tree::append(ElementList& list, Element* element) {
    element->list = &list;
    element->next = nullptr;
    element->previous = list.last;
    (list.last ? list.last->next : list.first) = element;
    list.last = element;
    ++list.count;
    list.blocks += element->kind == Kind::block;
    if (list.index) {
        try {
            list.index->append(element);
        } catch (const std::bad_alloc&) {
            drop_index(list); // it can be made again
            memory_reserve::keep();
        }
    }
}

void Tree::insert_before(Element* sibling, Element* element) {
    ElementList& list = *sibling->list;
    element->list = &list;
    element->next = sibling;
    element->previous = sibling->previous;
    (sibling->previous ? sibling->previous->next : list.first) = element;
    sibling->previous = element;
    ++list.count;
    list.blocks += element->kind == Kind::block;
    if (list.index) {
        try {
            list.index->insert(element);
        } catch (const std::bad_alloc&) {
            drop_index(list);
            memory_reserve::keep();
        }
    }
}

void Tree::append_child(Element* parent, Element* element) {
    ElementList* list = children_of(parent);
    if (!list) {
        Draft appended(*this, element);
        list = new (m_pool.allocate(sizeof(ElementList))) ElementList{};
        appended.keep();
        list->owner = parent;
        make_block(parent);
        parent->children = list;
    }
    append(*list, element);
}

void Tree::move_children(Element* from, Element* to) {
    make_block(to);
    to->children = std::exchange(from->children, nullptr);
    if (to->children) to->children->owner = to;
}

void Tree::unlink(Element* element) {
    ElementList& list = *element->list;
    if (list.index) list.index->remove(element);
    (element->previous ? element->previous->next : list.first) = element->next;
    (element->next ? element->next->previous : list.last) = element->previous;
    --list.count;
    list.blocks -= element->kind == Kind::block;
    element->list = nullptr;
}

void Tree::remove(Element* element) {
    if (element->list) unlink(element);
    release_content(element);
    release(element);
}

void Tree::set_kind(Element* element, Kind kind) {
    if (ElementList* list = element->list) {
        list->blocks -= element->kind == Kind::block;
        list->blocks += kind == Kind::block;
    }
    element->kind = kind;
}

void Tree::set_data(Element* element, std::string_view text) {
    const std::size_t size = text_bytes(text);
    if (element->kind == Kind::data) {
        const std::size_t former = std::strlen(element->text) + 1;
        const bool fits =
            element->text_inside ? size <= former : Pool::rounded(size) == Pool::rounded(former);
        if (fits) {
            copy_text(element->text, text);
            return;
        }
    }
    char* const copy = static_cast<char*>(m_pool.allocate(size));
    copy_text(copy, text);
    release_content(element); // after the copy: the text may lie in what is released
    set_kind(element, Kind::data);
    element->text_inside = false;
    element->text = copy;
}

void Tree::set_external(Element* element, std::int32_t value) {
    release_content(element);
    set_kind(element, Kind::external);
    element->value = value;
}

void Tree::make_block(Element* element) {
    if (element->kind == Kind::block) return;
    release_content(element);
    set_kind(element, Kind::block);
    element->children = nullptr;
}

// Frees a text or all below a block; what the element then holds is to be set.
void Tree::release_content(Element* element) {
    if (element->kind == Kind::block)
        release_children(element);
    else if (element->kind == Kind::data && !element->text_inside && element->text)
        m_pool.release(element->text, std::strlen(element->text) + 1);
    element->text_inside = false;
}

// Children before their block, front to back; no recursion, whatever the depth.
void Tree::release_children(Element* block) {
    Element* at = block;
    for (;;) {
        ElementList* const children = children_of(at);
        if (children && children->first) {
            at = children->first;
            continue;
        }
        if (children) {
            release_list(children);
            at->children = nullptr;
        }
        if (at == block) return;
        if (at->kind != Kind::block) release_content(at);
        ElementList* const siblings = at->list;
        siblings->first = at->next;
        release(at);
        at = siblings->first ? siblings->first : siblings->owner;
    }
}

void Tree::release_list(ElementList* list) {
    drop_index(*list);
    m_pool.release(list, sizeof(ElementList));
}

void Tree::release(Element* element) {
    if (element->pinned) lose_pins_on(element);
    // Only a large block has no stored size, and the pool asks no more of those than that they are large.
    const std::size_t size =
        element->units ? element->units * sizeof(void*) : std::numeric_limits<std::size_t>::max();
    m_pool.release(element, size);
}

ListIndex* Tree::make_index(const ElementList& list) {
    try {
        auto* index = new ListIndex(list);
        index->owner_list = const_cast<ElementList*>(&list);
        index->owner_list->index = index;
        index->next_index = m_indexes;
        if (m_indexes) m_indexes->previous_index = index;
        m_indexes = index;
    } catch (const std::bad_alloc&) {
        memory_reserve::keep();
        return nullptr; // the list is walked instead
    }
    return list.index;
}

void Tree::drop_index(ElementList& list) {
    ListIndex* const index = list.index;
    if (!index) return;
    if (index->next_index) index->next_index->previous_index = index->previous_index;
    (index->previous_index ? index->previous_index->next_index : m_indexes) = index->next_index;
    list.index = nullptr;
    delete index;
}

void Tree::drop_all_indexes() {
    while (m_indexes)
        drop_index(*m_indexes->owner_list);
}

} // namespace env
