// Opening plug-in files through the exports: which property lists are taken, and what is left after failures.
#include "bvutil/filter_host.h"
#include "tests/filterhost/plugin_files.h"

namespace {

using namespace property_bytes;

class OpenFilter : public testing::Test {
  protected:
    ~OpenFilter() override { EXPECT_EQ(AVFreeGotPSFilter(&filter), 1); }

    // The texts, "refused" when nothing but the error -1 came out, "torn" otherwise.
    std::string open(const char* file) {
        AVFreeGotPSFilter(&filter);
        static char unset[] = "unset";
        char *category = unset, *name = unset;
        filter = reinterpret_cast<PSFilter_*>(unset);
        int error = 77;
        const int done = AVGetPSFilterAndInfo(file, &category, &name, &filter, &error);
        std::string result = "torn";
        if (done == 0 && error == -1 && !category && !name && !filter) result = "refused";
        if (done == 1 && error == 0 && category && name && filter)
            result = std::string(category) + "/" + name;
        EXPECT_EQ(AVFreeGotPSFilterInfo(&category, &name), 1);
        EXPECT_TRUE(!category && !name);
        return result;
    }
    std::string open(const std::string& file) { return open(file.c_str()); }

    PluginFiles files;
    PSFilter_* filter = nullptr;
};

TEST_F(OpenFilter, TakesTheFirstListThatIsComplete) {
    const std::string a = category("A"), one = name("1");
    const struct {
        const char* name;
        std::vector<std::string> lists;
        std::string result;
    } cases[] = {
        {"the first lacks its name", {list({filter_kind, entry, a}), complete_list("B", "N")}, "B/N"},
        {"the first of two complete lists", {complete_list("A", "1"), complete_list("B", "2")}, "A/1"},
        {"a list without a kind counts as a filter's", {list({entry, a, one})}, "A/1"},
        {"texts of a rejected list complete a later one",
         {list({a, one, version(5, 0), entry}), list({filter_kind, entry, name("2")})},
         "A/2"},
        {"texts of a list without an entry point too", {list({a, one}), list({entry})}, "A/1"},
        {"a rejected list's entry point does not", {list({entry, version(4, 1)}), list({a, one})}, "refused"},
        {"no list", {}, "refused"},
        {"another format", {list({filter_kind, entry, a, one}, 1)}, "refused"},
        {"another kind", {list({property("kind", code("8BAM")), entry, a, one})}, "refused"},
        {"an entry point that is not exported", {list({property("wx86", "Elsewhere"), a, one})}, "refused"},
        {"an empty category", {complete_list("", "1")}, "refused"},
        {"an empty name", {complete_list("A", "")}, "refused"},
        {"a name that begins with its end", {complete_list("A", std::string("\0b", 2))}, "refused"},
    };
    for (const auto& each : cases)
        EXPECT_EQ(open(files.make(each.lists)), each.result) << each.name;
}

TEST_F(OpenFilter, NeedsNoOutputButTheFilter) {
    const std::string path = files.make(complete_list());
    EXPECT_EQ(AVGetPSFilterAndInfo(path.c_str(), nullptr, nullptr, &filter, nullptr), 1);
    EXPECT_NE(GetModuleHandleA(path.c_str()), nullptr);
    EXPECT_EQ(AVFreeGotPSFilter(&filter), 1);
    EXPECT_EQ(filter, nullptr);
    EXPECT_EQ(GetModuleHandleA(path.c_str()), nullptr) << "the module outlived its filter";

    char* text = nullptr;
    int error = 7;
    EXPECT_EQ(AVGetPSFilterAndInfo(path.c_str(), &text, &text, nullptr, &error), 0);
    EXPECT_TRUE(!text && error == 7);
    EXPECT_EQ(AVFreeGotPSFilterInfo(nullptr, nullptr), 1);
    EXPECT_EQ(AVFreeGotPSFilter(nullptr), 1);

    // A delete expression of another compiler calls slot 0 of the table with the object in ecx and a flag.
    EXPECT_EQ(AVGetPSFilterAndInfo(path.c_str(), nullptr, nullptr, &filter, nullptr), 1);
    using DeletingDestructor = void*(__thiscall*)(void*, unsigned);
    EXPECT_EQ((**reinterpret_cast<DeletingDestructor**>(filter))(filter, 1), filter);
    EXPECT_EQ(GetModuleHandleA(path.c_str()), nullptr);
    filter = nullptr;
}

// A file cut off anywhere, and one with any single byte of its property list or resource directory wrong, is
// opened or refused, and leaves nothing loaded.
TEST_F(OpenFilter, SurvivesDamagedFiles) {
    EXPECT_EQ(open(nullptr), "refused");
    EXPECT_EQ(open(""), "refused");
    EXPECT_EQ(open("missing.8bf"), "refused");
    const std::string whole = read_file(files.make(complete_list())), damaged = files.file("damaged.8bf");
    const auto try_with = [&](const std::string& bytes, std::size_t at) {
        write_file(damaged, bytes);
        EXPECT_NE(open(damaged), "torn") << at;
    };
    for (std::size_t size = 0; size < whole.size(); size += size < 1024 ? 61 : 1499)
        try_with(whole.substr(0, size), size);
    const std::size_t list_at = whole.find(complete_list());
    ASSERT_NE(list_at, std::string::npos);
    for (std::size_t at = list_at - 0x70; at < list_at + complete_list().size(); ++at)
        for (const char wrong : {'\xFF', '\x7F', '\0'})
            try_with(std::string(whole).replace(at, 1, 1, wrong), at);
    AVFreeGotPSFilter(&filter);
    EXPECT_EQ(GetModuleHandleA(damaged.c_str()), nullptr);
}

} // namespace
