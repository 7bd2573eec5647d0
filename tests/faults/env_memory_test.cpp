// The environment store without memory: what fails leaves the store as it was, and the store works on.
#include "tests/env/store.h"
#include "tests/faults/memory_faults.h"
#ifndef _WIN32
#include "tests/env/store_check.h"
#endif

namespace {

using memory_faults::fail_each_allocation;
using memory_faults::Fault;

void expect_consistent([[maybe_unused]] EnvHandle env) {
#ifndef _WIN32
    env::StoreCheck check(env);
#endif
}

// A store with short and long lists, long names and texts, repeated names, and blocks of all depths.
void fill(EnvHandle env) {
    read_text(env, "[S]\na=1\nb={\n c={\n  d=x\n }\n e=\n}\n[T]\nlist={\n}\n");
    for (int i = 0; i < 70; ++i) {
        env_put(env, "T", ("list@n" + std::to_string(i % 60)).c_str(), "t");
        env_put(env, "T", ("list@same@" + std::to_string(i + 1)).c_str(),
                std::string(static_cast<std::size_t>(i), 'x').c_str());
    }
    env_put(env, "T", ("large@" + std::string(600, 'n')).c_str(), std::string(900, 't').c_str());
    env_put_external(env, "T", "word", 7);
}

// One call on a filled store, under a fault; whatever its outcome, the store is whole.
template <class Call>
void try_call(Fault& fault, Call&& call) {
    const Env base(2);
    const Env env(1, base);
    fill(env);
    fill(base);
    const std::string before = written(env);
    if (!fault.succeeds(ENV_OK, ENV_INVALID, [&] { return call(env); })) {
        EXPECT_TRUE(written(env) == before) << "a call that failed changed something";
        expect_consistent(env);
        EXPECT_EQ(call(env), ENV_OK) << "with memory again";
    }
    expect_consistent(env);
    Messages().take();
}

TEST(EnvMemory, AWriteThatFailsChangesNothing) {
    const std::string long_text(5000, 'x'), long_name = "list@" + std::string(2000, 'n') + "@3";
    const std::vector<std::pair<const char*, const char*>> writes = {
        {"S", "a"},             // over a text, by a longer one
        {"S", "b@c"},           // over a block
        {"S", "b@c@new@x@y@2"}, // below one
        {"S", "a@new@3@x"},     // below a text, which becomes a block
        {"T", "word@x"},        // below an external
        {"T", "list@same@100"}, // in a long list
        {"T", "list@n5@3@x@2"},
        {"T", long_name.c_str()},
        {"New", "x@2@y"}, // in a section that is missing
    };
    for (const auto& [section, path] : writes) {
        SCOPED_TRACE(path ? path : section);
        fail_each_allocation([&, section = section, path = path](Fault& fault) {
            try_call(fault, [&](EnvHandle env) { return env_put(env, section, path, long_text.c_str()); });
        });
    }
}

// Small changes find room in what the store has: each is made until it must ask for more.
TEST(EnvMemory, OtherChangesThatFailChangeNothing) {
    using Change = EnvStatus (*)(EnvHandle, const char* name);
    constexpr Change changes[] = {
        [](EnvHandle env, const char* name) { return env_insert_before(env, "S", "b@c", name); },
        [](EnvHandle env, const char* name) { return env_insert_before(env, "S", nullptr, name); },
        [](EnvHandle env, const char* name) {
            const long numbers[] = {1, 2, 3};
            return env_put_longs(env, "S", name, 3, numbers);
        },
        [](EnvHandle env, const char* name) { return env_put_format(env, "S", name, "%g %s", 0.5, "x"); },
        [](EnvHandle env, const char* name) { return env_put_external(env, name, "e@2@x", 3); },
    };
    for (const Change& change : changes) {
        SCOPED_TRACE(&change - changes);
        fail_each_allocation([&](Fault& fault) {
            const Env env;
            read_text(env, "[S]\na=1\nb={\n c=\n}\n");
            for (int i = 0; i < 60; ++i) {
                const std::string before = written(env), name = "name" + std::to_string(i);
                const bool changed =
                    fault.succeeds(ENV_OK, ENV_INVALID, [&] { return change(env, name.c_str()); });
                EXPECT_TRUE(changed || written(env) == before) << i;
            }
            expect_consistent(env);
            Messages().take();
        });
    }
}

TEST(EnvMemory, HandlesAreMadeWholeOrNotAtAll) {
    fail_each_allocation([](Fault& fault) {
        const EnvHandle env = fault([] { return env_open(1, nullptr); });
        if (!env) {
            EXPECT_TRUE(fault.struck());
            return;
        }
        fill(env);
        const EnvHandle layer = fault([&] { return env_open(2, env); });
        const EnvHandle sub = fault([&] { return env_open_subenv(env, "S", "b", 1); });
        const EnvHandle made = fault([&] { return env_create_subenv(env, "S", "p@q@r"); });
        EXPECT_TRUE(fault.struck() || (layer && sub && made));
        expect_consistent(env);
        for (const EnvHandle handle : {made, sub, layer})
            EXPECT_EQ(handle ? env_close(handle, 0) : ENV_OK, ENV_OK);
        EXPECT_EQ(env_close(env, 0), ENV_OK);
        Messages().take();
    });
}

// Reads need memory for an index or a queue; without it a lookup answers all the same or fails.
TEST(EnvMemory, ReadsFailOrAnswerRight) {
    fail_each_allocation([](Fault& fault) {
        const Env base(2);
        const Env env(1, base);
        fill(base);
        long value = 0, count = 2, values[2] = {};
        char name[10], text[100];
        fault.succeeds(2, ENV_INVALID, [&] { return env_get_long(env, "S", "a", 0, &value); });
        fault.succeeds(2, ENV_INVALID, [&] { return env_get_longs(env, "S", "a", 0, &count, values); });
        fault.succeeds(2, ENV_INVALID, [&] { return env_get(env, "S", "d", 0, sizeof text, text); });
        fault.succeeds(ENV_IS_DATA, ENV_INVALID, [&] { return env_check(base, "T", "list@n59", 1); });
        fault.succeeds(ENV_IS_DATA, ENV_INVALID, [&] {
            return env_get_pos(base, "T", "list", 1, 60, nullptr, sizeof name, name, sizeof text, text,
                               nullptr);
        });
        fault.succeeds(71, ENV_INVALID, [&] { return env_count_path(base, "T", "list@same", 1) + 1; });
        expect_consistent(base);

        const Env fresh; // its list has namesakes, and no index yet
        std::string text_of_40 = "[S]\n";
        for (int i = 0; i < 20; ++i)
            text_of_40 += "a=1\nb=2\n";
        read_text(fresh, text_of_40);
        fault.succeeds(ENV_IS_DATA, ENV_INVALID, [&] { return env_check(fresh, "S", "b@20", 1); });
    });
}

TEST(EnvMemory, AFileIsReadWholeOrTheStoreIsWhole) {
    const ScratchFile file;
    std::string text;
    for (int i = 0; i < 3; ++i)
        text += "[S" + std::to_string(i) + "]\n" + std::string(300, 'n') + "=" + std::string(2000, 't') +
                "\nb={\n c={\n }\n d={\n  e=1\n }\n}\n";
    file.write(text);
    for (const bool from_file : {true, false}) {
        fail_each_allocation([&](Fault& fault) {
            const Env env;
            fill(env);
            CharSource source{text};
            const std::string path = file.path();
            if (!fault.succeeds(ENV_OK, ENV_INVALID, [&]() -> EnvStatus {
                    return from_file ? env_read_file(path.c_str(), env)
                                     : env_read(CharSource::next, &source, env);
                })) {
                expect_consistent(env);
                EXPECT_EQ(read_text(env, text), ENV_OK);
            }
            EXPECT_EQ(env_count_elements(env, nullptr, nullptr, 1), 3);
            expect_consistent(env);
            Messages().take();
        });
    }
}

// The file is emptied when it is opened: from there on nothing may fail.
TEST(EnvMemory, AFileIsWrittenWholeOrLeftAlone) {
    const ScratchFile file;
    const std::string path = file.path();
    const Env env;
    fill(env);
    env_write_file(path.c_str(), env);
    const std::string whole = file.bytes();
    fail_each_allocation([&](Fault& fault) {
        file.write("[Old]\n");
        fault([&] { env_write_file(path.c_str(), env); });
        EXPECT_TRUE(file.bytes() == whole || (fault.struck() && file.bytes() == "[Old]\n"))
            << file.bytes().size();
        Messages().take();
    });
}

TEST(EnvMemory, WalksAndCopiesEnd) {
    for (const int mode : {0, 1, 2, 3}) {
        fail_each_allocation([&](Fault& fault) {
            const Env source, target;
            read_text(source, "[S]\na=1\nb={\n c={\n  d=x\n }\n e=\n}\n[T]\nlist={\n n=1\n n=2\n}\n");
            env_put(target, "S", "a", "old");
            fault.succeeds(ENV_OK, ENV_INVALID,
                           [&]() -> EnvStatus { return env_sink(target, source, mode); });
            fault.succeeds(ENV_OK, ENV_INVALID,
                           [&]() -> EnvStatus { return env_copy_block(target, source, "S", "b", mode); });
            fault.succeeds(ENV_OK, ENV_INVALID,
                           [&]() -> EnvStatus { return env_sink(source, source, mode); });
            const auto visit = [](EnvHandle, const char*, const char*, void*) {};
            fault.succeeds(ENV_OK, ENV_INVALID, [&]() -> EnvStatus {
                return env_traverse(source, nullptr, nullptr, 1, visit, nullptr);
            });
            fault.succeeds(ENV_OK, ENV_INVALID,
                           [&]() -> EnvStatus { return env_traverse_leafs(source, visit, nullptr); });
            std::string names(5000, '\0');
            fault.succeeds(ENV_OK, ENV_INVALID, [&] {
                return env_list_elem_names(source, "T", "list", 0, ';', 5000, names.data());
            });
            expect_consistent(source);
            expect_consistent(target);
            Messages().take();
        });
    }
}

} // namespace
