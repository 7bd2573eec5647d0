#include "env/list_index.h"

#include <algorithm>

namespace env {

namespace {
constexpr std::size_t smallest_table = 64;

std::string_view name_of(const Element* element) {
    return element->name();
}
} // namespace

ListIndex::ListIndex(const ElementList& list) {
    std::size_t slots = smallest_table;
    while (slots < list.count + list.count / 2)
        slots *= 2;
    m_slots.resize(slots);
    for (Element* element = list.first; element; element = element->next)
        append(element);
}

ListIndex::~ListIndex() = default;

Element* ListIndex::find(std::string_view name, std::uint32_t hash, long occurrence) const {
    const Slot* slot = find_slot(name, hash);
    if (!slot || occurrence < 1 || static_cast<std::size_t>(occurrence) > slot->size()) return nullptr;
    if (!slot->all) return slot->first;
    slot->all->hint = static_cast<std::size_t>(occurrence) - 1; // it may be deleted next
    return slot->all->at(slot->all->hint);
}

std::uint32_t ListIndex::count(std::string_view name, std::uint32_t hash) const {
    const Slot* slot = find_slot(name, hash);
    return slot ? static_cast<std::uint32_t>(slot->size()) : 0;
}

long ListIndex::occurrence_of(const Element* element) const {
    const std::string_view name = name_of(element);
    const Slot* slot = find_slot(name, name_hash(name));
    return slot->all ? static_cast<long>(slot->all->find(element)) + 1 : 1;
}

Element* ListIndex::at(const ElementList& list, std::uint32_t position) {
    if (m_positions.empty()) {
        m_positions.reserve(list.count);
        for (Element* element = list.first; element; element = element->next)
            m_positions.push_back(element);
    }
    return m_positions[position];
}

void ListIndex::append(Element* element) {
    const std::string_view name = name_of(element);
    const std::uint32_t hash = name_hash(name);
    Slot& slot = slot_for(name, hash);
    join(slot, slot.first ? slot.size() : 0, element);
    if (!m_positions.empty()) m_positions.push_back(element);
}

void ListIndex::insert(Element* element) {
    m_positions.clear();
    const std::string_view name = name_of(element);
    const std::uint32_t hash = name_hash(name);
    Slot& slot = slot_for(name, hash);
    join(slot, slot.first ? rank_of(slot, element) : 0, element);
}

// Where a new element of the list belongs among its namesakes: next to the nearest one, looked for in both
// directions at once.
std::size_t ListIndex::rank_of(const Slot& slot, const Element* element) const {
    const auto rank = [&](const Element* namesake) { return slot.all ? slot.all->find(namesake) : 0; };
    const std::string_view name = name_of(element);
    const Element* behind = element->next;
    const Element* in_front = element->previous;
    for (; behind && in_front; behind = behind->next, in_front = in_front->previous) {
        if (behind->is_named(name, element->hash)) return rank(behind);
        if (in_front->is_named(name, element->hash)) return rank(in_front) + 1;
    }
    // One end of the list is reached: all namesakes lie on the other side.
    return behind ? 0 : slot.size();
}

void ListIndex::remove(const Element* element) {
    if (!m_positions.empty()) {
        if (m_positions.back() == element)
            m_positions.pop_back();
        else
            m_positions.clear();
    }
    const std::string_view name = name_of(element);
    Slot* slot = find_slot(name, name_hash(name));
    if (!slot->all) return free_slot(*slot);
    slot->all->erase(slot->all->find(element));
    slot->first = slot->all->at(0);
    if (slot->all->size() == 1) slot->all.reset();
}

// The element joins its namesakes in front of the one with this rank.
void ListIndex::join(Slot& slot, std::size_t rank, Element* element) {
    if (!slot.first) {
        slot.first = element;
        slot.hash = name_hash(name_of(element));
        ++m_used;
        return;
    }
    if (!slot.all) {
        auto all = std::make_unique<SameNamed>();
        all->members.push_back(slot.first);
        slot.all = std::move(all);
    }
    auto& members = slot.all->members;
    members.insert(members.begin() + static_cast<std::ptrdiff_t>(slot.all->removed_in_front + rank), element);
    slot.first = slot.all->at(0);
}

ListIndex::Slot* ListIndex::find_slot(std::string_view name, std::uint32_t hash) const {
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        Slot& slot = m_slots[i];
        if (!slot.first) return nullptr;
        if (slot.hash == hash && slot.first->is_named(name, slot.first->hash)) return &slot;
    }
}

ListIndex::Slot& ListIndex::slot_for(std::string_view name, std::uint32_t hash) {
    if (Slot* slot = find_slot(name, hash)) return *slot;
    if ((m_used + 1) * 3 > m_slots.size() * 2) grow();
    const std::size_t mask = m_slots.size() - 1;
    std::size_t i = hash & mask;
    while (m_slots[i].first)
        i = (i + 1) & mask;
    return m_slots[i];
}

void ListIndex::grow() {
    std::vector<Slot> former(m_slots.size() * 2);
    former.swap(m_slots);
    const std::size_t mask = m_slots.size() - 1;
    for (Slot& slot : former) {
        if (!slot.first) continue;
        std::size_t i = slot.hash & mask;
        while (m_slots[i].first)
            i = (i + 1) & mask;
        m_slots[i] = std::move(slot);
    }
}

// Frees a slot and moves up those that linear probing had put behind it.
void ListIndex::free_slot(Slot& slot) {
    const std::size_t mask = m_slots.size() - 1;
    std::size_t hole = static_cast<std::size_t>(&slot - m_slots.data());
    m_slots[hole] = Slot{};
    --m_used;
    for (std::size_t i = (hole + 1) & mask; m_slots[i].first; i = (i + 1) & mask) {
        const std::size_t home = m_slots[i].hash & mask;
        if (((i - home) & mask) < ((i - hole) & mask)) continue;
        m_slots[hole] = std::move(m_slots[i]);
        m_slots[i] = Slot{};
        hole = i;
    }
}

std::size_t ListIndex::SameNamed::find(const Element* element) const {
    // Walks ask for one element after the other, and a deletion for the one just found.
    for (std::size_t near = hint; near < size() && near < hint + 2; ++near)
        if (at(near) == element) return hint = near;
    const auto begin = members.begin() + static_cast<std::ptrdiff_t>(removed_in_front);
    return hint = static_cast<std::size_t>(std::find(begin, members.end(), element) - begin);
}

void ListIndex::SameNamed::erase(std::size_t i) {
    if (i > 0) {
        members.erase(members.begin() + static_cast<std::ptrdiff_t>(removed_in_front + i));
        return;
    }
    ++removed_in_front;
    if (removed_in_front > members.size() / 2) {
        members.erase(members.begin(), members.begin() + static_cast<std::ptrdiff_t>(removed_in_front));
        removed_in_front = 0;
    }
}

} // namespace env
