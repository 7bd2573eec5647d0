// Opening plug-in files through the exports: which property lists are taken, and what is left after failures.
#include "bvutil/filter_host.h"
#include "tests/filterhost/plugin_files.h"
#include "tests/support/resources.h"

#include <gtest/gtest.h>

namespace {

using namespace property_bytes;

// What one call of AVGetPSFilterAndInfo gave; "-" stands for null.
struct Opened {
    explicit Opened(const char* file) {
        char* category = unset;
        char* name = unset;
        filter = reinterpret_cast<PSFilter_*>(unset);
        result = AVGetPSFilterAndInfo(file, &category, &name, &filter, &error);
        texts = std::string(category ? category : "-") + "/" + (name ? name : "-");
        EXPECT_EQ(AVFreeGotPSFilterInfo(&category, &name), 1);
        EXPECT_EQ(category, nullptr);
        EXPECT_EQ(name, nullptr);
    }
    explicit Opened(const std::string& file) : Opened(file.c_str()) {}
    ~Opened() {
        EXPECT_EQ(AVFreeGotPSFilter(&filter), 1);
        EXPECT_EQ(filter, nullptr);
    }
    Opened(const Opened&) = delete;
    Opened& operator=(const Opened&) = delete;

    bool failed_cleanly() const { return result == 0 && error == -1 && texts == "-/-" && !filter; }

    static inline char unset[] = "unset";
    PSFilter_* filter;
    int error = 77;
    int result;
    std::string texts;
};

class OpenFilter : public testing::Test {
  protected:
    PluginFiles files;
};

TEST_F(OpenFilter, TakesTheFirstListThatIsComplete) {
    struct Case {
        const char* name;
        std::vector<std::string> lists;
        std::string texts; // empty: the file is refused
    };
    const std::string no_kind = list({entry, category("C"), name("N")});
    const Case cases[] = {
        {"one list", {complete_list("Sharpen", "More")}, "Sharpen/More"},
        {"the first lacks its name",
         {list({filter_kind, entry, category("A")}), complete_list("B", "N")},
         "B/N"},
        {"the first of two complete lists", {complete_list("A", "1"), complete_list("B", "2")}, "A/1"},
        {"a list without a kind counts as a filter's", {no_kind}, "C/N"},
        {"texts of a rejected list complete a later one",
         {list({category("A"), name("1"), version(5, 0), entry}), list({filter_kind, entry, name("2")})},
         "A/2"},
        {"texts of a list without an entry point too",
         {list({category("A"), name("1")}), list({entry})},
         "A/1"},
        {"a rejected list's entry point does not",
         {list({entry, version(4, 1)}), list({category("A"), name("1")})},
         ""},
        {"no list", {}, ""},
        {"another format", {list({filter_kind, entry, category("A"), name("1")}, 1)}, ""},
        {"another kind", {list({property("kind", code("8BAM")), entry, category("A"), name("1")})}, ""},
        {"an entry point that is not exported",
         {list({filter_kind, property("wx86", "Elsewhere"), category("A"), name("1")})},
         ""},
        {"an empty category", {complete_list("", "1")}, ""},
        {"an empty name", {complete_list("A", "")}, ""},
        {"a name that begins with its end", {complete_list("A", std::string("\0b", 2))}, ""},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        const Opened opened(files.make(each.lists));
        if (each.texts.empty()) {
            EXPECT_TRUE(opened.failed_cleanly()) << opened.texts << " " << opened.error;
            continue;
        }
        EXPECT_EQ(opened.result, 1);
        EXPECT_EQ(opened.error, 0);
        EXPECT_EQ(opened.texts, each.texts);
        EXPECT_NE(opened.filter, nullptr);
    }
}

TEST_F(OpenFilter, NeedsNoOutputButTheFilter) {
    const std::string path = files.make(complete_list());
    PSFilter_* filter = nullptr;
    EXPECT_EQ(AVGetPSFilterAndInfo(path.c_str(), nullptr, nullptr, &filter, nullptr), 1);
    EXPECT_NE(GetModuleHandleA(path.c_str()), nullptr);
    EXPECT_EQ(AVFreeGotPSFilter(&filter), 1);
    EXPECT_EQ(GetModuleHandleA(path.c_str()), nullptr) << "the module outlived its filter";

    char* text = Opened::unset;
    int error = 7;
    EXPECT_EQ(AVGetPSFilterAndInfo(path.c_str(), &text, &text, nullptr, &error), 0);
    EXPECT_EQ(text, Opened::unset);
    EXPECT_EQ(error, 7);

    EXPECT_EQ(AVFreeGotPSFilterInfo(nullptr, nullptr), 1);
    EXPECT_EQ(AVFreeGotPSFilter(nullptr), 1);
    EXPECT_EQ(AVFreeGotPSFilter(&filter), 1);
}

// A delete expression of another compiler calls slot 0 of the table with the object in ecx and a flag.
TEST_F(OpenFilter, IsDeletedThroughSlot0) {
    const std::string path = files.make(complete_list());
    PSFilter_* filter = nullptr;
    ASSERT_EQ(AVGetPSFilterAndInfo(path.c_str(), nullptr, nullptr, &filter, nullptr), 1);
    using DeletingDestructor = void*(__thiscall*)(void*, unsigned);
    EXPECT_EQ((**reinterpret_cast<DeletingDestructor**>(filter))(filter, 1), filter);
    EXPECT_EQ(GetModuleHandleA(path.c_str()), nullptr);
}

// A file cut off anywhere, and one with any single byte of its property list or resource directory wrong, is
// opened or refused, and leaves nothing loaded.
TEST_F(OpenFilter, SurvivesDamagedFiles) {
    EXPECT_TRUE(Opened(nullptr).failed_cleanly());
    EXPECT_TRUE(Opened("").failed_cleanly());
    EXPECT_TRUE(Opened(files.file("missing.8bf")).failed_cleanly());
    write_file(files.file("text.8bf"), "no library");
    EXPECT_TRUE(Opened(files.file("text.8bf")).failed_cleanly());

    const std::string whole = read_file(files.make(complete_list()));
    const std::string damaged = files.file("damaged.8bf");
    for (std::size_t size = 0; size < whole.size(); size += size < 1024 ? 61 : 1499) {
        write_file(damaged, whole.substr(0, size));
        const Opened opened(damaged);
        EXPECT_TRUE(opened.result == 1 || opened.failed_cleanly()) << size;
    }
    const std::size_t list_at = whole.find(complete_list());
    ASSERT_NE(list_at, std::string::npos);
    for (std::size_t at = list_at - 0x70; at < list_at + complete_list().size(); ++at) {
        for (const char wrong : {'\xFF', '\x7F', '\0'}) {
            std::string bytes = whole;
            bytes[at] = wrong;
            write_file(damaged, bytes);
            const Opened opened(damaged);
            EXPECT_TRUE(opened.result == 1 || opened.failed_cleanly()) << at - list_at;
        }
    }
    EXPECT_EQ(GetModuleHandleA(damaged.c_str()), nullptr);
}

TEST_F(OpenFilter, LeaksNothing) {
    const std::string good = files.make(complete_list());
    const std::string bad = files.make(
        list({category("overwritten"), category("A"), name("overwritten"), name("1"), version(9, 0), entry}));
    write_file(files.file("text.8bf"), "no library");
    for (const std::string& path : {good, bad, files.file("text.8bf")}) {
        SCOPED_TRACE(path);
        const auto open = [&](int times) {
            for (int i = 0; i < times; ++i)
                Opened opened(path);
        };
        expect_nothing_kept(open, 1000);
        EXPECT_EQ(GetModuleHandleA(path.c_str()), nullptr);
    }
}

} // namespace
