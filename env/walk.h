// Walks over elements that hand each one out as an open sub-environment.
#pragma once

#include "bvutil/env.h"
#include "env/handle.h"
#include "env/lookup.h"

#include <functional>
#include <memory>
#include <string>

namespace env {

// The children of a block one after the other, or the sections. While a child is at hand, a sub-environment
// is open on what its own section and path lead to. Between two steps the tree may change in any way.
class BlockWalk {
  public:
    BlockWalk(const Address& address, bool exact);
    ~BlockWalk();
    BlockWalk(const BlockWalk&) = delete;
    BlockWalk& operator=(const BlockWalk&) = delete;

    // 0, or why there is nothing to walk over.
    EnvStatus status() const { return m_status; }
    // Goes to the first or the next child; false at the end.
    bool next();

    EnvHandle sub() const { return m_sub.get(); } // null when the path does not lead to it
    const char* section() const { return over_sections() ? m_section.c_str() : m_address.section; }
    const char* path() const { return over_sections() ? nullptr : m_path.c_str(); }

  private:
    bool over_sections() const { return !m_address.env->is_sub() && !m_address.section; }
    void open(const Element* element);
    void close();

    const Busy m_busy;
    Tree& m_tree;
    Address m_address;
    bool m_exact;
    EnvStatus m_status = ENV_OK;

    bool m_at_first = true;
    bool m_open = false;
    Pin m_here;
    Pin m_behind; // in case the one at hand is deleted
    std::unique_ptr<EnvHandleRecord> m_sub;
    std::string m_section; // of the element at hand, when the walk is over sections
    std::string m_path;
};

// Called for each leaf: its sub-environment, section and full path (null for a section that is a leaf).
// Returns whether it succeeded.
using VisitLeaf = std::function<bool(EnvHandle sub, const char* section, const char* path)>;

// Visits every data and external element below, depth first. After a failure, of the walk or of a visit, the
// rest is passed over and the result is false; nothing to walk over is a failure too.
bool for_each_leaf(EnvHandle env, const VisitLeaf& visit);

} // namespace env
