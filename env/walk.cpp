#include "env/walk.h"

#include "env/operations.h"
#include "env/report.h"
#include "env/value_text.h"

#include <vector>

namespace env {

BlockWalk::BlockWalk(const Address& address, bool exact)
    : m_busy(address.env), m_tree(address.env->tree()), m_address(address), m_exact(exact) {
    const Found first = find_position(address, exact, 1);
    if (first)
        m_here.stand_on(m_tree, first.element);
    else
        m_status = first.status == ENV_NOT_FOUND ? ENV_IS_BLOCK : first.status; // kept: -2, not -4
}

BlockWalk::~BlockWalk() {
    close();
}

bool BlockWalk::next() {
    if (!m_at_first) {
        close();
        const Element* here = m_here.element();
        m_here.stand_on(m_tree, here ? here->next : m_behind.element());
    }
    m_at_first = false;
    const Element* here = m_here.element();
    if (!here) return false;
    m_behind.stand_on(m_tree, here->next);
    open(here);
    return true;
}

void BlockWalk::open(const Element* element) {
    if (over_sections()) {
        m_section = element->name();
    } else {
        const std::string_view joint = delimiter().joint();
        m_path.clear();
        if (m_address.path) m_path.append(m_address.path).append(joint);
        m_path.append(element->name_view())
            .append(joint)
            .append(NumberText(occurrence_of(m_tree, element)).view());
    }
    m_open = true;
    m_sub = open_sub({m_address.env, section(), path()}, m_exact);
}

void BlockWalk::close() {
    if (!m_open) return;
    m_open = false;
    if (!m_sub)
        report("Nil parametr"); // there is nothing to close
    else if (m_sub->open_subs > 0)
        (void)m_sub.release(); // busy: it stays open with what the callback left open on it
    m_sub.reset();
}

namespace {

class LeafWalk {
  public:
    explicit LeafWalk(const VisitLeaf& visit) : m_visit(visit) {}
    // From the innermost outwards: each level works on the sub-environment that the one outside holds open.
    ~LeafWalk() {
        while (!m_levels.empty())
            m_levels.pop_back();
    }
    LeafWalk(const LeafWalk&) = delete;
    LeafWalk& operator=(const LeafWalk&) = delete;

    bool run(EnvHandle env) {
        if (!descend({env, nullptr, nullptr})) return false;
        while (!m_levels.empty()) {
            if (!m_levels.back().walk->next())
                m_levels.pop_back();
            else if (!visit_here())
                return pass_over_rest();
        }
        return true;
    }

  private:
    struct Level {
        std::unique_ptr<BlockWalk> walk;
        std::size_t prefix; // length of the path of the block that it walks over
    };

    // The walks go on all the same, and each element is opened and closed: one that its path does not lead to
    // is reported. The result is false.
    bool pass_over_rest() {
        for (; !m_levels.empty(); m_levels.pop_back())
            while (m_levels.back().walk->next()) {
            }
        return false;
    }

    bool descend(const Address& block) {
        m_levels.push_back({std::make_unique<BlockWalk>(block, true), m_path.size()});
        return m_levels.back().walk->status() == ENV_OK;
    }

    bool visit_here() {
        const Level& level = m_levels.back();
        const EnvHandle sub = level.walk->sub();
        const char* const section = level.walk->section();
        const char* const own_path = level.walk->path();
        m_path.resize(level.prefix);
        if (own_path)
            m_path.append(m_path.empty() ? std::string_view{} : delimiter().joint()).append(own_path);
        if (!sub) report("Nil parametr");
        switch (sub ? check({sub, nullptr, nullptr}, false) : ENV_INVALID) {
        case ENV_IS_DATA:
        case ENV_IS_EXTERNAL:
            return m_visit(sub, section, own_path ? m_path.c_str() : nullptr);
        case ENV_IS_BLOCK:
            return descend({sub, section, nullptr});
        case ENV_NOT_FOUND:
            return true; // an empty block
        default:
            report("switch error!");
            return false;
        }
    }

    const VisitLeaf& m_visit;
    std::vector<Level> m_levels;
    std::string m_path;
};

} // namespace

bool for_each_leaf(EnvHandle env, const VisitLeaf& visit) {
    return LeafWalk(visit).run(env);
}

} // namespace env
