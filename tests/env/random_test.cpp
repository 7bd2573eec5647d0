// Random operations on the store and on a model of it: their answers are compared after each one, the whole
// trees now and then.
#include "tests/env/random_texts.h"
#include "tests/support/random_runs.h"
#ifndef _WIN32
#include "tests/env/store_check.h"
#endif

#include <array>
#include <optional>
#include <random>
#include <set>

namespace {

using model::Node;
using model::NodePtr;
using model::Text;

// Three layers, one on the other, and sub-environments on them.
class Runner {
  public:
    explicit Runner(unsigned seed) : m_random(seed) {
        for (std::size_t i = 0; i < layers; ++i) {
            const long tag = static_cast<long>(10 * i);
            m_handles[i] = env_open(tag, i ? m_handles[i - 1] : nullptr);
            m_models[i].top = std::make_shared<Node>();
            m_models[i].tag = tag;
            m_models[i].fallback = i ? &m_models[i - 1] : nullptr;
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
        using Operation = void (Runner::*)();
        constexpr Operation operations[] = {
            &Runner::put,    &Runner::put,      &Runner::put,    &Runner::put_core, &Runner::remove,
            &Runner::remove, &Runner::insert,   &Runner::insert, &Runner::read,     &Runner::read,
            &Runner::count,  &Runner::position, &Runner::begin,  &Runner::next,     &Runner::list,
            &Runner::open,   &Runner::open,     &Runner::arrays, &Runner::traverse, &Runner::leafs,
            &Runner::copy,
        };
        do
            m_which = below(all);
        while (!m_handles[m_which]);
        choose_place();
        (this->*operations[below(std::size(operations))])();
        if (below(200) == 0) write_and_read();
        if (below(16) == 0) compare_trees();
        return !testing::Test::HasFailure();
    }

    std::string last() const {
        return m_last + " on " + std::to_string(m_which) + " at " +
               (m_place.section() ? m_place.section() : "null") + ":" +
               (m_place.path() ? m_place.path() : "null");
    }
    std::size_t longest() const { return m_longest; }

  private:
    static constexpr std::size_t layers = 3, all = 8;

    std::size_t below(std::size_t n) { return m_random() % n; }
    EnvHandle handle() const { return m_handles[m_which]; }
    const model::Handle& model() const { return m_models[m_which]; }
    int exact() { return m_exact = below(4) != 0; }

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

    void choose_place() {
        std::string path;
        if (below(3) == 0) { // somewhere in a long list
            path = m_which < layers ? "long@" : "";
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
        const std::string section = below(4) ? "S" : std::string(1, "TUV"[below(3)]);
        m_place = {};
        if (below(50)) m_place.section_text = section;
        if (below(12)) m_place.path_text = path;
    }

    void put() {
        m_last = "put";
        const std::string value = text();
        EXPECT_EQ(env_put(handle(), m_place.section(), m_place.path(), value.c_str()),
                  model().put(m_place.section(), m_place.path(), &value, 0));
    }
    void put_core() {
        m_last = "put_core";
        const long value = static_cast<long>(below(1000));
        EXPECT_EQ(env_put_core(handle(), m_place.section(), m_place.path(), nullptr, value),
                  model().put(m_place.section(), m_place.path(), nullptr, value));
    }
    void remove() {
        m_last = "delete";
        if (!m_place.path() && below(8)) return; // seldom a whole section
        EXPECT_EQ(env_delete(handle(), m_place.section(), m_place.path()),
                  model().remove(m_place.section(), m_place.path()));
    }
    void insert() {
        m_last = "insert_before";
        const std::string inserted = !m_place.path_text ? "V"
                                     : below(400) == 0  ? "a@b" // no path, or another one, leads to it
                                     : below(10) == 0   ? "7"
                                     : m_place.path_text->find('x') != std::string::npos ? "x"
                                                                                         : name();
        EXPECT_EQ(env_insert_before(handle(), m_place.section(), m_place.path(), inserted.c_str()),
                  model().insert_before(m_place.section(), m_place.path(), inserted));
    }

    void read() {
        m_last = "get";
        exact();
        const model::Lookup found = model().read(m_place.section(), m_place.path(), m_exact);
        const bool data = found.status == ENV_IS_DATA, external = found.status == ENV_IS_EXTERNAL;
        char buf[1100] = "";
        const EnvStatus other = found.node ? ENV_OK : found.status;
        const EnvStatus status =
            env_get(handle(), m_place.section(), m_place.path(), m_exact, sizeof buf, buf);
        EXPECT_EQ(status, data ? found.tag : found.node ? ENV_IS_DATA : other);
        EXPECT_EQ(std::string(buf), data ? found.node->text : "");
        const char* text = nullptr;
        long value = -1;
        EXPECT_EQ(env_get_reference(handle(), m_place.section(), m_place.path(), m_exact, &text), status);
        EXPECT_EQ(std::string(text ? text : ""), buf);
        const bool negative = data && found.node->text.starts_with('-');
        const std::string digits = data ? found.node->text.substr(negative) : "";
        const bool whole = !digits.empty() && digits.find_first_not_of("0123456789") == std::string::npos;
        EXPECT_EQ(env_get_long(handle(), m_place.section(), m_place.path(), m_exact, &value),
                  data && !whole ? ENV_SYNTAX : static_cast<int>(status));
        EXPECT_EQ(value, whole ? std::strtol(buf, nullptr, 10) : -1);
        value = -1;
        EXPECT_EQ(env_get_external(handle(), m_place.section(), m_place.path(), m_exact, &value),
                  external     ? found.tag
                  : found.node ? ENV_IS_EXTERNAL
                               : other);
        EXPECT_EQ(value, external ? found.node->value : -1);
        const model::Lookup here = model().find(m_place.section(), m_place.path(), m_exact);
        EXPECT_EQ(env_data_length(handle(), m_place.section(), m_place.path(), m_exact),
                  here.status == ENV_IS_DATA ? static_cast<long>(here.node->text.size()) : 0);
        EXPECT_EQ(env_check(handle(), m_place.section(), m_place.path(), m_exact),
                  model().check(m_place.section(), m_place.path(), m_exact));
    }

    void count() {
        m_last = "count";
        exact();
        EXPECT_EQ(env_count_elements(handle(), m_place.section(), m_place.path(), m_exact),
                  static_cast<long>(model().list(m_place.section(), m_place.path(), m_exact).second.size()));
        if (!m_place.path()) return;
        EXPECT_EQ(env_count_path(handle(), m_place.section(), m_place.path(), m_exact),
                  model().count_path(m_place.section(), m_place.path(), m_exact));
    }

    // What the store says of a child at a position, by position or by iteration.
    struct Child {
        char name[300] = "", value[1100] = "";
        long tag = -1, external = 0;
        EnvStatus status = ENV_OK;
    };
    // Holds it against the model's child there, which is returned.
    NodePtr expect_child(const Child& got, const model::Handle& env, const Place& place, bool exact,
                         std::size_t pos) {
        const auto [status, children] = env.list(place.section(), place.path(), exact);
        m_longest = std::max(m_longest, children.size());
        const NodePtr node = pos <= children.size() ? children[pos - 1] : nullptr;
        const bool failed = status == ENV_INVALID || status == ENV_BAD_PATH;
        EXPECT_EQ(got.status, node ? node->kind : failed ? status : ENV_NOT_FOUND);
        EXPECT_EQ(std::string(got.name), node ? node->name : "");
        EXPECT_EQ(node ? described(got.status, got.value, got.external) : "", node ? described(node) : "");
        return node;
    }

    void position() {
        m_last = "get_pos";
        exact();
        const std::size_t length = model().list(m_place.section(), m_place.path(), m_exact).second.size();
        const std::size_t pos = below(3) ? 1 + below(length + 2) : length;
        if (pos == 0) return;
        Child got;
        got.status =
            env_get_pos(handle(), m_place.section(), m_place.path(), m_exact, static_cast<long>(pos),
                        &got.tag, sizeof got.name, got.name, sizeof got.value, got.value, &got.external);
        const NodePtr node = expect_child(got, model(), m_place, m_exact, pos);
        EXPECT_EQ(got.tag, node ? model().tag : -1);
    }

    // The iteration, which other operations come between.
    void begin() {
        m_last = "get_first";
        exact();
        Child got;
        got.status = env_get_first(handle(), m_place.section(), m_place.path(), m_exact, &got.tag,
                                   sizeof got.name, got.name, sizeof got.value, got.value, &got.external);
        if (expect_child(got, model(), m_place, m_exact, 1))
            m_iteration = {.env = m_which, .place = m_place, .exact = m_exact, .position = 2};
    }
    void next() {
        m_last = "get_next";
        for (std::size_t i = below(8) ? 1 + below(4) : 200; i > 0; --i) {
            Child got;
            got.status = env_get_next(sizeof got.name, got.name, sizeof got.value, got.value, &got.external);
            if (!m_iteration) {
                EXPECT_EQ(got.status, ENV_NOT_FOUND);
                return;
            }
            auto& [env, place, exact, position] = *m_iteration;
            if (!expect_child(got, m_models[env], place, exact, position++)) m_iteration.reset();
        }
    }

    void list() {
        m_last = "list names";
        if (!m_place.section() && m_which < layers) return; // no block of its own to list
        exact();
        const auto [status, children] = model().list(m_place.section(), m_place.path(), m_exact);
        std::string names;
        for (const NodePtr& node : children)
            names += node->name + "|";
        const bool listed = status == ENV_IS_BLOCK;
        // The last name asks for one byte more than it takes.
        for (const std::size_t size : {names.size() + 2, names.size() + 1}) {
            const EnvStatus code = size < 2                  ? ENV_TOO_SMALL
                                   : status == ENV_BAD_PATH  ? ENV_BAD_PATH
                                   : !listed                 ? ENV_IS_BLOCK
                                   : size < names.size() + 2 ? ENV_TOO_SMALL
                                                             : ENV_OK;
            std::vector<char> buf(size);
            EXPECT_EQ(env_list_elem_names(handle(), m_place.section(), m_place.path(), m_exact, '|',
                                          static_cast<long>(size), buf.data()),
                      code);
            EXPECT_EQ(std::string(buf.data()), code == ENV_OK ? names : "");
        }
    }

    // A sub-environment in one of the places for them, in exchange for what was there.
    void open() {
        const std::size_t slot = layers + below(all - layers);
        if (slot == m_which || below(12) == 0) m_which = below(layers);
        const bool create = below(3) == 0;
        m_last = create ? "create_subenv" : "open_subenv";
        const int how = create ? 1 : exact();
        const EnvHandle sub = create ? env_create_subenv(handle(), m_place.section(), m_place.path())
                                     : env_open_subenv(handle(), m_place.section(), m_place.path(), how);
        const NodePtr node = create ? model().create(m_place.section(), m_place.path())
                                    : model().find(m_place.section(), m_place.path(), how).node;
        EXPECT_EQ(sub != nullptr, node != nullptr);
        if (!sub || !node) return;
        EXPECT_EQ(described(sub), described(node));
        const model::Handle opened = model().on(node);
        if (m_handles[slot] && env_close(m_handles[slot], 0) == ENV_BUSY) {
            // Others stand on it.
            EXPECT_GT(m_dependants[slot], 0);
            EXPECT_EQ(env_close(sub, 0), ENV_OK);
            return;
        }
        EXPECT_EQ(m_dependants[slot], 0);
        if (m_iteration && m_iteration->env == slot) m_iteration.reset();
        if (m_handles[slot]) --m_dependants[m_origin[slot]];
        ++m_dependants[m_which];
        m_origin[slot] = m_which;
        m_handles[slot] = sub;
        m_models[slot] = opened;
    }

    // An array, put and read back as far as its text goes.
    void arrays() {
        m_last = "arrays";
        const RandomArray array(m_random, 1 + below(below(20) ? 5 : 300));
        const std::string text = joined(array.items);
        const Text section = m_place.section(), path = m_place.path();
        EXPECT_EQ(array.put(handle(), section, path), model().put(section, path, &text, 0));
        const bool stored = m_which >= layers || path; // a section itself takes no value
        if (!stored || model().find(section, path, true).status != ENV_IS_DATA) return;
        const auto kept = static_cast<std::size_t>(std::count(text.begin(), text.end(), ',')) + 1;
        for (const std::size_t room : {array.items.size(), kept - 1}) {
            const auto [status, read] = array.get(handle(), section, path, room);
            const EnvStatus failure = text.back() == ',' ? ENV_SYNTAX : room < kept ? ENV_TOO_SMALL : ENV_OK;
            EXPECT_EQ(status, failure ? failure : model().tag);
            ASSERT_EQ(read.size(), failure ? 0 : kept);
            EXPECT_TRUE(std::equal(read.begin(), read.end(), array.items.begin()));
        }
    }

    static void BVUTIL_CALL visit(EnvHandle sub, const char* section, const char* path, void* out) {
        static_cast<std::string*>(out)
            ->append(section ? section : "-")
            .append(":")
            .append(path ? path : "-")
            .append(described(sub));
    }
    void traverse() {
        m_last = "traverse";
        exact();
        std::string got, expected;
        const EnvStatus status = model().traverse(
            m_place.section(), m_place.path(), m_exact, [&](Text section, Text path, const NodePtr& node) {
                expected.append(section ? section : "-").append(":").append(path ? path : "-");
                expected += described(node);
            });
        EXPECT_EQ(env_traverse(handle(), m_place.section(), m_place.path(), m_exact, visit, &got), status);
        EXPECT_EQ(got, expected);
    }
    void leafs() {
        m_last = "traverse_leafs";
        std::string got, expected;
        std::vector<model::Leaf> leaves;
        EXPECT_EQ(env_traverse_leafs(handle(), visit, &got), model().leafs(leaves) ? ENV_OK : ENV_INVALID);
        for (const model::Leaf& leaf : leaves)
            expected += std::string(leaf.section ? leaf.section : "-") + ":" +
                        (leaf.has_path ? leaf.path : "-") + described(leaf.node);
        EXPECT_EQ(got, expected);
    }

    void copy() {
        const std::size_t from = below(all);
        const int mode = static_cast<int>(below(4));
        m_last = "copy mode " + std::to_string(mode) + " from " + std::to_string(from);
        if (!m_handles[from] || model::size_of(*m_models[from].top) > 250 ||
            model::size_of(*model().top) > 500)
            return;
        if (below(3) == 0)
            EXPECT_EQ(env_sink(handle(), m_handles[from], mode), model().sink(m_models[from], mode));
        else
            EXPECT_EQ(env_copy_block(handle(), m_handles[from], m_place.section(), m_place.path(), mode),
                      model().copy_block(m_models[from], m_place.section(), m_place.path(), mode));
    }

    // Sections without externals survive the way through a file; sub-environments do not.
    void write_and_read() {
        m_last = "write and read";
        const std::size_t i = below(layers);
        std::string expected;
        model::write(expected, m_models[i].top->children, 1);
        EXPECT_EQ(written(m_handles[i]), expected);
        for (const NodePtr& section : m_models[i].top->children)
            if (section->kind != ENV_IS_BLOCK) return;
        const Env copy;
        if (below(8) == 0) {
            const ScratchFile file;
            env_write_file(file.path().c_str(), m_handles[i]);
            EXPECT_EQ(env_read_file(file.path().c_str(), copy), ENV_OK);
        } else {
            EXPECT_EQ(read_text(copy, expected), ENV_OK);
        }
        EXPECT_EQ(written(copy), expected);
        if (below(4)) return;
        EXPECT_EQ(read_text(m_handles[i], expected), ENV_OK);
        // The same sections, but not the same elements.
        const NodePtr fresh = model::persistent(*m_models[i].top);
        m_models[i].top->children = fresh->children;
    }

    // The tree that was worked on, and what each sub-environment stands on.
    void compare_trees() {
        std::string got, expected;
        const auto at = static_cast<std::size_t>(
            std::find_if(m_models.begin(), m_models.begin() + layers,
                         [&](const model::Handle& main) { return main.top == model().top; }) -
            m_models.begin());
        dump(m_models[at], expected);
        env_traverse(m_handles[at], nullptr, nullptr, 1, dump_visit, &got);
        EXPECT_EQ(got, expected);
        for (std::size_t i = layers; i < all; ++i)
            EXPECT_EQ(described(m_handles[i]), described(m_models[i].stand.lock()));
#ifndef _WIN32
        if (below(8) == 0) env::StoreCheck{m_handles[at]};
#endif
        if (model::size_of(*m_models[at].top) < 400) return;
        for (const char* section : {"S", "T", "U", "V"}) // enough
            EXPECT_EQ(env_delete(m_handles[at], section, nullptr), m_models[at].remove(section, nullptr));
    }

    std::mt19937 m_random;
    std::array<EnvHandle, all> m_handles{};
    std::array<model::Handle, all> m_models;
    std::array<int, all> m_dependants{};
    std::array<std::size_t, all> m_origin{};
    std::size_t m_which = 0;
    struct Iterating {
        std::size_t env;
        Place place;
        bool exact;
        std::size_t position;
    };
    std::optional<Iterating> m_iteration;
    Place m_place;
    bool m_exact = true;
    std::string m_last;
    std::size_t m_longest = 0;
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
