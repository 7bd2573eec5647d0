#include "env/list_index.h"

#include "module/memory_reserve.h"

#include <memory>
#include <new>

namespace env {

namespace {
constexpr std::size_t smallest_table = 64;

// Whether a table of so many slots is too full for so many names.
bool is_full(std::size_t slots, std::size_t names) {
    return names > slots / 5 * 4;
}
} // namespace

Element* ListIndex::Slot::at(std::size_t rank) const {
    if (!is_list()) return m_only;
    m_all->ask_for(rank); // it may be deleted next
    return m_all->at(rank);
}

void ListIndex::Slot::start(std::uint32_t hash, Element* element) {
    m_hash = hash & ~list_mark;
    m_only = element;
}

void ListIndex::Slot::join(std::size_t rank, Element* element) {
    if (!is_list()) {
        auto all = std::make_unique<GapList>();
        all->append(m_only);
        m_all = all.release();
        m_hash |= list_mark;
    }
    m_all->insert(rank, element);
}

void ListIndex::Slot::leave(const Element* element) {
    m_all->erase(m_all->find(element));
    if (m_all->size() > 1) return;
    Element* const only = m_all->at(0);
    dispose();
    m_only = only;
    m_hash &= ~list_mark;
}

void ListIndex::Slot::dispose() {
    if (is_list()) delete m_all;
}

std::size_t ListIndex::table_for(std::uint32_t count) {
    std::size_t slots = smallest_table;
    while (is_full(slots, count))
        slots *= 2;
    return slots;
}

// Constructed in two steps, so that the destructor runs when memory ends while the names are gathered.
ListIndex::ListIndex(const ElementList& list) : ListIndex(table_for(list.count)) {
    for (Element* element = list.first; element; element = element->next)
        append(element);
}

ListIndex::~ListIndex() {
    for (Slot& slot : m_slots)
        slot.dispose();
}

Element* ListIndex::find(std::string_view name, std::uint32_t hash, long occurrence) const {
    const Slot& slot = slot_of(name, hash);
    if (slot.is_free() || occurrence < 1 || static_cast<std::size_t>(occurrence) > slot.size())
        return nullptr;
    return slot.at(static_cast<std::size_t>(occurrence) - 1);
}

std::uint32_t ListIndex::count(std::string_view name, std::uint32_t hash) const {
    const Slot& slot = slot_of(name, hash);
    return slot.is_free() ? 0 : static_cast<std::uint32_t>(slot.size());
}

long ListIndex::occurrence_of(const Element* element) const {
    const std::string_view name = element->name_view();
    return static_cast<long>(slot_of(name, name_hash(name)).find(element)) + 1;
}

bool ListIndex::has_positions(const ElementList& list) {
    if (!m_positions.empty()) return true;
    try {
        m_positions.reserve(list.count);
    } catch (const std::bad_alloc&) {
        memory_reserve::keep();
        return false;
    }
    for (Element* element = list.first; element; element = element->next)
        m_positions.append(element);
    return true;
}

Element* ListIndex::at(std::uint32_t position) {
    m_positions_asked = true;
    m_positions.ask_for(position); // it may be deleted next
    return m_positions.at(position);
}

void ListIndex::append(Element* element) {
    const std::string_view name = element->name_view();
    const std::uint32_t hash = name_hash(name);
    Slot& slot = slot_of(name, hash);
    if (slot.is_free())
        start(hash, element, slot);
    else
        slot.join(slot.size(), element);
    if (!m_positions.empty()) m_positions.append(element);
}

void ListIndex::insert(Element* element) {
    if (positions_follow(element->next)) m_positions.insert(m_positions.find(element->next), element);
    const std::string_view name = element->name_view();
    const std::uint32_t hash = name_hash(name);
    Slot& slot = slot_of(name, hash);
    if (slot.is_free())
        start(hash, element, slot);
    else
        slot.join(rank_of(slot, element), element);
}

void ListIndex::remove(const Element* element) {
    if (positions_follow(element)) m_positions.erase(m_positions.find(element));
    const std::string_view name = element->name_view();
    Slot& slot = slot_of(name, name_hash(name));
    if (slot.size() == 1)
        free_slot(slot);
    else
        slot.leave(element);
}

// To find a place that is not near the last one asked for takes a search: worth it when positions are asked
// for between changes, but not for many changes in a row.
bool ListIndex::positions_follow(const Element* element) {
    if (m_positions.empty()) return false;
    if (m_positions.is_near(element)) return true;
    const bool follow = m_positions_asked;
    m_positions_asked = false;
    if (!follow) m_positions.clear();
    return follow;
}

// Where a new element of the list belongs among its namesakes: next to the nearest one, looked for in both
// directions at once.
std::size_t ListIndex::rank_of(const Slot& slot, const Element* element) const {
    const std::string_view name = element->name_view();
    const Element* behind = element->next;
    const Element* in_front = element->previous;
    for (; behind && in_front; behind = behind->next, in_front = in_front->previous) {
        if (behind->is_named(name, element->hash)) return slot.find(behind);
        if (in_front->is_named(name, element->hash)) return slot.find(in_front) + 1;
    }
    // One end of the list is reached: all namesakes lie on the other side.
    return behind ? 0 : slot.size();
}

ListIndex::Slot& ListIndex::slot_of(std::string_view name, std::uint32_t hash) const {
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t i = hash >> 1 & mask;; i = (i + 1) & mask) {
        Slot& slot = m_slots[i];
        if (slot.is_free()) return slot;
        if (!slot.has(hash)) continue;
        const Element* const first = slot.first();
        if (first->is_named(name, first->hash)) return slot;
    }
}

void ListIndex::start(std::uint32_t hash, Element* element, Slot& slot) {
    if (is_full(m_slots.size(), m_used + 1)) {
        grow();
        slot_of(element->name(), hash).start(hash, element);
    } else {
        slot.start(hash, element);
    }
    ++m_used;
}

void ListIndex::grow() {
    std::vector<Slot> former(m_slots.size() * 2);
    former.swap(m_slots);
    const std::size_t mask = m_slots.size() - 1;
    for (const Slot& slot : former) {
        if (slot.is_free()) continue;
        std::size_t i = slot.home(mask);
        while (!m_slots[i].is_free())
            i = (i + 1) & mask;
        m_slots[i] = slot;
    }
}

// Frees a slot and moves up those that linear probing had put behind it.
void ListIndex::free_slot(Slot& slot) {
    const std::size_t mask = m_slots.size() - 1;
    std::size_t hole = static_cast<std::size_t>(&slot - m_slots.data());
    m_slots[hole].dispose();
    m_slots[hole] = Slot{};
    --m_used;
    for (std::size_t i = (hole + 1) & mask; !m_slots[i].is_free(); i = (i + 1) & mask) {
        if (((i - m_slots[i].home(mask)) & mask) < ((i - hole) & mask)) continue;
        m_slots[hole] = m_slots[i];
        m_slots[i] = Slot{};
        hole = i;
    }
}

} // namespace env
