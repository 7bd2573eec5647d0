// The store and triangulation without memory: what fails leaves all as it was, and works again.
#include "bvutil/triangulation.h"
#include "tests/env/store.h"
#include "tests/faults/memory_faults.h"
#ifndef _WIN32
#include "tests/env/store_check.h"
#endif

namespace {

using memory_faults::fail_each_allocation;
using memory_faults::Fault;

// What a call is made on.
struct Stores {
    Stores() {
        for (const Env* filled : {&base, &env}) {
            read_text(*filled, "[S]\na=1\nb={\n c={\n  d=x\n }\n e=\n}\n[T]\nlist={\n}\n");
            for (int i = 0; i < 70; ++i) {
                env_put(*filled, "T", ("list@n" + std::to_string(i % 60)).c_str(), "t");
                env_put(*filled, "T", ("list@same@" + std::to_string(i + 1)).c_str(),
                        std::string(static_cast<std::size_t>(i), 'x').c_str());
            }
            env_put(*filled, "T", ("large@" + std::string(600, 'n')).c_str(), std::string(900, 't').c_str());
            env_put_external(*filled, "T", "word", 7);
        }
        env_put(base, "Base", "x", "5");
        read_text(small, "[S]\na=1\nb={\n c={\n  d=x\n }\n e=\n}\n[T]\nlist={\n n=1\n n=2\n}\n");
        read_text(other, "[S]\na=old\nb=old\n");
        std::string alternating = "[S]\n"; // its list has namesakes, and no index yet
        for (int i = 0; i < 20; ++i)
            alternating += "a=1\nb=2\n";
        read_text(fresh, alternating);
    }
    std::string content() const {
        std::string texts;
        for (const Env* store : {&base, &env, &small, &other, &fresh}) {
            texts += written(*store);
#ifndef _WIN32
            env::StoreCheck check(*store);
#endif
        }
        return texts;
    }

    const Env base{2}, env{1, base}; // with lists, names, texts and blocks, short and long
    const Env small, other, fresh;
};

const std::string long_text(5000, 'x'), long_name = "list@" + std::string(2000, 'n') + "@3";

int put(EnvHandle env, const char* section, const char* path) {
    return env_put(env, section, path, long_text.c_str());
}

int opened(EnvHandle handle) {
    return handle ? env_close(handle, 0) : ENV_INVALID;
}

int read_three_sections(EnvHandle env, bool from_file) {
    static const ScratchFile file;
    static std::string path, text;
    if (text.empty()) {
        for (int i = 0; i < 3; ++i)
            text += "[S" + std::to_string(i) + "]\n" + std::string(300, 'n') + "=" + std::string(2000, 't') +
                    "\nb={\n c={\n }\n d={\n  e=1\n }\n}\n";
        file.write(text);
        path = file.path();
    }
    CharSource source{text};
    return from_file ? env_read_file(path.c_str(), env) : env_read(CharSource::next, &source, env);
}

void ignore(EnvHandle, const char*, const char*, void*) {}

// A copy or a file of which a part may stay, a read, or a change that leaves all as it was when it fails.
// Small changes find room in what the store has: they are made often.
struct Call {
    const char* what;
    int success;
    int (*make)(const Stores& on, const char* name);
    int times = 1;
    bool may_be_part = false;
};
const Call calls[] = {
    {"over a text", 0, [](auto& on, auto) { return put(on.env, "S", "a"); }},
    {"over a block", 0, [](auto& on, auto) { return put(on.env, "S", "b@c"); }},
    {"below a block", 0, [](auto& on, auto) { return put(on.env, "S", "b@c@new@x@y@2"); }},
    {"below a text", 0, [](auto& on, auto) { return put(on.env, "S", "a@new@3@x"); }},
    {"below an external", 0, [](auto& on, auto) { return put(on.env, "T", "word@x"); }},
    {"into a long list", 0, [](auto& on, auto) { return put(on.env, "T", "list@same@100"); }},
    {"below a long list", 0, [](auto& on, auto) { return put(on.env, "T", "list@n5@3@x@2"); }},
    {"a long name", 0, [](auto& on, auto) { return put(on.env, "T", long_name.c_str()); }},
    {"a new section", 0, [](auto& on, auto) { return put(on.env, "New", "x@2@y"); }},
    {"insert", 0, [](auto& on, auto name) { return env_insert_before(on.small, "S", "b@c", name); }, 60},
    {"section", 0, [](auto& on, auto name) { return env_insert_before(on.small, "S", nullptr, name); }, 60},
    {"format", 0, [](auto& on, auto name) { return env_put_format(on.small, "S", name, "%g %s", 0.5, "x"); },
     60},
    {"external", 0, [](auto& on, auto name) { return env_put_external(on.small, name, "e@2@x", 3); }, 60},
    {"longs", 0,
     [](auto& on, auto name) {
         const long numbers[] = {1, 2, 3};
         return env_put_longs(on.small, "S", name, 3, numbers);
     },
     60},
    {"layer", 0, [](auto& on, auto) { return opened(env_open(2, on.env)); }},
    {"sub-environment", 0, [](auto& on, auto) { return opened(env_open_subenv(on.env, "S", "b", 1)); }},
    {"created", 0, [](auto& on, auto) { return opened(env_create_subenv(on.env, "S", "p@q@r")); }},
    {"read from a layer", 2,
     [](auto& on, auto) {
         long value = 0;
         return env_get_long(on.env, "Base", "x", 0, &value);
     }},
    {"index", ENV_IS_DATA, [](auto& on, auto) { return env_check(on.fresh, "S", "b@20", 1); }},
    {"position", ENV_IS_DATA,
     [](auto& on, auto) {
         char name[10], text[100];
         return env_get_pos(on.env, "T", "list", 1, 60, nullptr, 10, name, 100, text, nullptr);
     }},
    {"names", 0,
     [](auto& on, auto) {
         static char names[5000];
         return env_list_elem_names(on.env, "T", "list", 0, ';', 5000, names);
     }},
    {"walk", 0, [](auto& on, auto) { return env_traverse(on.small, nullptr, nullptr, 1, ignore, nullptr); }},
    {"leaves", 0, [](auto& on, auto) { return env_traverse_leafs(on.small, ignore, nullptr); }},
    {"missing", 0, [](auto& on, auto) { return env_sink(on.other, on.small, 0); }, 1, true},
    {"further", 0, [](auto& on, auto) { return env_sink(on.other, on.small, 1); }, 1, true},
    {"all", 0, [](auto& on, auto) { return env_sink(on.other, on.small, 2); }, 1, true},
    {"present", 0, [](auto& on, auto) { return env_sink(on.other, on.small, 3); }, 1, true},
    {"onto itself", 0, [](auto& on, auto) { return env_sink(on.small, on.small, 1); }, 1, true},
    {"block", 0, [](auto& on, auto) { return env_copy_block(on.other, on.small, "S", "b", 1); }, 1, true},
    {"text read", 0, [](auto& on, auto) { return read_three_sections(on.env, false); }, 1, true},
    {"file read", 0, [](auto& on, auto) { return read_three_sections(on.env, true); }, 1, true},
};

TEST(EnvMemory, ACallThatFailsLeavesTheStoreWhole) {
    for (const Call& call : calls) {
        SCOPED_TRACE(call.what);
        std::vector<std::string> states; // before each time and at the end, with memory
        fail_each_allocation([&](Fault& fault) {
            const Stores on;
            const bool first = states.empty();
            for (int i = 0; i < call.times; ++i) {
                if (first) states.push_back(on.content());
                const std::string name = "name" + std::to_string(i);
                const auto make = [&] { return call.make(on, name.c_str()); };
                if (fault.succeeds(call.success, int{ENV_INVALID}, make)) continue;
                const std::string after = on.content();
                EXPECT_TRUE(call.may_be_part || after == states[static_cast<std::size_t>(i)]);
                EXPECT_EQ(make(), call.success) << "with memory again";
                Messages().take();
                if (call.may_be_part) return;
            }
            if (first) states.push_back(on.content());
            EXPECT_TRUE(on.content() == states.back());
        });
    }
}

TEST(TriangulationMemory, FailsWithNothingLost) {
    std::vector<float> points;
    for (int i = 0; i < 40; ++i)
        points.insert(points.end(), {static_cast<float>(i * 37 % 41), static_cast<float>(i * 17 % 23)});
    fail_each_allocation([&](Fault& fault) {
        float* triangles = points.data();
        unsigned count = 99;
        const bool done =
            fault.succeeds(1, 0, [&] { return Triangulieren(40, points.data(), &triangles, &count); });
        EXPECT_EQ(count > 0, done);
        EXPECT_EQ(triangles != nullptr, done);
        FreeTriangs(&triangles);
    });
    const float on_a_line[] = {1, 1, 2, 2, 3, 3, 4, 4};
    fail_each_allocation([&](Fault& fault) {
        float* triangles = nullptr;
        unsigned count = 99;
        const bool done =
            fault.succeeds(1, 0, [&] { return Triangulieren(4, on_a_line, &triangles, &count); });
        EXPECT_EQ(count, 0u);
        EXPECT_EQ(triangles != nullptr, done);
        FreeTriangs(&triangles);
    });
}

} // namespace
