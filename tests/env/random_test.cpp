// Random operations on the store and on a model of it: their answers are compared after each one, the whole
// trees now and then.
#include "tests/env/model.h"
#include "tests/env/store.h"
#include "tests/support/random_runs.h"
#ifndef _WIN32
#include "tests/env/store_check.h"
#endif

#include <array>
#include <cstring>
#include <functional>
#include <optional>
#include <random>
#include <set>

namespace {

using model::Node;
using model::NodePtr;
using model::Nodes;
using model::Text;

std::string described(EnvStatus kind, const std::string& text, long value) {
    return std::to_string(kind) + (kind == ENV_IS_DATA ? text : std::to_string(value)) + ";";
}
std::string described(const NodePtr& node) {
    if (!node) return "nothing;";
    return described(node->kind, node->text, node->kind == ENV_IS_EXTERNAL ? node->value : 0);
}
// What a sub-environment stands on.
std::string described(EnvHandle sub) {
    const char* text = "";
    long value = 0;
    if (!sub) return "nothing;";
    const EnvStatus kind = env_get_core(sub, nullptr, nullptr, 1, 0, nullptr, nullptr, &text, &value);
    return kind == ENV_NOT_FOUND ? "nothing;" : described(kind, text, value);
}

// Everything below, in order, as the names lead to it: of sections with one name, to the first.
void dump(const model::Handle& env, std::string& out) {
    env.traverse(nullptr, nullptr, true, [&](Text section, Text path, const NodePtr& node) {
        out.append(path ? path : section).append(described(node));
        if (node) dump(env.on(node), out);
        out += "/";
    });
}
void BVUTIL_CALL dump_visit(EnvHandle sub, Text section, Text path, void* out) {
    static_cast<std::string*>(out)->append(path ? path : section).append(described(sub));
    env_traverse(sub, nullptr, nullptr, 1, dump_visit, out);
    *static_cast<std::string*>(out) += "/";
}

bool is_kind(EnvStatus status) {
    return status == ENV_IS_DATA || status == ENV_IS_BLOCK || status == ENV_IS_EXTERNAL;
}

// Three layers, one on the other, and sub-environments on them.
class Runner {
  public:
    explicit Runner(unsigned seed) : m_random(seed) {
        for (std::size_t i = 0; i < layers; ++i) {
            const long tag = static_cast<long>(10 * i);
            m_handles[i] = env_open(tag, i ? m_handles[i - 1] : nullptr);
            m_models[i] = {std::make_shared<Node>(), false, {}, tag, i ? &m_models[i - 1] : nullptr};
        }
    }
    ~Runner() {
        // Sub-environments stand on each other in any order; each round closes one at least.
        for (std::size_t round = layers; round < all; ++round)
            for (std::size_t i = layers; i < all; ++i)
                if (m_handles[i] && env_close(m_handles[i], 0) == ENV_OK) m_handles[i] = nullptr;
        for (std::size_t i = all; i-- > 0;) {
            EXPECT_TRUE(i < layers || !m_handles[i]);
            EXPECT_EQ(m_handles[i] ? env_close(m_handles[i], 0) : ENV_OK, ENV_OK);
        }
    }
    Runner(const Runner&) = delete;
    Runner& operator=(const Runner&) = delete;

    // One operation; false when store and model disagree.
    bool step() {
        constexpr struct {
            const char* name;
            void (Runner::*run)();
            std::size_t often;
        } operations[] = {
            {"put", &Runner::put, 3},           {"put_core", &Runner::put_core, 1},
            {"delete", &Runner::remove, 2},     {"insert", &Runner::insert, 2},
            {"get", &Runner::read, 2},          {"count", &Runner::count, 1},
            {"pos", &Runner::position, 1},      {"first", &Runner::begin, 1},
            {"next", &Runner::next, 1},         {"open", &Runner::open, 2},
            {"copy", &Runner::copy, 1},         {"leafs", &Runner::leafs, 1},
            {"traverse", &Runner::traverse, 1},
        };
        do
            m_which = below(all);
        while (!m_handles[m_which]);
        m_env = m_handles[m_which];
        m_model = &m_models[m_which];
        m_place = random_place(m_which);
        m_section = m_place.section();
        m_path = m_place.path();
        m_exact = below(4) != 0;
        std::size_t chosen = below(19);
        const auto* operation = operations;
        for (; chosen >= operation->often; ++operation)
            chosen -= operation->often;
        m_last = operation->name;
        (this->*operation->run)();
        if (below(200) == 0) write_and_read();
        if (below(16) == 0) compare_trees();
        return !testing::Test::HasFailure();
    }

    std::string last() const {
        return m_last + " on " + std::to_string(m_which) + " at " + (m_section ? m_section : "null") + ":" +
               (m_path ? m_path : "null");
    }
    std::size_t longest() const { return m_longest; }

  private:
    static constexpr std::size_t layers = 3, all = 8;

    // Where an operation works.
    struct Place {
        std::optional<std::string> section_text, path_text;
        Text section() const { return section_text ? section_text->c_str() : nullptr; }
        Text path() const { return path_text ? path_text->c_str() : nullptr; }
    };

    std::size_t below(std::size_t n) { return m_random() % n; }
    std::string name() { return std::string(1, "abcd"[below(4)]); }
    std::string text() {
        switch (below(12)) {
        case 0:
            return "";
        case 1:
            return std::string(200 + below(60), 't');
        case 2:
            return "1," + std::to_string(below(1000));
        default:
            return std::to_string(m_random());
        }
    }

    Place random_place(std::size_t which) {
        std::string path;
        if (below(3) == 0) { // somewhere in a long list
            path = which < layers ? "long@" : "";
            path += below(4) ? "x@" : "y@";
            path += std::to_string(1 + below(below(8) ? 80 : 4));
        } else if (below(60) == 0) {
            path = below(2) ? "@" : "";
        } else {
            for (std::size_t i = 1 + below(3); i > 0; --i) {
                path.append(path.empty() ? "" : "@").append(name());
                if (below(2)) path.append("@").append(std::to_string(below(12) ? 1 + below(3) : 0));
            }
        }
        Place place;
        if (below(50)) place.section_text = std::string(1, "SSSSSSSSSTUV"[below(12)]);
        if (below(12)) place.path_text = path;
        return place;
    }

    void put() {
        const std::string value = text();
        EXPECT_EQ(env_put(m_env, m_section, m_path, value.c_str()),
                  m_model->put(m_section, m_path, &value, 0));
    }
    void put_core() {
        const long value = static_cast<long>(below(1000));
        EXPECT_EQ(env_put_core(m_env, m_section, m_path, nullptr, value),
                  m_model->put(m_section, m_path, nullptr, value));
    }
    void remove() {
        if (!m_path && below(8)) return; // seldom a whole section
        EXPECT_EQ(env_delete(m_env, m_section, m_path), m_model->remove(m_section, m_path));
    }
    void insert() {
        const std::string inserted = !m_path           ? "V"
                                     : below(400) == 0 ? "a@b" // no path, or another one, leads to it
                                     : below(10) == 0  ? "7"
                                     : std::strchr(m_path, 'x') ? "x"
                                                                : name();
        EXPECT_EQ(env_insert_before(m_env, m_section, m_path, inserted.c_str()),
                  m_model->insert_before(m_section, m_path, inserted));
    }

    void read() {
        const auto [status, node, tag] = m_model->read(m_section, m_path, m_exact);
        const bool data = status == ENV_IS_DATA, external = status == ENV_IS_EXTERNAL;
        const std::string text = data ? node->text : "";
        const auto code = [&, found = node != nullptr, other = status, layer = tag](bool fits,
                                                                                    EnvStatus kind) {
            return fits ? layer : found ? long{kind} : long{other};
        };
        const auto size = static_cast<long>(below(2) ? 300 : below(text.size() + 2));
        const bool fits = static_cast<long>(text.size()) < size;
        char buf[300] = "old", whole[300] = "old";
        const char* reference = "old";
        EXPECT_EQ(env_get(m_env, m_section, m_path, m_exact, size, buf),
                  code(data && fits, data ? ENV_TOO_SMALL : ENV_IS_DATA));
        EXPECT_EQ(std::string(buf), data && fits ? text : "old");
        EXPECT_EQ(env_get_reference(m_env, m_section, m_path, m_exact, &reference), code(data, ENV_IS_DATA));
        EXPECT_EQ(std::string(reference), data ? text : "old");
        EXPECT_EQ(env_get_string(m_env, m_section, m_path, m_exact, 0, whole), code(data, ENV_IS_DATA));
        EXPECT_EQ(std::string(whole), text); // whatever the size, and emptied on failure

        long number = -1, value = -1;
        const bool digits = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
        EXPECT_EQ(env_get_long(m_env, m_section, m_path, m_exact, &number),
                  code(digits, data ? ENV_SYNTAX : ENV_IS_DATA));
        EXPECT_EQ(number, digits ? std::strtol(text.c_str(), nullptr, 10) : -1);
        EXPECT_EQ(env_get_external(m_env, m_section, m_path, m_exact, &value),
                  code(external, ENV_IS_EXTERNAL));
        EXPECT_EQ(value, external ? node->value : -1);

        long layer = -1, core_value = 0;
        const char *core_name = "", *core_text = "";
        EXPECT_EQ(
            env_get_core(m_env, m_section, m_path, m_exact, 0, &layer, &core_name, &core_text, &core_value),
            status);
        EXPECT_EQ(layer, node ? tag : -1);
        EXPECT_EQ(std::string(core_name), node ? node->name : "");
        EXPECT_EQ(node ? described(status, core_text, core_value) : "nothing;", described(node));

        const model::Lookup here = m_model->find(m_section, m_path, m_exact); // no layer below is asked
        EXPECT_EQ(env_data_length(m_env, m_section, m_path, m_exact),
                  here.status == ENV_IS_DATA ? static_cast<long>(here.node->text.size()) : 0);
        const EnvStatus kind = m_model->check(m_section, m_path, m_exact);
        EXPECT_EQ(env_check(m_env, m_section, m_path, m_exact), kind);
        EXPECT_EQ(env_exist(m_env, m_section, m_path, m_exact), is_kind(kind));
        EXPECT_EQ(env_exist_block(m_env, m_section, m_path, m_exact), kind == ENV_IS_BLOCK);
        EXPECT_EQ(env_exist_data(m_env, m_section, m_path, m_exact), kind == ENV_IS_DATA);
        EXPECT_EQ(env_exist_external(m_env, m_section, m_path, m_exact), kind == ENV_IS_EXTERNAL);
    }

    void count() {
        EXPECT_EQ(env_count_elements(m_env, m_section, m_path, m_exact),
                  static_cast<long>(m_model->list(m_section, m_path, m_exact).second.size()));
        if (!m_path) return;
        EXPECT_EQ(env_count_path(m_env, m_section, m_path, m_exact),
                  m_model->count_path(m_section, m_path, m_exact));
    }

    // What the store says of a child at a position, by position or by iteration, into so much room.
    struct Child {
        long name_size, value_size;
        char name[300] = "", value[300] = "";
        long tag = -1, external = 0;
        EnvStatus status = ENV_OK;
    };
    Child room() { return below(6) ? Child{300, 300} : Child{long(below(4)), long(below(300))}; }

    // Holds it against the model's child there. False when it is no kind.
    bool expect_child(const Child& got, const model::Handle& env, const Place& place, bool exact,
                      std::size_t pos) {
        const auto [status, children] = env.list(place.section(), place.path(), exact);
        m_longest = std::max(m_longest, children.size());
        const NodePtr node = pos >= 1 && pos <= children.size() ? children[pos - 1] : nullptr;
        const EnvStatus missing = pos >= 1 && status == ENV_BAD_PATH ? ENV_BAD_PATH : ENV_NOT_FOUND;
        const bool data = node && node->kind == ENV_IS_DATA;
        const bool name_fits = node && long(node->name.size()) < got.name_size;
        const bool value_fits = data && long(node->text.size()) < got.value_size;
        const bool fits = name_fits && (value_fits || !data);
        EXPECT_EQ(got.status, !node ? missing : fits ? node->kind : ENV_TOO_SMALL);
        EXPECT_EQ(std::string(got.name), name_fits ? node->name : "");
        EXPECT_EQ(std::string(got.value), value_fits ? node->text : "");
        EXPECT_EQ(got.external, node && node->kind == ENV_IS_EXTERNAL ? node->value : 0);
        return is_kind(got.status);
    }

    void position() {
        const std::size_t length = m_model->list(m_section, m_path, m_exact).second.size();
        const std::size_t pos = below(3) ? below(length + 3) : length;
        Child got = room();
        got.status = env_get_pos(m_env, m_section, m_path, m_exact, static_cast<long>(pos), &got.tag,
                                 got.name_size, got.name, got.value_size, got.value, &got.external);
        expect_child(got, *m_model, m_place, m_exact, pos);
        EXPECT_EQ(got.tag, pos >= 1 && pos <= length ? m_model->tag : -1);
    }

    // The iteration, which other operations come between.
    void begin() {
        Child got = room();
        got.status = env_get_first(m_env, m_section, m_path, m_exact, &got.tag, got.name_size, got.name,
                                   got.value_size, got.value, &got.external);
        if (expect_child(got, *m_model, m_place, m_exact, 1)) m_iteration = {m_which, m_place, m_exact, 2};
    }
    void next() {
        for (std::size_t i = below(8) ? 1 + below(4) : 200; i > 0; --i) {
            Child got = room();
            got.status = env_get_next(got.name_size, got.name, got.value_size, got.value, &got.external);
            if (!m_iteration) {
                EXPECT_EQ(got.status, ENV_NOT_FOUND);
                return;
            }
            auto& [env, place, exact, position] = *m_iteration;
            if (!expect_child(got, m_models[env], place, exact, position++)) m_iteration.reset();
        }
    }

    // A sub-environment in one of the places for them, in exchange for what was there.
    void open() {
        const std::size_t slot = layers + below(all - layers);
        const bool create = below(3) == 0;
        const EnvHandle sub = create ? env_create_subenv(m_env, m_section, m_path)
                                     : env_open_subenv(m_env, m_section, m_path, m_exact);
        const NodePtr node =
            create ? m_model->create(m_section, m_path) : m_model->find(m_section, m_path, m_exact).node;
        EXPECT_EQ(sub != nullptr, node != nullptr);
        if (!sub || !node) return;
        EXPECT_EQ(described(sub), described(node));
        const model::Handle opened = m_model->on(node);
        const EnvStatus closed = m_handles[slot] ? env_close(m_handles[slot], 0) : ENV_OK;
        // Others may stand on it, the new one too.
        EXPECT_EQ(closed, m_dependants[slot] + (slot == m_which) > 0 ? ENV_BUSY : ENV_OK);
        if (closed == ENV_BUSY) {
            EXPECT_EQ(env_close(sub, 0), ENV_OK);
            return;
        }
        if (m_iteration && m_iteration->env == slot) m_iteration.reset();
        if (m_handles[slot]) --m_dependants[m_origin[slot]];
        ++m_dependants[m_which];
        m_origin[slot] = m_which;
        m_handles[slot] = sub;
        m_models[slot] = opened;
    }

    // What a walk hands out, in the store or in the model. At one of its steps a tree is changed.
    struct Walk {
        Runner& runner;
        bool in_store;
        std::size_t steps_before_change;
        std::string seen = {};
        void visit(Text section, Text path, const std::string& what) {
            seen.append(section ? section : "-").append(":").append(path ? path : "-").append(what);
            if (steps_before_change-- == 0) runner.change(in_store);
        }
        static void BVUTIL_CALL visited(EnvHandle sub, Text section, Text path, void* walk) {
            static_cast<Walk*>(walk)->visit(section, path, described(sub));
        }
    };
    void change(bool in_store) {
        const auto& [env, place, text] = m_change;
        const Text section = place.section(), path = place.path();
        if (in_store)
            text ? env_put(m_handles[env], section, path, text->c_str())
                 : env_delete(m_handles[env], section, path);
        else
            text ? m_models[env].put(section, path, &*text, 0) : m_models[env].remove(section, path);
    }
    template <class InStore, class InModel>
    void walk(const InStore& in_store, const InModel& in_model) {
        const std::size_t steps = below(12), env = below(all), changed = m_handles[env] ? env : m_which;
        m_change = {changed, random_place(changed), std::nullopt};
        if (below(3) == 0) m_change.put = text();
        Walk store{*this, true, steps}, model{*this, false, steps};
        const auto visit = [&](Text section, Text path, const NodePtr& node) {
            model.visit(section, path, described(node));
        };
        EXPECT_EQ(in_store(store), in_model(visit));
        EXPECT_EQ(store.seen, model.seen);
    }
    void traverse() {
        walk(
            [&](Walk& walk) { return env_traverse(m_env, m_section, m_path, m_exact, Walk::visited, &walk); },
            [&](const model::Visit& visit) { return m_model->traverse(m_section, m_path, m_exact, visit); });
    }
    void leafs() {
        walk([&](Walk& walk) { return env_traverse_leafs(m_env, Walk::visited, &walk); },
             [&](const model::Visit& visit) { return m_model->leafs(visit) ? ENV_OK : ENV_INVALID; });
    }

    void copy() {
        const std::size_t from = below(all);
        const int mode = static_cast<int>(below(4));
        m_last += " mode " + std::to_string(mode) + " from " + std::to_string(from);
        if (!m_handles[from] || m_models[from].top->size() > 250 || m_model->top->size() > 500) return;
        if (below(3) == 0)
            EXPECT_EQ(env_sink(m_env, m_handles[from], mode), m_model->sink(m_models[from], mode));
        else
            EXPECT_EQ(env_copy_block(m_env, m_handles[from], m_section, m_path, mode),
                      m_model->copy_block(m_models[from], m_section, m_path, mode));
    }

    // Sections without externals survive the way through a file; sub-environments do not.
    void write_and_read() {
        const std::size_t i = below(layers);
        m_last += ", and write and read " + std::to_string(i);
        Nodes& sections = m_models[i].top->children;
        std::string expected;
        model::write(expected, sections);
        EXPECT_EQ(written(m_handles[i]), expected);
        for (const NodePtr& section : sections)
            if (section->kind != ENV_IS_BLOCK) return;
        const Env copy;
        const ScratchFile file;
        const bool by_file = below(8) == 0;
        if (by_file) env_write_file(file.path().c_str(), m_handles[i]);
        EXPECT_EQ(by_file ? env_read_file(file.path().c_str(), copy) : read_text(copy, expected), ENV_OK);
        EXPECT_EQ(written(copy), expected);
        if (below(4)) return;
        EXPECT_EQ(read_text(m_handles[i], expected), ENV_OK);
        // The same sections, but not the same elements.
        const Nodes former = std::exchange(sections, {});
        model::copy_persistent(former, *m_models[i].top);
    }

    // The tree that was worked on, and what each sub-environment stands on.
    void compare_trees() {
        std::string got, expected;
        std::size_t at = 0;
        while (m_models[at].top != m_model->top)
            ++at;
        dump(m_models[at], expected);
        env_traverse(m_handles[at], nullptr, nullptr, 1, dump_visit, &got);
        EXPECT_EQ(got, expected);
        for (std::size_t i = layers; i < all; ++i)
            EXPECT_EQ(described(m_handles[i]), described(m_models[i].stand.lock()));
#ifndef _WIN32
        if (below(8) == 0) env::StoreCheck{m_handles[at]};
#endif
        if (m_models[at].top->size() < 400) return;
        for (const char* section : {"S", "T", "U", "V"}) // enough
            EXPECT_EQ(env_delete(m_handles[at], section, nullptr), m_models[at].remove(section, nullptr));
    }

    std::mt19937 m_random;
    std::array<EnvHandle, all> m_handles{};
    std::array<model::Handle, all> m_models;
    std::array<int, all> m_dependants{};
    std::array<std::size_t, all> m_origin{};
    struct Iterating {
        std::size_t env;
        Place place;
        bool exact;
        std::size_t position;
    };
    std::optional<Iterating> m_iteration;
    struct Change {
        std::size_t env;
        Place place;
        std::optional<std::string> put; // else deletes
    } m_change;
    std::size_t m_longest = 0;

    // The operation's own.
    std::string m_last;
    std::size_t m_which = 0;
    EnvHandle m_env = nullptr;
    const model::Handle* m_model = nullptr;
    Place m_place;
    Text m_section = nullptr, m_path = nullptr;
    bool m_exact = true;
};

TEST(RandomOperations, AgreeWithTheModel) {
    Messages messages;
    std::size_t longest = 0;
    for (const unsigned seed : random_runs::seeds(1)) {
        Runner runner(seed);
        for (long i = 0; i < random_runs::operations(100000); ++i)
            ASSERT_TRUE(runner.step()) << "seed " << seed << ", operation " << i << ": " << runner.last();
        longest = std::max(longest, runner.longest());
    }
    EXPECT_GT(longest, 64U); // lists long enough to be indexed did occur
    const std::set<std::string> expected{"Bad Path was given", "bypass Nil section", "Nil parametr",
                                         "switch error!"}; // the last two for odd names
    for (const std::string& message : messages.take())
        EXPECT_TRUE(expected.contains(message)) << message;
}

} // namespace
