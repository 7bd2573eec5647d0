// Checks that an environment's inner state agrees with itself: links and counts of the tree, the indexes of
// its long lists, what stands on it, the layers below it, and that its pool holds nothing that the tree has
// lost. Natively only: it looks behind the exports.
#pragma once

#include "env/handle.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <set>

namespace env {

class StoreCheck {
  public:
    explicit StoreCheck(EnvHandle handle) : m_tree(handle->tree()) {
        check_list(m_tree.m_top, nullptr);
        check_indexes();
        check_pins();
        check_pool();
        check_layers(handle);
    }

  private:
    void check_list(const ElementList& top, const Element* top_owner) {
        std::vector<std::pair<const ElementList*, const Element*>> rest{{&top, top_owner}};
        while (!rest.empty()) {
            const auto [list, owner] = rest.back();
            rest.pop_back();
            EXPECT_EQ(list->owner, owner);
            std::uint32_t count = 0, blocks = 0;
            const Element* before = nullptr;
            for (const Element* element = list->first; element; before = element, element = element->next) {
                ASSERT_TRUE(m_elements.insert(element).second) << "an element stands in two places";
                EXPECT_EQ(element->list, list);
                EXPECT_EQ(element->previous, before);
                check_element(element);
                ++count;
                blocks += element->kind == Kind::block;
                if (const ElementList* children = children_of(element)) {
                    add(children, sizeof *children);
                    rest.emplace_back(children, element);
                }
            }
            EXPECT_EQ(list->last, before);
            EXPECT_EQ(list->count, count);
            EXPECT_EQ(list->blocks, blocks);
            if (list->index) check_index(*list);
        }
    }

    void check_element(const Element* element) {
        const std::size_t name = std::strlen(element->name()) + 1;
        EXPECT_EQ(element->hash, static_cast<std::uint8_t>(name_hash(element->name())));
        const std::size_t size = element->units ? element->units * sizeof(void*) : Pool::largest_small + 1;
        EXPECT_GE(size, element->units ? Pool::rounded(sizeof(Element) + name) : 0);
        add(element, size);
        if (element->kind != Kind::data) {
            EXPECT_FALSE(element->text_inside);
        } else if (element->text_inside) {
            EXPECT_GE(element->text, element->name() + name);
            EXPECT_LE(sizeof(Element) + name + std::strlen(element->text) + 1,
                      element->units ? size : SIZE_MAX);
        } else {
            add(element->text, std::strlen(element->text) + 1);
        }
    }

    void check_index(const ElementList& list) {
        const ListIndex& index = *list.index;
        EXPECT_EQ(index.owner_list, &list);
        m_indexes.insert(&index);
        std::map<std::string_view, long> occurrences;
        std::size_t position = 0;
        for (const Element* element = list.first; element; element = element->next, ++position) {
            const std::string_view name = element->name();
            EXPECT_EQ(index.find(name, name_hash(name), ++occurrences[name]), element);
            EXPECT_EQ(index.m_positions.empty() ? element : index.m_positions.at(position), element);
        }
        EXPECT_EQ(index.m_used, occurrences.size());
        for (const auto& [name, count] : occurrences)
            EXPECT_EQ(index.count(name, name_hash(name)), static_cast<std::uint32_t>(count)) << name;
    }

    void check_indexes() {
        std::size_t count = 0;
        const ListIndex* before = nullptr;
        for (const ListIndex* index = m_tree.m_indexes; index; before = index, index = index->next_index) {
            EXPECT_EQ(index->previous_index, before);
            EXPECT_TRUE(m_indexes.contains(index)) << "an index without a list";
            ++count;
        }
        EXPECT_EQ(count, m_indexes.size());
    }

    void check_pins() {
        const Pin* before = nullptr;
        for (const Pin* pin = m_tree.m_pins; pin; before = pin, pin = pin->m_next) {
            EXPECT_EQ(pin->m_tree, &m_tree);
            EXPECT_EQ(pin->m_previous, before);
            EXPECT_TRUE(!pin->m_element || (pin->m_element->pinned && m_elements.contains(pin->m_element)));
        }
    }

    // Every byte that a chunk has given out is in use or on a free list, and every large block is in use.
    void check_pool() {
        const Pool& pool = m_tree.m_pool;
        for (std::size_t i = 0; i < pool.m_free.size(); ++i)
            for (const Pool::FreeBlock* free = pool.m_free[i]; free; free = free->next)
                add(free, i * Pool::unit);
        std::size_t chunks = 0;
        for (const Pool::Chunk* chunk = pool.m_chunks; chunk; chunk = chunk->next)
            ++chunks;
        for (const Pool::Chunk* chunk = pool.m_chunks; chunk; chunk = chunk->next) {
            const std::size_t doublings = std::min<std::size_t>(--chunks, 20);
            const char* const end = reinterpret_cast<const char*>(chunk) +
                                    std::min(Pool::first_chunk << doublings, Pool::largest_chunk);
            const char* at = reinterpret_cast<const char*>(chunk) + Pool::rounded(sizeof(Pool::Chunk));
            auto block = m_small.lower_bound(at);
            for (; block != m_small.end() && block->first < end; block = m_small.erase(block)) {
                EXPECT_EQ(block->first, at) << "a block was lost, or two overlap";
                at = block->first + block->second;
            }
            if (chunk == pool.m_chunks)
                EXPECT_EQ(pool.m_at, at) << "the newest block was lost";
            else
                EXPECT_LE(end - at, static_cast<std::ptrdiff_t>(Pool::largest_small));
        }
        EXPECT_TRUE(m_small.empty()) << "a block of no chunk";
        for (const Pool::LargeBlock* large = pool.m_large; large; large = large->next)
            EXPECT_EQ(m_large.erase(reinterpret_cast<const char*>(large + 1)), 1u)
                << "a large block was lost";
        EXPECT_TRUE(m_large.empty());
    }

    void check_layers(EnvHandle handle) {
        std::set<EnvHandle> seen;
        for (EnvHandle layer = handle; layer; layer = layer->fallback) {
            ASSERT_TRUE(seen.insert(layer).second) << "the layers go round";
            EXPECT_GE(layer->open_subs, layer == handle ? 0 : 1);
            EXPECT_FALSE(layer->being_read);
            EXPECT_EQ(layer->shared_tree,
                      layer->is_sub() ? layer->opened_from->shared_tree : layer->own_tree.get());
        }
    }

    void add(const void* block, std::size_t size) {
        const auto at = static_cast<const char*>(block);
        const bool added = size > Pool::largest_small ? m_large.insert(at).second
                                                      : m_small.emplace(at, Pool::rounded(size)).second;
        EXPECT_TRUE(added) << "a block has two owners";
    }

    Tree& m_tree;
    std::set<const Element*> m_elements;
    std::set<const ListIndex*> m_indexes;
    std::map<const char*, std::size_t> m_small;
    std::set<const char*> m_large;
};

} // namespace env
